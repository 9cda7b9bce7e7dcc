#include "rpc/rpc_error.h"

namespace kalvor {

RpcError::RpcError(int code, QString text, QString incident)
    : DataError(std::move(text)), code_(code), incident_(std::move(incident))
{
}

RpcError::~RpcError() = default;

bool RpcError::mayHaveRun() const
{
  return code_ == Unreachable || code_ == Timeout || code_ == ConnectionLost || code_ == Untrusted || code_ == NotLoggedIn ||
         code_ == Internal || code_ == Unsettled;
}

}  // namespace kalvor
