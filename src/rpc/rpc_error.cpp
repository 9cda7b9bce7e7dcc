#include "rpc/rpc_error.h"

namespace kalvor {

RpcError::RpcError(int code, QString text, QString incident)
    : DataError(std::move(text)), code_(code), incident_(std::move(incident))
{
}

RpcError::~RpcError() = default;

}  // namespace kalvor
