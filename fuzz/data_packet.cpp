// Data packet files: refused whole, or loaded, and then what is written of them must load again and be the same.
#include <cstdint>
#include <cstdlib>

#include "data/client_dataset.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
  kalvor::TClientDataSet dataSet;
  try {
    dataSet.SetXMLData(QByteArray(reinterpret_cast<const char*>(data), qsizetype(size)));
  } catch (const kalvor::DataError&) {
    return 0;
  }
  const QByteArray written = dataSet.XMLData();
  kalvor::TClientDataSet again;
  again.SetXMLData(written);
  if (again.XMLData() != written || again.ChangeCount() != dataSet.ChangeCount())
    std::abort();
  dataSet.GetDelta();
  dataSet.SetIndexFieldNames(dataSet.Field(0)->FieldName().contains(u';') ? QString() : dataSet.Field(0)->FieldName());
  dataSet.CancelUpdates();
  if (dataSet.ChangeCount() != 0)
    std::abort();
  return 0;
}
