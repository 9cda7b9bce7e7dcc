#include "platform/file_version.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include "data/data_error.h"
#include "platform/version_resource.h"

namespace kalvor {
namespace {

constexpr qint64 largestVersionedFile = 256 * 1024 * 1024;

struct FileVersion {
  quint32 high = 0;
  quint32 low = 0;
};

FileVersion fileVersionOf(const QString& dotted)
{
  const QStringList parts = dotted.split(u'.');
  quint16 numbers[4] = {};
  for (qsizetype i = 0; i < 4 && i < parts.size(); ++i)
    numbers[i] = parts.at(i).toUShort();
  return {quint32(numbers[0]) << 16 | numbers[1], quint32(numbers[2]) << 16 | numbers[3]};
}

// Nothing when the file has no version resource; SilentAbort when it cannot be read.
std::optional<VersionResource> versionResourceOf(const QString& fileName)
{
  QFile file(fileName);
  if (!QFileInfo(fileName).isFile() || !file.open(QIODevice::ReadOnly))
    throw SilentAbort();
  const bool windowsFile = file.peek(2) == "MZ" && file.size() <= largestVersionedFile;
  return windowsFile ? readVersionResource(file.readAll()) : std::nullopt;
}

FileVersion versionOf(const QString& fileName)
{
  if (const auto resource = versionResourceOf(fileName))
    return {resource->fileVersionHigh, resource->fileVersionLow};
  static const QRegularExpression libraryEnding(QStringLiteral("\\.so\\.([0-9]+(?:\\.[0-9]+)*)$"));
  const QString real = QFileInfo(fileName).canonicalFilePath();
  const QRegularExpressionMatch ending = libraryEnding.match(real);
  if (ending.hasMatch())
    return fileVersionOf(ending.captured(1));
  if (QCoreApplication::instance() && real == QFileInfo(QCoreApplication::applicationFilePath()).canonicalFilePath())
    return fileVersionOf(QCoreApplication::applicationVersion());
  return {};
}

}  // namespace

quint32 GetFileVersion(const QString& fileName, bool high)
{
  const FileVersion version = versionOf(fileName);
  return high ? version.high : version.low;
}

QString GetFileVersionDetailed(const QString& fileName, int& major, int& minor, int& release, int& build)
{
  const FileVersion version = versionOf(fileName);
  major = int(version.high >> 16);
  minor = int(version.high & 0xFFFF);
  release = int(version.low >> 16);
  build = int(version.low & 0xFFFF);
  return QStringLiteral("%1.%2.%3.%4").arg(major).arg(minor).arg(release).arg(build);
}

QString GetFileInternalName(const QString& fileName, const QString& key)
{
  try {
    const auto resource = versionResourceOf(fileName);
    return resource ? resource->texts.value(key) : QString();
  } catch (const SilentAbort&) {
    return {};
  }
}

}  // namespace kalvor
