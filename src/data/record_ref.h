#pragma once

#include "data/record_set.h"

namespace kalvor {

// A record somewhere: in the storage, in the buffer of the record being edited, in the key buffer.
struct RecordRef {
  const RecordSet* records = nullptr;
  qsizetype row = 0;

  explicit operator bool() const { return records != nullptr; }
  bool operator==(const RecordRef&) const = default;
};

}  // namespace kalvor
