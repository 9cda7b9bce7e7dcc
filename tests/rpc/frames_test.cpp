// Frames and plain values: every kind there and back, the bytes of one call, everything malformed refused.
#include <QDateTime>
#include <QTest>
#include <limits>

#include "rpc/frame_reader.h"
#include "rpc/rpc_error.h"
#include "rpc_tests.h"

using namespace Qt::StringLiterals;
using namespace kalvor;
using namespace kalvor::test;

class FramesTest : public QObject {
  Q_OBJECT

 private slots:
  void valueComesBack_data()
  {
    QTest::addColumn<QVariant>("value");
    QTest::newRow("null") << QVariant();
    QTest::newRow("true") << QVariant(true);
    QTest::newRow("false") << QVariant(false);
    for (const int number : {0, 1, 23, 24, 255, 256, 65535, 65536, -1, -24, -25, -256, -257,
                             std::numeric_limits<int>::max(), std::numeric_limits<int>::min()})
      QTest::addRow("int %d", number) << QVariant(number);
    for (const qlonglong number : {qlonglong(1) << 31, qlonglong(1) << 40, std::numeric_limits<qlonglong>::max(),
                                   std::numeric_limits<qlonglong>::min()})
      QTest::addRow("int64 %lld", number) << QVariant(number);
    QTest::newRow("double") << QVariant(-1234.5678);
    QTest::newRow("smallest double") << QVariant(std::numeric_limits<double>::denorm_min());
    QTest::newRow("empty text") << QVariant(u""_s);
    QTest::newRow("text") << QVariant(u"Фактура № 0000000001 – \U0001F9FE"_s);
    QTest::newRow("long text") << QVariant(QString(70000, u'Щ'));
    QTest::newRow("bytes") << QVariant(hex("00ff80"));
    QTest::newRow("date") << QVariant(QDate(2024, 2, 29));
    QTest::newRow("first date") << QVariant(QDate(1, 1, 1));
    QTest::newRow("last date") << QVariant(QDate(9999, 12, 31));
    QTest::newRow("time") << QVariant(QTime(23, 59, 59, 999));
    QTest::newRow("date-time") << QVariant(QDateTime(QDate(2024, 3, 31), QTime(3, 30)));
    // The hour that the clock skips in spring is not a moment, yet documents hold it.
    QTest::newRow("before 1970") << QVariant(QDateTime(QDate(1899, 12, 30), QTime(12, 0, 0, 1)));
    QTest::newRow("list") << QVariant(QVariantList{1, u"а"_s, QVariantList{}, QVariant()});
  }
  void valueComesBack()
  {
    QFETCH(QVariant, value);
    QString reason;
    const auto back = decodeValue(encodeValue(value), generous, &reason);
    QVERIFY2(back.has_value(), qPrintable(reason));
    QCOMPARE(back->typeId(), value.typeId());
    QCOMPARE(*back, value);
  }

  void infinityTravelsAsNull()
  {
    QCOMPARE(encodeValue(std::numeric_limits<double>::infinity()), hex("f6"));
    QCOMPARE(encodeValue(std::numeric_limits<double>::quiet_NaN()), hex("f6"));
    QCOMPARE(*decodeValue(hex("fb7ff8000000000000"), generous), QVariant());
  }

  void shortFloatsAreRead_data()
  {
    QTest::addColumn<QByteArray>("item");
    QTest::addColumn<double>("value");
    QTest::newRow("half") << hex("f93e00") << 1.5;
    QTest::newRow("negative half") << hex("f9c400") << -4.0;
    QTest::newRow("subnormal half") << hex("f90001") << 5.960464477539063e-8;
    QTest::newRow("single") << hex("fa47c35000") << 100000.0;
  }
  void shortFloatsAreRead()
  {
    QFETCH(QByteArray, item);
    QFETCH(double, value);
    QCOMPARE(decodeValue(item, generous)->toDouble(), value);
  }

  // The example of docs/protocol.md.
  void callHasTheseBytes()
  {
    const QByteArray call =
        encodeCall(7, u"GetUsersList"_s, {u"01"_s, u"1"_s, QVariant()});
    QCOMPARE(call.toHex(), QByteArray("00000017"
                                      "84"
                                      "00"
                                      "07"
                                      "6c4765745573657273"
                                      "4c697374"
                                      "83"
                                      "623031"
                                      "6131"
                                      "f6"));
    const QByteArray once = encodeCall(8, u"trStart"_s, {}, u"a1"_s);
    QCOMPARE(once.toHex(), QByteArray("0000000f" "85" "00" "08" "6774725374617274" "80" "626131"));
  }

  void callComesBack()
  {
    const VariantArray arguments{u"SUPERVSR"_s, 5, QVariant(), VariantArray{1, 2}};
    const auto call = decodeFrame(itemOf(encodeCall(9, u"LogIn"_s, arguments)), generous);
    QVERIFY(call);
    QCOMPARE(call->kind, Frame::Kind::Call);
    QCOMPARE(call->id, quint64(9));
    QCOMPARE(call->operation, u"LogIn"_s);
    QCOMPARE(call->arguments, arguments);
    QCOMPARE(call->requestId, QString());
    QCOMPARE(decodeFrame(itemOf(encodeCall(9, u"A"_s, {}, u"r-1"_s)), generous)->requestId,
             u"r-1"_s);
  }

  void answerCarriesOnlyWhatIsReturned()
  {
    const VariantArray arguments{u"in"_s, u"out"_s, u"in too"_s};
    const auto some = decodeFrame(itemOf(encodeAnswer(3, 0, arguments, 0b010)), generous);
    QVERIFY(some && !some->error);
    QCOMPARE(some->kind, Frame::Kind::Answer);
    QCOMPARE(some->arguments.size(), 2);
    QCOMPARE(some->returned, quint64(0b010));
    QCOMPARE(some->arguments[1], QVariant(u"out"_s));
    QCOMPARE(some->result, QVariant(0));
    const auto all = decodeFrame(itemOf(encodeAnswer(3, 0, arguments)), generous);
    QCOMPARE(all->arguments, arguments);
    QCOMPARE(all->returned, quint64(0b111));
    QVERIFY(decodeFrame(itemOf(encodeAnswer(3, 0, {}, 0)), generous)->arguments.isEmpty());
  }

  void errorComesBack()
  {
    const auto answer = decodeFrame(
        itemOf(encodeError(4, {RpcError::Conflict, u"Записът е променен."_s, u"I7"_s})), generous);
    QVERIFY(answer && answer->error);
    QCOMPARE(answer->error->code, int(RpcError::Conflict));
    QCOMPARE(answer->error->text, u"Записът е променен."_s);
    QCOMPARE(answer->error->incident, u"I7"_s);
  }

  void unknownKindsDoNotTravel()
  {
    QVERIFY_THROWS_EXCEPTION(RpcError, encodeValue(QVariant::fromValue(QChar(u'x'))));
  }

  void malformedIsRefused_data()
  {
    QTest::addColumn<QByteArray>("item");
    QTest::addColumn<QString>("reason");
    const auto bad = [](const char* item, const char* reason) {
      QTest::newRow(item) << hex(item) << QString::fromLatin1(reason);
    };
    bad("", "truncated");
    bad("a0", "a frame is an array");
    bad("83000000", "wrong number of frame items");
    bad("8402000000", "unknown frame kind");
    bad("8400613100", "frame id expected");
    bad("840001", "length beyond the frame");
    bad("8400010000", "operation name expected");
    bad("8400016080", "operation name empty or too long");
    bad("840001614180" "00", "bytes after the end");
    bad("840001614100", "arguments expected");
    bad("8400016141" "9841", "length beyond the frame");
    bad("8500016141" "80" "f6", "request id expected");
    bad("840001" "6141" "81" "1f", "indefinite length");
    bad("840001" "6141" "81" "1c", "reserved additional information");
    bad("840001" "6141" "81" "9fff", "indefinite length");
    bad("840001" "6141" "81" "7a7fffffff", "length beyond the frame");
    bad("840001" "6141" "81" "5bffffffffffffffff", "length beyond the frame");
    bad("840001" "6141" "81" "9b0000000000000100", "length beyond the frame");
    bad("840001" "6141" "81" "1bffffffffffffffff", "integer beyond 64 bits");
    bad("840001" "6141" "81" "3b8000000000000000", "integer beyond 64 bits");
    bad("840001" "6141" "81" "61ff", "text is not UTF-8");
    bad("840001" "6141" "81" "62c080", "text is not UTF-8");
    bad("840001" "6141" "81" "63eda080", "text is not UTF-8");
    bad("840001" "6141" "81" "a0", "a map outside a record set");
    bad("840001" "6141" "81" "f7", "unknown simple value");
    bad("840001" "6141" "81" "e0", "unknown simple value");
    bad("840001" "6141" "81" "c000", "unknown tag");
    bad("840001" "6141" "81" "d8646161", "date or time that is no integer");
    bad("840001" "6141" "81" "d8641a7fffffff", "date or time out of range");
    bad("840001" "6141" "81" "d952131a05265c00", "date or time out of range");
    bad("840101" "f6" "80", "result and arguments expected");
    bad("840101" "830a6060" "00", "an error with a result");
    bad("840101" "83006060" "f6", "error code out of range");
    bad("840101" "820a60" "f6", "error of three items expected");
  }
  void malformedIsRefused()
  {
    QFETCH(QByteArray, item);
    QFETCH(QString, reason);
    QString said;
    QVERIFY(!decodeFrame(item, generous, &said));
    QCOMPARE(said, reason);
  }

  void limitsHold()
  {
    const auto refusal = [](const QVariant& argument, const FrameLimits& limits) {
      QString reason;
      return decodeFrame(itemOf(encodeCall(1, u"A"_s, {argument})), limits, &reason) ? QString() : reason;
    };
    QCOMPARE(refusal(QString(17000, u'x'), FrameLimits::beforeLogIn()), u"frame too long"_s);
    QCOMPARE(refusal(QVariantList(5000, 1), FrameLimits::beforeLogIn()), u"too many values"_s);
    QVariant nested = 1;
    for (int depth = 0; depth < 14; ++depth)  // with the frame and its arguments: 16
      nested = QVariantList{nested};
    QCOMPARE(refusal(nested, FrameLimits::beforeLogIn()), QString());
    QCOMPARE(refusal(QVariantList{nested}, FrameLimits::beforeLogIn()), u"nested too deep"_s);
    QVERIFY_THROWS_EXCEPTION(RpcError, encodeCall(1, u"A"_s, VariantArray(65, 1)));
  }

  void readerCutsTheStream()
  {
    const QByteArray first = encodeCall(1, u"A"_s, {}), second = encodeCall(2, u"B"_s, {QString(300, u'я')});
    const QByteArray stream = first + second + first;
    for (qsizetype chunk = 1; chunk < stream.size(); chunk += 7) {
      FrameReader reader(1000);
      QList<QByteArray> items;
      for (qsizetype at = 0; at < stream.size(); at += chunk) {
        reader.append(QByteArrayView(stream).sliced(at, qMin(chunk, stream.size() - at)));
        while (const auto item = reader.next())
          items.append(item->toByteArray());
      }
      QCOMPARE(items, (QList<QByteArray>{itemOf(first).toByteArray(), itemOf(second).toByteArray(),
                                         itemOf(first).toByteArray()}));
      QCOMPARE(reader.buffered(), 0);
      QVERIFY(!reader.broken());
    }
  }

  void readerRefusesLengths()
  {
    for (const char* length : {"00000000", "000003e9", "ffffffff"}) {
      FrameReader reader(1000);
      reader.append(hex(length));
      QVERIFY(!reader.next());
      QVERIFY(reader.broken());
    }
    FrameReader reader(1000);
    reader.append(hex("000003e8"));
    QVERIFY(!reader.next() && !reader.broken());
    QCOMPARE(reader.missing(), 1000);
  }
};

int kalvor::test::runFramesTest(int argc, char** argv)
{
  FramesTest test;
  return QTest::qExec(&test, argc, argv);
}

#include "frames_test.moc"
