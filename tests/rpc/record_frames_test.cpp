// Record sets, deltas and packets: there and back, cut short at every byte, and made inconsistent.
#include <QDateTime>
#include <QTest>
#include <limits>

#include "rpc/rpc_error.h"
#include "rpc_tests.h"

using namespace Qt::StringLiterals;
using namespace kalvor;
using namespace kalvor::test;

namespace {

FieldDef field(const char* name, DataType type)
{
  FieldDef definition;
  definition.name = QString::fromLatin1(name);
  definition.type = type;
  return definition;
}

RecordSet sampleRecords()
{
  QList<FieldDef> fields{field("Id", DataType::LargeInt),   field("Name", DataType::WideString),
                         field("Price", DataType::Float),   field("On", DataType::Date),
                         field("At", DataType::DateTime),   field("Time", DataType::Time),
                         field("Active", DataType::Boolean), field("Picture", DataType::Blob)};
  fields[0].required = true;
  fields[0].origin = u"N_Item.Id"_s;
  fields[1].size = 30;
  fields[4].readOnly = true;
  fields[5].updatable = false;
  RecordSet records(fields);
  records.appendRow({qlonglong(1) << 40, u"Захар, бяла 1 кг"_s, 2.35, QDate(2024, 1, 31),
                     QDateTime(QDate(2024, 1, 31), QTime(10, 20, 30)), QTime(8, 0), true, hex("0001ff")});
  records.appendRow({});
  records.appendRow({-3, u"Bank \U0001F3E6 ‰ и още"_s, -0.0, QDate(1, 1, 1),
                     QDateTime(QDate(1999, 12, 31), QTime(23, 59, 59, 999)), QTime(0, 0), false, QByteArray("")});
  records.appendRow(
      {7, u""_s, 1e300, QDate(9999, 12, 31), QVariant(), QTime(23, 59, 59, 999), QVariant(), QVariant()});
  return records;
}

QVariant shared(RecordSet records)
{
  return QVariant::fromValue(RecordSetPtr(std::make_shared<RecordSet>(std::move(records))));
}

RecordSetPtr backFrom(const QVariant& value)
{
  QString reason;
  const auto back = decodeValue(encodeValue(value), generous, &reason);
  if (!back)
    qWarning("%s", qPrintable(reason));
  return back ? back->value<RecordSetPtr>() : nullptr;
}

void compareRecords(const RecordSet& left, const RecordSet& right)
{
  QCOMPARE(left.fields, right.fields);
  QCOMPARE(left.rows, right.rows);
  for (int field = 0; field < left.fields.size(); ++field)
    for (qsizetype row = 0; row < left.rows; ++row)
      QCOMPARE(left.value(row, field), right.value(row, field));
}

RecordSet integerRecords(DataType type, std::initializer_list<qint64> values)
{
  RecordSet records(QList<FieldDef>{field("A", type)});
  for (const qint64 value : values)
    records.columns[0].appendInteger(value);
  records.rows = qsizetype(values.size());
  return records;
}

// A record set of one column; the bytes after "columns".
QByteArray oneColumn(const char* rows, const char* typeHex, const char* columnHex)
{
  return hex("d95214" "a3" "64726f7773") + hex(rows) + hex("666669656c6473" "81" "85" "6141") + hex(typeHex) +
         hex("00" "04" "60" "67636f6c756d6e73" "81") + hex(columnHex);
}

constexpr const char* wideString = "6a57696465537472696e67";
constexpr const char* integerType = "67496e7465676572";
constexpr const char* dateType = "6444617465";
constexpr const char* floatType = "65466c6f6174";
constexpr const char* blobType = "64426c6f62";

}  // namespace

class RecordFramesTest : public QObject {
  Q_OBJECT

 private slots:
  void recordsComeBack()
  {
    const RecordSetPtr back = backFrom(shared(sampleRecords()));
    QVERIFY(back);
    compareRecords(*back, sampleRecords());
    QVERIFY(back->columns[0].isNull(1) && !back->columns[1].isNull(3));
    QVERIFY(backFrom(shared(RecordSet())) != nullptr);
    QCOMPARE(backFrom(shared(RecordSet(sampleRecords().fields)))->fields.size(), 8);
  }

  void integersTakeTheSmallestWidth_data()
  {
    QTest::addColumn<qint64>("value");
    QTest::addColumn<int>("tag");
    QTest::newRow("0") << qint64(0) << 72;
    QTest::newRow("-128") << qint64(-128) << 72;
    QTest::newRow("128") << qint64(128) << 77;
    QTest::newRow("-32769") << qint64(-32769) << 78;
    QTest::newRow("2^31") << (qint64(1) << 31) << 79;
    QTest::newRow("lowest") << std::numeric_limits<qint64>::min() << 79;
  }
  void integersTakeTheSmallestWidth()
  {
    QFETCH(qint64, value);
    QFETCH(int, tag);
    const QVariant records = shared(integerRecords(DataType::LargeInt, {1, value, -1}));
    const QByteArray item = encodeValue(records);
    QVERIFY(item.contains(QByteArray("\xd8") + char(tag)));
    QCOMPARE(backFrom(records)->columns[0].integerAt(1), value);
  }

  // Runs of ASCII and Cyrillic take another way than single characters; both must meet at every offset.
  void textsOfEveryShapeComeBack()
  {
    RecordSet records(QList<FieldDef>{field("A", DataType::WideString)});
    QStringList texts;
    const QStringList parts{u"a"_s, u"я"_s, u"€"_s, u"\U0001F9FE"_s, QString(QChar(0x80)), QString(QChar(0x7ff))};
    for (int length = 0; length < 40; ++length)
      for (const QString& filler : {u"x"_s, u"Ж"_s})
        for (const QString& part : parts)
          texts << filler.repeated(length) + part + filler.repeated(length % 9);
    for (const QString& text : texts)
      records.appendRow({text});
    const RecordSetPtr back = backFrom(shared(records));
    for (qsizetype row = 0; row < texts.size(); ++row)
      QCOMPARE(back->columns[0].textAt(row).toString(), texts[row]);
  }

  void emptyTextsAndNullsAloneComeBack()
  {
    RecordSet records(
        QList<FieldDef>{field("A", DataType::WideString), field("B", DataType::Blob), field("C", DataType::Memo)});
    records.appendRow({u""_s, QByteArray(""), QVariant()});
    records.appendRow({u""_s, QByteArray(""), QVariant()});
    const RecordSetPtr back = backFrom(shared(records));
    QVERIFY(back);
    compareRecords(*back, records);
    QVERIFY(!back->columns[0].isNull(1) && back->columns[2].isNull(1));
  }

  void loneSurrogateBecomesAReplacement()
  {
    RecordSet records(QList<FieldDef>{field("A", DataType::WideString)});
    records.appendRow({QString(u'a') + QChar(0xd83e)});
    records.appendRow({QString(QChar(0xdc00)) + u'b'});
    const RecordSetPtr back = backFrom(shared(records));
    QCOMPARE(back->columns[0].textAt(0).toString(), u"a\ufffd"_s);
    QCOMPARE(back->columns[0].textAt(1).toString(), u"\ufffd" u"b"_s);
  }

  void realsThatAreNotFiniteArriveAsNull()
  {
    RecordSet records(QList<FieldDef>{field("A", DataType::Float)});
    for (const double value : {1.5, std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()})
      records.columns[0].appendReal(value);
    records.rows = 3;
    const RecordSetPtr back = backFrom(shared(records));
    QVERIFY(!back->columns[0].isNull(0) && back->columns[0].isNull(1) && back->columns[0].isNull(2));
    QCOMPARE(back->columns[0].realAt(1), 0.0);
  }

  void nothingIsLeftUnderANull()
  {
    const auto back = decodeValue(oneColumn("02", integerType, "82" "4102" "d848" "420705"), generous);
    QVERIFY(back);
    const Column& column = back->value<RecordSetPtr>()->columns[0];
    QVERIFY(!column.isNull(0) && column.isNull(1));
    QCOMPARE(column.integerAt(0), 7);
    QCOMPARE(column.integerAt(1), 0);
  }

  void deltaComesBack()
  {
    Delta delta;
    delta.records = sampleRecords();
    delta.status = {UpdateStatus::Inserted, UpdateStatus::Unmodified, UpdateStatus::Modified, UpdateStatus::Deleted};
    const auto back =
        decodeValue(encodeValue(QVariant::fromValue(DeltaPtr(std::make_shared<Delta>(delta)))), generous);
    QVERIFY(back && back->value<DeltaPtr>());
    QCOMPARE(back->value<DeltaPtr>()->status, delta.status);
    compareRecords(back->value<DeltaPtr>()->records, delta.records);
  }

  void unpairedDeltaIsRefused_data()
  {
    QTest::addColumn<QByteArray>("status");
    QTest::newRow("changed values alone") << hex("01020202");
    QTest::newRow("original last") << hex("02020200");
    QTest::newRow("original without change") << hex("00020202");
    QTest::newRow("two originals") << hex("00000102");
    QTest::newRow("unknown status") << hex("02020204");
    QTest::newRow("too few") << hex("020202");
  }
  void unpairedDeltaIsRefused()
  {
    QFETCH(QByteArray, status);
    const QByteArray records = encodeValue(shared(sampleRecords()));
    const auto delta = [&](const QByteArray& bytes) {
      return hex("d95215" "a2" "66737461747573") + encodeValue(bytes) + hex("677265636f726473") + records;
    };
    QVERIFY(decodeValue(delta(hex("02000103")), generous));
    QVERIFY(!decodeValue(delta(status), generous));
  }

  void packetComesBack()
  {
    DataPacket packet{sampleRecords(), VariantArray{u"0017"_s, 3}};
    const auto back =
        decodeValue(encodeValue(QVariant::fromValue(DataPacketPtr(std::make_shared<DataPacket>(packet)))), generous);
    QVERIFY(back && back->value<DataPacketPtr>());
    QCOMPARE(back->value<DataPacketPtr>()->continuation, packet.continuation);
    compareRecords(back->value<DataPacketPtr>()->records, packet.records);
  }

  void truncatedAnywhereIsRefused()
  {
    DataPacket packet{sampleRecords(), QVariant()};
    const QByteArray frame =
        encodeAnswer(1, QVariant::fromValue(DataPacketPtr(std::make_shared<DataPacket>(packet))), {QDate(2024, 1, 1)});
    const QByteArrayView item = itemOf(frame);
    QVERIFY(decodeFrame(item, generous));
    for (qsizetype size = 0; size < item.size(); ++size)
      QVERIFY2(!decodeFrame(item.first(size), generous), qPrintable(QString::number(size)));
  }

  // No byte of a frame may make the reader crash, hang or take memory that the frame does not pay for.
  void changedBytesNeverCrash()
  {
    DataPacket packet{sampleRecords(), 5};
    const QByteArray frame =
        encodeAnswer(1, QVariant::fromValue(DataPacketPtr(std::make_shared<DataPacket>(packet))), {});
    int accepted = 0;
    for (qsizetype at = 4; at < frame.size(); ++at)
      for (const int change : {0x01, 0x20, 0x80, 0xff}) {
        QByteArray changed = frame;
        changed[at] = char(changed[at] ^ change);
        accepted += decodeFrame(itemOf(changed), generous).has_value();
      }
    QVERIFY(accepted > 0);  // changed characters and amounts are still values
  }

  void inconsistentRecordsAreRefused_data()
  {
    QTest::addColumn<QByteArray>("item");
    QTest::addColumn<QString>("reason");
    const auto bad = [](const char* name, const QByteArray& item, const char* reason) {
      QTest::newRow(name) << item << QString::fromLatin1(reason);
    };
    bad("rows beyond the frame", oneColumn("1a7fffffff", integerType, "82f6d84840"),
        "more rows than the frame can hold");
    bad("rows without fields", hex("d95214a364726f77730166666965 6c64738067636f6c756d6e7380"),
        "more rows than the frame can hold");
    bad("short column", oneColumn("02", integerType, "82f6d8484107"), "column length differs from the record set");
    bad("uneven column", oneColumn("02", integerType, "82f6d84d43070000"),
        "column length differs from the record set");
    bad("real as integer", oneColumn("01", floatType, "82f6d8484107"), "float column of another kind");
    bad("integer as real", oneColumn("01", integerType, "82f6d856480000000000000000"),
        "integer column of another kind");
    bad("few null bits", oneColumn("09", integerType, "824101d84849000000000000000000"), "wrong number of null bits");
    bad("null bits behind", oneColumn("02", integerType, "824104d848420000"), "null bits beyond the last row");
    bad("unknown type", oneColumn("00", "6158", "82f6d84840"), "unknown field type");
    bad("date out of range", oneColumn("01", dateType, "82f6d8484105"), "date or time out of range");
    bad("offsets from 1",
        oneColumn("01", wideString,
                  "82f682d846480100000001000000"
                  "4161"),
        "text offsets do not begin at 0");
    bad("offsets back",
        oneColumn("02", wideString,
                  "82f682d8464c000000000200000001000000"
                  "426162"),
        "text offsets out of order");
    bad("offset beyond",
        oneColumn("01", wideString,
                  "82f682d846480000000003000000"
                  "426162"),
        "text offsets out of order");
    bad("texts unused",
        oneColumn("01", wideString,
                  "82f682d846480000000001000000"
                  "426162"),
        "texts longer than their offsets");
    bad("character cut",
        oneColumn("02", wideString,
                  "82f682d8464c000000000100000002000000"
                  "42d0af"),
        "text is not UTF-8");
    bad("no UTF-8 in a run",
        oneColumn("01", wideString,
                  "82f682d846480000000008000000"
                  "48c080c080c080c080"),
        "text is not UTF-8");
    bad("few blobs", oneColumn("02", blobType, "82f6814100"), "blob column of another length");
    bad("missing key", hex("d95214a264726f777300"), "record set of three keys expected");
    bad("other key", hex("d95214a364726f7778"), "unexpected map key");
  }
  void inconsistentRecordsAreRefused()
  {
    QFETCH(QByteArray, item);
    QFETCH(QString, reason);
    QString said;
    QVERIFY(!decodeValue(item, generous, &said));
    QCOMPARE(said, reason);
  }
};

int kalvor::test::runRecordFramesTest(int argc, char** argv)
{
  RecordFramesTest test;
  return QTest::qExec(&test, argc, argv);
}

#include "record_frames_test.moc"
