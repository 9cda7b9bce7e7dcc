#include "session/import_log.h"

#include <QDir>
#include <QMutex>
#include <QMutexLocker>

#include "platform/ports.h"
#include "platform/system.h"
#include "session/log_file.h"

namespace kalvor {
namespace {

const QString importLogLineEnd = QStringLiteral("\r\n");

struct ImportLogs {
  QMutex lock;
  LogFile errors;
  LogFile info;
};

ImportLogs& importLogs()
{
  static ImportLogs* const logs = new ImportLogs;
  return *logs;
}

}  // namespace

QString importLogFolder()
{
  return clientDocumentFolder() + QStringLiteral("ImportLog") + directorySeparator();
}

void ImportInitLog()
{
  ImportLogs& logs = importLogs();
  const QMutexLocker locker(&logs.lock);
  if (logs.errors.isOpen() || logs.info.isOpen())
    return;
  try {
    const QString folder = importLogFolder();
    const QDateTime now = systemClock().now();
    const QString day = now.toString(QStringLiteral("yyyyMMdd")) + QStringLiteral(".LOG");
    QDir().mkpath(folder);
    if (!logs.errors.open(folder + day, LogFile::IfUnwritable::GiveUp))
      return;
    if (logs.info.open(folder + QStringLiteral("Info_") + day, LogFile::IfUnwritable::GiveUp) && logs.info.existed())
      logs.info.write(now.toString(QStringLiteral("dd.MM.yyyy HH:mm:ss")) + importLogLineEnd);
  } catch (const DataError&) {
    // Without a documents folder both logs stay closed.
  }
}

void ImportCloseLog()
{
  ImportLogs& logs = importLogs();
  const QMutexLocker locker(&logs.lock);
  logs.errors.close();
  logs.info.close();
}

int ImportLogError(const QString& error, const QString& procedure)
{
  ImportLogs& logs = importLogs();
  const QMutexLocker locker(&logs.lock);
  if (!logs.errors.isOpen())
    return LogNotOpen;
  const QString entry = u'[' + systemClock().now().toString(QStringLiteral("HH:mm:ss")) +
                        QStringLiteral(" Процедура: ") + procedure + u']' + importLogLineEnd +
                        QStringLiteral("[Грешка]: ") + error + importLogLineEnd + importLogLineEnd;
  return logs.errors.write(entry) ? LogWritten : LogWriteFailed;
}

int ImportInfoLog(const QString& text, int kind, int failed)
{
  ImportLogs& logs = importLogs();
  const QMutexLocker locker(&logs.lock);
  if (!logs.info.isOpen())
    return LogNotOpen;
  const QString prefix = kind == 0   ? QStringLiteral("Обработка на запис: ")
                         : kind == 1 ? QStringLiteral("Пропускане на запис ")
                                     : QStringLiteral("Операция ");
  const QString outcome = failed == 0 ? QStringLiteral(" -> Успешна") : QStringLiteral(" -> Неуспешна");
  return logs.info.write(prefix + text + outcome + importLogLineEnd) ? LogWritten : LogWriteFailed;
}

TImportException::TImportException(const QString& message, const QString& procedure)
    : DataError(message), procedure_(procedure)
{
  ImportLogError(message, procedure);
}

TImportException::~TImportException() = default;

}  // namespace kalvor
