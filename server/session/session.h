// Who is at the other end of a connection.
#pragma once

#include <QString>

#include "layer_export.h"

namespace kalvor::server {

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
