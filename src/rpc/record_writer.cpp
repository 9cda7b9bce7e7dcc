// Writes record sets by column: typed arrays (RFC 8746) for numbers, offsets and one byte string for texts.
#include <QtEndian>
#include <algorithm>
#include <cstring>
#include <limits>

#include "rpc/field_type_names.h"
#include "rpc/rpc_error.h"
#include "rpc/utf8_text.h"
#include "rpc/value_codec.h"
#include "rpc/wire_tags.h"

namespace kalvor::cbor {
namespace {

void writeField(Writer& out, const FieldDef& field)
{
  out.array(5);
  out.text(field.name);
  out.key(fieldTypeNames[size_t(field.type)].name);
  out.integer(qMax(0, field.size));
  out.integer(field.required * FlagRequired | field.readOnly * FlagReadOnly | field.updatable * FlagUpdatable);
  out.text(field.origin);
}

void writeNulls(Writer& out, const Column& column)
{
  const std::vector<quint64>& bits = column.nullBits();
  const qsizetype size = (column.size() + 7) / 8;
  if (std::all_of(bits.begin(), bits.end(), [](quint64 word) { return word == 0; }))
    return out.null();
  out.head(Bytes, quint64(size));
  const qsizetype position = out.room(size);
  char* to = out.at(position);
  for (qsizetype i = 0; i < size; ++i)
    to[i] = char(bits[size_t(i >> 3)] >> ((i & 7) * 8));
  if (column.size() % 8 != 0)
    to[size - 1] = char(quint8(to[size - 1]) & ((1u << (column.size() % 8)) - 1));
}

template <typename Narrow>
void writeIntegersAs(Writer& out, WireTag tag, const std::vector<qint64>& values)
{
  out.tag(tag);
  out.head(Bytes, values.size() * sizeof(Narrow));
  char* to = out.at(out.room(qsizetype(values.size() * sizeof(Narrow))));
  for (const qint64 value : values) {
    const Narrow narrow = qToLittleEndian(Narrow(value));
    std::memcpy(to, &narrow, sizeof narrow);
    to += sizeof narrow;
  }
}

template <typename Narrow>
constexpr bool holds(qint64 low, qint64 high)
{
  return low >= std::numeric_limits<Narrow>::min() && high <= std::numeric_limits<Narrow>::max();
}

void writeIntegers(Writer& out, const Column& column)
{
  const std::vector<qint64>& values = column.integers();
  qint64 low = 0, high = 0;
  for (const qint64 value : values) {
    low = std::min(low, value);
    high = std::max(high, value);
  }
  if (holds<qint8>(low, high))
    writeIntegersAs<qint8>(out, TagSint8, values);
  else if (holds<qint16>(low, high))
    writeIntegersAs<qint16>(out, TagSint16, values);
  else if (holds<qint32>(low, high))
    writeIntegersAs<qint32>(out, TagSint32, values);
  else
    writeIntegersAs<qint64>(out, TagSint64, values);
}

void writeReals(Writer& out, const Column& column)
{
  const std::vector<double>& values = column.reals();
  const qsizetype size = qsizetype(values.size() * sizeof(double));
  out.tag(TagFloat64);
  out.head(Bytes, quint64(size));
  qToLittleEndian<quint64>(values.data(), qsizetype(values.size()), out.at(out.room(size)));
}

void writeTexts(Writer& out, const Column& column)
{
  const qsizetype rows = column.size();
  qsizetype units = 0;
  for (const Column::TextSpan& span : column.spans())
    units += qsizetype(span.length);
  if (units > std::numeric_limits<quint32>::max() / 3)
    throw RpcError(RpcError::BadArguments,
                   QStringLiteral("Текстовете са твърде дълги, за да бъдат изпратени наведнъж."));
  out.array(2);
  out.tag(TagUint32);
  out.head(Bytes, quint64(rows + 1) * 4);
  const qsizetype offsets = out.room((rows + 1) * 4);
  const qsizetype start = out.beginBytes(units * 3);
  char* const texts = out.at(start);
  char* end = texts;
  char* offset = out.at(offsets);
  qToLittleEndian(quint32(0), offset);
  const char16_t* const characters = column.characters().data();
  for (const Column::TextSpan& span : column.spans()) {
    end = utf8::fromUtf16(characters + span.start, qsizetype(span.length), end);
    offset += 4;
    qToLittleEndian(quint32(end - texts), offset);
  }
  out.endBytes(start, end - texts);
}

void writeBlobs(Writer& out, const Column& column)
{
  out.array(column.size());
  for (qsizetype row = 0; row < column.size(); ++row)
    out.bytes(column.isNull(row) ? QByteArrayView() : QByteArrayView(column.blobAt(row)));
}

void writeColumn(Writer& out, const Column& column)
{
  out.array(2);
  writeNulls(out, column);
  switch (column.kind()) {
    case StorageKind::Integer: return writeIntegers(out, column);
    case StorageKind::Real: return writeReals(out, column);
    case StorageKind::Text: return writeTexts(out, column);
    case StorageKind::Blob: return writeBlobs(out, column);
  }
}

}  // namespace

void writeRecordSet(Writer& out, const RecordSet& records)
{
  out.tag(TagRecordSet);
  out.map(3);
  out.key("rows");
  out.integer(records.rows);
  out.key("fields");
  out.array(records.fields.size());
  for (const FieldDef& field : records.fields)
    writeField(out, field);
  out.key("columns");
  out.array(qsizetype(records.columns.size()));
  for (const Column& column : records.columns)
    writeColumn(out, column);
}

void writeDelta(Writer& out, const Delta& delta)
{
  out.tag(TagDelta);
  out.map(2);
  out.key("status");
  out.bytes(QByteArrayView(reinterpret_cast<const char*>(delta.status.data()), qsizetype(delta.status.size())));
  out.key("records");
  writeRecordSet(out, delta.records);
}

void writeDataPacket(Writer& out, const DataPacket& packet)
{
  out.tag(TagDataPacket);
  out.map(2);
  out.key("records");
  writeRecordSet(out, packet.records);
  out.key("continuation");
  writeValue(out, packet.continuation);
}

}  // namespace kalvor::cbor
