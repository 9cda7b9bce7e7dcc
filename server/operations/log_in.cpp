#include "rpc/rpc_error.h"
#include "server/log.h"
#include "server/operations/handlers.h"
#include "server/operations/log_in_throttle.h"
#include "server/operations/passwords.h"

namespace kalvor::server {

namespace {

// Results of LogIn.
enum LogInResult : int { LoggedIn = 0, WrongPassword = -1, NoSuchData = -4, UserInactive = -5 };

struct UserRow {
  bool found = false;
  QString id;
  QString hash;
  bool active = false;
};

UserRow readUser(Connection& db, const QString& userId, const QString& companyId)
{
  UserRow user;
  auto row = db.prepare(QStringLiteral("SELECT Id, PasswordHash, Active FROM N_Users WHERE Id = ? AND Comp_Id = ?"));
  row->bind(0, userId);
  row->bind(1, companyId);
  if (row->step()) {
    user = {true, row->text(0), row->text(1), row->integer(2) == 1};
  }
  return user;
}

// Whether the user may work in the business group; the administrator also without one.
bool groupIsOpen(Connection& db, const UserRow& user, const QString& companyId, const QString& groupId)
{
  if (user.id == u"SUPERVSR") {
    return groupId.isEmpty() || !isNull(db.value(QStringLiteral("SELECT Id FROM N_BusinessGroup WHERE Id = ? AND Comp_Id = ?"),
                                                 {groupId, companyId}));
  }
  return !isNull(db.value(QStringLiteral("SELECT 1 FROM S_UserGroups WHERE User_Id = ? AND Comp_Id = ? AND "
                                         "BusinessGroup_Id = ?"), {user.id, companyId, groupId}));
}

LogInResult tryLogIn(CallContext& call, const QString& userId, const QString& digest, const QString& groupId,
                     const QString& companyId, UserRow& user)
{
  user = readUser(call.db, userId, companyId);
  const bool groupOpen = user.found && groupIsOpen(call.db, user, companyId, groupId);
  const bool matches = digestMatches(user.hash, digest.toLower());
  if (!user.found || !groupOpen) {
    return NoSuchData;
  }
  if (!matches) {
    return WrongPassword;
  }
  return user.active ? LoggedIn : UserInactive;
}

}  // namespace

Variant callLogIn(CallContext& call)
{
  const QString userId = call.text(0);
  const QString groupId = call.text(2);
  const QString companyId = call.text(3);
  LogInThrottle throttle(call.core.state(), call.session.peer, companyId, userId);
  call.arguments[4] = QString();
  if (throttle.mustWait()) {
    logEvent(LogLevel::Warning, "log_in_throttled", {{"user", userId}, {"peer", call.session.peer}});
    return int(WrongPassword);
  }
  UserRow user;
  const LogInResult result = tryLogIn(call, userId, call.text(1), groupId, companyId, user);
  logEvent(result == LoggedIn ? LogLevel::Info : LogLevel::Warning, "log_in",
           {{"user", userId}, {"company", companyId}, {"peer", call.session.peer}, {"result", QString::number(result)}});
  if (result != LoggedIn) {
    throttle.failed();
    return int(result);
  }
  throttle.succeeded();
  Session session{{}, user.id, companyId, groupId, call.session.peer};
  call.arguments[4] = call.core.state().openSession(session);
  call.session = session;
  return int(LoggedIn);
}

Variant callResumeSession(CallContext& call)
{
  Session session;
  session.peer = call.session.peer;
  if (!call.core.state().resumeSession(call.text(0), session) ||
      !readUser(call.db, session.userId, session.companyId).active) {
    return -1;
  }
  call.session = session;
  return 0;
}

Variant callChangePassword(CallContext& call)
{
  const QString userId = call.text(0);
  const QString digest = call.text(1).toLower();
  const bool own = userId.compare(call.session.userId, Qt::CaseInsensitive) == 0;
  if (!own && !call.session.administrator()) {
    throw RpcError(RpcError::Forbidden, QStringLiteral("Може да промените само собствената си парола."));
  }
  const bool isDigest = digest.size() == 32 && std::all_of(digest.begin(), digest.end(), [](QChar c) {
    return (c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'f');
  });
  if (!isDigest) {
    return -1;
  }
  const qint64 changed = call.db.execute(QStringLiteral("UPDATE N_Users SET PasswordHash = ? WHERE Id = ? AND Comp_Id = ?"),
                                         {hashDigest(digest), userId, call.session.companyId});
  if (changed != 1) {
    return -4;
  }
  call.core.state().closeSessionsOf(userId, call.session.companyId, call.session.token);
  logEvent(LogLevel::Info, "password_changed", {{"user", userId}, {"by", call.session.userId}});
  return 0;
}

}  // namespace kalvor::server
