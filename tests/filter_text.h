// Filter rows as the text that tests compare: (Field, op, value, conjunction[, brackets]) joined by blanks.
#pragma once

#include "data/variant.h"

namespace kalvor::testing {

inline QString filterText(const FilterArray& filter)
{
  QStringList rows;
  for (const FilterRow& row : filter) {
    QStringList items{row.field, row.op, isNull(row.value) ? QStringLiteral("NULL") : variantText(row.value),
                      row.conjunction};
    if (!row.brackets.isEmpty())
      items.append(row.brackets);
    rows.append(u'(' + items.join(u';') + u')');
  }
  return rows.join(u' ');
}

}  // namespace kalvor::testing
