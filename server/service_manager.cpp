#include "server/service_manager.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstddef>
#include <cstring>

namespace kalvor::server {

bool notifyServiceManager(const QByteArray& state)
{
  const QByteArray name = qgetenv("NOTIFY_SOCKET");
  sockaddr_un address{};
  if (name.size() < 2 || size_t(name.size()) >= sizeof(address.sun_path) || (name.front() != '/' && name.front() != '@')) {
    return false;
  }
  address.sun_family = AF_UNIX;
  std::memcpy(address.sun_path, name.constData(), size_t(name.size()));
  if (name.front() == '@') {
    address.sun_path[0] = '\0';
  }
  const int descriptor = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  if (descriptor < 0) {
    return false;
  }
  // An abstract name ends with its last character, without a zero.
  const auto length = socklen_t(offsetof(sockaddr_un, sun_path) + size_t(name.size()));
  const ssize_t sent = sendto(descriptor, state.constData(), size_t(state.size()), MSG_NOSIGNAL,
                              reinterpret_cast<const sockaddr*>(&address), length);
  close(descriptor);
  return sent == state.size();
}

std::chrono::milliseconds watchdogInterval()
{
  bool ok = false;
  const qint64 microseconds = qgetenv("WATCHDOG_USEC").toLongLong(&ok);
  const QByteArray process = qgetenv("WATCHDOG_PID");
  if (!ok || microseconds <= 0 || (!process.isEmpty() && process.toLongLong() != getpid())) {
    return {};
  }
  return std::chrono::milliseconds(qMax<qint64>(1, microseconds / 2000));
}

}  // namespace kalvor::server
