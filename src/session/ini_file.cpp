#include "session/ini_file.h"

#include <QFile>
#include <QSaveFile>

#include "data/data_error.h"
#include "platform/text_encoding.h"
#include "session/local_settings_file.h"

namespace kalvor {
namespace {

bool isIniHeader(const QString& line)
{
  const QString trimmed = line.trimmed();
  return trimmed.startsWith(u'[') && trimmed.endsWith(u']');
}

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

}  // namespace

IniFile IniFile::read(const QString& path)
{
  IniFile text;
  QFile file(path);
  if (!file.exists())
    return text;
  if (!file.open(QIODevice::ReadOnly))
    throw DataError(file.errorString());
  QString all = decodeTextFile(file.readAll());
  if (all.contains(QStringLiteral("\r\n")))
    text.lineEnd_ = QStringLiteral("\r\n");
  all.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
  if (all.endsWith(u'\n'))
    all.chop(1);
  if (!all.isEmpty())
    text.lines_ = all.split(u'\n');
  return text;
}

void IniFile::write(const QString& path) const
{
  QSaveFile file(path);
  const QByteArray bytes = (lines_.join(lineEnd_) + lineEnd_).toUtf8();
  if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit())
    throw DataError(file.errorString());
}

// Position of the section's header, -1 when there is none.
qsizetype IniFile::find(const QString& section) const
{
  for (qsizetype i = 0; i < lines_.size(); ++i)
    if (isIniHeader(lines_.at(i)) &&
        lines_.at(i).trimmed().mid(1).chopped(1).trimmed().compare(section, Qt::CaseInsensitive) == 0)
      return i;
  return -1;
}

qsizetype IniFile::endOf(qsizetype header) const
{
  qsizetype end = header + 1;
  while (end < lines_.size() && !isIniHeader(lines_.at(end)))
    ++end;
  return end;
}

QStringList IniFile::section(const QString& name) const
{
  QStringList found;
  const qsizetype header = find(name);
  for (qsizetype i = header + 1; header >= 0 && i < endOf(header); ++i)
    if (isIniContent(lines_.at(i)) && lines_.at(i).contains(u'='))
      found.append(lineName(lines_.at(i)).trimmed() + u'=' + lineValue(lines_.at(i)).trimmed());
  return found;
}

void IniFile::setKey(const QString& section, const QString& name, const QString& value)
{
  qsizetype header = find(section);
  if (header < 0) {
    if (!lines_.isEmpty() && !lines_.last().trimmed().isEmpty())
      lines_.append(QString());
    header = lines_.size();
    lines_.append(u'[' + section + u']');
  }
  if (name.isEmpty())
    return;
  for (qsizetype i = endOf(header) - 1; i > header; --i)
    if (iniKeyOf(lines_.at(i)).compare(name, Qt::CaseInsensitive) == 0)
      lines_.removeAt(i);
  qsizetype end = endOf(header);
  while (end > header + 1 && lines_.at(end - 1).trimmed().isEmpty())
    --end;
  lines_.insert(end, name + u'=' + iniValueText(value));
}

void IniFile::removeKey(const QString& section, const QString& name)
{
  const qsizetype header = find(section);
  for (qsizetype i = header < 0 ? -1 : endOf(header) - 1; i > header; --i)
    if (iniKeyOf(lines_.at(i)).compare(name, Qt::CaseInsensitive) == 0)
      lines_.removeAt(i);
}

void IniFile::clearSection(const QString& section)
{
  const qsizetype header = find(section);
  for (qsizetype i = header < 0 ? -1 : endOf(header) - 1; i > header; --i)
    if (!iniKeyOf(lines_.at(i)).isEmpty())
      lines_.removeAt(i);
}

}  // namespace kalvor
