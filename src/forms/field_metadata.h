// Field descriptions: what the server says of each field of a dataset, and what it does to the field.
#pragma once

#include "data/client_dataset.h"

namespace kalvor {

// Columns of a description row, in the order of delivery.
enum class FieldColumn : int {
  FieldName, Caption, FieldType, Required, Updatable, Visible, Filterable, ReadOnly, CopyField, CaptionML,
  DisplayFormat, Origin, FieldIndex, FieldFilter, DefaultValue, OptionCaption, SelectorDesc, OptionCaptionML,
  FlowFieldDescr
};
inline constexpr int fieldColumnCount = 19;

// Bits 0 to 10 of a field's tag.
enum FieldFlag : quint32 {
  ffFilterable = 1,
  ffReadOnly = 2,
  ffCopyField = 4,
  ffVisible = 8,
  ffPlain = 16,           // kind "0"
  ffOption = 32,          // "1": stores the position of an OptionCaption item
  ffLookup = 64,          // "2": has a selector even where no control shows the field
  ffControlLookup = 128,  // "3": has a selector only through a control
  ffYesNo = 256,          // "4": stored "1" and "0"
  ffSeries = 512,         // "5": numbered by a document series
  ffDate = 1024           // "7": pop-up calendar
};
inline constexpr quint32 fieldFlagMask = 0x7FF;

// One row of 19 values. Reading past a short row, or of something that is no row, gives null.
class KALVOR_RULES FieldDescription {
 public:
  FieldDescription() = default;
  explicit FieldDescription(const Variant& row);

  bool isRow() const { return isRow_; }
  Variant value(FieldColumn column) const;
  QString text(FieldColumn column) const;  // null = ""
  bool isNull(FieldColumn column) const;
  bool isOne(FieldColumn column) const { return text(column) == QLatin1String("1"); }

  QString fieldName() const { return text(FieldColumn::FieldName); }
  QString fieldType() const;               // "0" when missing
  bool isRequired() const;                 // anything but "0"; null too
  quint32 flags() const;
  // Name in filters: FieldFilter; when that is empty, Origin + "." + FieldName, empty without an Origin.
  QString filterName() const;
  QStringList options() const;             // OptionCaption at "," , as written

 private:
  VariantArray values_;
  bool isRow_ = false;
};

// The index of the description row lies in bits 16 to 23 of the tag, so a dataset has at most 256 rows.
inline constexpr int maxFieldDescriptions = 256;
constexpr quint32 DecodeFieldIndexToTag(quint32 tag, int index)
{
  return (tag & ~(0xFFu << 16)) | ((quint32(index) & 0xFFu) << 16);
}
constexpr int EncodeFieldIndexFromTag(quint32 tag) { return int((tag >> 16) & 0xFFu); }

inline bool hasFlag(const TField* field, FieldFlag flag) { return field && (field->Tag & flag) != 0; }

// The description row of a field by its tag, empty when the rows have none for it.
KALVOR_RULES FieldDescription descriptionOf(const TField* field, const VariantArray& rows);

// Applies the rows to an open dataset: captions, visibility, required, flags, formats, order, origin, the text
// conversion of option fields; makes aggregates of rows of kind "6" that name no field. Rows past the 256th do
// nothing. No field is ever made optional.
KALVOR_RULES void applyFieldDescriptions(TClientDataSet& dataSet, const VariantArray& rows);

// --- Option fields (kind "1") -----------------------------------------------------------------------------
// The option at the stored position; the stored text when that is no number or no option stands there.
KALVOR_RULES QString optionText(const QStringList& options, const QString& stored);
// The position of a text, -1 when no option reads so (case and blanks around it do not matter when nothing
// equals it exactly).
KALVOR_RULES int optionPosition(const QStringList& options, const QString& text);
// Bodies of the field's handlers. Setting the empty text gives null, an unknown one raises DataError.
KALVOR_RULES void DS_OnGetText(TField* field, const QStringList& options, QString& text);
KALVOR_RULES void DS_OnSetText(TField* field, const QStringList& options, const QString& text);

}  // namespace kalvor
