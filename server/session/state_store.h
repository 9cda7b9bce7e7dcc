// Sessions, readied providers, document locks and failed log-ins: kept in a database, so that a reconnect or
// another server finds them. Any thread may call; a call takes microseconds and never waits for the disk.
#pragma once

#include <memory>
#include <mutex>

#include "server/session/session.h"
#include "server/store/connection.h"

namespace kalvor::server {

class KALVOR_SERVER StateStore {
 public:
  explicit StateStore(const QString& database);
  ~StateStore();
  void setLimits(const SessionLimits& limits);  // before the first call

  // Opens a session and returns its text: 64 hex digits that only the client keeps. Fills session.token.
  QString openSession(Session& session);
  // Finds the session of a text; false when there is none, or it is beyond its limits.
  bool resumeSession(const QString& text, Session& session);
  // That it was used now, noted at most once a minute. False when the session was closed, through whatever server, or is
  // beyond its limits.
  bool touch(const Session& session);
  void closeSessionsOf(const QString& userId, const QString& companyId, const QString& exceptToken);

  // False when the session has too many.
  bool createProvider(const Session& session, const QString& name);
  void deleteProvider(const Session& session, const QString& name);
  // False when the session has no such provider.
  bool setProvider(const Session& session, const QString& name, const QByteArray& definition);
  // Nothing: no such provider; an empty one: not readied.
  std::optional<QByteArray> provider(const Session& session, const QString& name);

  // Takes the document; the user who holds it otherwise. Another session of the same user gives it up.
  QString lockDocument(const Session& session, const QString& documentId, int formId);
  // The other user who holds the document; empty: nobody.
  QString documentHolder(const Session& session, const QString& documentId);
  void unlockDocument(const Session& session, const QString& documentId);

  struct Counts {
    qint64 sessions = 0;
    qint64 documentLocks = 0;
  };
  Counts counts();

  struct Failures {
    int count = 0;
    qint64 secondsAgo = 0;
  };
  // Failures are forgotten a quarter of an hour after the last one. With fadesEvery above 0 one of them is forgotten in
  // so many seconds.
  Failures failures(const QString& who, int fadesEvery = 0);
  void noteFailure(const QString& who, int fadesEvery = 0);
  void clearFailures(const QString& who);
  // Whether somebody has logged in within the last 30 days.
  bool hasLoggedIn(const QString& who);
  void noteLogIn(const QString& who);

 private:
  template <typename Body>
  auto step(Body body);
  void removeWhatIsOver();

  SessionLimits limits_;
  std::mutex mutex_;
  std::unique_ptr<Connection> connection_;
};

// The hash under which a session text is kept.
KALVOR_SERVER QString sessionToken(const QString& text);

}  // namespace kalvor::server
