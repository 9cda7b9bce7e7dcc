// The texts of stored grid views.
#include "../scripted_ports.h"
#include "../several_tests.h"
#include "data/client_dataset.h"
#include "forms/grid_view.h"

using namespace kalvor;

class GridViewTest : public QObject {
  Q_OBJECT

 private slots:
  void colors_data()
  {
    QTest::addColumn<quint32>("color");
    QTest::addColumn<QString>("text");
    QTest::newRow("window") << clWindow << "clWindow";
    QTest::newRow("named") << 0x0000FFu << "clRed";
    QTest::newRow("button face") << 0xFF00000Fu << "clBtnFace";
    QTest::newRow("other") << 0x00C0A1u << "$0000C0A1";
  }
  void colors()
  {
    QFETCH(quint32, color);
    QFETCH(QString, text);
    QCOMPARE(colorToText(color), text);
    QCOMPARE(colorFromText(text.toLower()), std::optional(color));
  }
  void textsThatAreNoColor()
  {
    for (const char* text : {"", "red", "$", "$1234567890", "clWindow2"})
      QCOMPARE(colorFromText(text), std::nullopt);
    QCOMPARE(colorFromText("-16777211"), std::optional(clWindow));  // as signed numbers write it
  }

  void linesAreWrittenAsTheyAreRead()
  {
    QCOMPARE(gridViewKey("dbgMain", 3) + '=' + gridViewValue({"Name", 120, clWindow, true, ColumnAlignment::Left}),
             QString("dbgMain;3=Name;120;clWindow;-1;0;"));
    QCOMPARE(gridViewValue({"Сума", 8, 0x0000C0A1, false, ColumnAlignment::Center}), QString("Сума;8;$0000C0A1;0;2;"));
    QCOMPARE(stringGridViewValue({{"a", "b"}, 50, clWindow}), QString("a;b;;;50;clWindow;"));
    const GridViewLine line("dbgMain;3=Name;120;clWindow;True;1;");
    QCOMPARE(line.gridName(), QString("dbgMain"));
    QCOMPARE(line.position(), 3);
    QCOMPARE(line.text(0), QString("Name"));
    QCOMPARE(line.number(1), 120);
    QCOMPARE(line.color(2), clWindow);
    QVERIFY(line.flag(3));
    QCOMPARE(line.number(4), 1);
  }
  void missingPartsAreErrors()
  {
    const GridViewLine line("dbgMain=Name");
    QVERIFY_EXCEPTION_THROWN(line.position(), DataError);
    QVERIFY_EXCEPTION_THROWN(line.number(1), DataError);
    QVERIFY_EXCEPTION_THROWN(line.color(2), DataError);
    QVERIFY_EXCEPTION_THROWN(line.flag(3), DataError);
  }

  void fileNames_data()
  {
    QTest::addColumn<QString>("given");
    QTest::addColumn<QString>("file");
    QTest::newRow("other extension") << "/a/b.exe" << "/a/b.ini";
    QTest::newRow("none") << "/a.b/c" << "/a.b/c.ini";
    QTest::newRow("several") << "c.d.e" << "c.d.ini";
  }
  void fileNames()
  {
    QFETCH(QString, given);
    QTEST(gridViewFile(given), "file");
  }

  void startingWidths_data()
  {
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("width");
    QTest::addColumn<QString>("label");
    QTest::addColumn<int>("size");
    const QString longLabel(30, u'я');
    QTest::newRow("text by field") << int(DataType::String) << 25 << "Име" << 25;
    QTest::newRow("text by label") << int(DataType::String) << 5 << longLabel << 30;
    QTest::newRow("text by size") << int(DataType::String) << 0 << "Име" << 40;
    QTest::newRow("date") << int(DataType::Date) << 10 << "Дата" << 19;
    QTest::newRow("moment by label") << int(DataType::DateTime) << 10 << longLabel << 30;
    QTest::newRow("number keeps its width") << int(DataType::Integer) << 6 << longLabel << 6;
    QTest::newRow("amount keeps its width") << int(DataType::Currency) << 12 << longLabel << 12;
  }
  void startingWidths()
  {
    QFETCH(int, type);
    QFETCH(int, width);
    QFETCH(QString, label);
    const testing::FixedClock clock(QDateTime(QDate(2026, 1, 2), QTime(3, 4, 5)));
    TClientDataSet dataSet;
    FieldDef definition;
    definition.name = "F";
    definition.type = DataType(type);
    definition.size = DataType(type) == DataType::String ? 40 : 0;
    dataSet.CreateDataSet({definition});
    TField* field = dataSet.FieldByName(u"F");
    field->DisplayWidth = width;
    field->DisplayLabel = label;
    QTEST(GetColSize(field), "size");
  }
};

static const testing::RegisterTest<GridViewTest> registerGridViewTest;
#include "grid_view_test.moc"
