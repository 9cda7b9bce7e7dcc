#include "platform/continued_sheets.h"

#include "data/data_error.h"

namespace kalvor {

namespace {

int cellsOfFirstRow(const TextTable& table)
{
  int cells = 0;
  for (int column = 0; column < table.columnCount(); ++column)
    cells += table.text(0, column).isEmpty() ? 0 : 1;
  return cells;
}

}  // namespace

QString continuedSheetName(const QString& name, int number)
{
  constexpr qsizetype longestSheetName = 31;
  static const QString forbidden = QStringLiteral("[]:*?/\\");
  QString clean;
  for (QChar c : name) {
    if (!forbidden.contains(c) && c.unicode() >= u' ')
      clean += c;
  }
  while (clean.startsWith(u'\''))
    clean.remove(0, 1);
  const QString suffix = number > 1 ? QStringLiteral(" (%1)").arg(number) : QString();
  clean.truncate(longestSheetName - suffix.size());
  while (clean.endsWith(u'\''))
    clean.chop(1);
  return (clean.isEmpty() ? QStringLiteral("Sheet") : clean) + suffix;
}

bool ContinuedSheets::repeatsHeadings(int row, int column, QStringView text)
{
  if (row == 0) {
    ++headings_;
    return table_.text(0, column) == text;
  }
  if (headings_ < 0)
    return true;
  const bool complete = headings_ == cellsOfFirstRow(table_);
  headings_ = -1;  // compared
  return complete;
}

bool ContinuedSheets::append(int row, int column, QStringView text)
{
  if (sheet_ == 1)
    return table_.append(row, column, text);
  if (text.isEmpty() || differs_)
    return true;
  differs_ = !repeatsHeadings(row, column, text);
  return differs_ || row == 0 || table_.append(firstRow_ + row, column, text);
}

bool ContinuedSheets::goesOn(int rowsOfSheet, const QString& firstName, const QString& nextName)
{
  if (differs_ || nextName != continuedSheetName(firstName, sheet_ + 1))
    return false;
  const qint64 firstRow = qint64(sheet_) * (rowsOfSheet - 1);
  if (firstRow >= TextTable::mostRows)
    throw DataError(QStringLiteral("Таблицата е твърде голяма."));
  firstRow_ = int(firstRow);
  ++sheet_;
  headings_ = 0;
  return true;
}

}  // namespace kalvor
