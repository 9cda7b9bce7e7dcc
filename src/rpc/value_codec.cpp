#include "rpc/value_codec.h"

#include <QDateTime>
#include <cmath>
#include <limits>

#include "rpc/rpc_error.h"
#include "rpc/wire_tags.h"

namespace kalvor::cbor {
namespace {

void writeTagged(Writer& out, WireTag tag, qint64 value)
{
  out.tag(tag);
  out.integer(value);
}

void writeList(Writer& out, const VariantArray& items)
{
  out.array(items.size());
  for (const Variant& item : items)
    writeValue(out, item);
}

bool writeRecords(Writer& out, const Variant& value)
{
  if (value.metaType() == QMetaType::fromType<RecordSetPtr>()) {
    if (const auto records = value.value<RecordSetPtr>())
      return writeRecordSet(out, *records), true;
  } else if (value.metaType() == QMetaType::fromType<DeltaPtr>()) {
    if (const auto delta = value.value<DeltaPtr>())
      return writeDelta(out, *delta), true;
  } else if (value.metaType() == QMetaType::fromType<DataPacketPtr>()) {
    if (const auto packet = value.value<DataPacketPtr>())
      return writeDataPacket(out, *packet), true;
  } else {
    return false;
  }
  out.null();
  return true;
}

qint64 localMilliseconds(const QDateTime& when)
{
  return (when.date().toJulianDay() - unixEpochDay) * msPerDay + when.time().msecsSinceStartOfDay();
}

QDateTime localDateTime(qint64 milliseconds)
{
  qint64 day = milliseconds / msPerDay;
  if (milliseconds % msPerDay < 0)
    --day;
  return QDateTime(QDate::fromJulianDay(day + unixEpochDay),
                   QTime::fromMSecsSinceStartOfDay(int(milliseconds - day * msPerDay)));
}

Variant wholeNumber(qint64 value)
{
  if (value >= std::numeric_limits<int>::min() && value <= std::numeric_limits<int>::max())
    return int(value);
  return qlonglong(value);
}

bool integerOf(Reader& in, const Head& head, qint64& out)
{
  if (head.value > quint64(std::numeric_limits<qint64>::max()))
    return in.fail("integer beyond 64 bits");
  out = head.major == Unsigned ? qint64(head.value) : -1 - qint64(head.value);
  return true;
}

bool readBounded(Reader& in, qint64 low, qint64 high, qint64& out)
{
  Head head;
  if (!in.head(head))
    return false;
  if (head.major != Unsigned && head.major != Negative)
    return in.fail("date or time that is no integer");
  return integerOf(in, head, out) && ((out >= low && out <= high) || in.fail("date or time out of range"));
}

bool readSimple(Reader& in, const Head& head, Variant& out)
{
  switch (head.info) {
    case 20: out = false; return true;
    case 21: out = true; return true;
    case 22: out = Variant(); return true;
    case 25:
    case 26:
    case 27: {
      const double real = realOf(head);
      out = std::isfinite(real) ? Variant(real) : Variant();
      return true;
    }
    default: return in.fail("unknown simple value");
  }
}

bool readList(Reader& in, Budget& budget, quint64 count, Variant& out)
{
  const Budget::Level level(budget, in);
  if (!level || !budget.spend(in, count))
    return false;
  VariantArray items;
  items.resize(qsizetype(count));
  for (Variant& item : items)
    if (!readValue(in, budget, item))
      return false;
  out = items;
  return true;
}

template <typename Record>
bool readShared(Reader& in, Budget& budget, bool (*read)(Reader&, Budget&, Record&), Variant& out)
{
  auto record = std::make_shared<Record>();
  if (!read(in, budget, *record))
    return false;
  out = Variant::fromValue(std::shared_ptr<const Record>(std::move(record)));
  return true;
}

bool readTagged(Reader& in, Budget& budget, quint64 tag, Variant& out)
{
  const Budget::Level level(budget, in);
  if (!level)
    return false;
  qint64 number;
  switch (tag) {
    case TagDate:
      if (!readBounded(in, firstDay - unixEpochDay, lastDay - unixEpochDay, number))
        return false;
      out = QDate::fromJulianDay(number + unixEpochDay);
      return true;
    case TagDateTime:
      if (!readBounded(in, firstMs, lastMs, number))
        return false;
      out = localDateTime(number);
      return true;
    case TagTime:
      if (!readBounded(in, 0, msPerDay - 1, number))
        return false;
      out = QTime::fromMSecsSinceStartOfDay(int(number));
      return true;
    case TagRecordSet: return readShared<RecordSet>(in, budget, readRecordSet, out);
    case TagDelta: return readShared<Delta>(in, budget, readDelta, out);
    case TagDataPacket: return readShared<DataPacket>(in, budget, readDataPacket, out);
    default: return in.fail("unknown tag");
  }
}

}  // namespace

bool Budget::spend(Reader& in, quint64 values)
{
  if (values > quint64(values_))
    return in.fail("too many values");
  values_ -= qint64(values);
  return true;
}

void writeValue(Writer& out, const Variant& value)
{
  if (isNull(value))
    return out.null();
  switch (value.typeId()) {
    case QMetaType::Bool: return out.boolean(value.toBool());
    case QMetaType::Int:
    case QMetaType::LongLong: return out.integer(value.toLongLong());
    case QMetaType::Double:
      return std::isfinite(value.toDouble()) ? out.real(value.toDouble()) : out.null();
    case QMetaType::QString: return out.text(*static_cast<const QString*>(value.constData()));
    case QMetaType::QByteArray: return out.bytes(*static_cast<const QByteArray*>(value.constData()));
    case QMetaType::QVariantList: return writeList(out, *static_cast<const QVariantList*>(value.constData()));
    case QMetaType::QDate: return writeTagged(out, TagDate, value.toDate().toJulianDay() - unixEpochDay);
    case QMetaType::QTime: return writeTagged(out, TagTime, value.toTime().msecsSinceStartOfDay());
    case QMetaType::QDateTime: return writeTagged(out, TagDateTime, localMilliseconds(value.toDateTime()));
    default:
      if (!writeRecords(out, value))
        throw RpcError(RpcError::BadArguments, QStringLiteral("Стойност от вид \"%1\" не може да бъде изпратена.")
                                                   .arg(QLatin1String(value.typeName())));
  }
}

bool readText(Reader& in, QString& out, const char* what)
{
  QByteArrayView utf8;
  if (!in.utf8(utf8, what))
    return false;
  out = QString::fromUtf8(utf8);
  return true;
}

bool readValue(Reader& in, Budget& budget, Variant& out)
{
  Head head;
  if (!in.head(head))
    return false;
  switch (head.major) {
    case Unsigned:
    case Negative: {
      qint64 number;
      if (!integerOf(in, head, number))
        return false;
      out = wholeNumber(number);
      return true;
    }
    case Bytes: out = in.take(head.value).toByteArray(); return in.ok();
    case Text: {
      const QByteArrayView utf8 = in.take(head.value);
      if (!in.ok() || !QUtf8StringView(utf8.data(), utf8.size()).isValidUtf8())
        return in.fail("text is not UTF-8");
      out = QString::fromUtf8(utf8);
      return true;
    }
    case Array: return readList(in, budget, head.value, out);
    case Map: return in.fail("a map outside a record set");
    case Tag: return readTagged(in, budget, head.value, out);
    case Simple: return readSimple(in, head, out);
  }
  return in.fail("unknown item");
}

}  // namespace kalvor::cbor
