// Stored filters as they come out of metadata and settings: both text forms, typed rows, joining. What was read and
// written once reads back the same.
#include <cstdint>
#include <cstdlib>

#include "data/data_error.h"
#include "filters/filter_expression.h"
#include "filters/filter_macros.h"

using namespace kalvor;

namespace {

void require(bool condition)
{
  if (!condition)
    std::abort();
}

// A row that begins with a blank field loses it in the stored form.
bool keepsItsFields(const FilterArray& filter)
{
  for (const FilterRow& row : filter)
    if (row.field.trimmed().isEmpty())
      return false;
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
  QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), qsizetype(size));
  const FilterArray filter = BuildFilterFromStr(text, ConvertSimleParamFilterValues);
  if (const FilterArray plain = BuildFilterFromStr(text); keepsItsFields(plain))
    require(BuildFilterFromStr(BuildStrFilter(plain)) == plain);

  const FilterArray slash = GetFilterFromStr(text);
  const FilterArray joined = GetAllFilter(filter, slash);
  require(joined.isEmpty() || joined.last().conjunction.isEmpty());

  FilterArray typed = filter;
  try {
    BuildFilterFromString(text, QStringLiteral(";"), typed);
  } catch (const DataError&) {
    require(typed == filter);
  }
  RemoveFilterLinesWithFieldRels(text);
  require(!text.contains(QStringLiteral("<#Field(")));
  return 0;
}
