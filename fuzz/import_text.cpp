// Text import files: the first byte chooses separator, first row and breaks, the rest is the file. Every line that is
// read is counted once, the end is reached, and nothing comes out that is not in the file.
#include <cstdlib>

#include "import/text_reader.h"
#include "temporary_input.h"

using namespace kalvor;

namespace {

const TImportFilter& filterOf(std::uint8_t choice)
{
  static const std::vector<TImportFilter>& filters = *new std::vector<TImportFilter>([] {
    std::vector<TImportFilter> all;
    for (const char* separator : {"TAB", "SEMICOLON", "COMMA", "FIXEDLEN", ""})
      for (const char* breaks : {"", "1", "2;1", "0;9"})
        for (const char* rest : {"", "[CDSDETAIL]2=1|0|B|3-5##3=1|0|C|4-400||0[##CDSDETAIL]"}) {
          TImportFilter filter(1);
          filter.LoadImportParams(QStringLiteral("[OPTIONS]TXTFILE_SEP=%1##NEW_DOCSEP=%2##FIRST_ROW=%3[##OPTIONS]"
                                                 "[CDSMASTER]1=1|1|A|1-3##5=1|0|E|0-2[##CDSMASTER]%4")
                                      .arg(separator, breaks, *breaks ? "2" : "", rest));
          all.push_back(filter);
        }
    return all;
  }());
  return filters[choice % filters.size()];
}

void require(bool condition)
{
  if (!condition)
    std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
  static TemporaryInput input;
  if (size == 0)
    return 0;
  const TImportFilter& filter = filterOf(data[0]);
  TImportTxt reader(input.write(data + 1, size - 1), filter, {});
  const auto lineCount = std::count(data + 1, data + size, std::uint8_t('\n')) + 1;
  require(reader.GetRecordCount() <= lineCount);
  qsizetype characters = 0;
  for (qsizetype records = 0; !reader.isEndOfData(); ++records) {
    require(records <= lineCount);
    TImportLine master;
    TImportSet details;
    QString error;
    if (reader.ReadRecord(master, details, error) != 0)
      continue;
    for (const TImportLine& line : details)
      for (const TImportCell& cell : line)
        characters += cell.Value.toString().size() - 1;
    for (const TImportCell& cell : master)
      require(!cell.Value.toString().isEmpty());
  }
  require(characters <= qsizetype(2 * size));
  require(reader.rowCounter() <= lineCount + 2);
  return 0;
}
