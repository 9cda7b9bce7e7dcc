#include "server/session/state_store.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QFile>
#include <sodium.h>

#include "server/store/database.h"
#include "server/store/migrations.h"

namespace kalvor::server {

namespace {

constexpr qint64 lockLifeSeconds = 30 * 60;   // since the holder's last call
constexpr qint64 failureLifeSeconds = 15 * 60;
constexpr qint64 logInLifeSeconds = 30 * 24 * 3600;
constexpr qsizetype longestWho = 200;
constexpr int providersPerSession = 2000;

qint64 nowSeconds() { return QDateTime::currentSecsSinceEpoch(); }

Migration stateMigration(int number, const QString& name)
{
  QFile file(QStringLiteral(":/state/%1.sql").arg(name));
  if (!file.open(QIODevice::ReadOnly)) {
    throw StoreError(StoreError::Kind::Other, QStringLiteral("the tables of sessions are missing"));
  }
  return {number, name, QString::fromUtf8(file.readAll())};
}

QList<Migration> stateMigrations()
{
  return {stateMigration(1, QStringLiteral("state_tables")), stateMigration(2, QStringLiteral("state_session_limits"))};
}

// How many of so many failures are left after a while; 0 seconds: all, until they are forgotten together.
qint64 failuresLeft(qint64 count, qint64 secondsAgo, int fadesEvery)
{
  return secondsAgo > failureLifeSeconds ? 0 : qMax<qint64>(0, fadesEvery > 0 ? count - secondsAgo / fadesEvery : count);
}

}  // namespace

QString sessionToken(const QString& text)
{
  return QString::fromLatin1(QCryptographicHash::hash(text.toUtf8(), QCryptographicHash::Sha256).toHex());
}

StateStore::StateStore(const QString& database) : connection_(openDatabase(database, ConnectionUse::State))
{
  connection_->setDurable(false);
  // In PostgreSQL these tables lie beside the company's.
  migrate(*connection_, stateMigrations(),
          connection_->dialect() == Dialect::Sqlite ? QStringLiteral("srv_Migration") : QStringLiteral("srv_StateMigration"));
}

StateStore::~StateStore() = default;

// Runs a step alone, and once more when the database ended it in favour of another server's.
template <typename Body>
auto StateStore::step(Body body)
{
  constexpr int attempts = 3;
  const std::lock_guard lock(mutex_);
  for (int attempt = 1;; ++attempt) {
    try {
      return body();
    } catch (const StoreError& error) {
      if (error.kind() != StoreError::Kind::Collision || attempt == attempts) {
        throw;
      }
    }
  }
}

void StateStore::setLimits(const SessionLimits& limits) { limits_ = limits; }

void StateStore::removeWhatIsOver()
{
  const qint64 now = nowSeconds();
  connection_->execute(QStringLiteral("DELETE FROM srv_Session WHERE UsedAt < ? OR CreatedAt < ?"),
                       {now - limits_.idleSeconds, now - limits_.absoluteSeconds});
  connection_->execute(QStringLiteral("DELETE FROM srv_LogInFailure WHERE LastAt < ?"), {now - failureLifeSeconds});
  connection_->execute(QStringLiteral("DELETE FROM srv_LogInFrom WHERE LastAt < ?"), {now - logInLifeSeconds});
}

QString StateStore::openSession(Session& session)
{
  QByteArray bytes(32, Qt::Uninitialized);
  randombytes_buf(bytes.data(), size_t(bytes.size()));
  const QString text = QString::fromLatin1(bytes.toHex());
  session.token = sessionToken(text);
  return step([&] {
    const qint64 now = nowSeconds();
    removeWhatIsOver();
    connection_->execute(
        QStringLiteral("INSERT INTO srv_Session (Token, User_Id, Comp_Id, BusinessGroup_Id, UsedAt, CreatedAt) "
                       "VALUES (?, ?, ?, ?, ?, ?)"),
        {session.token, session.userId, session.companyId, session.groupId.isNull() ? QStringLiteral("") : session.groupId,
         now, now});
    return text;
  });
}

bool StateStore::resumeSession(const QString& text, Session& session)
{
  const QString token = sessionToken(text);
  return step([&] {
    auto row = connection_->prepare(
        QStringLiteral("SELECT User_Id, Comp_Id, BusinessGroup_Id FROM srv_Session "
                       "WHERE Token = ? AND UsedAt >= ? AND CreatedAt >= ?"));
    row->bind(0, token);
    row->bind(1, nowSeconds() - limits_.idleSeconds);
    row->bind(2, nowSeconds() - limits_.absoluteSeconds);
    if (!row->step()) {
      return false;
    }
    session.token = token;
    session.userId = row->text(0);
    session.companyId = row->text(1);
    session.groupId = row->text(2);
    return true;
  });
}

bool StateStore::touch(const Session& session)
{
  const qint64 now = nowSeconds();
  return step([&] {
    auto row = connection_->prepare(
        QStringLiteral("SELECT UsedAt FROM srv_Session WHERE Token = ? AND UsedAt >= ? AND CreatedAt >= ?"));
    row->bind(0, session.token);
    row->bind(1, now - limits_.idleSeconds);
    row->bind(2, now - limits_.absoluteSeconds);
    if (!row->step()) {
      return false;
    }
    if (row->integer(0) + 60 <= now) {
      row->reset();
      connection_->execute(QStringLiteral("UPDATE srv_Session SET UsedAt = ? WHERE Token = ?"), {now, session.token});
    }
    return true;
  });
}

void StateStore::closeSessionsOf(const QString& userId, const QString& companyId, const QString& exceptToken)
{
  step([&] {
    connection_->execute(QStringLiteral("DELETE FROM srv_Session WHERE User_Id = ? AND Comp_Id = ? AND Token <> ?"),
                         {userId, companyId, exceptToken});
  });
}

bool StateStore::createProvider(const Session& session, const QString& name)
{
  return step([&] {
    const Variant count =
        connection_->value(QStringLiteral("SELECT COUNT(*) FROM srv_Provider WHERE Session = ?"), {session.token});
    if (count.toInt() >= providersPerSession) {
      return false;
    }
    connection_->execute(QStringLiteral("INSERT INTO srv_Provider (Session, Name) VALUES (?, ?)"), {session.token, name});
    return true;
  });
}

void StateStore::deleteProvider(const Session& session, const QString& name)
{
  step([&] {
    connection_->execute(QStringLiteral("DELETE FROM srv_Provider WHERE Session = ? AND Name = ?"), {session.token, name});
  });
}

bool StateStore::setProvider(const Session& session, const QString& name, const QByteArray& definition)
{
  return step([&] {
    return connection_->execute(QStringLiteral("UPDATE srv_Provider SET Definition = ? WHERE Session = ? AND Name = ?"),
                                {definition, session.token, name}) == 1;
  });
}

std::optional<QByteArray> StateStore::provider(const Session& session, const QString& name)
{
  return step([&] {
    auto row = connection_->prepare(QStringLiteral("SELECT Definition FROM srv_Provider WHERE Session = ? AND Name = ?"));
    row->bind(0, session.token);
    row->bind(1, name);
    return row->step() ? std::optional(row->value(0).toByteArray()) : std::nullopt;
  });
}

namespace {

QString holderOf(Connection& connection, const Session& session, const QString& documentId)
{
  return connection.value(
      QStringLiteral("SELECT s.User_Id FROM srv_DocumentLock l INNER JOIN srv_Session s ON s.Token = l.Session "
                     "WHERE l.Comp_Id = ? AND l.Document_Id = ? AND s.User_Id <> ? AND s.UsedAt >= ?"),
      {session.companyId, documentId, session.userId, nowSeconds() - lockLifeSeconds}).toString();
}

}  // namespace

QString StateStore::documentHolder(const Session& session, const QString& documentId)
{
  return step([&] { return holderOf(*connection_, session, documentId); });
}

QString StateStore::lockDocument(const Session& session, const QString& documentId, int formId)
{
  return step([&]() -> QString {
    Transaction transaction(*connection_);
    const QString holder = holderOf(*connection_, session, documentId);
    if (!holder.isEmpty()) {
      return holder;
    }
    connection_->execute(QStringLiteral("DELETE FROM srv_DocumentLock WHERE Comp_Id = ? AND Document_Id = ?"),
                         {session.companyId, documentId});
    connection_->execute(
        QStringLiteral("INSERT INTO srv_DocumentLock (Comp_Id, Document_Id, Form_Id, Session) VALUES (?, ?, ?, ?)"),
        {session.companyId, documentId, formId, session.token});
    transaction.commit();
    return {};
  });
}

void StateStore::unlockDocument(const Session& session, const QString& documentId)
{
  step([&] {
    connection_->execute(
        QStringLiteral("DELETE FROM srv_DocumentLock WHERE Comp_Id = ? AND Document_Id = ? AND Session IN "
                       "(SELECT Token FROM srv_Session WHERE User_Id = ? AND Comp_Id = ?)"),
        {session.companyId, documentId, session.userId, session.companyId});
  });
}

StateStore::Counts StateStore::counts()
{
  return step([&]() -> Counts {
    return {connection_->value(QStringLiteral("SELECT COUNT(*) FROM srv_Session")).toLongLong(),
            connection_->value(QStringLiteral("SELECT COUNT(*) FROM srv_DocumentLock")).toLongLong()};
  });
}

StateStore::Failures StateStore::failures(const QString& who, int fadesEvery)
{
  return step([&]() -> Failures {
    auto row = connection_->prepare(QStringLiteral("SELECT Count, LastAt FROM srv_LogInFailure WHERE Who = ?"));
    row->bind(0, who.left(longestWho));
    if (!row->step()) {
      return {};
    }
    const qint64 secondsAgo = nowSeconds() - row->integer(1);
    const int left = int(failuresLeft(row->integer(0), secondsAgo, fadesEvery));
    return left == 0 ? Failures{} : Failures{left, secondsAgo};
  });
}

void StateStore::noteFailure(const QString& who, int fadesEvery)
{
  step([&] {
    Transaction transaction(*connection_);
    const QString key = who.left(longestWho);
    qint64 count = 1;
    {
      auto row = connection_->prepare(QStringLiteral("SELECT Count, LastAt FROM srv_LogInFailure WHERE Who = ?"));
      row->bind(0, key);
      if (row->step()) {
        count += failuresLeft(row->integer(0), nowSeconds() - row->integer(1), fadesEvery);
      }
    }
    connection_->execute(QStringLiteral("INSERT INTO srv_LogInFailure (Who, Count, LastAt) VALUES (?, ?, ?) ON CONFLICT (Who) "
                                        "DO UPDATE SET Count = excluded.Count, LastAt = excluded.LastAt"),
                         {key, count, nowSeconds()});
    transaction.commit();
  });
}

void StateStore::clearFailures(const QString& who)
{
  step([&] {
    connection_->execute(QStringLiteral("DELETE FROM srv_LogInFailure WHERE Who = ?"), {who.left(longestWho)});
  });
}

bool StateStore::hasLoggedIn(const QString& who)
{
  return step([&] {
    return !isNull(connection_->value(QStringLiteral("SELECT LastAt FROM srv_LogInFrom WHERE Who = ? AND LastAt >= ?"),
                                      {who.left(longestWho), nowSeconds() - logInLifeSeconds}));
  });
}

void StateStore::noteLogIn(const QString& who)
{
  step([&] {
    connection_->execute(QStringLiteral("INSERT INTO srv_LogInFrom (Who, LastAt) VALUES (?, ?) "
                                        "ON CONFLICT (Who) DO UPDATE SET LastAt = excluded.LastAt"),
                         {who.left(longestWho), nowSeconds()});
  });
}

}  // namespace kalvor::server
