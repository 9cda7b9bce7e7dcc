#include "session/ini_options.h"

#include "session/local_settings_file.h"

namespace kalvor {
namespace {

struct IniOptionRow {
  const char16_t* name;
  bool TIniOptions::*option;
};
constexpr IniOptionRow iniOptionRows[] = {
    {u"Filter", &TIniOptions::Filter},
    {u"SortOrder", &TIniOptions::SortOrder},
    {u"Grids", &TIniOptions::Grids},
    {u"FormSize", &TIniOptions::FormSize},
    {u"ApplyColorSettings", &TIniOptions::ApplyColorSettings},
};

}  // namespace

TIniOptions IniOptions;

QStringList iniOptionLines(const TIniOptions& options)
{
  QStringList lines;
  for (const IniOptionRow& row : iniOptionRows)
    lines.append(QString::fromUtf16(row.name) + u'=' + settingText(options.*row.option));
  return lines;
}

TIniOptions iniOptionsFromLines(const QStringList& lines)
{
  TIniOptions options;
  for (const IniOptionRow& row : iniOptionRows)
    options.*row.option = valueOfLine(lines, QString::fromUtf16(row.name)) == QLatin1String("-1");
  return options;
}

bool settingBool(const QString& text, bool otherwise)
{
  bool isNumber = false;
  const int number = text.trimmed().toInt(&isNumber);
  if (isNumber)
    return number != 0;
  if (text.trimmed().compare(QLatin1String("true"), Qt::CaseInsensitive) == 0)
    return true;
  return text.trimmed().compare(QLatin1String("false"), Qt::CaseInsensitive) == 0 ? false : otherwise;
}

}  // namespace kalvor
