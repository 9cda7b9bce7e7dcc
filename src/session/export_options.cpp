#include "session/export_options.h"

#include "session/ini_options.h"
#include "session/local_settings_file.h"

namespace kalvor {
namespace {

struct SeparatorNameRow {
  ExportSeparator separator;
  QStringView name;
};
constexpr SeparatorNameRow separatorNames[] = {{ExportSeparator::Fixed, u"Fixed"},
                                               {ExportSeparator::Tab, u"tab"},
                                               {ExportSeparator::Comma, u"Comma"},
                                               {ExportSeparator::Semicolon, u"Point&Comma"},
                                               {ExportSeparator::Symbol, u"Char"}};

ExportSeparator separatorOf(const QString& name)
{
  if (name.isEmpty())
    return ExportSeparator::Fixed;
  for (const SeparatorNameRow& row : separatorNames)
    if (name == row.name)
      return row.separator;
  return ExportSeparator::Symbol;
}

QString nameOf(ExportSeparator separator)
{
  for (const SeparatorNameRow& row : separatorNames)
    if (row.separator == separator)
      return row.name.toString();
  return {};
}

}  // namespace

QStringList exportOptionLines(const TExportOptions& options)
{
  const QString symbol = options.separator == ExportSeparator::Symbol ? options.symbol : QString();
  return {QStringLiteral("Separator=") + nameOf(options.separator), QStringLiteral("Symbol=") + symbol,
          QStringLiteral("Caption=") + settingText(options.captions),
          QStringLiteral("Dos=") + settingText(options.dosCodePage),
          QStringLiteral("Drob=") + QString::number(options.decimals)};
}

TExportOptions exportOptionsFromLines(const QStringList& lines)
{
  TExportOptions options;
  options.separator = separatorOf(valueOfLine(lines, QStringLiteral("Separator")));
  if (options.separator == ExportSeparator::Symbol)
    options.symbol = valueOfLine(lines, QStringLiteral("Symbol"));
  options.captions = settingBool(valueOfLine(lines, QStringLiteral("Caption")), false);
  options.dosCodePage = settingBool(valueOfLine(lines, QStringLiteral("Dos")), false);
  bool isNumber = false;
  const int decimals = valueOfLine(lines, QStringLiteral("Drob")).trimmed().toInt(&isNumber);
  if (isNumber)
    options.decimals = qBound(0, decimals, 6);
  return options;
}

}  // namespace kalvor
