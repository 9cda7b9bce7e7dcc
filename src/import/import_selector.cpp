#include "import/import_selector.h"

#include "data/data_error.h"
#include "data/regional.h"
#include "filters/filter_expression.h"
#include "import/import_fields.h"
#include "import/messages.h"
#include "session/import_log.h"

namespace kalvor {
namespace {

const QString& importTextBreak()
{
  static const QString lineEnd = QStringLiteral("\r\n");
  return lineEnd;
}

int askServer(const ImportServices& services, int query, const QString& source, const QString& columns,
              const FilterArray& filter, Variant& value)
{
  return services.RequestValue(query, source, columns, filter, value, RowsWanted::First);
}

FilterArray lookupConditions(const ImportLookup& lookup, const ColumnText& column, const TImportFilter& filter)
{
  FilterArray conditions;
  if (lookup.conditions.isEmpty())
    return conditions;
  TFormatSettings settings;
  SetFormatSetting(filter, settings);
  for (const ImportCondition& condition : lookup.conditions) {
    const QString text = condition.fromColumn ? column(condition.column) : condition.literal;
    const FilterRow row{condition.field, condition.op, conditionValue(text, condition.typeCode, settings),
                        condition.conjunction, {}};
    conditions = GetAllFilter({row}, conditions);
  }
  return conditions;
}

void appendFoundCells(const ImportLookup& lookup, const Variant& data, TImportLine& line)
{
  const bool isArray = data.typeId() == QMetaType::QVariantList;
  const VariantArray values = isArray ? data.toList() : VariantArray();
  for (qsizetype i = 0; i < lookup.targetFields.size(); ++i)
    line.append(TImportCell{lookup.targetFields[i], isArray ? values.value(i) : data, lookup.isKey});
}

QString conditionCaption(int query, const QString& condition, const ImportServices& services)
{
  const QString field = condition.mid(condition.indexOf(u'.') + 1);
  const FilterArray filter{{QStringLiteral("S_FIELDLIST.SQL_ID"), QStringLiteral("="), query, QStringLiteral("AND"), {}},
                           {QStringLiteral("S_FIELDLIST.FIELDNAME"), QStringLiteral("="), field, {}, {}}};
  try {
    Variant caption;
    if (askServer(services, TableColumns, QStringLiteral("S_FIELDLIST"), QStringLiteral("CAPTION"), filter, caption) == 1)
      return variantText(caption);
  } catch (const std::exception&) {
    // The error that is being described is the one to tell.
  }
  return field;
}

QString conditionText(const Variant& value)
{
  switch (value.typeId()) {
    case QMetaType::Double: return numberText(value.toDouble());
    case QMetaType::QDateTime: return dateTimeText(value.toDateTime());
    default: return variantText(value);
  }
}

void reportLookup(const QString& message, int rowNumber, const ImportLookup& lookup, const FilterArray& conditions,
                  const ImportServices& services)
{
  QString described;
  for (const FilterRow& row : conditions)
    described += conditionCaption(lookup.query, row.field, services) + row.op + conditionText(row.value) + importTextBreak();
  if (services.LookupFailed)
    return services.LookupFailed(lookup, message, described.trimmed());
  const QString text = message + importTextBreak() + importRowNumber + QString::number(rowNumber - 1) +
                       importTextBreak() + importConditions + described;
  if (services.AddMessage)
    services.AddMessage(text);
  ImportLogError(text, QStringLiteral("ExecImportSelector"));
}

}  // namespace

bool runImportLookup(const ImportLookup& lookup, const ImportLookup* fallback, const ColumnText& column,
                     const TImportFilter& filter, TImportLine& line, int rowNumber, const ImportServices& services)
{
  FilterArray conditions;
  QString failure;
  try {
    if (!lookup.fieldsAgree)
      throw DataError(_err_SelectorDescr);
    conditions = lookupConditions(lookup, column, filter);
    Variant data;
    const int count = askServer(services, lookup.query, lookup.source, lookup.sourceFields, conditions, data);
    if (count == 1 || (count > 1 && filter.option(QStringLiteral("FORCE_SELECT")) == QString::number(lookup.query))) {
      appendFoundCells(lookup, data, line);
      return true;
    }
    if (fallback)
      return runImportLookup(*fallback, nullptr, column, filter, line, rowNumber, services);
    const bool skipRow = filter.option(QStringLiteral("SKIP_INVALID_ROWS")) == u"1";
    failure = count > 1 && !skipRow ? _err_SelectorMultiRec : _err_RecNotFound;
  } catch (const DataError& error) {
    failure = error.message();
  } catch (const std::exception& error) {
    failure = QString::fromUtf8(error.what());
  }
  reportLookup(failure, rowNumber, lookup, conditions, services);
  return false;
}

bool ExecImportSelector(const QString& description, const TImportFilter& filter, TImportLine& line, int rowNumber,
                        const QStringList& fallbacks, const ImportServices& services)
{
  const ImportLookup lookup = importLookup(description, filter, ConditionValues::Given);
  const bool hasFallback = lookup.fallback > 0 && lookup.fallback <= fallbacks.size();
  ImportLookup fallback;
  if (hasFallback)
    fallback = importLookup(fallbacks[lookup.fallback - 1], filter, ConditionValues::Given);
  return runImportLookup(lookup, hasFallback ? &fallback : nullptr, {}, filter, line, rowNumber, services);
}

}  // namespace kalvor
