// Who is at the other end of a connection.
#pragma once

#include <QString>

#include "layer_export.h"

namespace kalvor::server {

// How long a session lives: a window that was left open over night goes on in the morning, one that was left for a
// week-end asks for the password.
struct SessionLimits {
  qint64 idleSeconds = 16 * 3600;           // since the last call
  qint64 absoluteSeconds = 7 * 24 * 3600;   // since the log-in
};

struct KALVOR_SERVER Session {
  QString token;      // hash of the session text; empty: nobody has logged in
  QString userId;     // the code as the users' table writes it
  QString companyId;
  QString groupId;    // business group, may be empty for the administrator
  QString peer;       // address, for the log and for throttling

  bool loggedIn() const { return !token.isEmpty(); }
  bool administrator() const { return userId == u"SUPERVSR"; }
};

}  // namespace kalvor::server
