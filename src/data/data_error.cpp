#include "data/data_error.h"

namespace kalvor {

DataError::DataError(QString message) : message_(std::move(message)), utf8_(message_.toUtf8()) {}
DataError::~DataError() = default;
SilentAbort::SilentAbort() : DataError(QString()) {}

}  // namespace kalvor
