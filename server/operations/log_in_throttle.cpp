#include "server/operations/log_in_throttle.h"

#include <QHostAddress>

namespace kalvor::server {

namespace {

constexpr int fadesEverySeconds = 30;

struct ThrottleRule {
  int freeFailures;
  int longestWaitSeconds;
};
constexpr ThrottleRule userFromPeerRule{5, 60};
constexpr ThrottleRule networkRule{30, 60};
constexpr int failuresOfAnAttack = 20;        // of one user, from anywhere
constexpr int waitUnderAttackSeconds = 60;    // of networks that have failed, too

// After the free failures a wait, twice as long after each further one.
bool waits(const ThrottleRule& rule, const StateStore::Failures& failures)
{
  const int beyond = failures.count - rule.freeFailures;
  return beyond >= 0 && failures.secondsAgo < qMin(rule.longestWaitSeconds, 1 << qMin(beyond, 6));
}

}  // namespace

QString networkOf(const QString& peer)
{
  QHostAddress address(peer);
  bool isIp4 = false;
  if (const quint32 ip4 = address.toIPv4Address(&isIp4); isIp4) {
    return QHostAddress(ip4 & 0xffffff00u).toString() + QStringLiteral("/24");
  }
  if (address.protocol() != QAbstractSocket::IPv6Protocol) {
    return peer;
  }
  Q_IPV6ADDR ip6 = address.toIPv6Address();
  std::fill(ip6.c + 8, ip6.c + 16, quint8(0));
  return QHostAddress(ip6).toString() + QStringLiteral("/64");
}

LogInThrottle::LogInThrottle(StateStore& state, const QString& peer, const QString& companyId, const QString& userId)
    : state_(state),
      userFromPeer_(QStringLiteral("%1/%2/%3").arg(peer, companyId, userId.toLower())),
      network_(QStringLiteral("net/") + networkOf(peer)),
      user_(QStringLiteral("user/%1/%2").arg(companyId, userId.toLower()))
{
}

bool LogInThrottle::mustWait() const
{
  if (waits(userFromPeerRule, state_.failures(userFromPeer_))) {
    return true;
  }
  if (state_.hasLoggedIn(userFromPeer_)) {
    return false;
  }
  const StateStore::Failures network = state_.failures(network_, fadesEverySeconds);
  return waits(networkRule, network) ||
         (network.count > 0 && network.secondsAgo < waitUnderAttackSeconds &&
          state_.failures(user_, fadesEverySeconds).count >= failuresOfAnAttack);
}

void LogInThrottle::failed()
{
  state_.noteFailure(userFromPeer_);
  state_.noteFailure(network_, fadesEverySeconds);
  state_.noteFailure(user_, fadesEverySeconds);
}

// The other two stay: whoever knows one password must not clear the way for trying others.
void LogInThrottle::succeeded()
{
  state_.clearFailures(userFromPeer_);
  state_.noteLogIn(userFromPeer_);
}

}  // namespace kalvor::server
