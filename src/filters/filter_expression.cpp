// One field's criterion text into the rows of a filter.
#include "filters/filter_expression.h"

#include "forms/messages.h"
#include "session/error_log.h"

namespace kalvor {
namespace {

const QString andConjunction = QStringLiteral("AND");
const QString orConjunction = QStringLiteral("OR");

struct FoundOperator {
  qsizetype position = -1;
  QString text;
};

QString operatorAt(const QString& text, qsizetype position)
{
  const QChar first = text.at(position);
  const QChar second = position + 1 < text.size() ? text.at(position + 1) : QChar();
  const bool twoCharacters = (first == u'<' && (second == u'>' || second == u'=')) || (first == u'>' && second == u'=');
  return text.mid(position, twoCharacters ? 2 : 1);
}

FoundOperator findOperator(const QString& text)
{
  for (qsizetype i = 0; i < text.size(); ++i) {
    if (SetSimbol(text.at(i)) != sbNotSimbol)
      return {i, operatorAt(text, i)};
    if (text.at(i) == u'.' && i + 1 < text.size() && text.at(i + 1) == u'.')
      return {i, QStringLiteral("..")};
  }
  return {};
}

bool isPattern(const QString& op) { return op == QLatin1String("*") || op == QLatin1String("%"); }

// The rows of one criterion, built value by value.
class CriterionRows {
 public:
  CriterionRows(const QString& name, const QString& op, const QString& leftText, const Variant& firstValue)
      : name_(name), op_(op), hasLeft_(!leftText.isEmpty()), firstValue_(firstValue)
  {
  }

  // False: no further value is used.
  bool add(const CriterionValue& value)
  {
    const QString text = variantText(value.text);
    if (text.trimmed().isEmpty()) {
      addEmpty(value.conjunction);
      return false;
    }
    if (isPattern(op_)) {
      addRow(QStringLiteral("LIKE"), text, value.conjunction);
      return false;
    }
    if (op_ == QLatin1String("..")) {
      addLowerBound(andConjunction);
      addRow(QStringLiteral("<="), text, value.conjunction);
    } else if (hasLeft_) {
      addRow(op_, firstValue_, QString());
    } else {
      addRow(op_, text, value.conjunction);
    }
    return true;
  }

  const FilterArray& rows() const { return rows_; }

 private:
  void addRow(const QString& op, const Variant& value, const QString& conjunction, const QString& brackets = {})
  {
    rows_.append(FilterRow{name_, op, value, conjunction, brackets});
  }

  void addLowerBound(const QString& conjunction)
  {
    // Integers and texts read a missing bound as a value; of a real number or a date nothing remains to compare.
    if (!kalvor::isNull(firstValue_))
      addRow(QStringLiteral(">="), firstValue_, conjunction);
  }

  void addEmpty(const QString& conjunction)
  {
    if (op_ == QLatin1String("..")) {
      addLowerBound(conjunction);
    } else if (op_ == QLatin1String("=")) {
      addRow(op_, QString(), orConjunction, QStringLiteral("("));
      addRow(QStringLiteral("is"), QStringLiteral("null"), conjunction, QStringLiteral(")"));
    } else {
      addRow(isPattern(op_) ? QStringLiteral("LIKE") : op_, QString(), andConjunction, QStringLiteral("("));
      addRow(QStringLiteral("is not "), QStringLiteral("null"), conjunction, QStringLiteral(")"));
    }
  }

  QString name_;
  QString op_;
  bool hasLeft_;
  Variant firstValue_;
  FilterArray rows_;
};

QString filterNameOf(const TField* field, const QString& fieldName)
{
  if (!field)
    return fieldName;
  return field->Origin.isEmpty() ? field->FieldName() : field->Origin;
}

}  // namespace

TSimbol SetSimbol(const QString& text)
{
  if (text == QLatin1String("="))
    return sbEqual;
  if (text == QLatin1String("<"))
    return sbLess;
  return text == QLatin1String(">") ? sbGreater : sbNotSimbol;
}

void PreparateFilterString(const QString& text, QString& leftText, QString& rightText, QString& op)
{
  raisingLogged(QStringLiteral("uKalvorCommonUtils.PreparateFilterString"), [&] {
    const FoundOperator found = findOperator(text);
    if (found.position >= 0) {
      leftText = text.left(found.position);
      rightText = text.mid(found.position + found.text.size());
      op = found.text;
      return;
    }
    leftText.clear();
    rightText = text;
    if (!text.contains(u'*') && !text.contains(u'%')) {
      op = QStringLiteral("=");
      return;
    }
    op = QStringLiteral("*");
    if (const qsizetype star = rightText.indexOf(u'*'); star >= 0)
      rightText[star] = u'%';
  });
}

bool BuildFilter(const TField* field, const QString& criterionText, const QString& fieldName, FilterArray& filter)
{
  return raisingLogged(QStringLiteral("uKalvorCommonUtils.BuildFilter"), [&] {
    const DataType type = field ? field->FieldDataType() : DataType::String;
    QString leftText, rightText, op;
    PreparateFilterString(criterionText, leftText, rightText, op);
    QList<CriterionValue> values;
    Variant firstValue;
    if (!ConvertFldValues(type, leftText, rightText, values, firstValue))
      return false;
    CriterionRows rows(filterNameOf(field, fieldName), op, leftText, firstValue);
    for (const CriterionValue& value : values) {
      if (kalvor::isNull(value.text))
        throw DataError(_err_NotValidDate);
      if (!rows.add(value))
        break;
    }
    filter = rows.rows();
    return true;
  });
}

}  // namespace kalvor
