#include "platform/file_replacement.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryFile>
#include <cstdio>
#ifdef Q_OS_UNIX
#include <sys/stat.h>
#include <unistd.h>
#endif

#include "data/data_error.h"

namespace kalvor {

namespace {

#ifdef Q_OS_UNIX
// Temporary files are private; the result has the rights that any new file of this user has.
QFileDevice::Permissions rightsOfNewFile()
{
  const mode_t mask = umask(0);
  umask(mask);
  QFileDevice::Permissions rights = QFileDevice::ReadOwner | QFileDevice::WriteOwner;
  if (!(mask & S_IRGRP))
    rights |= QFileDevice::ReadGroup;
  if (!(mask & S_IWGRP))
    rights |= QFileDevice::WriteGroup;
  if (!(mask & S_IROTH))
    rights |= QFileDevice::ReadOther;
  if (!(mask & S_IWOTH))
    rights |= QFileDevice::WriteOther;
  return rights;
}
#endif

bool reachesDisk(QTemporaryFile& file)
{
  if (!file.open())
    return false;
#ifdef Q_OS_UNIX
  const bool synced = fsync(file.handle()) == 0;
#else
  const bool synced = true;
#endif
  file.close();
  return synced;
}

}  // namespace

QString replacementTarget(const QString& fileName)
{
  QFileInfo info(fileName);
  if (info.exists()) {
    info.setFile(info.canonicalFilePath());
    if (!info.isFile())
      throw DataError(QStringLiteral("'%1' не е файл").arg(fileName));
    if (!info.isWritable())
      throw DataError(QStringLiteral("Файлът '%1' е само за четене").arg(fileName));
  } else if (!info.absoluteDir().exists()) {
    throw DataError(QStringLiteral("Папката на файла '%1' не съществува").arg(fileName));
  }
  return info.absoluteFilePath();
}

bool replaceFile(QTemporaryFile& file, const QString& target, QString& reason)
{
  const QFileInfo old(target);
#ifdef Q_OS_UNIX
  file.setPermissions(old.exists() ? old.permissions() : rightsOfNewFile());
#endif
  const QByteArray from = QFile::encodeName(file.fileName());
  if (!reachesDisk(file) || std::rename(from.constData(), QFile::encodeName(target).constData()) != 0) {
    reason = qt_error_string();
    return false;
  }
  file.setAutoRemove(false);
  return true;
}

}  // namespace kalvor
