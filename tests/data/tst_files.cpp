// Datasets as XML data packets.
#include <QTemporaryDir>

#include "data/data_tests.h"

using namespace kalvor;
using namespace kalvor::test;

class TestFiles : public QObject {
  Q_OBJECT

 private slots:
  void everyTypeReadsBack();
  void changesReadBack();
  void hostileFiles_data();
  void hostileFiles();
  void filesAreWritten();
};

namespace {

const char* const goodFields = "<fields><field name='Id' type='Integer'/><field name='T' type='WideString'/></fields>";

QByteArray packet(const QByteArray& rows, const QByteArray& fields = goodFields)
{
  return "<dataset version='1'>" + fields + "<rows>" + rows + "</rows></dataset>";
}

}  // namespace

void TestFiles::everyTypeReadsBack()
{
  FieldDef text = fieldDef("Full Name", DataType::WideString, 50, true);
  text.readOnly = true;
  text.updatable = false;
  text.origin = QStringLiteral("S_Items.Name<\"&'");
  RecordSet records({text, fieldDef("I", DataType::LargeInt), fieldDef("R", DataType::Float),
                     fieldDef("B", DataType::Boolean), fieldDef("D", DataType::Date), fieldDef("T", DataType::Time), fieldDef("At", DataType::TimeStamp),
                     fieldDef("X", DataType::Blob), fieldDef("M", DataType::WideMemo)});
  const QString odd = QString(QChar(0)) + QChar(0xD800) + QStringLiteral("\u0001");
  records.appendRow({QStringLiteral(" <&>\"'\r\n\t ]]> "), std::numeric_limits<qint64>::min(), 0.1, true,
                     QDate(2024, 2, 29), QTime(23, 59, 59, 999), QDateTime(QDate(2024, 2, 29), QTime(3, 30, 0, 5)),
                     QByteArray("\0\xff", 2), odd});
  records.appendRow({QString(), 0, -1e300, false, QDate(1, 1, 1), QTime(0, 0),
                     QDateTime(QDate(12345, 1, 1), QTime(0, 0)), QByteArray(""), QStringLiteral("а\U0001F600")});
  records.appendRow({});
  TClientDataSet dataSet;
  dataSet.SetRecords(records);
  const QByteArray file = dataSet.XMLData();
  TClientDataSet other;
  other.SetXMLData(file);
  QCOMPARE(other.Records().fields, records.fields);
  QCOMPARE(other.RecordCount(), 3);
  for (qsizetype row = 0; row < 3; ++row)
    for (int i = 0; i < records.fields.size(); ++i)
      QCOMPARE(other.Field(i)->ValueAt(row), dataSet.Field(i)->ValueAt(row));
  QCOMPARE(other.XMLData(), file);
  QVERIFY(field(other, "M")->IsNull() == false);
  QCOMPARE(field(other, "M")->AsString(), odd);
}

void TestFiles::changesReadBack()
{
  TClientDataSet dataSet;
  dataSet.SetRecords(itemRecords(5));
  dataSet.Last();
  dataSet.Edit();
  field(dataSet, "Name")->SetAsString(QStringLiteral("променен"));
  dataSet.Post();
  dataSet.Delete();
  dataSet.First();
  dataSet.Delete();
  dataSet.Edit();
  field(dataSet, "Amount")->Clear();
  dataSet.Post();
  dataSet.SetRecNo(2);
  dataSet.Insert();
  field(dataSet, "Id")->SetAsInteger(77);
  dataSet.Post();

  TClientDataSet other;
  other.SetXMLData(dataSet.XMLData());
  QCOMPARE(column(other, "Id"), "2|77|3|4");
  QCOMPARE(other.ChangeCount(), 4);
  const DeltaPtr a = dataSet.GetDelta();
  const DeltaPtr b = other.GetDelta();
  QCOMPARE(b->status, a->status);
  for (qsizetype row = 0; row < a->records.rows; ++row)
    for (int i = 0; i < 4; ++i)
      QCOMPARE(b->records.value(row, i), a->records.value(row, i));
  other.CancelUpdates();
  QCOMPARE(column(other, "Id"), "1|2|3|4|5");
  QCOMPARE(column(other, "Name"), column(other, "Name").replace(QStringLiteral("променен"), QString()));
}

void TestFiles::hostileFiles_data()
{
  QTest::addColumn<QByteArray>("file");
  QTest::newRow("empty") << QByteArray();
  QTest::newRow("not XML") << QByteArray("PK\x03\x04");
  QTest::newRow("another document") << QByteArray("<html/>");
  QTest::newRow("newer version") << QByteArray("<dataset version='2'/>");
  QTest::newRow("cut off") << packet("<r><c>1</c><c>а</c></r>").chopped(20);
  QTest::newRow("entities")
      << "<!DOCTYPE d [<!ENTITY a 'aaaa'><!ENTITY b '&a;&a;'>]>" + packet("<r><c>1</c><c>&b;</c></r>");
  QTest::newRow("outside file")
      << "<!DOCTYPE d [<!ENTITY a SYSTEM 'file:///etc/passwd'>]>" + packet("<r><c>1</c><c>&a;</c></r>");
  QTest::newRow("missing value") << packet("<r><c>1</c></r>");
  QTest::newRow("extra value") << packet("<r><c>1</c><c>a</c><c>b</c></r>");
  QTest::newRow("not a number") << packet("<r><c>x</c><c>a</c></r>");
  QTest::newRow("number out of range") << packet("<r><c>9999999999</c><c>a</c></r>");
  QTest::newRow("element in a value") << packet("<r><c>1</c><c><b/></c></r>");
  QTest::newRow("text between") << packet("<r>x<c>1</c><c>a</c></r>");
  QTest::newRow("text after") << packet("") + "x";
  QTest::newRow("bad base64") << packet("<r><c>1</c><c base64='1'>!!!</c></r>");
  QTest::newRow("half a character") << packet("<r><c>1</c><c base64='1'>YQ==</c></r>");
  QTest::newRow("modified without originals") << packet("<r status='Modified' change='0'><c>1</c><c>a</c></r>");
  QTest::newRow("inserted with originals")
      << packet("<r status='Inserted' change='0'><c>1</c><c>a</c><o><c>1</c><c>a</c></o></r>");
  QTest::newRow("unknown state") << packet("<r status='Lost' change='0'><c>1</c><c>a</c></r>");
  QTest::newRow("no change number") << packet("<r status='Inserted'><c>1</c><c>a</c></r>");
  QTest::newRow("no fields") << packet("", "<fields/>");
  QTest::newRow("field twice")
      << packet("", "<fields><field name='A' type='Integer'/><field name='a' type='Integer'/></fields>");
  QTest::newRow("unknown type") << packet("", "<fields><field name='A' type='Picture'/></fields>");
  QTest::newRow("negative size") << packet("", "<fields><field name='A' type='String' size='-1'/></fields>");
  QTest::newRow("no such day") << packet("<r><c>20240230</c></r>", "<fields><field name='A' type='Date'/></fields>");
  QTest::newRow("infinite") << packet("<r><c>inf</c></r>", "<fields><field name='A' type='Float'/></fields>");
}

void TestFiles::hostileFiles()
{
  QFETCH(QByteArray, file);
  TClientDataSet dataSet;
  dataSet.SetRecords(itemRecords(2));
  const QString message = messageOf([&] { dataSet.SetXMLData(file); });
  QVERIFY2(message.startsWith(QStringLiteral("Файлът с данни е невалиден: ")), qPrintable(message));
  QCOMPARE(column(dataSet, "Id"), "1|2");
}

void TestFiles::filesAreWritten()
{
  const QTemporaryDir folder;
  const QString name = folder.filePath(QStringLiteral("данни.xml"));
  TClientDataSet dataSet;
  QVERIFY_EXCEPTION_THROWN(dataSet.SaveToFile(name), DataError);
  dataSet.SetRecords(itemRecords(3));
  dataSet.SaveToFile(name);
  TClientDataSet other;
  other.LoadFromFile(name);
  QCOMPARE(column(other, "Name"), column(dataSet, "Name"));
  QVERIFY(messageOf([&] { other.LoadFromFile(name + u'x'); }).contains(QStringLiteral("не може да бъде прочетен")));
  const QString message = messageOf([&] { other.SaveToFile(name + QStringLiteral("/x")); });
  QVERIFY(message.contains(QStringLiteral("не може да бъде записан")));
}

QTEST_GUILESS_MAIN(TestFiles)
#include "tst_files.moc"
