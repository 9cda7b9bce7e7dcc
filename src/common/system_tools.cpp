#include "common/system_tools.h"

#include <QFile>
#include <QFileInfo>

#include "platform/system.h"
#include "platform/text_encoding.h"

namespace kalvor {

bool CheckFileExists(const QString& path) { return !path.isEmpty() && QFileInfo::exists(path); }

bool GetTextFromFile(const QString& fileName, QString& text)
{
  QFile file(fileName);
  if (!file.open(QIODevice::ReadOnly))
    return false;
  const QByteArray bytes = file.readAll();
  if (bytes.isEmpty())
    return false;
  text = decodeTextFile(bytes);
  return true;
}

QString GetWindowsVersion() { return systemProductName(); }

qint64 GetCurrentProccessMemoryUsage() { return processMemoryUsage(); }

}  // namespace kalvor
