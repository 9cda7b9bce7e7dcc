// A field of a client dataset: the typed face on a column, for the current record.
#pragma once

#include <QStringList>
#include <functional>

#include "data/record_set.h"

namespace kalvor {

class TClientDataSet;
class TField;

// Single slots: whoever sets one takes what was there, keeps it, calls it, and puts it back.
using FieldEvent = std::function<void(TField*)>;
// displayed = true for showing, false for editing; the handler replaces the text.
using FieldGetTextEvent = std::function<void(TField*, QString& text, bool displayed)>;
using FieldSetTextEvent = std::function<void(TField*, const QString& text)>;

enum class FieldValueKind : quint8 { Data, Calculated, InternalCalculated, Lookup, Aggregate };

class KALVOR_DATA TField {
 public:
  TField(TClientDataSet* dataSet, const FieldDef& definition, FieldValueKind kind = FieldValueKind::Data);
  TField(const TField&) = delete;
  TField& operator=(const TField&) = delete;
  ~TField();

  TClientDataSet* DataSet() const { return dataSet_; }
  const QString& FieldName() const { return name_; }
  DataType FieldDataType() const { return type_; }
  FieldValueKind FieldKind() const { return kind_; }
  int Size() const { return size_; }
  int Index() const;               // position in the dataset
  void SetIndex(int position);     // moves the field; out of range goes to the end
  int column() const { return column_; }  // -1 when no column stands behind it

  // Values of the current record. Reading an inactive or empty dataset gives null. Setting needs edit or
  // insert state (else DataError); it runs OnValidate before and OnChange after, and refuses read-only
  // fields and values that do not convert or do not fit (DataError in Bulgarian that names the field).
  Variant Value() const;
  void SetValue(const Variant& value);
  QString AsString() const;         // stored text; numbers and dates as the user writes them
  void SetAsString(const QString& text);
  qint64 AsInteger() const;         // null = 0
  void SetAsInteger(qint64 value);
  double AsFloat() const;           // null = 0
  void SetAsFloat(double value);
  QDateTime AsDateTime() const;     // null = invalid
  void SetAsDateTime(const QDateTime& value);
  bool AsBoolean() const;
  bool IsNull() const;
  void Clear();                     // to null
  Variant OldValue() const;         // as the server delivered it
  Variant NewValue() const { return Value(); }
  QString DisplayText() const;      // through OnGetText, DisplayFormat
  QString EditText() const;         // through OnGetText
  void SetEditText(const QString& text);  // through OnSetText
  // The same for any record of the current view, for grids: row counts from 0. DisplayText(row) runs
  // OnGetText too, with the dataset positioned on that row for the time of the call.
  Variant ValueAt(qsizetype row) const;
  QString DisplayTextAt(qsizetype row) const;
  QString AsStringAt(qsizetype row) const;
  // "decimal comma, blank thousands, dd.MM.yyyy" unless DisplayFormat says otherwise; null = "".
  QString FormatValue(const Variant& value) const;

  QString DisplayLabel;             // caption; the field's name at first
  QString DisplayFormat;            // "#,##0.00", "0.000", "dd.MM.yyyy hh:mm" ...; empty = by type
  int DisplayWidth = 0;             // characters, 0 = by type
  QString Origin;                   // name in filters
  quint32 Tag = 0;
  bool Required = false;
  bool ReadOnly = false;
  bool Visible = true;
  bool InUpdate = true;             // the per-field update flags: part of the delta,
  bool InWhere = true;              // compared by the server to detect conflicts,
  bool InKey = false;               // part of the key
  QString Expression;               // of an aggregate, e.g. "SUM(Amount)"
  QString AggregateText() const;    // display text of an aggregate's current value

  FieldEvent OnChange;
  FieldEvent OnValidate;
  FieldGetTextEvent OnGetText;
  FieldSetTextEvent OnSetText;

 private:
  friend class TClientDataSet;
  Variant valueOf(const RecordSet& records, qsizetype row) const;
  Variant aggregate() const;
  QString textFor(bool displayed) const;

  TClientDataSet* dataSet_;
  QString name_;
  DataType type_;
  FieldValueKind kind_;
  int size_;
  int column_ = -1;
};

}  // namespace kalvor
