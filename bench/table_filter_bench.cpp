// The table filter's round trip: conditions into the editor's rows and back, and the stored text of the same filter;
// against the same conditions copied into variants and back. Medians of one run.
#include "../tests/filters/table_filter_fields.h"
#include "filters/filter_expression.h"
#include "timing.h"

using namespace kalvor;
using namespace kalvor::bench;

namespace {

constexpr int runs = 301;

// Every kind of field in turn, as the editor itself would write it.
FilterArray conditions(int rows)
{
  const QList<FilterRow> kinds{
      {"T.Name", "LIKE", "%Транспорт София%", "AND", {}}, {"T.Code", "=", 5, "AND", {}},
      {"T.Amount", ">=", 1.5, "OR", {}},                  {"T.Status", "=", "1", "AND", {}},
      {"T.Active", "=", "1", "AND", {}},                  {"T.DocDate", ">", "20240115", "AND", {}},
      {"T.Name", "=", "Иван", "OR", "("},                 {"T.Name", "=", "Петър", "AND", ")"}};
  FilterArray filter;
  for (int row = 0; row < rows; ++row) {
    filter.append(kinds[row % kinds.size()]);
  }
  filter.last().conjunction.clear();
  if (filter.last().brackets == u"(") {
    filter.last().brackets.clear();
  }
  return filter;
}

QString textsOf(const FilterArray& filter)
{
  QString texts;
  for (const FilterRow& row : filter) {
    texts += row.field + row.op.trimmed() + variantText(row.value) + row.conjunction + row.brackets + u'\n';
  }
  return texts;
}

FilterArray throughTheEditor(const FilterArray& filter, const FilterFields& fields)
{
  StringTable grid(tableFilterColumnCount);
  int row = 1;
  FillGridFromFilter(grid, fields, TableFilterMode::Values, filter, {}, row);
  TableFilterFailure failure;
  const auto result = buildTableFilter(grid, fields, TableFilterMode::Values, failure);
  return result ? result->filter : FilterArray();
}

}  // namespace

int main()
{
  TClientDataSet dataSet;
  testing::createSampleDataSet(dataSet);
  const VariantArray descriptions = testing::descriptionRows(testing::sampleDescriptions());
  const FilterFields fields(descriptions, &dataSet);
  for (const int rows : {5, 50, 500}) {
    const FilterArray filter = conditions(rows);
    if (textsOf(throughTheEditor(filter, fields)) != textsOf(filter)) {
      std::printf("FAILED %d conditions came back changed\n", rows);
      return 1;
    }
    const double copied = medianMs(runs, [&] { filterFromVariant(filterToVariant(filter)); });
    const double edited = medianMs(runs, [&] { throughTheEditor(filter, fields); });
    const double text = medianMs(runs, [&] { BuildFilterFromStr(BuildStrFilter(filter)); });
    std::printf("%d conditions\n", rows);
    line("conditions - rows - conditions", edited, "copied into variants and back", copied);
    line("conditions - stored text - conditions", text, "copied into variants and back", copied);
  }
  return 0;
}
