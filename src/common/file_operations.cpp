#include <QDir>
#include <QFileInfo>
#include <filesystem>

#include "common/files.h"
#include "data/data_error.h"
#include "platform/ports.h"

namespace kalvor {
namespace {

std::filesystem::path systemPath(const QString& path) { return path.toStdU16String(); }

bool existsOrIsLink(const QString& path)
{
  const QFileInfo info(path);
  return info.exists() || info.isSymLink();
}

void removeAll(const QString& path) { std::filesystem::remove_all(systemPath(path)); }

// Beside the target first, so that a copy that fails leaves neither a part of itself nor the loss of what was there.
void copyAll(const QString& source, const QString& target)
{
  const QString partial = target + QStringLiteral(".part");
  try {
    removeAll(partial);
    std::filesystem::copy(systemPath(source), systemPath(partial),
                          std::filesystem::copy_options::recursive | std::filesystem::copy_options::copy_symlinks);
    if (existsOrIsLink(target))
      removeAll(target);
    std::filesystem::rename(systemPath(partial), systemPath(target));
  } catch (const std::filesystem::filesystem_error&) {
    std::error_code ignored;
    std::filesystem::remove_all(systemPath(partial), ignored);
    throw;
  }
}

void moveAll(const QString& source, const QString& target)
{
  std::error_code refused;
  std::filesystem::rename(systemPath(source), systemPath(target), refused);
  if (!refused)
    return;
  copyAll(source, target);  // another file system, or a folder that is not empty
  removeAll(source);
}

QString targetPath(const QString& source, const QString& target, ShellOperation operation)
{
  if (operation == ShellOperation::Rename || !QFileInfo(target).isDir())
    return QDir::cleanPath(target);
  return QDir(target).filePath(QFileInfo(QDir::cleanPath(source)).fileName());
}

bool isSameOrInside(const QString& path, const QString& folder)
{
  const QString inner = QFileInfo(path).absoluteFilePath();
  const QString outer = QFileInfo(folder).absoluteFilePath();
  return inner == outer || inner.startsWith(outer + u'/');
}

// False: the user does not want the target replaced.
bool transferTo(const QString& source, const QString& target, ShellOperation operation)
{
  if (target.isEmpty())
    throw DataError(QStringLiteral("Не е указано къде да бъде преместен или копиран %1.").arg(source));
  const QString destination = targetPath(source, target, operation);
  if (isSameOrInside(destination, source) || isSameOrInside(source, destination))
    throw DataError(QStringLiteral("%1 и %2 са едно и също място или едното е в другото.").arg(source, destination));
  const QString replaceIt = QStringLiteral("%1 вече съществува. Да бъде ли заменен?").arg(destination);
  if (existsOrIsLink(destination) && !confirm(replaceIt))
    return false;
  if (operation == ShellOperation::Copy)
    copyAll(QDir::cleanPath(source), destination);
  else
    moveAll(QDir::cleanPath(source), destination);
  return true;
}

}  // namespace

bool ShellFileOperation(const QString& source, const QString& target, ShellOperation operation)
{
  try {
    if (source.isEmpty() || !existsOrIsLink(source))
      throw DataError(QStringLiteral("Файлът %1 не е намерен.").arg(source));
    if (operation != ShellOperation::Delete)
      return transferTo(source, target, operation);
    removeAll(source);
    return true;
  } catch (const DataError& error) {
    showError(error.message());
  } catch (const std::filesystem::filesystem_error& error) {
    const QString why = QString::fromStdString(error.code().message());
    showError(QStringLiteral("Операцията с файла %1 е неуспешна: %2").arg(source, why));
  }
  return false;
}

}  // namespace kalvor
