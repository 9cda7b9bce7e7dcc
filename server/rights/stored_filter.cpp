#include "server/rights/stored_filter.h"

namespace kalvor::server {

namespace {

const QString parameterOpener = QStringLiteral("<#Param(");

// "+1d", "7д-", "-1m": one unit, one number, a sign anywhere; an invalid date when it is none.
QDate relativeDate(const QString& text, QDate today)
{
  QString digits;
  QString sign;
  QChar unit;
  for (QChar c : text.toLower()) {
    if (c.isDigit()) {
      digits += c;
    } else if ((c == u'+' || c == u'-') && sign.isEmpty()) {
      sign = c;
    } else if (QStringLiteral("dдmмyг").contains(c) && unit.isNull()) {
      unit = c;
    } else {
      return {};
    }
  }
  bool ok = false;
  const int number = (sign + digits).toInt(&ok);
  if (!ok || unit.isNull() || qAbs(number) > 100'000) {
    return {};
  }
  switch (unit.unicode()) {
    case u'd':
    case u'д': return today.addDays(number);
    case u'm':
    case u'м': return today.addMonths(number);
    default: return today.addYears(number);
  }
}

// The number of items as the format counts them: separators with something behind them, plus one.
int countItems(const QString& text)
{
  int count = 1;
  for (qsizetype at = text.indexOf(u','); at >= 0; at = text.indexOf(u',', at + 1)) {
    count += !QStringView(text).mid(at + 1).trimmed().isEmpty();
  }
  return count;
}

}  // namespace

QString expandParameter(const QString& value, const Session& session, QDate today)
{
  const qsizetype at = value.indexOf(parameterOpener);
  if (at < 0) {
    return value;
  }
  const qsizetype begin = at + parameterOpener.size();
  const QString name = value.mid(begin, value.size() - 3 - begin).toUpper();
  if (name == u"BUSINESSGROUP_ID") {
    return session.groupId;
  }
  if (name == u"COMPANY_ID") {
    return session.companyId;
  }
  if (name == u"USER_ID") {
    return session.userId;
  }
  const QDate date = name == u"CURRENT_DATE" ? today : relativeDate(name, today);
  return date.isValid() ? date.toString(QStringLiteral("yyyyMMdd")) : QString();
}

FilterArray storedFilter(const QString& text, const Session& session, QDate today)
{
  FilterArray filter;
  if (countItems(text) < 3) {
    return filter;
  }
  const auto addRow = [&](const QString& row, const QString& conjunction) {
    const QString value = expandParameter(row.section(u',', 2, 2), session, today);
    filter.append({row.section(u',', 0, 0), row.section(u',', 1, 1), value, conjunction, {}});
  };
  QString rest = text;
  while (true) {
    qsizetype at = 0;
    while (at < rest.size() && rest.at(at) != u'&' && rest.at(at) != u'|') {
      ++at;
    }
    if (at == rest.size()) {
      break;
    }
    addRow(rest.left(qMax<qsizetype>(0, at - 1)), rest.at(at) == u'&' ? QStringLiteral("AND") : QStringLiteral("OR"));
    rest = rest.mid(at + 1);
    if (rest.trimmed().startsWith(u',')) {
      rest = rest.mid(rest.indexOf(u',') + 1);
    }
  }
  if (!rest.trimmed().isEmpty()) {
    addRow(rest, {});
  }
  return filter;
}

}  // namespace kalvor::server
