#include "forms/field_metadata.h"

#include <iterator>

#include "forms/messages.h"
#include "session/error_log.h"

namespace kalvor {
namespace {

struct FieldKindRow {
  const char16_t* fieldType;
  quint32 flag;
};
constexpr FieldKindRow fieldKindFlags[] = {
    {u"0", ffPlain}, {u"1", ffOption}, {u"2", ffLookup}, {u"3", ffControlLookup},
    {u"4", ffYesNo}, {u"5", ffSeries}, {u"6", 0},        {u"7", ffDate},
};

struct FieldFlagRow {
  FieldColumn column;
  quint32 flag;
};
constexpr FieldFlagRow fieldColumnFlags[] = {
    {FieldColumn::Filterable, ffFilterable},
    {FieldColumn::ReadOnly, ffReadOnly},
    {FieldColumn::CopyField, ffCopyField},
    {FieldColumn::Visible, ffVisible},
};

bool takesDisplayFormat(DataType type)
{
  return isNumericType(type) || type == DataType::DateTime || type == DataType::TimeStamp;
}

void addAggregate(TClientDataSet& dataSet, const FieldDescription& row)
{
  dataSet.AggregatesActive = true;
  dataSet.AddAggregateField(row.fieldName(), row.text(FieldColumn::SelectorDesc));
}

void applyRow(TField& field, const FieldDescription& row, int index)
{
  if (!row.isNull(FieldColumn::Caption))
    field.DisplayLabel = row.text(FieldColumn::Caption);
  field.Visible = row.isOne(FieldColumn::Visible);
  if (row.isRequired())
    field.Required = true;
  const quint32 flags = row.flags();
  if (const QString format = row.text(FieldColumn::DisplayFormat);
      !format.isEmpty() && takesDisplayFormat(field.FieldDataType()))
    field.DisplayFormat = format;
  if (flags & ffOption) {
    const QStringList options = row.options();
    field.OnGetText = [options](TField* of, QString& text, bool) { DS_OnGetText(of, options, text); };
    field.OnSetText = [options](TField* of, const QString& text) { DS_OnSetText(of, options, text); };
  }
  field.SetIndex(index);
  field.Tag = DecodeFieldIndexToTag(flags, index);
  field.Origin = row.filterName();
}

}  // namespace

FieldDescription::FieldDescription(const Variant& row)
    : values_(row.typeId() == QMetaType::QVariantList ? row.toList() : VariantArray()),
      isRow_(row.typeId() == QMetaType::QVariantList)
{
}

Variant FieldDescription::value(FieldColumn column) const
{
  return values_.value(int(column));
}

QString FieldDescription::text(FieldColumn column) const
{
  return variantText(value(column));
}

bool FieldDescription::isNull(FieldColumn column) const
{
  return kalvor::isNull(value(column));
}

QString FieldDescription::fieldType() const
{
  const QString type = text(FieldColumn::FieldType);
  return type.isEmpty() ? QStringLiteral("0") : type;
}

bool FieldDescription::isRequired() const
{
  return text(FieldColumn::Required) != QLatin1String("0");
}

quint32 FieldDescription::flags() const
{
  quint32 flags = 0;
  for (const FieldFlagRow& row : fieldColumnFlags)
    if (isOne(row.column))
      flags |= row.flag;
  const QString type = fieldType();
  for (const FieldKindRow& row : fieldKindFlags)
    if (type == QStringView(row.fieldType))
      flags |= row.flag;
  return flags;
}

QString FieldDescription::filterName() const
{
  if (const QString filter = text(FieldColumn::FieldFilter); !filter.isEmpty())
    return filter;
  const QString origin = text(FieldColumn::Origin);
  return origin.isEmpty() ? QString() : origin + u'.' + fieldName();
}

QStringList FieldDescription::options() const
{
  const QString list = text(FieldColumn::OptionCaption);
  return list.isEmpty() ? QStringList() : list.split(u',');
}

FieldDescription descriptionOf(const TField* field, const VariantArray& rows)
{
  if (!field)
    return {};
  const FieldDescription row(rows.value(EncodeFieldIndexFromTag(field->Tag)));
  // A field without a row of its own carries the index 0 too.
  return row.fieldName().compare(field->FieldName(), Qt::CaseInsensitive) == 0 ? row : FieldDescription();
}

void applyFieldDescriptions(TClientDataSet& dataSet, const VariantArray& rows)
{
  const int count = int(qMin<qsizetype>(rows.size(), maxFieldDescriptions));
  for (int i = 0; i < count; ++i) {
    const FieldDescription row(rows.at(i));
    if (!row.isRow())
      continue;
    if (TField* field = dataSet.FindField(row.fieldName()))
      applyRow(*field, row, i);
    else if (row.fieldType() == QLatin1String("6"))
      addAggregate(dataSet, row);
  }
  dataSet.UpdateLayout();
}

QString optionText(const QStringList& options, const QString& stored)
{
  bool isNumber = false;
  const qlonglong position = stored.trimmed().toLongLong(&isNumber);
  return isNumber && position >= 0 && position < options.size() ? options.at(position) : stored;
}

int optionPosition(const QStringList& options, const QString& text)
{
  if (const qsizetype exact = options.indexOf(text); exact >= 0)
    return int(exact);
  for (qsizetype i = 0; i < options.size(); ++i)
    if (options.at(i).trimmed().compare(text.trimmed(), Qt::CaseInsensitive) == 0)
      return int(i);
  return -1;
}

void DS_OnGetText(TField* field, const QStringList& options, QString& text)
{
  text = field->IsNull() ? QString() : optionText(options, variantText(field->Value()));
}

void DS_OnSetText(TField* field, const QStringList& options, const QString& text)
{
  const int position = optionPosition(options, text);
  if (position >= 0)
    field->SetAsInteger(position);
  else if (text.trimmed().isEmpty())
    field->Clear();
  else
    throw DataError(withText(_err_InvalidFieldValue, field->DisplayLabel));
}

}  // namespace kalvor
