#include "forms/windows/save_request.h"

#include <algorithm>

#include "common/sql_text.h"

namespace kalvor {

namespace {

// The audit column that a repetition stamps anew.
bool isTimeOfSave(const FieldDef& field)
{
  return field.name.compare(QLatin1String("C_Datetime"), Qt::CaseInsensitive) == 0;
}

bool sameDelta(const Delta& first, const Delta& second)
{
  if (first.status != second.status || first.records.fields != second.records.fields) {
    return false;
  }
  for (int field = 0; field < first.records.fields.size(); ++field) {
    for (qsizetype row = 0; row < first.records.rows && !isTimeOfSave(first.records.fields[field]); ++row) {
      if (first.records.value(row, field) != second.records.value(row, field)) {
        return false;
      }
    }
  }
  return true;
}

bool samePair(const Variant& first, const Variant& second)
{
  const VariantArray a = first.toList();
  const VariantArray b = second.toList();
  const auto left = a.value(1).value<DeltaPtr>();
  const auto right = b.value(1).value<DeltaPtr>();
  return a.value(0) == b.value(0) && left && right && sameDelta(*left, *right);
}

}  // namespace

bool sameSave(const VariantArray& first, const VariantArray& second)
{
  return std::equal(first.begin(), first.end(), second.begin(), second.end(), samePair);
}

QString SaveRequest::idFor(const VariantArray& packet)
{
  if (id_.isEmpty() || !sameSave(packet_, packet)) {
    id_ = CreateUniqueID();
    packet_ = packet;
  }
  return id_;
}

void SaveRequest::answered()
{
  id_.clear();
  packet_.clear();
}

}  // namespace kalvor
