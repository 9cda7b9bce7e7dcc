// What a provider was readied for.
#pragma once

#include "data/variant.h"

namespace kalvor::server {

struct KALVOR_SERVER DataRequest {
  int formId = 0;
  int dsIndex = 0;
  int queryId = 0;
  FilterArray filter;
  QString order;
  ParameterArray parameters;

  QByteArray encoded() const;
  static DataRequest decoded(const QByteArray& bytes);  // throws RpcError (Internal) when it is not one
};

}  // namespace kalvor::server
