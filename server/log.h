// The server's log: one line an event on stderr, name=value pairs after it, never a secret or a record's content.
// Where the systemd journal reads stderr, a line begins with its priority: <6> info, <4> warning, <3> error.
#pragma once

#include <QString>
#include <initializer_list>
#include <utility>

#include "layer_export.h"

namespace kalvor::server {

enum class LogLevel : quint8 { Info, Warning, Error };

using LogPair = std::pair<const char*, QString>;
KALVOR_SERVER void logEvent(LogLevel level, const char* event, std::initializer_list<LogPair> pairs = {});

// Logs details, without the texts in single quotes that a statement holds, under a new incident id and returns the id, which the user is shown.
KALVOR_SERVER QString logIncident(const char* event, const QString& details);

}  // namespace kalvor::server
