#include "platform/system.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QSysInfo>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif
#ifdef Q_OS_WIN
#include <windows.h>
#endif

namespace kalvor {
namespace {

QString asFolder(const QString& path)
{
  if (path.isEmpty())
    return {};
  const QString native = QDir::toNativeSeparators(path);
  return native.endsWith(QDir::separator()) ? native : native + QDir::separator();
}

}  // namespace

QChar directorySeparator() { return QDir::separator(); }

QString personalDocumentsFolder()
{
  const QString named = qEnvironmentVariable("KALVOR_DOCUMENTS");
  return asFolder(named.isEmpty() ? QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation) : named);
}

QString temporaryFolder() { return asFolder(QDir::tempPath()); }

QString hostProgramName()
{
  QString name = QFileInfo(QCoreApplication::applicationFilePath()).fileName();
  if (name.endsWith(QLatin1String(".exe"), Qt::CaseInsensitive))
    name.chop(4);
  return name;
}

QString hostProgramFolder() { return asFolder(QCoreApplication::applicationDirPath()); }

QString operatingSystemFolder()
{
#ifdef Q_OS_WIN
  return asFolder(qEnvironmentVariable("SystemRoot"));
#else
  return QStringLiteral("/etc/");
#endif
}

QString systemSettingsFolder()
{
  const QString named = qEnvironmentVariable("KALVOR_SYSTEM_SETTINGS");
  if (!named.isEmpty())
    return asFolder(named);
#ifdef Q_OS_WIN
  return operatingSystemFolder() + QStringLiteral("System32\\");
#else
  return QStringLiteral("/etc/kalvor/");
#endif
}

QString shortFolderName(const QString& folder)
{
#ifdef Q_OS_WIN
  wchar_t name[MAX_PATH];
  const DWORD size = GetShortPathNameW(reinterpret_cast<const wchar_t*>(folder.utf16()), name, MAX_PATH);
  if (size > 0 && size < MAX_PATH)
    return QString::fromWCharArray(name, int(size));
#endif
  return folder;
}

QString computerName() { return QSysInfo::machineHostName(); }

QString systemProductName() { return QSysInfo::prettyProductName(); }

qint64 processMemoryUsage()
{
#ifdef Q_OS_LINUX
  QFile file(QStringLiteral("/proc/self/statm"));
  if (!file.open(QIODevice::ReadOnly))
    return -1;
  const QList<QByteArray> figures = file.readAll().split(' ');
  bool ok = false;
  const qint64 pages = figures.size() > 1 ? figures.at(1).toLongLong(&ok) : 0;
  return ok ? pages * sysconf(_SC_PAGESIZE) : -1;
#else
  return -1;
#endif
}

}  // namespace kalvor
