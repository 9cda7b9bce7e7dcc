// Rows of one document table as rows of another one with the same columns.
#pragma once

#include "server/catalogue/catalogue.h"
#include "server/sql/fragment.h"

namespace kalvor::server {

// A column of the target and what it gets: "?" with its value, or an expression over the source.
struct SetColumn {
  const char* name;
  Fragment value;
};

inline Fragment givenValue(const Variant& value) { return {QStringLiteral("?"), {value}}; }
inline Fragment givenValue(qint64 value) { return {QStringLiteral("?"), {qlonglong(value)}}; }
inline Fragment columnValueOf(const char* expression) { return {QString::fromLatin1(expression), {}}; }

// INSERT ... SELECT without a WHERE: the given columns first, and every other one that both tables have as it stands.
Fragment copyStatement(const Catalogue& catalogue, const char* from, const char* to, const QList<SetColumn>& given);

}  // namespace kalvor::server
