// The info file of a data transfer between sites: the data files of its folder, their checksums, what became of them.
#pragma once

#include <QList>
#include <QString>

#include "layer_export.h"

namespace kalvor {

struct TTransferRecord {
  QString Id;           // of the transfer item
  QString FileName;     // relative to the folder of the info file, "/" or "\" between folders
  qint8 Status = 0;     // 1 = imported, -1 = the record of SetInvalidCheckSum
  qint32 CheckSum = 0;  // sum of the 16 bytes of the data file's MD5 digest: 0 to 4080
  qint32 SortKey = 0;   // for InsertSorted; not stored in the file
  QString Error;        // of the file's import

  bool operator==(const TTransferRecord&) const = default;
};

class KALVOR_RULES TTransferInfo {
 public:
  TTransferInfo() = default;
  TTransferInfo(const TTransferInfo& other);  // its records, not its file name
  TTransferInfo& operator=(const TTransferInfo& other);

  QString FileName;  // full name of the info file; whoever reads it sets this

  void Add(const TTransferRecord& record);
  int Count() const;
  void Clear();
  void Delete(int index);                  // an index outside 0 to Count - 1 deletes nothing
  int IndexOf(const QString& id) const;    // the first record of exactly this Id, else -1
  // Before the record at the index; at Count and beyond nothing is inserted.
  void Insert(const TTransferRecord& record, int index);
  // Before the first record of a greater sort key, whose index is the result; -1 = appended, there was none.
  int InsertSorted(const TTransferRecord& record);
  // The one record left says that these items, separated by commas, do not fit their checksums.
  void SetInvalidCheckSum(const QString& list);
  // The data files that do not fit their checksums, separated by commas; one with checksum 0 is listed for that too.
  // Instead of the list "Error during validating check sum : " and why, for a file that cannot be read or that does
  // not lie in the folder of the info file: such a file is never opened. Does not raise.
  void Validate(QString& result) const;

  // The index must be below Count.
  TTransferRecord& operator[](int index) { return records_[index]; }
  const TTransferRecord& operator[](int index) const { return records_.at(index); }
  const QList<TTransferRecord>& records() const { return records_; }

 private:
  QList<TTransferRecord> records_;
};

// Appends the records of the file. False: the document has no root element, or a record cannot be read; that is
// logged, and the records before it stay. DataError for a file that cannot be opened, is not well-formed XML, or
// declares a document type; nothing is appended then.
KALVOR_RULES bool FillTranferArrayFromFile(const QString& fileName, TTransferInfo& info);

// 0 = written as a whole, -1 = failed, logged, and a file that was there is as before. Characters that XML cannot
// hold become U+FFFD.
KALVOR_RULES int CreateTransferInfoFile(const TTransferInfo& info, const QString& folder, const QString& fileName);

}  // namespace kalvor
