// The two daily logs of an import: its errors, and what became of every record.
#pragma once

#include "session/error_log.h"

namespace kalvor {

// "ImportLog" in the client's document folder, with the separator at its end; not created here.
KALVOR_RULES QString importLogFolder();

// Opens both files (YYYYMMDD.LOG and Info_YYYYMMDD.LOG). A file that cannot be opened leaves its log closed;
// nothing here raises or shows a message. The writers answer as LogError does.
KALVOR_RULES void ImportInitLog();
KALVOR_RULES void ImportCloseLog();
KALVOR_RULES int ImportLogError(const QString& error, const QString& procedure);
// kind: 0 a record is handled, 1 it is passed over, other an operation; failed: 0 = it went well.
KALVOR_RULES int ImportInfoLog(const QString& text, int kind, int failed);

// An error of an import. Creating one writes an entry of the import error log; copies do not.
class KALVOR_RULES TImportException : public DataError {
 public:
  TImportException(const QString& message, const QString& procedure);
  ~TImportException() override;
  const QString& procedure() const { return procedure_; }

 private:
  QString procedure_;
};

}  // namespace kalvor
