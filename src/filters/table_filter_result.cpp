// The rows of a table filter into a filter and parameters.
#include "common/delimited_list.h"
#include "data/regional.h"
#include "filters/filter_expression.h"
#include "filters/table_filter.h"
#include "forms/messages.h"
#include "platform/ports.h"

namespace kalvor {

namespace {

const QString resultParamOpener = QStringLiteral("<#Param(");
const QString currentDateMacro = QStringLiteral("<#Param(CURRENT_DATE");

// One value of a cell into the form that travels in a filter. All give false when the user was told what is wrong.
class CellEncoder {
 public:
  CellEncoder(const FilterFields& fields, int index, TableFilterMode mode) : fields_(fields), index_(index), mode_(mode)
  {
  }

  bool encode(const QString& cell, QString& value) const
  {
    if (!hasSeveralValues(cell)) {
      return encodeOne(cell, value);
    }
    QStringList values;
    for (const QString& part : cell.split(u'|')) {
      QString one;
      if (!encodeOne(part.trimmed(), one)) {
        return false;
      }
      values.append(one);
    }
    value = values.join(u'|');
    return true;
  }

 private:
  bool hasSeveralValues(const QString& cell) const
  {
    return cell.contains(u'|') && (fields_.kindAt(index_) == fkOptions || fields_.isDate(index_) ||
                                   !isTextType(fields_.dataTypeAt(index_)));
  }

  bool encodeOne(const QString& text, QString& value) const
  {
    if (fields_.kindAt(index_) == fkYesNo) {
      value = text == yesNoTexts().first() ? QStringLiteral("1") : QStringLiteral("0");
      return true;
    }
    if (fields_.kindAt(index_) == fkOptions) {
      return encodeOption(text, value);
    }
    if (fields_.isDate(index_)) {
      return encodeDate(text, value);
    }
    return isMacro(text) ? keep(text, value) : convert(text, value);
  }

  bool isMacro(const QString& text) const { return mode_ == TableFilterMode::Macros && text.contains(resultParamOpener); }

  static bool keep(const QString& text, QString& value)
  {
    value = text;
    return true;
  }

  bool encodeOption(const QString& text, QString& value) const
  {
    if (text.isEmpty() || isMacro(text)) {
      return keep(text, value);
    }
    const int position = GetPosOfItem(fields_.at(index_).text(FieldColumn::OptionCaption), QStringLiteral(","), text);
    if (position < 0 && !parseInteger(text)) {
      showError(withText(_err_TblFilterOption, text));
      return false;
    }
    value = position < 0 ? text : QString::number(position);
    return true;
  }

  bool encodeDate(const QString& text, QString& value) const
  {
    QString relative;
    if (mode_ == TableFilterMode::Macros && GenerateIntervalData(text, relative) == 0) {
      return keep(resultParamOpener + text + QStringLiteral(")#>"), value);
    }
    if (text.trimmed().isEmpty() || isMacro(text) ||
        (fields_.kindAt(index_) == fkDate && text.contains(currentDateMacro))) {
      return keep(text.trimmed(), value);
    }
    value = GenerateDate(text, true);
    if (value.isEmpty()) {
      showError(_err_NotValidDate);
      return false;
    }
    return true;
  }

  bool convert(const QString& text, QString& value) const
  {
    const DataType type = fields_.dataTypeAt(index_);
    if (text.isEmpty() && !isIntegerType(type)) {
      return keep(text, value);
    }
    QString typed = text;
    if (isRealType(type) && !parseNumber(text)) {
      // As it stands in a filter.
      bool stored = false;
      text.toDouble(&stored);
      typed = stored ? QString(text).replace(u'.', regionalFormat().decimalSeparator) : text;
    }
    QList<CriterionValue> unused;
    Variant first;
    if (!ConvertFldValues(type, typed, typed, unused, first)) {
      return false;
    }
    value = variantText(first);
    return true;
  }

  const FilterFields& fields_;
  int index_;
  TableFilterMode mode_;
};

// The conjunction of a row, which counts only when a further row follows.
QString conjunctionOf(const StringTable& grid, int row)
{
  const bool followed = !grid.Cells(tfOperator, row + 1).trimmed().isEmpty() || !grid.Cells(tfField, row + 1).isEmpty();
  const QString cell = grid.Cells(tfConjunction, row);
  if (!followed || !tableFilterConjunctions().contains(cell)) {
    return {};
  }
  return cell == tableFilterConjunctions().last() ? QStringLiteral("OR") : QStringLiteral("AND");
}

void appendEmptyPair(FilterArray& filter, const QString& name, const QString& op, const QString& conjunction)
{
  const bool equal = op == QLatin1String("=");
  filter.append({name, op, QString(), equal ? QStringLiteral("OR") : QStringLiteral("AND"), QStringLiteral("(")});
  filter.append({name, equal ? QStringLiteral("is") : QStringLiteral("is not"), QStringLiteral("null"), conjunction,
                 QStringLiteral(")")});
}

void appendValues(FilterArray& filter, const QString& name, const QString& op, QString value, const QString& conjunction)
{
  value = value.trimmed();
  while (value.endsWith(u'|')) {
    value.chop(1);
  }
  const QStringList parts = value.split(u'|');
  if (parts.size() == 1) {
    filter.append({name, op, value, conjunction, QString()});
    return;
  }
  for (qsizetype i = 0; i < parts.size(); ++i) {
    const bool last = i + 1 == parts.size();
    filter.append({name, op, parts[i], last ? conjunction : QStringLiteral("OR"),
                   i == 0 ? QStringLiteral("(") : last ? QStringLiteral(")") : QString()});
  }
}

}  // namespace

std::optional<TableFilterResult> buildTableFilter(StringTable& grid, const FilterFields& fields, TableFilterMode mode,
                                                  TableFilterFailure& failure)
{
  TableFilterResult result;
  for (int row = 1; row < grid.RowCount() && !grid.Cells(tfField, row).isEmpty(); ++row) {
    int index = -1;
    if (const std::optional<int> column = invalidFilterCell(grid, fields, row, index)) {
      failure = {row, *column};
      return std::nullopt;
    }
    failure = {row, tfValue};  // also for what the conversion raises
    QString value;
    if (!CellEncoder(fields, index, mode).encode(grid.Cells(tfValue, row), value)) {
      return std::nullopt;
    }
    if (fields.isParameter(index)) {
      result.parameters.append({fields.at(index).fieldName(), value});
      continue;
    }
    const QString cell = grid.Cells(tfOperator, row);
    const QString op = cell == tableFilterOperators().last() ? QStringLiteral("LIKE") : cell;
    if (value.isEmpty()) {
      appendEmptyPair(result.filter, fields.nameAt(index), op, conjunctionOf(grid, row));
    } else {
      appendValues(result.filter, fields.nameAt(index), op, value, conjunctionOf(grid, row));
    }
  }
  return result;
}

}  // namespace kalvor
