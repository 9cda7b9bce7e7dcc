#include "widgets/field_validator.h"

#include <QRegularExpression>

#include "data/regional.h"

namespace kalvor {
namespace {

bool isBlankInNumber(QChar c)
{
  return c == u' ' || c == u'\u00A0' || c == u'\u202F' || c == regionalFormat().thousandSeparator;
}

bool mayBeTyped(TypedKind kind, QChar c)
{
  switch (kind) {
    case TypedKind::Text: return true;
    case TypedKind::Integer: return c.isDigit() || c == u'-' || c == u'+' || isBlankInNumber(c);
    case TypedKind::Real: return mayBeTyped(TypedKind::Integer, c) || c == regionalFormat().decimalSeparator;
    case TypedKind::Date: return c.isDigit() || c == u'.' || c == u'/' || c == u'-';
    case TypedKind::DateTime: return mayBeTyped(TypedKind::Date, c) || c == u':' || c == u' ';
    case TypedKind::Time: return c.isDigit() || c == u':';
  }
  return true;
}

}  // namespace

TypedKind typedKind(const TField* field)
{
  if (!field || field->OnGetText || field->OnSetText) {
    return TypedKind::Text;
  }
  const DataType type = field->FieldDataType();
  if (isIntegerType(type)) {
    return TypedKind::Integer;
  }
  if (isRealType(type)) {
    return TypedKind::Real;
  }
  switch (type) {
    case DataType::Date: return TypedKind::Date;
    case DataType::DateTime:
    case DataType::TimeStamp: return TypedKind::DateTime;
    case DataType::Time: return TypedKind::Time;
    default: return TypedKind::Text;
  }
}

QValidator::State FieldValidator::validate(QString& text, int&) const
{
  const auto allowed = [this](QChar c) { return mayBeTyped(kind_, c); };
  return std::all_of(text.cbegin(), text.cend(), allowed) ? Acceptable : Invalid;
}

QString completeDate(const QString& text, QDate today)
{
  static const QRegularExpression digits(QStringLiteral("^\\d{1,2}$|^\\d{4}$|^\\d{6}$|^\\d{8}$"));
  static const QRegularExpression dayAndMonth(QStringLiteral("^(\\d{1,2})[./-](\\d{1,2})[./-]?$"));
  const QString trimmed = text.trimmed();
  const auto built = [&text](int year, int month, int day) {
    const QDate date(year, month, day);
    return date.isValid() ? dateText(date) : text;
  };
  if (const auto match = dayAndMonth.match(trimmed); match.hasMatch()) {
    return built(today.year(), match.captured(2).toInt(), match.captured(1).toInt());
  }
  if (!digits.match(trimmed).hasMatch() || (trimmed.size() == 8 && parseDate(trimmed))) {
    return text;
  }
  const int day = trimmed.left(2).toInt();
  const int month = trimmed.size() > 2 ? trimmed.mid(2, 2).toInt() : today.month();
  const int shortYear = trimmed.mid(4).toInt();
  const int year = trimmed.size() <= 4 ? today.year() : trimmed.size() == 6 ? 2000 + shortYear : shortYear;
  return built(year, month, day);
}

}  // namespace kalvor
