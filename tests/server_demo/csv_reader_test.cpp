#include "server/load/csv_reader.h"

#include "server/load/load_values.h"
#include "several_tests.h"

using namespace kalvor;
using namespace kalvor::server;

class CsvReaderTest : public QObject {
  Q_OBJECT

 private slots:
  void reads_data()
  {
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("records");  // fields joined by "|", records by "/"
    QTest::newRow("nothing") << QByteArray("") << "";
    QTest::newRow("byte order mark") << QByteArray("\xEF\xBB\xBF" "a,b\n") << "a|b";
    QTest::newRow("only the mark") << QByteArray("\xEF\xBB\xBF") << "";
    QTest::newRow("no end of line") << QByteArray("a,b\r\n1,2") << "a|b/1|2";
    QTest::newRow("empty fields") << QByteArray("a,,\n,,\n") << "a||/||";
    QTest::newRow("comma at the end of the text") << QByteArray("a,") << "a|";
    QTest::newRow("quoted comma") << QByteArray("\"a,b\",c\n") << "a,b|c";
    QTest::newRow("doubled quotes") << QByteArray("\"12\"\" tray\",\"\"\"\"\n") << "12\" tray|\"";
    QTest::newRow("empty quotes") << QByteArray("\"\",x\r\n\"\"") << "|x/";
    QTest::newRow("line break inside") << QByteArray("\"a\r\nb\",c\r\nd,e\r\n") << "a\r\nb|c/d|e";
    QTest::newRow("quote inside a plain field") << QByteArray("12\" tray,x\n") << "12\" tray|x";
    QTest::newRow("empty lines between") << QByteArray("\n\r\na,b\n\n\r\n1,2\n\n") << "a|b/1|2";
    QTest::newRow("carriage return alone") << QByteArray("a\rb,c\n") << "a\rb|c";
    QTest::newRow("Cyrillic") << QByteArray("Код,Име\n") << "Код|Име";
    QTest::newRow("blanks stay") << QByteArray(" a , b \n") << " a | b ";
  }

  void reads()
  {
    QFETCH(QByteArray, text);
    CsvReader reader(text);
    QStringList records;
    while (reader.next()) {
      QStringList fields;
      for (const std::string_view field : reader.fields()) {
        fields.append(QString::fromUtf8(field.data(), qsizetype(field.size())));
      }
      records.append(fields.join(u'|'));
    }
    QTEST(records.join(u'/'), "records");
  }

  void refuses_data()
  {
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("line");
    QTest::newRow("open quote") << QByteArray("a\n\"b\n\nc") << 2;
    QTest::newRow("text after quotes") << QByteArray("a\n\"b\nc\"d,e\n") << 3;
    QTest::newRow("a quote alone at the end") << QByteArray("a,\"") << 1;
    QTest::newRow("three quotes") << QByteArray("\"\"\"") << 1;
  }

  void refuses()
  {
    QFETCH(QByteArray, text);
    QFETCH(int, line);
    CsvReader reader(text);
    try {
      while (reader.next()) {
      }
      QFAIL("not refused");
    } catch (const CsvError& error) {
      QCOMPARE(error.line(), qint64(line));
    }
  }

  void amounts_data()
  {
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<qint64>("millionths");  // -1: no amount
    QTest::newRow("whole") << QByteArray("6") << qint64(6'000'000);
    QTest::newRow("negative") << QByteArray("-2.55") << qint64(-2'550'000);
    QTest::newRow("plus") << QByteArray("+0.000001") << qint64(1);
    QTest::newRow("rounded up") << QByteArray("0.0000005") << qint64(1);
    QTest::newRow("rounded down") << QByteArray("0.00000049999") << qint64(0);
    QTest::newRow("negative rounded away") << QByteArray("-1.0000005") << qint64(-1'000'001);
    QTest::newRow("largest") << QByteArray("9223372036854.775807") << qint64(9'223'372'036'854'775'807);
    for (const char* bad :
         {"9223372036854.775808", "1,5", "1.", ".5", "", "-", "1e3", "1 000", "0x1", "1.2.3", "NaN", "--1"}) {
      QTest::newRow(bad) << QByteArray(bad) << qint64(-1);
    }
  }

  void amounts()
  {
    QFETCH(QByteArray, text);
    const auto amount = parseAmount(std::string_view(text.constData(), size_t(text.size())));
    QTEST(amount.value_or(-1), "millionths");
  }

  void cells_data()
  {
    QTest::addColumn<DataType>("type");
    QTest::addColumn<int>("size");
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<Variant>("value");  // invalid: refused
    QTest::newRow("integer") << DataType::LargeInt << 0 << QByteArray("-12") << Variant(qlonglong(-12));
    QTest::newRow("integer with a point") << DataType::LargeInt << 0 << QByteArray("1.0") << Variant();
    QTest::newRow("too large") << DataType::LargeInt << 0 << QByteArray("9223372036854775808") << Variant();
    QTest::newRow("date") << DataType::Date << 0 << QByteArray("2024-02-29") << Variant(QDate(2024, 2, 29));
    QTest::newRow("no such day") << DataType::Date << 0 << QByteArray("2023-02-29") << Variant();
    QTest::newRow("local date") << DataType::Date << 0 << QByteArray("29.02.2024") << Variant();
    QTest::newRow("yes") << DataType::Boolean << 0 << QByteArray("1") << Variant(1);
    QTest::newRow("neither") << DataType::Boolean << 0 << QByteArray("да") << Variant();
    QTest::newRow("fits in characters") << DataType::WideString << 3 << QByteArray("фев")
                                        << Variant(QStringLiteral("фев"));
    QTest::newRow("too long") << DataType::WideString << 3 << QByteArray("февр") << Variant();
    QTest::newRow("not UTF-8") << DataType::WideString << 0 << QByteArray("\xD4\xE0\xEA\xF2") << Variant();
    QTest::newRow("NUL") << DataType::WideString << 0 << QByteArray("a\0b", 3) << Variant();
    QTest::newRow("blob") << DataType::Blob << 0 << QByteArray("x") << Variant();
  }

  void cells()
  {
    QFETCH(DataType, type);
    QFETCH(int, size);
    QFETCH(QByteArray, text);
    QFETCH(Variant, value);
    QString error;
    const ColumnInfo column{QStringLiteral("C"), type, size, false, false};
    QCOMPARE(parseCell(std::string_view(text.constData(), size_t(text.size())), column, error), value);
    QCOMPARE(error.isEmpty(), value.isValid());
  }
};

static kalvor::testing::RegisterTest<CsvReaderTest> csvReaderTest;
#include "csv_reader_test.moc"
