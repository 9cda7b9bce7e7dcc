#include "common/transfer_paths.h"

#include <QDir>
#include <QFileInfo>

#include "data/data_error.h"

namespace kalvor {
namespace {

bool leadsOut(const QString& relative)
{
  const QString clean = QDir::cleanPath(QDir::fromNativeSeparators(relative));
  const bool drive = clean.size() > 1 && clean.at(1) == u':' && clean.at(0).isLetter();
  return clean.startsWith(u'/') || drive || clean == QLatin1String("..") || clean.startsWith(QLatin1String("../"));
}

bool liesIn(const QString& canonicalFolder, const QString& canonicalFile)
{
  return canonicalFile.startsWith(canonicalFolder.endsWith(u'/') ? canonicalFolder : canonicalFolder + u'/');
}

}  // namespace

QString withNativeSeparators(const QString& path)
{
  QString result = path;
  return result.replace(u'\\', u'/').replace(u'/', QDir::separator());
}

QString transferDataFile(const QString& infoFile, const QString& name)
{
  const QString outside = QStringLiteral("Файлът %1 е извън папката на трансфера.").arg(name);
  const QString relative = withNativeSeparators(name);
  if (leadsOut(relative))
    throw DataError(outside);
  const QDir folder = QFileInfo(withNativeSeparators(infoFile)).absoluteDir();
  const QFileInfo file(folder, relative);
  if (!file.exists())
    throw DataError(QStringLiteral("Файлът %1 не е намерен.").arg(name));
  // Links are resolved once, and the file they lead to is the one that is opened.
  const QString canonical = file.canonicalFilePath();
  if (!liesIn(folder.canonicalPath(), canonical))
    throw DataError(outside);
  if (!QFileInfo(canonical).isFile())
    throw DataError(QStringLiteral("%1 не е файл.").arg(name));
  return canonical;
}

}  // namespace kalvor
