// The table filter: a filter as rows of texts (field, operator, value, conjunction) that a person edits, and back.
#pragma once

#include <optional>

#include "data/string_table.h"
#include "forms/field_metadata.h"
#include "registry/form_types.h"

namespace kalvor {

enum TableFilterColumn : int { tfField, tfOperator, tfValue, tfConjunction };
inline constexpr int tableFilterColumnCount = 4;

// Field kinds as the descriptions number them.
enum FilterFieldKind : int {
  fkOptions = 1,        // stored as the position of the option
  fkSelector = 2,
  fkYesNo = 4,          // stored "1" and "0"
  fkDate = 7,
  fkParameter = 8,      // becomes a parameter of the request, not a row of the filter
  fkDateParameter = 9
};

// What the editor shows for the parts of a filter.
KALVOR_RULES const QStringList& tableFilterTitles();
KALVOR_RULES const QStringList& tableFilterOperators();     // "=" ... "Съдържа"
KALVOR_RULES const QStringList& tableFilterConjunctions();  // "И", "ИЛИ"
KALVOR_RULES const QStringList& yesNoTexts();               // "Да", "Не"

// The field descriptions of a dataset, found by what stands in the rows.
class KALVOR_RULES FilterFields {
 public:
  // descriptions: rows of 19 values. dataSet gives the data types, null: everything is text; it outlives this.
  explicit FilterFields(const VariantArray& descriptions = {}, const TClientDataSet* dataSet = nullptr);

  int count() const { return int(rows_.size()); }
  const FieldDescription& at(int index) const;        // an empty one out of range
  int kindAt(int index) const;                        // the kind as a number, 0 out of range
  QString captionAt(int index) const { return at(index).text(FieldColumn::Caption); }
  QString nameAt(int index) const;                    // in filters
  bool isParameter(int index) const;
  bool isDate(int index) const;
  DataType dataTypeAt(int index) const;
  int byCaption(const QString& caption) const;        // -1: none
  int byName(const QString& filterName) const;        // -1: none
  QStringList captions() const;                       // of the filterable fields, sorted

 private:
  QList<FieldDescription> rows_;
  const TClientDataSet* dataSet_ = nullptr;
};

// A row with a field: an empty operator becomes "=". False: the user was told what is wrong with it. index is that of
// the description whose caption stands in the row, -1 when there is none.
KALVOR_RULES bool ValidateFilterRow(StringTable& grid, const FilterFields& fields, int row, int& index);
KALVOR_RULES bool ValidateFilterRow(StringTable& grid, const VariantArray& descriptions, int row, int& index);

// The same, telling which column is wrong; nothing: the row is valid.
KALVOR_RULES std::optional<int> invalidFilterCell(StringTable& grid, const FilterFields& fields, int row, int& index);

enum class TableFilterMode : quint8 {
  Values,
  Macros  // a stored filter is edited: values may be parameter macros, relative dates become such
};

// --- Filter to rows ------------------------------------------------------------------------------------------
// One filter row into a row of the grid. A row on an unknown field shows the name that it has in the filter.
KALVOR_RULES void FillCellRowFromFilterLine(StringTable& grid, const FilterFields& fields, TableFilterMode mode,
                                            const FilterRow& line, int gridRow);
// All rows from row on; row is behind the last one afterwards, and the table ends there (with one empty row at least).
// Groups that stand for one row of the editor, an empty value or several ones, come back as that row. Parameters
// follow as rows of their fields, those of others are left out.
KALVOR_RULES void FillGridFromFilter(StringTable& grid, const FilterFields& fields, TableFilterMode mode,
                                     const FilterArray& filter, const ParameterArray& parameters, int& row);
// A criterion text as one or two rows from row on, the row above joined with "И"; row is behind them afterwards.
KALVOR_RULES void addCriterionRows(StringTable& grid, const QString& caption, const QString& criterion, int& row);
// The rows that a report asks for: every required field with what the filter, else its default value holds, then the
// parameters. Gives their number.
KALVOR_RULES int fillReportRows(StringTable& grid, const FilterFields& fields, TableFilterMode mode,
                                const FilterArray& filter);
// What a value cell shows while it is not edited: dates as people read them.
KALVOR_RULES QString shownFilterValue(const FilterFields& fields, int index, const QString& text);

// --- Rows to filter ------------------------------------------------------------------------------------------
struct TableFilterResult {
  FilterArray filter;
  ParameterArray parameters;
};
struct TableFilterFailure {
  int row = 0;
  int column = 0;
};
// Rows up to the first without a field. Nothing: the user was told why. TELException when a value is a date that does
// not exist or a time that does not read; failure names the cell then, too.
KALVOR_RULES std::optional<TableFilterResult> buildTableFilter(StringTable& grid, const FilterFields& fields,
                                                               TableFilterMode mode, TableFilterFailure& failure);

// --- Editing -------------------------------------------------------------------------------------------------
// The row above the edited one is joined to it with "И" once it is complete; below the first two rows only.
KALVOR_RULES void joinRowAbove(StringTable& grid, int editedRow);
// Texts of the chosen records for a field: of the source whose target is the field, joined by "|".
KALVOR_RULES QString chosenFilterValue(const TSelectionList& selection, const QString& sourceFields,
                                       const QString& targetFields, const QString& fieldName);

}  // namespace kalvor
