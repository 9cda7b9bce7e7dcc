#include "common/sql_text.h"

#include <QDateTime>

#include "platform/ports.h"

namespace kalvor {
namespace {

struct StatementKeyWord {
  const char16_t* verb;
  const char16_t* beforeTable;
};
constexpr StatementKeyWord statementKeyWords[] = {
    {u"SELECT", u"FROM "}, {u"DELETE", u"FROM "}, {u"INSERT", u"INTO "}, {u"UPDATE", u"UPDATE "},
};

QString withoutNul(QString text) { return text.replace(QChar(u'\0'), QStringLiteral("\\0")); }

QString parameterText(const Variant& value)
{
  if (kalvor::isNull(value))
    return QStringLiteral("NULL");
  if (value.typeId() == QMetaType::QDate || value.typeId() == QMetaType::QDateTime)
    return sqlQuoted(value.toDate().toString(QStringLiteral("yyyyMMdd")));
  return withoutNul(sqlQuoted(variantText(value)));
}

bool isPureTime(const Variant& value)
{
  return value.typeId() == QMetaType::QTime ||
         (value.typeId() == QMetaType::QDateTime && value.toDate() == QDate(1899, 12, 30));
}

QString dateLiteral(const Variant& value)
{
  if (isPureTime(value))
    return sqlQuoted(QStringLiteral("30.12.1899 ") + value.toTime().toString(QStringLiteral("hh:mm:ss")));
  const QDateTime when = value.typeId() == QMetaType::QDate ? value.toDate().startOfDay() : value.toDateTime();
  return sqlQuoted(when.toString(QStringLiteral("dd.MM.yy hh:mm:ss")));
}

QString textLiteral(const QString& text, bool upper)
{
  if (text.startsWith(u'\'') || text.trimmed().toUpper() == QLatin1String("NULL"))
    return text;
  return sqlQuoted(upper ? text.toUpper() : text);
}

bool isConnectionItem(const QString& item, const QString& key)
{
  const qsizetype sign = item.indexOf(u'=');
  return sign >= 0 && item.left(sign).trimmed().compare(key.trimmed(), Qt::CaseInsensitive) == 0;
}

}  // namespace

QString CreateUniqueID()
{
  QByteArray bytes = randomSource().bytes(16);
  bytes[6] = char((bytes.at(6) & 0x0F) | 0x40);  // RFC 4122: random, version 4
  bytes[8] = char((bytes.at(8) & 0x3F) | 0x80);
  return QString::fromLatin1(bytes.toHex().toUpper());
}

QString sqlQuoted(const QString& text)
{
  QString inner = text;
  return u'\'' + inner.replace(u'\'', QStringLiteral("''")) + u'\'';
}

QString GetTableNameFromSQL(const QString& statement)
{
  const QString text = statement.trimmed().toUpper();
  for (const StatementKeyWord& word : statementKeyWords) {
    if (!text.startsWith(QStringView(word.verb)))
      continue;
    const QStringView opener(word.beforeTable);
    const qsizetype at = text.indexOf(opener);
    if (at < 0)
      return {};
    const qsizetype start = at + opener.size();
    const qsizetype blank = text.indexOf(u' ', start);
    return blank < 0 ? QString() : text.mid(start, blank - start).trimmed();
  }
  return {};
}

QString parseSQLtoText(const QStringList& statement, const VariantArray* parameters)
{
  QString text;
  for (const QString& line : statement)
    text += line + QStringLiteral("\r\n");
  QString result;
  qsizetype next = 0;
  for (const QChar c : std::as_const(text)) {
    if (c == u'\0')
      result += QStringLiteral("\\0");
    else if (c == u'?' && parameters && next < parameters->size())
      result += parameterText(parameters->at(next++));
    else
      result += c;
  }
  return result;
}

QStringList PrepareSQLQueryToLog(const QStringList& statement, const VariantArray* parameters,
                                 const QStringList& fields, const QString& logTable)
{
  QString columns, values;
  for (const QString& field : fields) {
    const qsizetype sign = field.indexOf(u'=');
    columns += QStringLiteral(", ") + field.left(qMax<qsizetype>(sign, 0));
    values += QStringLiteral(", ") + sqlQuoted(sign < 0 ? QString() : field.mid(sign + 1));
  }
  const QString text = parseSQLtoText(statement, parameters);
  if (const QString table = GetTableNameFromSQL(text).trimmed(); !table.isEmpty()) {
    columns += QStringLiteral(", TableName");
    values += QStringLiteral(", ") + sqlQuoted(table);
  }
  return {QStringLiteral("INSERT INTO ") + logTable + QStringLiteral("(ID, SQLSTRING ") + columns +
              QStringLiteral(") values ("),
          sqlQuoted(CreateUniqueID()) + QStringLiteral(", "), sqlQuoted(text), values + u')'};
}

QString GetVariantAsString(const Variant& value, bool upper)
{
  if (kalvor::isNull(value))
    return QStringLiteral("''");
  switch (value.typeId()) {
    case QMetaType::QDate:
    case QMetaType::QTime:
    case QMetaType::QDateTime: return dateLiteral(value);
    case QMetaType::Int:
    case QMetaType::LongLong:
    case QMetaType::Short:
    case QMetaType::Float:
    case QMetaType::Double: return variantText(value);
    case QMetaType::QString: return textLiteral(value.toString(), upper);
    default: return {};
  }
}

QStringList GetItemsFromString(const QString& text, const QString& separator)
{
  if (text.trimmed().isEmpty())
    return {};
  return separator.isEmpty() ? QStringList{text} : text.split(separator);
}

QString ChangeSeparator(const QString& text, const QString& oldSeparator, const QString& newSeparator)
{
  QString result = text;
  return oldSeparator.isEmpty() ? result : result.replace(oldSeparator, newSeparator);
}

QString GetValueFromConnectionString(const QString& connection, const QString& key)
{
  for (const QString& item : connection.split(u';'))
    if (isConnectionItem(item, key))
      return item.mid(item.indexOf(u'=') + 1);
  return {};
}

void SetValueToConString(const QString& key, const QString& value, QString& connection)
{
  QStringList items = connection.split(u';', Qt::SkipEmptyParts);
  qsizetype at = 0;
  while (at < items.size() && !isConnectionItem(items.at(at), key))
    ++at;
  if (value.isEmpty()) {
    if (at < items.size())
      items.removeAt(at);
  } else if (at < items.size()) {
    items[at] = key + u'=' + value;
  } else {
    items.append(key + u'=' + value);
  }
  connection = items.join(u';');
}

ParameterArray GetAllParams(const ParameterArray& base, const ParameterArray& extra)
{
  ParameterArray result = base;
  for (const NamedValue& added : extra) {
    qsizetype at = 0;
    while (at < result.size() && result.at(at).name.compare(added.name, Qt::CaseInsensitive) != 0)
      ++at;
    if (at < result.size())
      result[at] = added;
    else
      result.append(added);
  }
  return result;
}

}  // namespace kalvor
