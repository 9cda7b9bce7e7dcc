// Reads record sets by column; sizes agree before memory is taken.
#include <QtEndian>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>

#include "rpc/field_type_names.h"
#include "rpc/utf8_text.h"
#include "rpc/value_codec.h"
#include "rpc/wire_tags.h"

namespace kalvor::cbor {
namespace {

using NullBits = std::vector<quint64>;

constexpr quint64 maxFields = 4096;

bool readType(Reader& in, DataType& out)
{
  QByteArrayView name;
  if (!in.utf8(name, "field type expected"))
    return false;
  for (const FieldTypeName& entry : fieldTypeNames)
    if (name == QByteArrayView(entry.name)) {
      out = entry.type;
      return true;
    }
  return in.fail("unknown field type");
}

bool readField(Reader& in, FieldDef& out)
{
  quint64 size, flags;
  if (!in.expectCount(Array, 5, "field of five items expected") || !readText(in, out.name, "field name expected") ||
      !readType(in, out.type) || !in.expect(Unsigned, size, "field size expected") ||
      !in.expect(Unsigned, flags, "field flags expected") || !readText(in, out.origin, "field origin expected"))
    return false;
  if (size > quint64(std::numeric_limits<int>::max()) || flags > FlagsAll)
    return in.fail("field size or flags out of range");
  out.size = int(size);
  out.required = flags & FlagRequired;
  out.readOnly = flags & FlagReadOnly;
  out.updatable = flags & FlagUpdatable;
  return true;
}

bool readNulls(Reader& in, qsizetype rows, NullBits& out)
{
  if (in.skipNull()) {
    // Fewer bits than rows never pass: the column data, checked next, has at least a byte a row.
    if (rows > in.left())
      return in.fail("column shorter than the record set");
    out.assign(size_t(rows + 63) / 64, 0);
    return true;
  }
  QByteArrayView bits;
  if (!in.bytes(bits, "null bits expected"))
    return false;
  if (bits.size() != (rows + 7) / 8)
    return in.fail("wrong number of null bits");
  if (rows % 8 != 0 && (quint8(bits.back()) >> (rows % 8)) != 0)
    return in.fail("null bits beyond the last row");
  out.assign(size_t(rows + 63) / 64, 0);
  for (qsizetype i = 0; i < bits.size(); ++i)
    out[size_t(i >> 3)] |= quint64(quint8(bits[i])) << ((i & 7) * 8);
  return true;
}

bool isSet(const NullBits& bits, size_t row)
{
  return (bits[row >> 6] >> (row & 63)) & 1;
}

// Null rows hold the empty value, so that nobody meets what lay under a null.
template <typename Value>
void clearNulls(std::vector<Value>& values, const NullBits& nulls)
{
  for (size_t word = 0; word < nulls.size(); ++word)
    for (quint64 bits = nulls[word]; bits != 0; bits &= bits - 1)
      values[word * 64 + size_t(std::countr_zero(bits))] = Value();
}

bool readArrayBytes(Reader& in, qsizetype items, qsizetype itemSize, QByteArrayView& out)
{
  return in.bytes(out, "typed array without its bytes") &&
         (out.size() == items * itemSize || in.fail("column length differs from the record set"));
}

template <typename Narrow>
bool readIntegersAs(Reader& in, qsizetype rows, std::vector<qint64>& out)
{
  QByteArrayView bytes;
  if (!readArrayBytes(in, rows, sizeof(Narrow), bytes))
    return false;
  out.resize(size_t(rows));
  const char* from = bytes.data();
  for (qint64& value : out) {
    Narrow narrow;
    std::memcpy(&narrow, from, sizeof narrow);
    value = qFromLittleEndian(narrow);
    from += sizeof narrow;
  }
  return true;
}

// Dates that text cannot hold in four digits of a year are refused.
bool checkDates(Reader& in, DataType type, const std::vector<qint64>& values, const NullBits& nulls)
{
  qint64 low, high;
  switch (type) {
    case DataType::Date: low = firstDay, high = lastDay; break;
    case DataType::Time: low = 0, high = msPerDay - 1; break;
    case DataType::DateTime:
    case DataType::TimeStamp: low = firstMs, high = lastMs; break;
    default: return true;
  }
  for (size_t row = 0; row < values.size(); ++row)
    if ((values[row] < low || values[row] > high) && !isSet(nulls, row))
      return in.fail("date or time out of range");
  return true;
}

bool readIntegers(Reader& in, qsizetype rows, DataType type, NullBits nulls, Column& out)
{
  quint64 tag;
  if (!in.expect(Tag, tag, "typed array expected"))
    return false;
  std::vector<qint64> values;
  switch (tag) {
    case TagSint8: readIntegersAs<qint8>(in, rows, values); break;
    case TagSint16: readIntegersAs<qint16>(in, rows, values); break;
    case TagSint32: readIntegersAs<qint32>(in, rows, values); break;
    case TagSint64: readIntegersAs<qint64>(in, rows, values); break;
    default: in.fail("integer column of another kind"); break;
  }
  if (!in.ok() || !checkDates(in, type, values, nulls))
    return false;
  clearNulls(values, nulls);
  return out.adoptIntegers(std::move(values), std::move(nulls)) || in.fail("column refused");
}

bool readReals(Reader& in, qsizetype rows, NullBits nulls, Column& out)
{
  QByteArrayView bytes;
  if (!in.expectTag(TagFloat64, "float column of another kind") || !readArrayBytes(in, rows, sizeof(double), bytes))
    return false;
  std::vector<double> values(static_cast<size_t>(rows));
  qFromLittleEndian<quint64>(bytes.data(), rows, values.data());
  for (size_t row = 0; row < values.size(); ++row)
    if (!std::isfinite(values[row]))
      nulls[row >> 6] |= quint64(1) << (row & 63);
  clearNulls(values, nulls);
  return out.adoptReals(std::move(values), std::move(nulls)) || in.fail("column refused");
}

bool readTexts(Reader& in, qsizetype rows, NullBits nulls, Column& out)
{
  QByteArrayView offsets, texts;
  if (!in.expectCount(Array, 2, "text column of two items expected") ||
      !in.expectTag(TagUint32, "text offsets of another kind") || !readArrayBytes(in, rows + 1, 4, offsets) ||
      !in.bytes(texts, "texts expected"))
    return false;
  std::vector<char16_t> characters(size_t(utf8::utf16Units(texts.data(), texts.size())));
  std::vector<Column::TextSpan> spans(static_cast<size_t>(rows));
  char16_t* end = characters.data();
  const char16_t* const limit = characters.data() + characters.size();
  quint32 from = qFromLittleEndian<quint32>(offsets.data());
  if (from != 0)
    return in.fail("text offsets do not begin at 0");
  for (qsizetype row = 0; row < rows; ++row) {
    const quint32 to = qFromLittleEndian<quint32>(offsets.data() + (row + 1) * 4);
    if (to < from || to > quint64(texts.size()))
      return in.fail("text offsets out of order");
    const char16_t* const start = end;
    if (!utf8::toUtf16(texts.data() + from, qsizetype(to - from), end, limit))
      return in.fail("text is not UTF-8");
    spans[size_t(row)] = {quint32(start - characters.data()), quint32(end - start)};
    from = to;
  }
  if (qsizetype(from) != texts.size())
    return in.fail("texts longer than their offsets");
  clearNulls(spans, nulls);
  return out.adoptText(std::move(characters), std::move(spans), std::move(nulls)) || in.fail("column refused");
}

bool readBlobs(Reader& in, Budget& budget, qsizetype rows, NullBits nulls, Column& out)
{
  if (!in.expectCount(Array, quint64(rows), "blob column of another length") || !budget.spend(in, quint64(rows)))
    return false;
  std::vector<QByteArray> values(static_cast<size_t>(rows));
  for (QByteArray& value : values) {
    QByteArrayView bytes;
    if (!in.bytes(bytes, "blob expected"))
      return false;
    value = bytes.toByteArray();
  }
  clearNulls(values, nulls);
  return out.adoptBlobs(std::move(values), std::move(nulls)) || in.fail("column refused");
}

bool readColumn(Reader& in, Budget& budget, qsizetype rows, DataType type, Column& out)
{
  NullBits nulls;
  if (!in.expectCount(Array, 2, "column of two items expected") || !readNulls(in, rows, nulls))
    return false;
  switch (storageOf(type)) {
    case StorageKind::Integer: return readIntegers(in, rows, type, std::move(nulls), out);
    case StorageKind::Real: return readReals(in, rows, std::move(nulls), out);
    case StorageKind::Text: return readTexts(in, rows, std::move(nulls), out);
    case StorageKind::Blob: return readBlobs(in, budget, rows, std::move(nulls), out);
  }
  return in.fail("column of an unknown kind");
}

// A modified record is its original followed by its changed values.
bool pairedStatus(const std::vector<UpdateStatus>& status)
{
  for (size_t row = 0; row < status.size(); ++row) {
    const bool afterOriginal = row > 0 && status[row - 1] == UpdateStatus::Unmodified;
    if (afterOriginal != (status[row] == UpdateStatus::Modified))
      return false;
  }
  return status.empty() || status.back() != UpdateStatus::Unmodified;
}

}  // namespace

bool readRecordSet(Reader& in, Budget& budget, RecordSet& out)
{
  const Budget::Level map(budget, in), list(budget, in), column(budget, in);
  quint64 rows, fields;
  if (!map || !list || !column || !in.expectCount(Map, 3, "record set of three keys expected") ||
      !in.expectKey("rows") || !in.expect(Unsigned, rows, "number of rows expected") || !in.expectKey("fields") ||
      !in.expect(Array, fields, "fields expected"))
    return false;
  if (rows > quint64(in.left()) || (rows > 0 && fields == 0))
    return in.fail("more rows than the frame can hold");
  if (fields > maxFields || !budget.spend(in, fields))
    return in.fail("too many fields");
  QList<FieldDef> definitions{qsizetype(fields)};
  for (FieldDef& field : definitions)
    if (!readField(in, field))
      return false;
  if (!in.expectKey("columns") || !in.expectCount(Array, fields, "one column a field expected"))
    return false;
  RecordSet records(std::move(definitions));
  for (qsizetype i = 0; i < records.fields.size(); ++i)
    if (!readColumn(in, budget, qsizetype(rows), records.fields[i].type, records.columns[size_t(i)]))
      return false;
  records.rows = qsizetype(rows);
  out = std::move(records);
  return true;
}

bool readDelta(Reader& in, Budget& budget, Delta& out)
{
  QByteArrayView status;
  const Budget::Level level(budget, in);
  if (!level || !in.expectCount(Map, 2, "delta of two keys expected") || !in.expectKey("status") ||
      !in.bytes(status, "status bytes expected") || !in.expectKey("records") ||
      !in.expectTag(TagRecordSet, "record set expected") || !readRecordSet(in, budget, out.records))
    return false;
  if (status.size() != out.records.rows)
    return in.fail("one status byte a row expected");
  out.status.reserve(size_t(status.size()));
  for (const char byte : status) {
    if (quint8(byte) > quint8(UpdateStatus::Deleted))
      return in.fail("unknown status");
    out.status.push_back(UpdateStatus(byte));
  }
  return pairedStatus(out.status) || in.fail("changed values without their original, or the reverse");
}

bool readDataPacket(Reader& in, Budget& budget, DataPacket& out)
{
  const Budget::Level level(budget, in);
  return level && in.expectCount(Map, 2, "data packet of two keys expected") && in.expectKey("records") &&
         in.expectTag(TagRecordSet, "record set expected") && readRecordSet(in, budget, out.records) &&
         in.expectKey("continuation") && readValue(in, budget, out.continuation);
}

}  // namespace kalvor::cbor
