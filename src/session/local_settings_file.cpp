#include "session/local_settings_file.h"

#include "session/error_log.h"
#include "session/ini_file.h"
#include "session/local_data.h"

namespace kalvor {

QString lineName(const QString& line)
{
  const qsizetype sign = line.indexOf(u'=');
  return sign < 0 ? QString() : line.left(sign);
}

QString lineValue(const QString& line)
{
  const qsizetype sign = line.indexOf(u'=');
  return sign < 0 ? QString() : line.mid(sign + 1);
}

QString valueOfLine(const QStringList& lines, const QString& name)
{
  for (const QString& line : lines)
    if (line.contains(u'=') && lineName(line).compare(name, Qt::CaseInsensitive) == 0)
      return lineValue(line);
  return {};
}

bool hasLine(const QStringList& lines, const QString& name)
{
  for (const QString& line : lines)
    if (line.contains(u'=') && lineName(line).compare(name, Qt::CaseInsensitive) == 0)
      return true;
  return false;
}

bool GetSectionFromIni(const QString& fileName, const QString& section, QStringList& lines, bool fullPath)
{
  return loggingErrors(QStringLiteral("GetSectionFromIni"), [&] {
    lines = IniFile::read(fullPath ? fileName : clientDocumentFolder() + fileName).section(section);
  });
}

bool SaveSectionToIni(const QString& fileName, const QString& section, const QStringList& lines)
{
  return loggingErrors(QStringLiteral("SaveSectionToIni"), [&] {
    const QString path = clientDocumentFolder() + fileName;
    IniFile file = IniFile::read(path);
    file.setKey(section, QString(), QString());
    for (const QString& line : lines)
      file.setKey(section, lineName(line).trimmed(), lineValue(line));
    file.write(path);
  });
}

bool GetSectionFromIni(const QString& section, QStringList& lines)
{
  return GetSectionFromIni(KalvorClientINIFileName, section, lines, false);
}

bool SaveSectionToIni(const QString& section, const QStringList& lines)
{
  return SaveSectionToIni(KalvorClientINIFileName, section, lines);
}

}  // namespace kalvor
