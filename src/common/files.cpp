#include "common/files.h"

#include <QDir>
#include <QRegularExpression>

#include "common/delimited_list.h"
#include "platform/system.h"

namespace kalvor {
namespace {

// "*" and "?" alone have a meaning, and "*.*" takes names without a dot too.
QRegularExpression maskExpression(const QString& mask)
{
  QString pattern = mask == QLatin1String("*.*") ? QStringLiteral(".*") : QRegularExpression::escape(mask);
  pattern.replace(QLatin1String("\\*"), QLatin1String(".*")).replace(QLatin1String("\\?"), QLatin1String("."));
  return QRegularExpression(
      QRegularExpression::anchoredPattern(pattern),
      QRegularExpression::CaseInsensitiveOption | QRegularExpression::DotMatchesEverythingOption);
}

template <class Chosen>
void deleteChosenFiles(const QString& folder, Chosen chosen)
{
  if (folder.isEmpty())
    return;
  QDir directory(folder);
  for (const QString& name : directory.entryList(QDir::Files | QDir::Hidden | QDir::System))
    if (chosen(name))
      directory.remove(name);
}

QString withoutSeparator(QString folder)
{
  if (folder.size() > 1 && folder.endsWith(directorySeparator()))
    folder.chop(1);
  return folder;
}

bool returnKnown(const QString& folder, QString& text)
{
  if (folder.isEmpty())
    return false;
  text = folder;
  return true;
}

// Where the host's name begins in a location text and how long it is.
struct HostSpan {
  qsizetype start = 0;
  qsizetype size = 0;
};

HostSpan hostSpanOf(const QString& location)
{
  const qsizetype slash = location.indexOf(u'/');
  if (slash < 0)
    return {0, location.size()};
  if (slash + 1 >= location.size() || location.at(slash + 1) != u'/')
    return {0, slash};
  const qsizetype start = slash + 2;
  const qsizetype end = location.indexOf(u'/', start);
  return {start, (end < 0 ? location.size() : end) - start};
}

}  // namespace

int DeleteFilesWithExt(const QString& folder, const QString& extension)
{
  const QString ending = extension.startsWith(u'.') ? extension : u'.' + extension;
  if (ending.size() > 1)
    deleteChosenFiles(folder, [&](const QString& name) { return name.endsWith(ending, Qt::CaseInsensitive); });
  return 0;
}

void DeleteFilesInDirectory(const QString& folder, const QString& mask)
{
  const QRegularExpression expression = maskExpression(mask);
  deleteChosenFiles(folder, [&](const QString& name) { return expression.match(name).hasMatch(); });
}

QString GetShortFilePath(const QString& fileName)
{
  const qsizetype separator = fileName.lastIndexOf(directorySeparator());
  return shortFolderName(fileName.left(separator + 1)) + fileName.mid(separator + 1);
}

QString IP_GetWinSysDir() { return withoutSeparator(systemSettingsFolder()); }
QString IP_GetWinDir() { return withoutSeparator(operatingSystemFolder()); }
bool ReturnSystemDirectory(QString& text) { return returnKnown(IP_GetWinSysDir(), text); }
bool ReturnWindowsDirectory(QString& text) { return returnKnown(IP_GetWinDir(), text); }

QString IPGetComputerName()
{
  const QString name = computerName();
  return name.isEmpty() ? QStringLiteral("(unknown)") : name;
}

QString GetHostName()
{
  const QString name = computerName();
  return name.isEmpty() ? name : name + u':';
}

QString RemoveHostNameFromPath(const QString& path)
{
  return GetItemsCountInList(path, QStringLiteral(":")) > 2 ? path.mid(path.indexOf(u':') + 1) : path;
}

QString ExtractIPHostName(const QString& location)
{
  const HostSpan host = hostSpanOf(location);
  return location.mid(host.start, host.size);
}

QString ExtractIPDir(const QString& location)
{
  const HostSpan host = hostSpanOf(location);
  return host.size == 0 ? location : location.mid(host.start + host.size + 1);
}

QString ExtractIPFileName(const QString& location) { return location.mid(location.lastIndexOf(u'/') + 1); }

}  // namespace kalvor
