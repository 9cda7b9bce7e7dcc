#include "session/error_log.h"

#include <QDir>
#include <QFile>
#include <QMutex>
#include <QMutexLocker>

#include "platform/ports.h"
#include "platform/system.h"
#include "session/log_file.h"

namespace kalvor {
namespace {

const QString errorLogLineEnd = QStringLiteral("\r\n");

struct ErrorLog {
  QRecursiveMutex lock;
  LogFile file;
};

// Never destroyed: late errors of other threads must not meet a dead lock.
ErrorLog& errorLog()
{
  static ErrorLog* const log = new ErrorLog;
  return *log;
}

bool writeErrorLogEntry(LogFile& file, const QString& text)
{
  const QString now = systemClock().now().toString(QStringLiteral("dd.MM.yyyy HH:mm:ss"));
  return file.write(u'[' + now + QStringLiteral("] [Error] ") + errorLogLineEnd + text + errorLogLineEnd);
}

}  // namespace

QString clientDocumentFolder()
{
  const QString documents = personalDocumentsFolder();
  if (documents.isEmpty())
    throw DataError(QStringLiteral("Could not determine My Documents path"));
  const QString folder = documents + QStringLiteral("Kalvor") + directorySeparator();
  QDir().mkpath(folder);
  return folder;
}

QString errorLogFolder()
{
  try {
    const QString folder =
        clientDocumentFolder() + hostProgramName() + QStringLiteral("Log") + directorySeparator();
    if (QDir().mkpath(folder))
      return folder;
  } catch (const DataError&) {
    // No documents folder is one more reason for the temporary one.
  }
  return temporaryFolder();
}

void InitLog()
{
  ErrorLog& log = errorLog();
  const QMutexLocker locker(&log.lock);
  if (log.file.isOpen())
    return;
  const QString day = systemClock().today().toString(QStringLiteral("yyyyMMdd"));
  log.file.open(errorLogFolder() + day + QStringLiteral(".LOG"), LogFile::IfUnwritable::MakeAnew);
}

void CloseLog()
{
  ErrorLog& log = errorLog();
  const QMutexLocker locker(&log.lock);
  log.file.close();
}

int LogError(const QString& error, const QString& procedure, int code, const QString& operation,
             const QString& description)
{
  ErrorLog& log = errorLog();
  const QMutexLocker locker(&log.lock);
  if (!log.file.isOpen())
    return LogNotOpen;
  const QString text = QStringLiteral("[Грешка]: ") + error + errorLogLineEnd +
                       QStringLiteral("[Процедура]: ") + procedure + errorLogLineEnd +
                       QStringLiteral("[Код на грешка]: ") + QString::number(code) + errorLogLineEnd +
                       QStringLiteral("[Операция]: ") + operation + errorLogLineEnd +
                       QStringLiteral("[Описание]: ") + description + errorLogLineEnd;
  return writeErrorLogEntry(log.file, text) ? LogWritten : LogWriteFailed;
}

void WriteLog(const QString& text)
{
  ErrorLog& log = errorLog();
  const QMutexLocker locker(&log.lock);
  if (log.file.isOpen())
    writeErrorLogEntry(log.file, text);
}

int LoadErrorLog(QStringList& lines)
{
  ErrorLog& log = errorLog();
  const QMutexLocker locker(&log.lock);
  if (!log.file.isOpen())
    return LogNotOpen;
  QFile file(log.file.path());
  if (!file.open(QIODevice::ReadOnly))
    return LogWriteFailed;
  QString text = QString::fromUtf8(file.readAll());
  lines.clear();
  if (text.isEmpty())
    return LogWritten;
  text.replace(errorLogLineEnd, QStringLiteral("\n"));
  if (text.endsWith(u'\n'))
    text.chop(1);
  lines = text.split(u'\n');
  return LogWritten;
}

bool OldLogsExist()
{
  try {
    const QDir folder(clientDocumentFolder() + QStringLiteral("Log"));
    return folder.entryList({QStringLiteral("*.LOG")}, QDir::Files | QDir::Hidden).size() > 1;
  } catch (const DataError&) {
    return false;
  }
}

QString errorLogFileName()
{
  ErrorLog& log = errorLog();
  const QMutexLocker locker(&log.lock);
  return log.file.isOpen() ? log.file.path() : QString();
}

TELException::TELException(const QString& message, const QString& procedure, int code, const QString& operation,
                           const QString& description)
    : DataError(message), procedure_(procedure), code_(code), operation_(operation), description_(description)
{
  LogError(message, procedure, code, operation, description);
}

TELException::TELException(int errorCode, const QString& procedure) : TELException(QString(), procedure, errorCode) {}

TELException::~TELException() = default;

QString errorText(const std::exception& error)
{
  if (const auto* own = dynamic_cast<const DataError*>(&error))
    return own->message();
  return QString::fromUtf8(error.what());
}

}  // namespace kalvor
