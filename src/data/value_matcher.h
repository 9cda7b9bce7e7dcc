// Compares the cells of a column with one wanted value, without a Variant a cell.
#pragma once

#include "data/client_dataset.h"

namespace kalvor {

class ValueMatcher {
 public:
  // A value that does not convert to the type matches nothing; null matches null only.
  ValueMatcher(DataType type, const Variant& wanted, LocateOptions options);
  bool matches(const Column& column, qsizetype row) const;

 private:
  enum class Kind : quint8 { Nothing, Null, Integer, Real, Text, Blob };

  bool matchesText(QStringView text) const;

  Kind kind_ = Kind::Nothing;
  LocateOptions options_;
  qint64 integer_ = 0;
  double real_ = 0;
  QString text_;
  QByteArray blob_;
};

}  // namespace kalvor
