// The field descriptions of an import filter, read once: what a column becomes, and how a code is looked up.
#pragma once

#include <functional>

#include "import/import_selector.h"

namespace kalvor {

// The text of a column of the current source row, by its position.
using ColumnText = std::function<QString(int position)>;

// One condition of a lookup.
struct ImportCondition {
  QString field;        // on the lookup source, may be qualified by the table's name
  QString op;
  QString conjunction;  // to the next condition
  QString literal;      // the value, when it comes from no column
  int typeCode = 0;     // of the value, as docs/file-formats.md lists them
  int column = 0;
  bool fromColumn = false;
};

// Where the values of a description's conditions stand: in columns (or behind "@"), or already in the description.
enum class ConditionValues : quint8 { FromRow, Given };

struct ImportLookup {
  int query = 0;
  QString source;
  QString sourceFields;    // as the server takes them
  QStringList targetFields;
  QList<ImportCondition> conditions;
  int fallback = 1;        // 1-based, among the filter's default selectors
  bool isKey = false;
  bool fieldsAgree = true; // as many target fields as source fields
};

struct ImportField {
  enum class Kind : quint8 { Value, Lookup };
  Kind kind = Kind::Value;
  bool isKey = false;
  int position = 0;
  QString target;
  QString defaultText;
  ImportLookup lookup;
};

// The descriptions that produce cells, in order.
QList<ImportField> importFields(const ImportEntries& entries, const TImportFilter& filter);
ImportLookup importLookup(const QString& description, const TImportFilter& filter, ConditionValues values);
// A fallback's description: the entry behind its number, or the whole of an entry that has none.
QString fallbackDescription(const ImportEntries& fallbacks, int index);

// As ExecImportSelector, on a lookup that is already read. fallback: null when there is none.
bool runImportLookup(const ImportLookup& lookup, const ImportLookup* fallback, const ColumnText& column,
                     const TImportFilter& filter, TImportLine& line, int rowNumber, const ImportServices& services);

// A value of a condition in the type of its code. DataError when the text is not of that type.
Variant conditionValue(const QString& text, int typeCode, const TFormatSettings& settings);

}  // namespace kalvor
