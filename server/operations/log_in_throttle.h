// How fast passwords may be tried. Counted are failures in a row of a user from an address, failures from a network
// (/24 of IPv4, /64 of IPv6) whoever was tried, and failures of a user wherever they came from; the last two fade, one
// in half a minute. An attempt that has to wait is refused unread and does not count.
//
// Nobody is locked out for good: an address from which the user has logged in within 30 days answers for its own
// failures only, and a network without a fresh failure is always heard, whatever others do to the user meanwhile.
#pragma once

#include "server/session/state_store.h"

namespace kalvor::server {

class KALVOR_SERVER LogInThrottle {
 public:
  LogInThrottle(StateStore& state, const QString& peer, const QString& companyId, const QString& userId);

  bool mustWait() const;
  void failed();
  void succeeded();

 private:
  StateStore& state_;
  QString userFromPeer_;
  QString network_;
  QString user_;
};

// "192.168.1.0/24", "2001:db8::/64"; what is no address stands for itself.
KALVOR_SERVER QString networkOf(const QString& peer);

}  // namespace kalvor::server
