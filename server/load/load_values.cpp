#include "server/load/load_values.h"

#include <QDateTime>
#include <charconv>

namespace kalvor::server {

std::optional<qint64> parseAmount(std::string_view text)
{
  constexpr int decimals = 6;
  const bool negative = !text.empty() && text.front() == '-';
  if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
    text.remove_prefix(1);
  }
  const size_t point = std::min(text.find('.'), text.size());
  const std::string_view whole = text.substr(0, point);
  const std::string_view fraction = text.substr(std::min(point + 1, text.size()));
  const auto allDigits = [](std::string_view digits) {
    return digits.find_first_not_of("0123456789") == std::string_view::npos;
  };
  if (whole.empty() || !allDigits(whole) || !allDigits(fraction) || (point < text.size() && fraction.empty())) {
    return {};
  }
  qint64 value = 0;
  for (const char c : whole) {
    if (__builtin_mul_overflow(value, 10, &value) || __builtin_add_overflow(value, c - '0', &value)) {
      return {};
    }
  }
  for (int i = 0; i < decimals; ++i) {
    const int digit = size_t(i) < fraction.size() ? fraction[size_t(i)] - '0' : 0;
    if (__builtin_mul_overflow(value, 10, &value) || __builtin_add_overflow(value, digit, &value)) {
      return {};
    }
  }
  if (fraction.size() > decimals && fraction[decimals] >= '5' && __builtin_add_overflow(value, 1, &value)) {
    return {};
  }
  return negative ? -value : value;
}

namespace {

Variant parseTextCell(std::string_view text, const ColumnInfo& column, QString& error)
{
  const QUtf8StringView bytes(text.data(), qsizetype(text.size()));
  if (!bytes.isValidUtf8() || text.find('\0') != std::string_view::npos) {
    error = QStringLiteral("текстът не е в кодировка UTF-8");
    return {};
  }
  const QString value = bytes.toString();
  if (column.size > 0 && value.size() > column.size) {
    error = QStringLiteral("„%1“ е по-дълъг от %2 знака").arg(value.left(40)).arg(column.size);
    return {};
  }
  return value;
}

Variant refusedCell(std::string_view text, const char* what, QString& error)
{
  error =
      QStringLiteral("„%1“ не е %2")
          .arg(QString::fromUtf8(text.data(), qsizetype(std::min<size_t>(text.size(), 40))), QString::fromUtf8(what));
  return {};
}

}  // namespace

Variant parseCell(std::string_view text, const ColumnInfo& column, QString& error)
{
  error.clear();
  if (text.empty()) {
    return {};
  }
  const auto latin = [&] { return QString::fromLatin1(text.data(), qsizetype(text.size())); };
  switch (column.type) {
    case DataType::LargeInt: {
      qint64 value = 0;
      const auto [end, code] = std::from_chars(text.data(), text.data() + text.size(), value);
      return code == std::errc() && end == text.data() + text.size() ? Variant(qlonglong(value))
                                                                     : refusedCell(text, "цяло число", error);
    }
    case DataType::Boolean:
      return text == "1" || text == "0" ? Variant(int(text == "1")) : refusedCell(text, "1 или 0", error);
    case DataType::Float: {
      const auto value = parseAmount(text);
      return value ? Variant(qlonglong(*value)) : refusedCell(text, "число с десетична точка", error);
    }
    case DataType::Date: {
      const QDate date = text.size() == 10 ? QDate::fromString(latin(), QStringLiteral("yyyy-MM-dd")) : QDate();
      return date.isValid() ? Variant(date) : refusedCell(text, "дата като 2026-01-31", error);
    }
    case DataType::DateTime: {
      const QDateTime time = QDateTime::fromString(latin(), QStringLiteral("yyyy-MM-ddTHH:mm:ss"));
      return time.isValid() ? Variant(time) : refusedCell(text, "време като 2026-01-31T15:30:00", error);
    }
    case DataType::Blob:
      error = QStringLiteral("двоично поле не се зарежда от текст");
      return {};
    default: return parseTextCell(text, column, error);
  }
}

}  // namespace kalvor::server
