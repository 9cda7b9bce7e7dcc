#include "data/variant.h"

#include <QDateTime>
#include <cmath>

namespace kalvor {

namespace {

QString invariantNumber(double value)
{
  if (!std::isfinite(value))
    return {};
  if (value == 0)
    return QStringLiteral("0");
  const double size = std::fabs(value);
  const char format = size >= 1e-7 && size < 1e17 ? 'f' : 'g';
  return QString::number(value, format, QLocale::FloatingPointShortest);
}

QString textItem(const VariantArray& items, qsizetype index)
{
  return index < items.size() ? variantText(items[index]) : QString();
}

}  // namespace

bool isNull(const Variant& value)
{
  return !value.isValid() || value.typeId() == QMetaType::Nullptr;
}

QString variantText(const Variant& value)
{
  switch (value.typeId()) {
    case QMetaType::QString: return value.toString();
    case QMetaType::Bool: return value.toBool() ? QStringLiteral("1") : QStringLiteral("0");
    case QMetaType::Double:
    case QMetaType::Float: return invariantNumber(value.toDouble());
    case QMetaType::QDate: return value.toDate().toString(u"yyyyMMdd");
    case QMetaType::QTime: return value.toTime().toString(u"hh:mm:ss");
    case QMetaType::QDateTime: return value.toDateTime().toString(u"yyyyMMdd hh:mm:ss");
    case QMetaType::QByteArray: return QString::fromUtf8(value.toByteArray());
    case QMetaType::ULongLong: return QString::number(value.toULongLong());
    default: return value.canConvert<qlonglong>() ? QString::number(value.toLongLong()) : QString();
  }
}

Variant filterToVariant(const FilterArray& filter)
{
  if (filter.isEmpty())
    return {};
  VariantArray rows;
  rows.reserve(filter.size());
  for (const FilterRow& row : filter) {
    VariantArray items{row.field, row.op, row.value, row.conjunction};
    if (!row.brackets.isEmpty())
      items.append(row.brackets);
    rows.append(QVariant(items));
  }
  return rows;
}

FilterArray filterFromVariant(const Variant& value)
{
  FilterArray filter;
  const VariantArray rows = value.toList();
  filter.reserve(rows.size());
  for (const Variant& row : rows) {
    const VariantArray items = row.toList();
    filter.append({textItem(items, 0), textItem(items, 1), items.value(2), textItem(items, 3), textItem(items, 4)});
  }
  return filter;
}

Variant parametersToVariant(const ParameterArray& parameters)
{
  if (parameters.isEmpty())
    return {};
  VariantArray pairs;
  pairs.reserve(parameters.size());
  for (const NamedValue& parameter : parameters)
    pairs.append(QVariant(VariantArray{parameter.name, parameter.value}));
  return pairs;
}

ParameterArray parametersFromVariant(const Variant& value)
{
  ParameterArray parameters;
  const VariantArray pairs = value.toList();
  parameters.reserve(pairs.size());
  for (const Variant& pair : pairs) {
    const VariantArray items = pair.toList();
    parameters.append({textItem(items, 0), items.value(1)});
  }
  return parameters;
}

}  // namespace kalvor
