// What a service manager (systemd, Type=notify) is told of this process; nothing where there is none.
#pragma once

#include <QByteArray>
#include <chrono>

#include "layer_export.h"

namespace kalvor::server {

// Sends a state such as "READY=1" to the socket that NOTIFY_SOCKET names, an abstract one ("@...") too. False when there is none or it
// takes nothing.
KALVOR_SERVER bool notifyServiceManager(const QByteArray& state);

// How often the service manager wants to hear "WATCHDOG=1": half the time after which it gives the process up; zero
// when it does not wait for that.
KALVOR_SERVER std::chrono::milliseconds watchdogInterval();

}  // namespace kalvor::server
