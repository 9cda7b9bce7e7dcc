#include "common/transfer_info.h"

#include <algorithm>

#include "common/message_digest.h"
#include "common/transfer_paths.h"
#include "session/error_log.h"

namespace kalvor {
namespace {

int digestSum(const QByteArray& digest)
{
  int sum = 0;
  for (const char byte : digest)
    sum += quint8(byte);
  return sum;
}

}  // namespace

TTransferInfo::TTransferInfo(const TTransferInfo& other) : records_(other.records_) {}

TTransferInfo& TTransferInfo::operator=(const TTransferInfo& other)
{
  records_ = other.records_;
  return *this;
}

void TTransferInfo::Add(const TTransferRecord& record) { records_.append(record); }

int TTransferInfo::Count() const { return int(records_.size()); }

void TTransferInfo::Clear() { records_.clear(); }

void TTransferInfo::Delete(int index)
{
  if (index >= 0 && index < Count())
    records_.removeAt(index);
}

int TTransferInfo::IndexOf(const QString& id) const
{
  const auto found =
      std::find_if(records_.begin(), records_.end(), [&](const TTransferRecord& record) { return record.Id == id; });
  return found == records_.end() ? -1 : int(found - records_.begin());
}

void TTransferInfo::Insert(const TTransferRecord& record, int index)
{
  if (index >= 0 && index < Count())
    records_.insert(index, record);
}

int TTransferInfo::InsertSorted(const TTransferRecord& record)
{
  const auto after = std::find_if(records_.begin(), records_.end(), [&](const TTransferRecord& other) {
    return other.SortKey > record.SortKey;
  });
  if (after == records_.end()) {
    Add(record);
    return -1;
  }
  const int index = int(after - records_.begin());
  Insert(record, index);
  return index;
}

void TTransferInfo::SetInvalidCheckSum(const QString& list)
{
  Clear();
  TTransferRecord record;
  record.Status = -1;
  record.Error = QStringLiteral("Invalid check sum for items : ") + list;
  Add(record);
}

void TTransferInfo::Validate(QString& result) const
{
  result.clear();
  try {
    for (const TTransferRecord& record : records_) {
      if (record.CheckSum == 0)
        result += record.FileName + u',';
      if (digestSum(MD5File(transferDataFile(FileName, record.FileName))) != record.CheckSum)
        result += record.FileName + u',';
    }
    result.chop(1);
  } catch (const std::exception& error) {
    result = QStringLiteral("Error during validating check sum : ") + errorText(error);
    LogError(errorText(error), QStringLiteral("TTransferInfo.InsertSorted"));
  }
}

}  // namespace kalvor
