// Spreadsheet files of any kind: a table whose cells are all within its size, or an error. An input that begins with
// "<" stands for the first sheet of a workbook, so that the fuzzer need not pack archives.
#include <zip.h>

#include <cstdlib>

#include "data/data_error.h"
#include "platform/spreadsheet_reader.h"
#include "temporary_input.h"

using namespace kalvor;

namespace {

void addPart(zip_t* archive, const char* name, const void* bytes, std::size_t size)
{
  const zip_int64_t index = zip_file_add(archive, name, zip_source_buffer(archive, bytes, size, 0), ZIP_FL_OVERWRITE);
  zip_set_file_compression(archive, zip_uint64_t(index), ZIP_CM_STORE, 0);
}

QString workbookOf(const std::uint8_t* data, std::size_t size)
{
  static const std::string relations =
      "<R><Relationship Id='1' Type='/officeDocument' Target='b'/><Relationship Id='2' Type='/worksheet' Target='s'/>"
      "<Relationship Id='3' Type='/sharedStrings' Target='s'/><Relationship Id='4' Type='/styles' Target='s'/></R>";
  static const std::string book = "<workbook><sheet id='2'/></workbook>";
  static QTemporaryFile file;
  if (!file.isOpen() && !file.open())
    qFatal("no temporary file");
  zip_t* archive = zip_open(qPrintable(file.fileName()), ZIP_CREATE | ZIP_TRUNCATE, nullptr);
  addPart(archive, "_rels/.rels", relations.data(), relations.size());
  addPart(archive, "_rels/b.rels", relations.data(), relations.size());
  addPart(archive, "b", book.data(), book.size());
  addPart(archive, "s", data, size);
  if (zip_close(archive) != 0)
    qFatal("no archive");
  return file.fileName();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
  static TemporaryInput input;
  try {
    const QString name = size > 0 && data[0] == '<' ? workbookOf(data, size) : input.write(data, size);
    const TextTable table = readSpreadsheet(name, {});
    qsizetype characters = 0;
    for (int row = 0; row < std::min(table.rowCount(), 1000); ++row)
      for (int column = 0; column < std::min(table.columnCount(), 100); ++column)
        characters += table.text(row, column).size();
    if (characters > TextTable::mostCharacters)
      std::abort();
  } catch (const DataError& error) {
    if (error.message().isEmpty())
      std::abort();
  }
  return 0;
}
