#include "forms/default_values.h"

#include "common/sql_text.h"
#include "filters/filter_macros.h"
#include "forms/field_metadata.h"
#include "platform/ports.h"

namespace kalvor {
namespace {

using MacroContext = DefaultValueContext;

Variant currentTimeFor(const TField* field)
{
  const QTime now = systemClock().now().time();
  const DataType type = field->FieldDataType();
  // A pure time in a date-time field stands on day zero.
  if (type == DataType::DateTime || type == DataType::TimeStamp)
    return QDateTime(QDate(1899, 12, 30), now);
  return now;
}

Variant currentDateFor(const TField* field)
{
  const QDate today = systemClock().today();
  const DataType type = field->FieldDataType();
  if (type == DataType::DateTime || type == DataType::TimeStamp)
    return today.startOfDay();
  return today;
}

Variant currentDateTimeFor(const TField* field)
{
  const QDateTime now = systemClock().now();
  return field->FieldDataType() == DataType::Date ? Variant(now.date()) : Variant(now);
}

std::optional<Variant> masterValue(const MacroContext& context, const QString& fieldName)
{
  const TField* field = context.master ? context.master->FindField(fieldName) : nullptr;
  return field ? std::optional<Variant>(field->Value()) : std::nullopt;
}

using MacroResult = std::optional<Variant>;

struct DefaultMacroRow {
  const char16_t* macro;
  MacroResult (*value)(const TField*, const MacroContext&);
};
constexpr DefaultMacroRow defaultMacros[] = {
    {u"<#AUTOGENERATE_ID#>", [](const TField*, const MacroContext&) -> MacroResult { return CreateUniqueID(); }},
    {u"<#CURRENTCOMPANY#>", [](const TField*, const MacroContext& c) -> MacroResult { return c.session->CompanyId; }},
    {u"<#CURRENTBGROUP#>", [](const TField*, const MacroContext& c) -> MacroResult { return c.session->BGroupId; }},
    {u"<#CURRENTUSER#>", [](const TField*, const MacroContext& c) -> MacroResult { return c.session->UserId; }},
    {u"<#CURRENTDATE#>", [](const TField* f, const MacroContext&) -> MacroResult { return currentDateFor(f); }},
    {u"<#CURRENTTIME#>", [](const TField* f, const MacroContext&) -> MacroResult { return currentTimeFor(f); }},
    {u"<#CURRENTDATETIME#>", [](const TField* f, const MacroContext&) -> MacroResult { return currentDateTimeFor(f); }},
    {u"<#MASTERID#>",
     [](const TField*, const MacroContext& c) -> MacroResult { return masterValue(c, QStringLiteral("Id")); }},
    {u"<#LOCALCURRENCY#>",
     [](const TField*, const MacroContext& c) -> MacroResult { return c.session->Currency_LCY; }},
};

const DefaultMacroRow* findDefaultMacro(const QString& text)
{
  for (const DefaultMacroRow& row : defaultMacros)
    if (text == QStringView(row.macro))
      return &row;
  return nullptr;
}

const QString masterFieldOpener = QStringLiteral("<#MasterField(");
const QString callSelectorMacro = QStringLiteral("<#CALLSELECTOR#>");

}  // namespace

std::optional<Variant> defaultMacroValue(const QString& text, const TField* field, const DefaultValueContext& context)
{
  const DefaultMacroRow* row = findDefaultMacro(text);
  return row ? row->value(field, context) : std::nullopt;
}

Variant ParseDefaultValue(const QString& text, TField* field, const DefaultValueContext& context)
{
  if (text.trimmed().isEmpty())
    return {};
  if (const DefaultMacroRow* row = findDefaultMacro(text)) {
    if (const std::optional<Variant> value = row->value(field, context))
      field->SetValue(*value);
  } else if (text == callSelectorMacro) {
    if (context.callSelector)
      context.callSelector(field);
  } else if (text.startsWith(masterFieldOpener)) {
    if (const std::optional<Variant> value = masterValue(context, macroName(text, masterFieldOpener)))
      field->SetValue(*value);
  } else {
    field->SetAsString(text);
  }
  return field->Value();
}

void applyDefaultValues(TClientDataSet& dataSet, int dsIndex, const VariantArray& descriptions,
                        const TDefaultValues& callerValues, const ParseDefault& parse,
                        const DefaultValueContext& context)
{
  for (const Variant& item : descriptions) {
    const FieldDescription row(item);
    const QString text = row.text(FieldColumn::DefaultValue);
    if (text.trimmed().isEmpty())
      continue;
    if (TField* field = dataSet.FindField(row.fieldName()))
      parse(text, field);
  }
  for (const TDefaultValue& value : callerValues) {
    TField* field = value.DsIndex == dsIndex ? dataSet.FindField(value.FieldName) : nullptr;
    if (!field)
      continue;
    const std::optional<Variant> macro = defaultMacroValue(value.Value.toString(), field, context);
    field->SetValue(macro ? *macro : value.Value);
  }
}

QString defaultValueText(const VariantArray& descriptions, int row)
{
  if (row < 0 || row >= descriptions.size())
    return {};
  return FieldDescription(descriptions.at(row)).text(FieldColumn::DefaultValue);
}

void GenerateID(TClientDataSet& dataSet)
{
  if (TField* field = dataSet.FindField(u"Id"))
    field->SetValue(CreateUniqueID());
}

}  // namespace kalvor
