// What one connection, and one address, may take of the server.
#pragma once

#include <QtGlobal>

namespace kalvor::server {

struct ConnectionLimits {
  int ofOnePeer = 250;               // connections of an address
  int beforeLogInOfOnePeer = 50;     // those of them where nobody has logged in
  qint64 firstCallMs = 2 * 60 * 1000;           // from the connection to the first whole call
  qint64 silentBeforeLogInMs = 30 * 60 * 1000;  // after it, while the log-in window waits
  // A call must come, and an answer go, within this time and a second for every so many bytes of it.
  qint64 transferMs = 60 * 1000;
  qint64 bytesASecond = 16 * 1024;
  int lookAfterEveryMs = 5000;
};

}  // namespace kalvor::server
