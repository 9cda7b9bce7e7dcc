// Every SQL text that is given to a database, for tests that prove what does not reach it.
#pragma once

#include <QByteArray>
#include <functional>

#include "layer_export.h"

namespace kalvor::server {

// Called with each text, on the thread that gives it. Set while no other thread uses a connection; null ends it.
using StatementTrace = std::function<void(const QByteArray& sql)>;
KALVOR_SERVER void setStatementTrace(StatementTrace trace);

// By the back ends, before a text goes to the database.
void traceStatement(const QByteArray& sql);

}  // namespace kalvor::server
