// The session's source of lookup matches: a connection of its own that resumes the session, in a thread of its own.
#include <QPointer>
#include <QThread>
#include <memory>

#include "registry/lookup_matches.h"
#include "session/dm.h"

namespace kalvor {
namespace {

constexpr int answerTimeoutMs = 5000;

// Lives in the thread: what it calls blocks nobody.
class LookupConnection : public QObject {
 public:
  LookupConnection(const SocketConnection& server, QString session) : session_(std::move(session))
  {
    place_.Address = server.Address;
    place_.Port = server.Port;
    place_.trust = server.trust;
    place_.connectTimeoutMs = place_.answerTimeoutMs = answerTimeoutMs;
  }
  LookupMatches find(const LookupQuestion& question)
  {
    if (!broker_) {
      broker_ = std::make_unique<ConnectionBroker>(&place_);
      broker_->setSession(session_);
      finder_ = std::make_unique<LookupFinder>(*broker_);
    }
    return finder_->find(question);
  }

 private:
  SocketConnection place_;
  QString session_;
  std::unique_ptr<ConnectionBroker> broker_;
  std::unique_ptr<LookupFinder> finder_;
};

LookupMatches foundOrNothing(const std::function<LookupMatches()>& find)
{
  try {
    return find();
  } catch (const std::exception&) {
    return {};  // nobody is bothered while typing; leaving the field tells what is wrong
  }
}

// Ends with the session.
class SessionLookups : public QObject {
 public:
  explicit SessionLookups(TDM* session) : QObject(session)
  {
    setObjectName(objectNameInSession());
    const auto* overSocket = dynamic_cast<ConnectionBroker*>(session->ConBroker);
    if (!overSocket) {
      direct_ = std::make_unique<LookupFinder>(*session->ConBroker);
      return;
    }
    connection_ = new LookupConnection(session->SocketCon, LocalData.ServerText);
    connection_->moveToThread(&thread_);
    connect(&thread_, &QThread::finished, connection_, &QObject::deleteLater);
    thread_.start();
  }
  ~SessionLookups() override
  {
    thread_.quit();
    thread_.wait();
  }
  static QString objectNameInSession() { return QStringLiteral("sessionLookups"); }

  void ask(const LookupQuestion& question, QObject* receiver, const LookupSource::Answer& answered)
  {
    if (direct_) {
      answered(foundOrNothing([&] { return direct_->find(question); }));
      return;
    }
    const QPointer<QObject> guarded = receiver;
    QMetaObject::invokeMethod(connection_, [this, question, guarded, answered] {
      const LookupMatches matches = foundOrNothing([&] { return connection_->find(question); });
      QMetaObject::invokeMethod(this, [guarded, answered, matches] {
        if (guarded)
          answered(matches);
      });
    });
  }

 private:
  QThread thread_;
  LookupConnection* connection_ = nullptr;  // deletes itself in its thread
  std::unique_ptr<LookupFinder> direct_;
};

class SessionSource : public LookupSource {
 public:
  void ask(const LookupQuestion& question, QObject* receiver, Answer answered) override
  {
    if (!DM) {
      answered({});
      return;
    }
    auto* lookups = DM->findChild<QObject*>(SessionLookups::objectNameInSession(), Qt::FindDirectChildrenOnly);
    if (!lookups)
      lookups = new SessionLookups(DM);
    static_cast<SessionLookups*>(lookups)->ask(question, receiver, answered);
  }
};

LookupSource* installedSource = nullptr;

}  // namespace

LookupSource::~LookupSource() = default;

LookupSource* installLookupSource(LookupSource* source)
{
  return std::exchange(installedSource, source);
}

LookupSource& lookupSource()
{
  static SessionSource session;
  return installedSource ? *installedSource : session;
}

}  // namespace kalvor
