#include "server/store/stored_type.h"

namespace kalvor::server {

namespace {

struct TypeWord {
  QLatin1StringView word;
  StoredType type;
};
constexpr TypeWord typeWords[] = {
    {QLatin1StringView("INTEGER"), StoredType::Integer}, {QLatin1StringView("BOOLEAN"), StoredType::Boolean},
    {QLatin1StringView("AMOUNT"), StoredType::Amount},   {QLatin1StringView("TEXT"), StoredType::Text},
    {QLatin1StringView("VARCHAR"), StoredType::Text},    {QLatin1StringView("DATE"), StoredType::Date},
    {QLatin1StringView("TIMESTAMP"), StoredType::Timestamp}, {QLatin1StringView("BLOB"), StoredType::Blob},
};

// The digits at a place as a number; -1 when there are others.
int digits(std::string_view text, size_t from, size_t count)
{
  if (text.size() < from + count) {
    return -1;
  }
  int number = 0;
  for (char c : text.substr(from, count)) {
    if (c < '0' || c > '9') {
      return -1;
    }
    number = number * 10 + (c - '0');
  }
  return number;
}

}  // namespace

DeclaredType parseDeclaredType(QStringView text)
{
  qsizetype length = 0;
  while (length < text.size() && text.at(length).isLetter()) {
    ++length;
  }
  for (const TypeWord& entry : typeWords) {
    if (text.left(length).compare(entry.word, Qt::CaseInsensitive) == 0) {
      const qsizetype close = text.indexOf(u')');
      const int size = length < text.size() && text.at(length) == u'(' && close > length
                           ? text.mid(length + 1, close - length - 1).trimmed().toInt() : 0;
      return {entry.type, entry.type == StoredType::Text ? size : 0};
    }
  }
  return {};
}

DataType dataTypeOf(StoredType type)
{
  switch (type) {
    case StoredType::Integer: return DataType::LargeInt;
    case StoredType::Boolean: return DataType::Boolean;
    case StoredType::Amount: return DataType::Float;
    case StoredType::Date: return DataType::Date;
    case StoredType::Timestamp: return DataType::DateTime;
    case StoredType::Blob: return DataType::Blob;
    default: return DataType::WideString;
  }
}

QDate storedDate(std::string_view text)
{
  return QDate(digits(text, 0, 4), digits(text, 4, 2), digits(text, 6, 2));
}

QTime storedTime(std::string_view text)
{
  return text.size() < 15 ? QTime(0, 0) : QTime(digits(text, 9, 2), digits(text, 11, 2), digits(text, 13, 2));
}

QString storedText(const QDate& date) { return date.toString(QStringLiteral("yyyyMMdd")); }
QString storedText(const QDateTime& moment) { return moment.toString(QStringLiteral("yyyyMMdd'T'HHmmss")); }

std::optional<qint64> storedDateNumber(std::string_view text, DataType type)
{
  const QDate date = storedDate(text);
  if (!date.isValid()) {
    return {};
  }
  constexpr qint64 epoch = 2440588;  // Julian day of 1970-01-01
  return type == DataType::Date
             ? date.toJulianDay()
             : (date.toJulianDay() - epoch) * 86'400'000 + storedTime(text).msecsSinceStartOfDay();
}

}  // namespace kalvor::server
