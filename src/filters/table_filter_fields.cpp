// The fields of a table filter, and what makes a row of it valid.
#include "filters/filter_expression.h"
#include "filters/table_filter.h"
#include "forms/messages.h"
#include "platform/ports.h"

namespace kalvor {

const QStringList& tableFilterTitles()
{
  static const QStringList titles{QStringLiteral(" Име на поле"), QStringLiteral(" Оператор"),
                                  QStringLiteral(" Стойност"), QStringLiteral(" Съюз")};
  return titles;
}

const QStringList& tableFilterOperators()
{
  static const QStringList operators{QStringLiteral("="),  QStringLiteral(">"),  QStringLiteral("<"),
                                     QStringLiteral(">="), QStringLiteral("<="), QStringLiteral("<>"),
                                     QStringLiteral("Съдържа")};
  return operators;
}

const QStringList& tableFilterConjunctions()
{
  static const QStringList conjunctions{QStringLiteral("И"), QStringLiteral("ИЛИ")};
  return conjunctions;
}

const QStringList& yesNoTexts()
{
  static const QStringList texts{QStringLiteral("Да"), QStringLiteral("Не")};
  return texts;
}

FilterFields::FilterFields(const VariantArray& descriptions, const TClientDataSet* dataSet) : dataSet_(dataSet)
{
  for (const Variant& row : descriptions) {
    rows_.append(FieldDescription(row));
  }
}

const FieldDescription& FilterFields::at(int index) const
{
  static const FieldDescription none;
  return index < 0 || index >= count() ? none : rows_[index];
}

int FilterFields::kindAt(int index) const
{
  return at(index).fieldType().trimmed().toInt();
}

QString FilterFields::nameAt(int index) const
{
  const QString name = at(index).filterName();
  return name.isEmpty() ? at(index).fieldName() : name;
}

bool FilterFields::isParameter(int index) const
{
  return kindAt(index) == fkParameter || kindAt(index) == fkDateParameter;
}

bool FilterFields::isDate(int index) const
{
  return kindAt(index) == fkDate || kindAt(index) == fkDateParameter;
}

DataType FilterFields::dataTypeAt(int index) const
{
  const TField* field = dataSet_ ? dataSet_->FindField(at(index).fieldName()) : nullptr;
  return field ? field->FieldDataType() : DataType::String;
}

int FilterFields::byCaption(const QString& caption) const
{
  int found = -1;
  for (int index = 0; index < count() && !caption.isEmpty(); ++index) {
    if (captionAt(index) != caption) {
      continue;
    }
    // Of several fields with one caption the drop-down offers the filterable one.
    if (at(index).isOne(FieldColumn::Filterable)) {
      return index;
    }
    found = found < 0 ? index : found;
  }
  return found;
}

int FilterFields::byName(const QString& filterName) const
{
  for (int index = 0; index < count() && !filterName.isEmpty(); ++index) {
    if (nameAt(index).compare(filterName, Qt::CaseInsensitive) == 0) {
      return index;
    }
  }
  return -1;
}

QStringList FilterFields::captions() const
{
  QStringList texts;
  for (int index = 0; index < count(); ++index) {
    if (!captionAt(index).isEmpty() && at(index).isOne(FieldColumn::Filterable) && !isParameter(index)) {
      texts.append(captionAt(index));
    }
  }
  texts.sort(Qt::CaseInsensitive);
  texts.removeDuplicates();
  return texts;
}

// --- Validation ----------------------------------------------------------------------------------------------

namespace {

struct RowCheck {
  const QString& message;
  int column;
  bool (*holds)(const StringTable& grid, const FilterFields& fields, int row, int index);
};

bool knownOperator(const StringTable& grid, const FilterFields&, int row, int)
{
  const QString op = grid.Cells(tfOperator, row);
  return op == QLatin1String("%") || tableFilterOperators().contains(op);
}

bool joinedToNext(const StringTable& grid, const FilterFields&, int row, int)
{
  for (const int column : {tfField, tfOperator, tfValue}) {
    if (grid.Cells(column, row + 1).isEmpty()) {
      return true;
    }
  }
  return tableFilterConjunctions().contains(grid.Cells(tfConjunction, row));
}

bool requiredParameterHasValue(const StringTable& grid, const FilterFields& fields, int row, int index)
{
  return !grid.Cells(tfValue, row).isEmpty() || !fields.isParameter(index) ||
         !fields.at(index).isOne(FieldColumn::Required);
}

const RowCheck rowChecks[] = {
    {_err_TblFilterOperator, tfOperator, knownOperator},
    {_err_TblFilterField, tfField,
     [](const StringTable&, const FilterFields&, int, int index) { return index >= 0; }},
    {_err_TblFilterUnion, tfConjunction, joinedToNext},
    {_err_TblFilterMissingValueForExpression, tfValue, requiredParameterHasValue},
};

}  // namespace

std::optional<int> invalidFilterCell(StringTable& grid, const FilterFields& fields, int row, int& index)
{
  index = fields.byCaption(grid.Cells(tfField, row));
  if (grid.Cells(tfOperator, row).isEmpty()) {
    grid.SetCells(tfOperator, row, tableFilterOperators().first());
  }
  for (const RowCheck& check : rowChecks) {
    if (!check.holds(grid, fields, row, index)) {
      showError(check.message);
      return check.column;
    }
  }
  return std::nullopt;
}

bool ValidateFilterRow(StringTable& grid, const FilterFields& fields, int row, int& index)
{
  return !invalidFilterCell(grid, fields, row, index);
}

bool ValidateFilterRow(StringTable& grid, const VariantArray& descriptions, int row, int& index)
{
  return ValidateFilterRow(grid, FilterFields(descriptions), row, index);
}

void joinRowAbove(StringTable& grid, int editedRow)
{
  constexpr int firstJoinedRow = 3;
  const int above = editedRow - 1;
  if (editedRow < firstJoinedRow || !grid.Cells(tfConjunction, above).isEmpty()) {
    return;
  }
  for (const int column : {tfField, tfOperator, tfValue}) {
    if (grid.Cells(column, above).isEmpty()) {
      return;
    }
  }
  grid.SetCells(tfConjunction, above, tableFilterConjunctions().first());
}

}  // namespace kalvor
