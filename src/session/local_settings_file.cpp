#include "session/local_settings_file.h"

#include <QFile>
#include <QSaveFile>

#include "platform/text_encoding.h"
#include "session/error_log.h"
#include "session/local_data.h"

namespace kalvor {
namespace {

// The file as lines; sections are found by position, so that whatever is not understood stays.
struct IniText {
  QStringList lines;
  QString lineEnd = QStringLiteral("\n");

  static IniText read(const QString& path)
  {
    IniText text;
    QFile file(path);
    if (!file.exists())
      return text;
    if (!file.open(QIODevice::ReadOnly))
      throw DataError(file.errorString());
    QString all = decodeTextFile(file.readAll());
    if (all.contains(QStringLiteral("\r\n")))
      text.lineEnd = QStringLiteral("\r\n");
    all.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    if (all.endsWith(u'\n'))
      all.chop(1);
    if (!all.isEmpty())
      text.lines = all.split(u'\n');
    return text;
  }

  void write(const QString& path) const
  {
    QSaveFile file(path);
    const QByteArray bytes = (lines.join(lineEnd) + lineEnd).toUtf8();
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit())
      throw DataError(file.errorString());
  }

  static bool isHeader(const QString& line)
  {
    const QString trimmed = line.trimmed();
    return trimmed.startsWith(u'[') && trimmed.endsWith(u']');
  }

  // Position of the section's header, -1 when there is none.
  qsizetype find(const QString& section) const
  {
    for (qsizetype i = 0; i < lines.size(); ++i)
      if (isHeader(lines.at(i)) &&
          lines.at(i).trimmed().mid(1).chopped(1).trimmed().compare(section, Qt::CaseInsensitive) == 0)
        return i;
    return -1;
  }

  qsizetype endOf(qsizetype header) const
  {
    qsizetype end = header + 1;
    while (end < lines.size() && !isHeader(lines.at(end)))
      ++end;
    return end;
  }
};

bool isIniContent(const QString& line)
{
  const QString trimmed = line.trimmed();
  return !trimmed.isEmpty() && !trimmed.startsWith(u';');
}

QString iniKeyOf(const QString& line)
{
  return isIniContent(line) ? lineName(line).trimmed() : QString();
}

// A line break inside a value would start a line, or a section, of its own.
QString iniValueText(QString value)
{
  return value.replace(u'\r', u' ').replace(u'\n', u' ');
}

void setIniKey(IniText& text, qsizetype header, const QString& name, const QString& value)
{
  for (qsizetype i = text.endOf(header) - 1; i > header; --i)
    if (iniKeyOf(text.lines.at(i)).compare(name, Qt::CaseInsensitive) == 0)
      text.lines.removeAt(i);
  qsizetype end = text.endOf(header);
  while (end > header + 1 && text.lines.at(end - 1).trimmed().isEmpty())
    --end;
  text.lines.insert(end, name + u'=' + iniValueText(value));
}

}  // namespace

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
    const IniText text = IniText::read(fullPath ? fileName : clientDocumentFolder() + fileName);
    QStringList found;
    const qsizetype header = text.find(section);
    for (qsizetype i = header + 1; header >= 0 && i < text.endOf(header); ++i)
      if (isIniContent(text.lines.at(i)) && text.lines.at(i).contains(u'='))
        found.append(lineName(text.lines.at(i)).trimmed() + u'=' + lineValue(text.lines.at(i)).trimmed());
    lines = found;
  });
}

bool SaveSectionToIni(const QString& fileName, const QString& section, const QStringList& lines)
{
  return loggingErrors(QStringLiteral("SaveSectionToIni"), [&] {
    const QString path = clientDocumentFolder() + fileName;
    IniText text = IniText::read(path);
    qsizetype header = text.find(section);
    if (header < 0) {
      if (!text.lines.isEmpty() && !text.lines.last().trimmed().isEmpty())
        text.lines.append(QString());
      header = text.lines.size();
      text.lines.append(u'[' + section + u']');
    }
    for (const QString& line : lines)
      if (const QString name = lineName(line).trimmed(); !name.isEmpty())
        setIniKey(text, header, name, lineValue(line));
    text.write(path);
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
