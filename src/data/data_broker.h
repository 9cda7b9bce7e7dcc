// What a client dataset needs of its server: the packets of a provider that was readied before.
#pragma once

#include "data/record_set.h"

namespace kalvor {

class KALVOR_DATA DataBroker {
 public:
  virtual ~DataBroker() = default;

  // First packet of a readied provider, with its fields; count -1 = all records. Throws (data_error.h) when
  // the provider is unknown or the server cannot be reached.
  virtual DataPacketPtr openProvider(const QString& provider, qsizetype count) = 0;
  // The packet after the one that gave the continuation.
  virtual DataPacketPtr fetchRecords(const QString& provider, const Variant& continuation, qsizetype count) = 0;
};

}  // namespace kalvor
