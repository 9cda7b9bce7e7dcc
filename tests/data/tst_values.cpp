// Values: regional texts, pictures, conversions, columns.
#include "data/collation.h"
#include "data/data_tests.h"
#include "data/regional.h"

using namespace kalvor;
using namespace kalvor::test;

class TestValues : public QObject {
  Q_OBJECT

 private slots:
  void numbersByPicture_data();
  void numbersByPicture();
  void numbersAreRead_data();
  void numbersAreRead();
  void datesAreRead_data();
  void datesAreRead();
  void datesByPicture_data();
  void datesByPicture();
  void invariantText_data();
  void invariantText();
  void displayTexts_data();
  void displayTexts();
  void filterRowsTravel();
  void columnsKeepNulls();
  void textsInOrder();
};

void TestValues::numbersByPicture_data()
{
  QTest::addColumn<double>("value");
  QTest::addColumn<QString>("picture");
  QTest::addColumn<QString>("text");
  QTest::newRow("thousands") << 1234567.5 << "#,##0.00" << QStringLiteral("1\u00A0234\u00A0567,50");
  QTest::newRow("half of the decimal") << 1.005 << "0.00" << "1,01";
  QTest::newRow("half away from zero") << -2.5 << "0" << "-3";
  QTest::newRow("carries") << 999.996 << "#,##0.00" << QStringLiteral("1\u00A0000,00");
  QTest::newRow("optional digits") << 0.5 << "#.##" << ",5";
  QTest::newRow("leading zeros") << 7.0 << "000" << "007";
  QTest::newRow("no negative zero") << -0.001 << "0.00" << "0,00";
  QTest::newRow("sections") << -5.0 << "0.0;(0.0);няма" << "(5,0)";
  QTest::newRow("zero section") << 0.0 << "0.0;(0.0);няма" << QStringLiteral("няма");
  QTest::newRow("rounds to the zero section") << 0.01 << "0.0;;-" << "-";
  QTest::newRow("literals") << 3.0 << "0.00 лв." << QStringLiteral("3,00 лв.");
  QTest::newRow("quoted") << 3.0 << "0'0;x'" << "30;x";
  QTest::newRow("large") << 1e18 << "0" << "1000000000000000000";
}

void TestValues::numbersByPicture()
{
  QFETCH(double, value);
  QFETCH(QString, picture);
  QFETCH(QString, text);
  QCOMPARE(formatNumber(value, picture), text);
}

void TestValues::numbersAreRead_data()
{
  QTest::addColumn<QString>("text");
  QTest::addColumn<QVariant>("value");
  QTest::newRow("decimal comma") << "1234,5" << QVariant(1234.5);
  QTest::newRow("blanks") << " 1 234 567,25 " << QVariant(1234567.25);
  QTest::newRow("no-break blanks") << QStringLiteral("-1\u00A0234") << QVariant(-1234.0);
  QTest::newRow("wrong groups") << "12 34" << QVariant();
  QTest::newRow("blank in the fraction") << "1,5 5" << QVariant();
  QTest::newRow("point") << "1.5" << QVariant();
  QTest::newRow("only a fraction") << ",5" << QVariant(0.5);
  QTest::newRow("only a comma") << "," << QVariant();
  QTest::newRow("exponent") << "1e5" << QVariant();
  QTest::newRow("nothing") << "" << QVariant();
}

void TestValues::numbersAreRead()
{
  QFETCH(QString, text);
  QFETCH(QVariant, value);
  const std::optional<double> number = parseNumber(text);
  QCOMPARE(number ? QVariant(*number) : QVariant(), value);
  if (number)
    QCOMPARE(parseNumber(numberText(*number)), number);
}

void TestValues::datesAreRead_data()
{
  QTest::addColumn<QString>("text");
  QTest::addColumn<QDateTime>("when");
  const auto day = [](int y, int m, int d, int h = 0, int n = 0, int s = 0) {
    return QDateTime(QDate(y, m, d), QTime(h, n, s));
  };
  QTest::newRow("usual") << "31.12.2024" << day(2024, 12, 31);
  QTest::newRow("short") << "1.2.24" << day(2024, 2, 1);
  QTest::newRow("two digits are this century") << "1/2/99" << day(2099, 2, 1);
  QTest::newRow("packed") << "20240229" << day(2024, 2, 29);
  QTest::newRow("iso") << "2024-02-29T08:05:09" << day(2024, 2, 29, 8, 5, 9);
  QTest::newRow("time") << "01.02.2024 7:30" << day(2024, 2, 1, 7, 30);
  QTest::newRow("mixed separators") << "1.2/2024" << QDateTime();
  QTest::newRow("no such day") << "30.02.2024" << QDateTime();
  QTest::newRow("three-digit year") << "1.2.202" << QDateTime();
}

void TestValues::datesAreRead()
{
  QFETCH(QString, text);
  QFETCH(QDateTime, when);
  QCOMPARE(parseDateTime(text).value_or(QDateTime()), when);
}

void TestValues::datesByPicture_data()
{
  QTest::addColumn<QString>("picture");
  QTest::addColumn<QString>("text");
  QTest::newRow("minutes after hours") << "dd.mm.yyyy hh:mm:ss" << "03.02.2024 09:05:07";
  QTest::newRow("upper case") << "DD.MM.YY" << "03.02.24";
  QTest::newRow("minutes before seconds") << "mm:ss" << "05:07";
  QTest::newRow("single letters") << "d/M/yyyy h:n" << "3/2/2024 9:5";
  QTest::newRow("names") << "d mmmm yyyy" << QStringLiteral("3 февруари 2024");
  QTest::newRow("literals") << "yyyy'г.'" << QStringLiteral("2024г.");
}

void TestValues::datesByPicture()
{
  QFETCH(QString, picture);
  QFETCH(QString, text);
  QCOMPARE(formatDateTime(QDateTime(QDate(2024, 2, 3), QTime(9, 5, 7)), picture), text);
}

void TestValues::invariantText_data()
{
  QTest::addColumn<QVariant>("value");
  QTest::addColumn<QString>("text");
  QTest::newRow("null") << QVariant() << "";
  QTest::newRow("number") << QVariant(0.1) << "0.1";
  QTest::newRow("large") << QVariant(123456789012.25) << "123456789012.25";
  QTest::newRow("negative zero") << QVariant(-0.0) << "0";
  QTest::newRow("truth") << QVariant(true) << "1";
  QTest::newRow("day") << QVariant(QDate(2024, 3, 1)) << "20240301";
  QTest::newRow("moment") << QVariant(QDateTime(QDate(2024, 3, 1), QTime(1, 2, 3))) << "20240301 01:02:03";
  QTest::newRow("time") << QVariant(QTime(1, 2, 3)) << "01:02:03";
}

void TestValues::invariantText()
{
  QFETCH(QVariant, value);
  QFETCH(QString, text);
  QCOMPARE(variantText(value), text);
}

void TestValues::displayTexts_data()
{
  QTest::addColumn<DataType>("type");
  QTest::addColumn<QString>("typed");
  QTest::addColumn<QString>("format");
  QTest::addColumn<QString>("display");
  QTest::addColumn<QString>("edit");
  QTest::newRow("real") << DataType::Float << "1234,5" << "" << QStringLiteral("1\u00A0234,5") << "1234,5";
  QTest::newRow("money") << DataType::Currency << "1234,5" << "" << QStringLiteral("1\u00A0234,50") << "1234,5";
  QTest::newRow("picture") << DataType::Float << "1,255" << "0.00" << "1,26" << "1,255";
  QTest::newRow("whole") << DataType::Integer << "2 024" << "" << "2024" << "2024";
  QTest::newRow("day") << DataType::Date << "1.2.24" << "" << "01.02.2024" << "01.02.2024";
  QTest::newRow("midnight") << DataType::DateTime << "1.2.24" << "" << "01.02.2024" << "01.02.2024";
  QTest::newRow("moment") << DataType::DateTime << "1.2.24 3:04" << "dd.mm hh:nn" << "01.02 03:04"
                          << "01.02.2024 03:04:00";
  QTest::newRow("time") << DataType::Time << "3:04" << "hh:nn" << "03:04" << "03:04:00";
  QTest::newRow("truth") << DataType::Boolean << "1" << "" << QStringLiteral("Да") << "1";
  QTest::newRow("emptied") << DataType::Float << " " << "0.00" << "" << "";
}

void TestValues::displayTexts()
{
  QFETCH(DataType, type);
  QFETCH(QString, typed);
  QFETCH(QString, format);
  QFETCH(QString, display);
  QFETCH(QString, edit);
  TClientDataSet dataSet;
  dataSet.CreateDataSet({fieldDef("F", type)});
  TField* f = field(dataSet, "F");
  f->DisplayFormat = format;
  dataSet.Append();
  f->SetEditText(typed);
  QCOMPARE(f->DisplayText(), display);
  QCOMPARE(f->EditText(), edit);
  const Variant value = f->Value();
  f->SetEditText(edit);
  QCOMPARE(f->Value(), value);
  dataSet.Post();
  QCOMPARE(f->DisplayTextAt(0), display);
  f->OnGetText = [](TField* g, QString& text, bool displayed) {
    text = (displayed ? u'<' : u'{') + g->AsString() + text;
  };
  QCOMPARE(f->DisplayTextAt(0), u'<' + edit + display);
}

void TestValues::filterRowsTravel()
{
  const FilterArray filter{{"A.Id", "=", 5, "AND", "("}, {"Name", "LIKE", "%x%", "", ""}};
  const Variant wire = filterToVariant(filter);
  QCOMPARE(wire.toList()[0].toList().size(), 5);
  QCOMPARE(wire.toList()[1].toList().size(), 4);
  QCOMPARE(filterFromVariant(wire), filter);
  QVERIFY(isNull(filterToVariant({})));
  QCOMPARE(filterFromVariant(VariantArray{QVariant(VariantArray{"1", "="})}), (FilterArray{{"1", "=", {}, "", ""}}));
  const ParameterArray parameters{{"Comp_Id", 1}};
  QCOMPARE(parametersFromVariant(parametersToVariant(parameters)), parameters);
}

void TestValues::columnsKeepNulls()
{
  Column a(StorageKind::Text);
  Column b(StorageKind::Text);
  for (int i = 0; i < 131; ++i) {
    i % 3 ? a.appendText(QString::number(i)) : a.appendNull();
    i % 5 ? b.appendText(QString::number(i)) : b.appendNull();
  }
  a.appendAll(b);
  QCOMPARE(a.size(), 262);
  for (int i = 0; i < 262; ++i) {
    const bool null = i < 131 ? i % 3 == 0 : (i - 131) % 5 == 0;
    QCOMPARE(a.isNull(i), null);
    QCOMPARE(a.textAt(i).toString(), null ? QString() : QString::number(i % 131));
  }
  a.truncate(70);
  a.appendText(a.textAt(64));  // of its own characters
  a.setText(1, a.textAt(2));
  a.setNull(2);
  a.compact();
  QCOMPARE(a.textAt(70), u"64");
  QCOMPARE(a.textAt(1), u"2");
  QVERIFY(a.isNull(2) && !a.isNull(70));
  QVERIFY(!a.adoptText({u'x'}, {{0, 2}}, {0}));
  QVERIFY(!a.adoptText({u'x'}, {{0, 1}}, {}));
  QVERIFY(a.adoptText({u'x'}, {{0, 1}, {0, 1}}, {~quint64(1)}));
  QCOMPARE(a.size(), 2);
  QVERIFY(a.isNull(1) && a.textAt(1).isEmpty());
}

void TestValues::textsInOrder()
{
  const QStringList order{QString(), " а", "-1", "№ 1", "1", "10", "9", "Абв", "абВг", "абг", "ив", "йа",  "ща",
                          "ъгъл",    "ьо", "юг", "яд",  "abc", "Zoo", QStringLiteral("中")};
  for (qsizetype i = 0; i < order.size(); ++i)
    for (qsizetype j = 0; j < order.size(); ++j) {
      const int expected = i < j ? -1 : i > j ? 1 : 0;
      QVERIFY2(compareText(order[i], order[j]) == expected, qPrintable(order[i] + u'/' + order[j]));
    }
  QCOMPARE(compareText(u"СЪВЕТ", u"съвет"), 0);
  QCOMPARE(compareText(u"ѝ", u"и"), 0);
}

QTEST_GUILESS_MAIN(TestValues)
#include "tst_values.moc"
