// The server's log: one line an event on stderr, name=value pairs after it, never a secret or a record's content.
// Where the systemd journal reads stderr, a line begins with its priority: <6> info, <4> warning, <3> error.
// Values are cut at 1000 characters. What could pass for another line, pair or terminal command is escaped: \n, \xNN,
// \uNNNN, a backslash doubled; quotes become '.
#pragma once

#include <QString>
#include <functional>
#include <initializer_list>
#include <utility>

#include "layer_export.h"

namespace kalvor::server {

enum class LogLevel : quint8 { Info, Warning, Error };

using LogPair = std::pair<const char*, QString>;
KALVOR_SERVER void logEvent(LogLevel level, const char* event, std::initializer_list<LogPair> pairs = {});

// For tests: lines go there instead, without their ends, on the thread that logs. Null ends it; set while nobody logs.
using LogSink = std::function<void(const QString& line)>;
KALVOR_SERVER void setLogSink(LogSink sink);

// Logs details, without the texts in single quotes that a statement holds, under a new incident id and returns the id,
// which the user is shown.
KALVOR_SERVER QString logIncident(const char* event, const QString& details);

}  // namespace kalvor::server
