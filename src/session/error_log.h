// The daily error log, the error that writes itself into it, and the client's document folder.
#pragma once

#include <QStringList>

#include "data/data_error.h"
#include "layer_export.h"

namespace kalvor {

// What LogError and its kin answer.
enum LogResult : int { LogWritten = 0, LogNotOpen = -1, LogWriteFailed = -2 };

// "Kalvor" in the personal documents folder, with the separator at its end; created when missing. DataError
// "Could not determine My Documents path" when there is no documents folder.
KALVOR_RULES QString clientDocumentFolder();
// Where the error log goes: the document folder + the host program's name + "Log", created with its parents;
// the temporary folder when that fails. Never raises.
KALVOR_RULES QString errorLogFolder();

// Fixes the day's file name and opens it. The host calls it first thing, and CloseLog last; a log that could
// not be opened drops its entries. None of these raises or shows a message; any thread may call them.
KALVOR_RULES void InitLog();
KALVOR_RULES void CloseLog();
KALVOR_RULES int LogError(const QString& error, const QString& procedure, int code = 0, const QString& operation = {},
                          const QString& description = {});
KALVOR_RULES void WriteLog(const QString& text);
// The lines of the current file; the list stays as it was when the log is not open.
KALVOR_RULES int LoadErrorLog(QStringList& lines);
// More than one *.LOG in the folder "Log" of the document folder.
KALVOR_RULES bool OldLogsExist();
KALVOR_RULES QString errorLogFileName();  // empty while the log is closed

// An unexpected error with the routine it came from. Creating one writes an error-log entry; copies do not.
class KALVOR_RULES TELException : public DataError {
 public:
  TELException(const QString& message, const QString& procedure, int code = 0, const QString& operation = {},
               const QString& description = {});
  TELException(int errorCode, const QString& procedure);
  ~TELException() override;

  const QString& procedure() const { return procedure_; }
  int code() const { return code_; }
  const QString& operation() const { return operation_; }
  const QString& description() const { return description_; }

 private:
  QString procedure_;
  int code_;
  QString operation_;
  QString description_;
};

// Text of any exception, fit for a log entry or a message.
KALVOR_RULES QString errorText(const std::exception& error);

// Runs the body of a routine. Whatever it throws is raised again as TELException with the routine's context;
// a silent abort passes unchanged, because the user has been told already.
template <class Body>
auto raisingLogged(const QString& procedure, Body&& body) -> decltype(body())
{
  try {
    return body();
  } catch (const SilentAbort&) {
    throw;
  } catch (const std::exception& error) {
    throw TELException(errorText(error), procedure);
  }
}

// Runs the body of a routine that must not fail: errors end in the log. False when there was one.
template <class Body>
bool loggingErrors(const QString& procedure, Body&& body)
{
  try {
    body();
    return true;
  } catch (const std::exception& error) {
    LogError(errorText(error), procedure);
    return false;
  }
}

}  // namespace kalvor
