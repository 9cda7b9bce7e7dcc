// Any bytes as the info file of a transfer: read, checked against its data files, written and read back with as many
// records.
#include <QTemporaryDir>
#include <cstdlib>

#include "common/transfer_info.h"
#include "data/data_error.h"
#include "temporary_input.h"

using namespace kalvor;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
  static TemporaryInput input;
  static QTemporaryDir folder;
  const QString name = input.write(data, size);
  TTransferInfo info;
  info.FileName = name;
  try {
    FillTranferArrayFromFile(name, info);
  } catch (const DataError& error) {
    if (error.message().isEmpty())
      std::abort();
    return 0;
  }
  QString invalid;
  info.Validate(invalid);
  const QString copy = QStringLiteral("copy.xml");
  TTransferInfo again;
  if (CreateTransferInfoFile(info, folder.path(), copy) != 0 ||
      !FillTranferArrayFromFile(folder.filePath(copy), again) || again.Count() != info.Count())
    std::abort();
  return 0;
}
