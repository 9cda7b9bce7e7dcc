// The values of a criterion, converted by the field's data type into the form that travels in a filter.
#include <QTime>
#include <limits>

#include "data/regional.h"
#include "filters/filter_expression.h"
#include "forms/messages.h"
#include "platform/ports.h"
#include "session/error_log.h"

namespace kalvor {
namespace {

// Converts one text after the other: an empty integer stands for the one before it.
class CriterionConverter {
 public:
  explicit CriterionConverter(DataType type) : type_(type) {}

  // False: the user was told that the text does not read. An unset result stays null.
  bool convertLeft(const QString& text, Variant& result) { return convert(text, result, true); }
  bool convertElement(const QString& text, Variant& result) { return convert(text, result, false); }

 private:
  bool convert(const QString& text, Variant& result, bool isLeft)
  {
    if (isIntegerType(type_))
      return convertInteger(text, result);
    if (isRealType(type_))
      return (isLeft && text.trimmed().isEmpty()) || convertReal(text, result);
    if (type_ == DataType::Time) {
      if (!isLeft || !text.trimmed().isEmpty())
        result = timeText(text);
      return true;
    }
    if (isDateType(type_))
      return text.trimmed().isEmpty() || convertDate(text, result);
    result = text;
    return true;
  }

  bool convertInteger(const QString& text, Variant& result)
  {
    if (!text.trimmed().isEmpty()) {
      const std::optional<qint64> value = parseInteger(text);
      if (!value || !fits(*value)) {
        showError(_err_NotIntegerValue);
        return false;
      }
      previousInteger_ = *value;
    }
    result = QString::number(previousInteger_);
    return true;
  }

  bool fits(qint64 value) const
  {
    return type_ == DataType::LargeInt || (value >= std::numeric_limits<qint32>::min() &&
                                           value <= std::numeric_limits<qint32>::max());
  }

  static bool convertReal(const QString& text, Variant& result)
  {
    const std::optional<double> value = parseNumber(text);
    if (!value) {
      showError(_err_NotFloatValue);
      return false;
    }
    result = numberText(*value).replace(regionalFormat().decimalSeparator, u'.');
    return true;
  }

  static bool convertDate(const QString& text, Variant& result)
  {
    const QString date = GenerateDate(text, true);
    if (date.isEmpty()) {
      showError(_err_NotValidDate);
      return false;
    }
    result = date;
    return true;
  }

  static QString timeText(const QString& text)
  {
    for (const char* picture : {"H:m:s", "H:m", "H"})
      if (const QTime time = QTime::fromString(text.trimmed(), QLatin1String(picture)); time.isValid())
        return time.toString(QStringLiteral("hh:mm:ss"));
    throw DataError(QStringLiteral("\"%1\" не е час").arg(text));
  }

  DataType type_;
  qint64 previousInteger_ = 0;
};

qsizetype findValueSeparator(const QString& text)
{
  for (qsizetype i = 0; i < text.size(); ++i)
    if (text.at(i) == u'|' || text.at(i) == u'&')
      return i;
  return -1;
}

}  // namespace

bool ConvertFldValues(DataType type, const QString& leftText, const QString& rightText,
                      QList<CriterionValue>& values, Variant& firstValue)
{
  return raisingLogged(QStringLiteral("uKalvorCommonUtils.ConvertFldValues"), [&] {
    values.clear();
    firstValue = Variant();
    CriterionConverter converter(type);
    if (!converter.convertLeft(leftText, firstValue))
      return false;
    QString rest = rightText;
    for (bool last = false; !last;) {
      const qsizetype separator = findValueSeparator(rest);
      last = separator < 0;
      CriterionValue element;
      if (!converter.convertElement(last ? rest : rest.left(separator), element.text))
        return false;
      if (!last) {
        element.conjunction = rest.at(separator) == u'|' ? QStringLiteral("OR") : QStringLiteral("AND");
        rest = rest.mid(separator + 1);
      }
      values.append(element);
    }
    return true;
  });
}

}  // namespace kalvor
