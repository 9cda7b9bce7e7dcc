// Parameter texts of import filters, used on a small file with a server that knows everything: whatever the
// administrator wrote, lines come out or an error does.
#include <cstdlib>

#include "import/text_reader.h"
#include "temporary_input.h"

using namespace kalvor;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
  static TemporaryInput input;
  static const char file[] = "X;a;1,5;31.01.2024\nX;b#|;2\nY;@c;;\n";
  TImportFilter filter(1);
  filter.LoadImportParams(QString::fromUtf8(reinterpret_cast<const char*>(data), qsizetype(size)));
  for (const ImportEntries* list : {&filter.CdsMaster, &filter.CdsDetail, &filter.Options})
    for (const QString& entry : list->entries())
      if (entry.isEmpty() || entry.contains("##"))
        std::abort();
  const ImportServices services{
      [](int query, const QString&, const QString& columns, const FilterArray&, Variant& value, RowsWanted) {
        value = columns.contains(',') ? Variant(VariantArray{1, "x"}) : Variant(7);
        return query % 3;
      },
      {}};
  const QString fileName = input.write(reinterpret_cast<const std::uint8_t*>(file), sizeof file - 1);
  TImportTxt reader(fileName, filter, services);
  reader.GetRecordCount();
  for (int records = 0; !reader.isEndOfData(); ++records) {
    if (records > 4)
      std::abort();
    TImportLine master;
    TImportSet details;
    QString error;
    if (reader.ReadRecord(master, details, error) != 0 && error.isEmpty() && !reader.isEndOfData())
      std::abort();
  }
  return 0;
}
