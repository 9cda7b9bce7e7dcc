#include "data/field.h"

#include <cmath>

#include "data/client_dataset_p.h"
#include "data/messages.h"
#include "data/regional.h"
#include "data/value_conversion.h"

namespace kalvor {

TField::TField(TClientDataSet* dataSet, const FieldDef& definition, FieldValueKind kind)
  : DisplayLabel(definition.name),
    Origin(definition.origin),
    Required(definition.required),
    ReadOnly(definition.readOnly),
    InUpdate(definition.updatable && kind == FieldValueKind::Data),
    InWhere(definition.updatable && kind == FieldValueKind::Data && definition.type != DataType::Blob),
    dataSet_(dataSet),
    name_(definition.name),
    type_(definition.type),
    kind_(kind),
    size_(definition.size)
{
}

TField::~TField() = default;

int TField::Index() const
{
  const auto& fields = dataSet_->d->fields;
  for (int i = 0; i < int(fields.size()); ++i)
    if (fields[size_t(i)].get() == this)
      return i;
  return -1;
}

void TField::SetIndex(int position)
{
  auto& fields = dataSet_->d->fields;
  const int from = Index();
  if (from < 0)
    return;
  const int last = int(fields.size()) - 1;
  const int to = position < 0 || position > last ? last : position;
  if (to == from)
    return;
  std::unique_ptr<TField> moved = std::move(fields[size_t(from)]);
  fields.erase(fields.begin() + from);
  fields.insert(fields.begin() + to, std::move(moved));
  dataSet_->d->notify(DataEvent::LayoutChange);
}

// --- Values ---------------------------------------------------------------------------------------------

Variant TField::valueOf(const RecordSet& records, qsizetype row) const
{
  return column_ < 0 ? Variant() : cellValue(records.columns[size_t(column_)], type_, row);
}

// Controls show it again and again: what cannot be computed has no value.
Variant TField::aggregate() const
{
  try {
    return dataSet_->AggregateValue(Expression);
  } catch (const DataError&) {
    return {};
  }
}

Variant TField::Value() const
{
  TClientDataSet::Private* d = dataSet_->d.get();
  if (d->validating == this)
    return d->validatingValue;
  if (kind_ == FieldValueKind::Aggregate)
    return dataSet_->AggregatesActive ? aggregate() : Variant();
  const RecordRef record = d->currentRecord();
  if (!record)
    return {};
  if (column_ >= 0)
    return valueOf(*record.records, record.row);
  d->ensureCalculated();
  const int column = d->calculatedColumns.value(this, -1);
  return column < 0 || d->calculated.rows == 0 ? Variant() : d->calculated.value(0, column);
}

bool TField::IsNull() const
{
  return kalvor::isNull(Value());
}

QString TField::AsString() const
{
  return userText(type_, Value());
}

qint64 TField::AsInteger() const
{
  const Variant value = Value();
  if (kalvor::isNull(value))
    return 0;
  if (value.typeId() == QMetaType::QString) {
    const QString text = value.toString().trimmed();
    if (text.isEmpty())
      return 0;
    if (const std::optional<qint64> number = parseInteger(text))
      return *number;
    return qint64(std::llround(AsFloat()));
  }
  const std::optional<Variant> number = convertedValue(DataType::LargeInt, value, TextForm::User);
  if (!number)
    throw DataError(dataMessage(errInvalidValue).arg(DisplayLabel, AsString()));
  return number->toLongLong();
}

double TField::AsFloat() const
{
  const Variant value = Value();
  if (kalvor::isNull(value))
    return 0;
  const std::optional<Variant> number = convertedValue(DataType::Float, value, TextForm::Invariant);
  if (!number)
    throw DataError(dataMessage(errInvalidValue).arg(DisplayLabel, AsString()));
  return number->toDouble();
}

QDateTime TField::AsDateTime() const
{
  const Variant value = Value();
  if (value.typeId() == QMetaType::QTime)
    return QDateTime(QDate(1899, 12, 30), value.toTime());
  const std::optional<Variant> when = convertedValue(DataType::DateTime, value, TextForm::User);
  return when ? when->toDateTime() : QDateTime();
}

bool TField::AsBoolean() const
{
  const std::optional<Variant> value = convertedValue(DataType::Boolean, Value(), TextForm::User);
  return value && value->toBool();
}

Variant TField::OldValue() const
{
  TClientDataSet::Private* d = dataSet_->d.get();
  const RowId row = d->currentRow();
  if (row == noRow || column_ < 0 || d->states[row] == RowState::Inserted)
    return {};
  const qsizetype original = d->log.originalOf(row);
  return original >= 0 ? valueOf(d->log.images(), original) : valueOf(d->store, row);
}

Variant TField::ValueAt(qsizetype row) const
{
  TClientDataSet::Private* d = dataSet_->d.get();
  const RecordRef record = d->recordOfViewRow(row);
  if (!record)
    return {};
  if (column_ >= 0)
    return valueOf(*record.records, record.row);
  const ForeignRecord positioned(d, record);
  return Value();
}

void TField::SetValue(const Variant& value)
{
  TClientDataSet::Private* d = dataSet_->d.get();
  const bool calculatedNow = d->state == DataSetState::CalcFields || d->state == DataSetState::InternalCalc;
  if (!calculatedNow && !dataSet_->IsEditing())
    throw DataError(dataMessage(dataSet_->Active() ? errNotEditing : errDataSetClosed));
  const bool writable = calculatedNow ? kind_ != FieldValueKind::Data && kind_ != FieldValueKind::Aggregate
                                      : column_ >= 0 && (!ReadOnly || d->state == DataSetState::SetKey);
  if (!writable)
    throw DataError(dataMessage(errFieldReadOnly).arg(DisplayLabel));
  const std::optional<Variant> converted = convertedValue(type_, value, TextForm::User);
  if (!converted)
    throw DataError(dataMessage(errInvalidValue).arg(DisplayLabel, userText(DataType::String, value)));
  if (size_ > 0 && isTextType(type_) && !calculatedNow) {
    const qsizetype length = converted->toString().size();
    if (length > size_)
      throw DataError(dataMessage(errTextTooLong).arg(DisplayLabel).arg(length).arg(size_));
  }
  d->storeFieldValue(this, *converted);
}

void TField::SetAsString(const QString& text)
{
  SetValue(text);
}

void TField::SetAsInteger(qint64 value)
{
  SetValue(value);
}

void TField::SetAsFloat(double value)
{
  SetValue(value);
}

void TField::SetAsDateTime(const QDateTime& value)
{
  SetValue(value.isValid() ? Variant(value) : Variant());
}

void TField::Clear()
{
  SetValue({});
}

// --- Texts ----------------------------------------------------------------------------------------------

QString TField::FormatValue(const Variant& value) const
{
  if (kalvor::isNull(value))
    return {};
  switch (value.typeId()) {
    case QMetaType::Bool: return value.toBool() ? QStringLiteral("Да") : QStringLiteral("Не");
    case QMetaType::QString:
    case QMetaType::QByteArray: return value.toString();
    case QMetaType::QDate:
    case QMetaType::QDateTime:
      return DisplayFormat.isEmpty() ? userText(type_, value) : formatDateTime(value.toDateTime(), DisplayFormat);
    case QMetaType::QTime:
      return DisplayFormat.isEmpty() ? value.toTime().toString(u"hh:mm:ss")
                                     : formatDateTime(QDateTime(QDate(2000, 1, 1), value.toTime()), DisplayFormat);
    case QMetaType::Double:
    case QMetaType::Float: {
      static const QString shortest = QStringLiteral("#,##0.###############");
      static const QString money = QStringLiteral("#,##0.00");
      const QString byType = type_ == DataType::Currency ? money : shortest;
      return formatNumber(value.toDouble(), DisplayFormat.isEmpty() ? byType : DisplayFormat);
    }
    default:
      return DisplayFormat.isEmpty() ? userText(type_, value) : formatNumber(value.toDouble(), DisplayFormat);
  }
}

QString TField::textFor(bool displayed) const
{
  const Variant value = Value();
  QString text = displayed ? FormatValue(value) : userText(type_, value);
  if (OnGetText) {
    const FieldGetTextEvent handler = OnGetText;
    handler(const_cast<TField*>(this), text, displayed);
  }
  return text;
}

QString TField::DisplayText() const
{
  return textFor(true);
}

QString TField::EditText() const
{
  return textFor(false);
}

QString TField::DisplayTextAt(qsizetype row) const
{
  TClientDataSet::Private* d = dataSet_->d.get();
  const RecordRef record = d->recordOfViewRow(row);
  if (!record)
    return {};
  const ForeignRecord positioned(d, record, row);
  return DisplayText();
}

QString TField::AsStringAt(qsizetype row) const
{
  return userText(type_, ValueAt(row));
}

void TField::SetEditText(const QString& text)
{
  if (OnSetText) {
    const FieldSetTextEvent handler = OnSetText;
    handler(this, text);
  } else {
    SetAsString(text);
  }
}

QString TField::AggregateText() const
{
  return DisplayText();
}

}  // namespace kalvor
