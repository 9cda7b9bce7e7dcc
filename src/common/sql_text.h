// Statements, parameters and values as SQL text; connection texts; identifiers. None of it talks to the server.
#pragma once

#include <QStringList>

#include "data/variant.h"

namespace kalvor {

// A new GUID as 32 upper-case hexadecimal digits.
KALVOR_RULES QString CreateUniqueID();

// The text in single quotes, inner single quotes doubled.
KALVOR_RULES QString sqlQuoted(const QString& text);

// The table of a SELECT, DELETE, INSERT or UPDATE statement in upper case. Empty for other statements, for a
// name that ends the statement and for a key word followed by two blanks.
KALVOR_RULES QString GetTableNameFromSQL(const QString& statement);

// The lines as one text, each ended by CR LF, every "?" replaced by the next parameter: NULL, a quoted date, or
// the quoted text form. Without a parameter list (null), or past its end, "?" stays. NUL becomes \0.
KALVOR_RULES QString parseSQLtoText(const QStringList& statement, const VariantArray* parameters);

// Four lines of an INSERT into the log table: identifier, statement text, the name=value fields, the table that
// the statement names.
KALVOR_RULES QStringList PrepareSQLQueryToLog(const QStringList& statement, const VariantArray* parameters,
                                              const QStringList& fields, const QString& logTable);

// SQL literal of a value: dates and texts quoted (a text that begins with a quote or reads NULL is taken as it
// is), numbers plain, null as ''; empty for any other kind.
KALVOR_RULES QString GetVariantAsString(const Variant& value, bool upper);

// The items between separators, not trimmed, empty ones too; none for a blank text.
KALVOR_RULES QStringList GetItemsFromString(const QString& text, const QString& separator);
KALVOR_RULES QString ChangeSeparator(const QString& text, const QString& oldSeparator, const QString& newSeparator);

// Texts of key=value items joined by ";"; keys are compared without regard to case. Setting an empty value
// removes the item.
KALVOR_RULES QString GetValueFromConnectionString(const QString& connection, const QString& key);
KALVOR_RULES void SetValueToConString(const QString& key, const QString& value, QString& connection);

// Base with each pair of extra in place of the first pair of that name (any case), else at the end.
KALVOR_RULES ParameterArray GetAllParams(const ParameterArray& base, const ParameterArray& extra);

}  // namespace kalvor
