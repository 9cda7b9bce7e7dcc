// A piece of a statement with the values of its "?" in order.
#pragma once

#include "data/variant.h"
#include "server/sql/sql_tokens.h"

namespace kalvor::server {

struct Fragment {
  QString sql;
  VariantArray values;  // doubles are amounts

  bool isEmpty() const { return sql.isEmpty(); }
  Fragment& operator+=(const Fragment& other)
  {
    sql += other.sql;
    values += other.values;
    return *this;
  }
  Fragment& operator+=(const QString& text)
  {
    sql += text;
    return *this;
  }
};

inline Fragment operator+(Fragment left, const Fragment& right) { return left += right; }
inline Fragment operator+(Fragment left, const QString& right) { return left += right; }
inline Fragment operator+(const QString& left, const Fragment& right) { return Fragment{left, {}} += right; }

// Joined by AND, each in brackets; the empty ones do not count. Empty when all are.
KALVOR_SERVER Fragment allOf(const QList<Fragment>& conditions);
// Joined by OR likewise.
KALVOR_SERVER Fragment anyOf(const QList<Fragment>& conditions);

// Tokens [begin, end) as text again, one blank between them; every :Name becomes "?" with its value, null when
// the parameters have none. Names match without regard to case.
KALVOR_SERVER Fragment fragmentOf(const QList<SqlToken>& tokens, qsizetype begin, qsizetype end,
                                  const ParameterArray& parameters);

}  // namespace kalvor::server
