// The field descriptions of an import filter as a table: for each field of a form where its value comes from. The table
// has no life of its own: it is read from the text, and what is put into it is written there.
#pragma once

#include "import/import_text.h"

namespace kalvor {

// A field of the form's head (Master) or of its lines (Detail).
struct ImportFormField {
  ImportSection part = ImportSection::Master;
  QString name;
  QString caption;
  bool visible = true;
  bool required = false;
};

// A lookup as its entry and its two lists have it; texts as written.
struct ImportLookupText {
  struct Condition {
    QString field;
    QString op = QStringLiteral("=");
    QString type = QStringLiteral("8");
    QString value;        // a column, or "@" and the value itself
    QString conjunction;
    bool operator==(const Condition&) const = default;
  };
  QString column;         // the entry's name
  bool key = false;
  QString range;
  QString fallback;       // item 4
  QString query;
  QString table;
  QString sourceList, targetList;      // their names
  QString sourceFields, targetFields;  // what they hold, divided by ","
  QList<Condition> conditions;
  bool operator==(const ImportLookupText&) const = default;
};

struct ImportMappingRow {
  ImportSection part = ImportSection::Master;
  int entry = -1;         // among the entries of the part; -1: nothing gives the field a value
  QString field;
  QString caption;        // empty: the form has no such field
  bool required = false;
  bool isLookup = false;
  QString column;         // the entry's name; of a lookup the columns of its conditions
  QString range;
  QString defaultText;
  bool key = false;
  QString lookup;         // what a person reads of it
};

// A row for every visible field, further ones for fields that the text names beside them, head before lines. A lookup
// has a row for each field that it fills; a field that is filled twice has two rows.
KALVOR_RULES QList<ImportMappingRow> importMapping(const ImportText& text, const QList<ImportFormField>& fields);

// Writes column, range, default and key of a row into its entry; a row without column and default loses it. A default
// alone takes a column that no file has (900 and above). Of a lookup only the key is written. DataError for a column
// that is no positive number, and for a text that the format cannot hold; nothing is changed then.
KALVOR_RULES void putImportMapping(ImportText& text, const ImportMappingRow& row);

KALVOR_RULES ImportLookupText importLookupText(const ImportText& text, ImportSection part, int entry);
// entry -1: a new one. Lists without a name get one of their own; a list that other entries use too, and that is changed
// here, is changed under a new name. DataError as above.
KALVOR_RULES void putImportLookup(ImportText& text, ImportSection part, int entry, const ImportLookupText& lookup);

// What is wrong with a filter's text, by line. Without fields their names are not looked at.
struct ImportTextProblem {
  int line = 0;
  QString text;
  bool operator==(const ImportTextProblem&) const = default;
};
KALVOR_RULES QList<ImportTextProblem> importTextProblems(const ImportText& text, const QList<ImportFormField>& fields);

// The options in the order in which a person looks for them, with the values that each may have (none: free).
struct ImportOption {
  QString key;
  QString caption;
  QStringList values;
  QString hint;
};
KALVOR_RULES const QList<ImportOption>& importOptions();

}  // namespace kalvor
