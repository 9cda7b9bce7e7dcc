#include "server/store/statement_trace.h"

namespace kalvor::server {

namespace {

StatementTrace& currentTrace()
{
  static StatementTrace trace;
  return trace;
}

}  // namespace

void setStatementTrace(StatementTrace trace) { currentTrace() = std::move(trace); }

void traceStatement(const QByteArray& sql)
{
  if (currentTrace()) {
    currentTrace()(sql);
  }
}

}  // namespace kalvor::server
