// Records by column: what a dataset keeps, what a packet carries, what a delta is made of.
#pragma once

#include <QMetaType>
#include <QStringView>
#include <memory>
#include <string_view>
#include <vector>

#include "data/data_type.h"
#include "data/variant.h"

namespace kalvor {

struct FieldDef {
  QString name;
  DataType type = DataType::Unknown;
  int size = 0;           // longest text in characters, 0 = no limit
  bool required = false;
  bool readOnly = false;
  bool updatable = true;  // false: never part of an update (an expression, a joined column)
  QString origin;         // "Table.Column" the value comes from; may be empty

  bool operator==(const FieldDef&) const = default;
};

// One typed column with its nulls. Appending never changes earlier rows; setting a text leaves the old
// characters in the arena until compact().
class KALVOR_DATA Column {
 public:
  explicit Column(StorageKind kind = StorageKind::Text);

  StorageKind kind() const { return kind_; }
  qsizetype size() const { return size_; }
  void reserve(qsizetype rows, qsizetype characters = 0);

  void appendNull();
  void appendInteger(qint64 value);
  void appendReal(double value);
  void appendText(QStringView value);
  void appendUtf8(std::string_view value);
  void appendBlob(const QByteArray& value);
  void appendFrom(const Column& other, qsizetype row);
  void appendAll(const Column& other);  // same kind; the fast way to add a packet

  bool isNull(qsizetype row) const { return (nulls_[size_t(row) >> 6] >> (row & 63)) & 1; }
  qint64 integerAt(qsizetype row) const { return integers_[size_t(row)]; }
  double realAt(qsizetype row) const { return reals_[size_t(row)]; }
  QStringView textAt(qsizetype row) const
  {
    const TextSpan s = spans_[size_t(row)];
    return QStringView(characters_.data() + s.start, qsizetype(s.length));
  }
  const QByteArray& blobAt(qsizetype row) const { return blobs_[size_t(row)]; }

  void setNull(qsizetype row);
  void setInteger(qsizetype row, qint64 value);
  void setReal(qsizetype row, double value);
  void setText(qsizetype row, QStringView value);
  void setBlob(qsizetype row, const QByteArray& value);
  void copyRow(qsizetype row, const Column& other, qsizetype otherRow);

  void truncate(qsizetype rows);  // drops the rows at the end
  void clear();
  void compact();                 // gives back the characters that no row uses
  qsizetype bytes() const;        // memory held

  struct TextSpan {
    quint32 start;
    quint32 length;
  };
  // Whole-column access for codecs and scans. Null rows hold 0, 0.0, the empty text.
  const std::vector<qint64>& integers() const { return integers_; }
  const std::vector<double>& reals() const { return reals_; }
  const std::vector<TextSpan>& spans() const { return spans_; }
  const std::vector<char16_t>& characters() const { return characters_; }
  const std::vector<quint64>& nullBits() const { return nulls_; }  // bit set = null

  // Takes over whole arrays read from the wire; sizes must agree (checked, false = refused, unchanged).
  bool adoptIntegers(std::vector<qint64> values, std::vector<quint64> nulls);
  bool adoptReals(std::vector<double> values, std::vector<quint64> nulls);
  bool adoptText(std::vector<char16_t> characters, std::vector<TextSpan> spans, std::vector<quint64> nulls);
  bool adoptBlobs(std::vector<QByteArray> values, std::vector<quint64> nulls);

 private:
  void pushNullBit(bool null);
  bool ownsText(QStringView value) const;

  StorageKind kind_;
  qsizetype size_ = 0;
  std::vector<qint64> integers_;
  std::vector<double> reals_;
  std::vector<TextSpan> spans_;
  std::vector<char16_t> characters_;
  std::vector<QByteArray> blobs_;
  std::vector<quint64> nulls_;
};

// Value of a cell as a Variant of the field's type (QString, qlonglong, double, bool, QDate, ...), and back.
KALVOR_DATA Variant cellValue(const Column& column, DataType type, qsizetype row);
// Appends or sets a Variant, converting it to the type; a value that does not convert returns false and,
// when appending, appends null.
KALVOR_DATA bool appendCell(Column& column, DataType type, const Variant& value);
KALVOR_DATA bool setCell(Column& column, DataType type, qsizetype row, const Variant& value);

struct KALVOR_DATA RecordSet {
  QList<FieldDef> fields;
  std::vector<Column> columns;  // one per field
  qsizetype rows = 0;

  RecordSet() = default;
  explicit RecordSet(QList<FieldDef> definitions);

  int indexOf(QStringView name) const;  // without regard to case, -1 when missing
  Variant value(qsizetype row, int field) const { return cellValue(columns[size_t(field)], fields[field].type, row); }
  void appendRow(const VariantArray& values);  // missing values are null
};

enum class UpdateStatus : quint8 { Unmodified, Modified, Inserted, Deleted };

// The changes of a dataset, in the order of the records' first change: one row for an inserted record (its
// values) and for a deleted one (its original values); two rows for a modified one, first the original
// marked Unmodified, then the changed values marked Modified.
struct KALVOR_DATA Delta {
  RecordSet records;
  std::vector<UpdateStatus> status;  // one per row of records
};

// One answer of a provider: records, and how to go on.
struct KALVOR_DATA DataPacket {
  RecordSet records;
  Variant continuation;  // null: this was the last packet
};

using RecordSetPtr = std::shared_ptr<const RecordSet>;
using DeltaPtr = std::shared_ptr<const Delta>;
using DataPacketPtr = std::shared_ptr<const DataPacket>;

}  // namespace kalvor

// As values inside call arguments and answers.
Q_DECLARE_METATYPE(kalvor::RecordSetPtr)
Q_DECLARE_METATYPE(kalvor::DeltaPtr)
Q_DECLARE_METATYPE(kalvor::DataPacketPtr)
