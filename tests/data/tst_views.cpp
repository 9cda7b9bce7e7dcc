// Filters, orders, ranges, keys.
#include "data/data_tests.h"

using namespace kalvor;
using namespace kalvor::test;

class TestViews : public QObject {
  Q_OBJECT

 private slots:
  void filters_data();
  void filters();
  void wrongFilters_data();
  void wrongFilters();
  void containsScansWholeArenas();
  void filterFollowsEdits();
  void filterEventDecides();
  void orders_data();
  void orders();
  void orderFollowsEdits();
  void keysAreFound();
  void rangesCut();
  void locate_data();
  void locate();
};

void TestViews::filters_data()
{
  QTest::addColumn<QString>("filter");
  QTest::addColumn<QString>("ids");
  const auto row = [](const char* filter, const char* ids) {
    QTest::newRow(filter) << QString::fromUtf8(filter) << ids;
  };
  row("", "1|2|3|4|5");
  row("Id = 2", "2");
  row("Id = '2'", "2");
  row("2 <= id", "2|3|4|5");
  row("Id > 2.5", "3|4|5");
  row("Id < -1", "");
  row("Име = 'АННА'", "2");
  row("Име <> 'анна'", "1|3|4");
  row("Име > 'и'", "1|3|4");
  row("Име = NULL", "5");
  row("Име <> null", "1|2|3|4");
  row("Amount IS NULL", "2|5");
  row("Amount IS NOT NULL AND Id < 4", "1|3");
  row("NOT (Amount = 10.5)", "3");
  row("NOT (Amount = 10.5 OR Amount IS NULL)", "3");
  row("NOT NOT Id = 1", "1");
  row("Id = 1 OR Id = 2 AND Amount = 1", "1");
  row("(Id = 1 OR Id = 2) AND Amount IS NULL", "2");
  row("NOT Id = 1 AND NOT Id = 2", "3|4|5");
  row("Day = '15.01.2024'", "1");
  row("Day >= '20240101' and Day < '01.02.2024'", "1");
  row("At < '15.01.2024'", "4");
  row("At = '20240115 10:00:00'", "1");
  row("Active", "1|3");
  row("Active = False", "2|4");
  row("NOT Active", "2|4");
  row("[Full Name] LIKE '%О''Нийл'", "1");
  row("\"Иван\" = Име", "1");
  row("[Full Name] LIKE '%АБВ%'", "4");
  row("[Full Name] LIKE 'щерьо_щ'", "3");
  row("[Full Name] LIKE '%а%о%'", "1|2");
  row("[Full Name] NOT LIKE '%а%'", "3");
  row("[Full Name] LIKE ''", "");
  row("Име LIKE '%'", "1|2|3|4");
  row("Day LIKE '%.2024'", "1|2");
  row("Id IN (1, 3, '4')", "1|3|4");
  row("Id NOT IN (1, 3)", "2|4|5");
  row("Amount > Limit", "1");
  row("Amount <> Limit", "1|4");
  row("Id = Amount", "");
  row("1 = 2", "");
  row("1 = 1", "1|2|3|4|5");
}

void TestViews::filters()
{
  QFETCH(QString, filter);
  QFETCH(QString, ids);
  TClientDataSet dataSet;
  dataSet.SetRecords(people());
  dataSet.SetFilter(filter);
  QCOMPARE(dataSet.RecordCount(), 5);
  dataSet.SetFiltered(true);
  QCOMPARE(column(dataSet, "Id"), ids);
  dataSet.SetFiltered(false);
  QCOMPARE(dataSet.RecordCount(), 5);
}

void TestViews::wrongFilters_data()
{
  QTest::addColumn<QString>("filter");
  QTest::addColumn<QString>("part");
  const auto row = [](const char* filter, const char* part) {
    QTest::newRow(filter) << QString::fromUtf8(filter) << QString::fromUtf8(part);
  };
  row("Id =", "изразът не е завършен");
  row("Id = 1 Id = 2", "неочаквано 'Id' (позиция 8)");
  row("(Id = 1", "изразът не е завършен");
  row("Id = 1)", "неочаквано ')'");
  row("Име = 'а", "незатворени кавички (позиция 7)");
  row("[Име = 1", "незатворена скоба");
  row("Id = 1.2.3", "не е число");
  row("Id # 1", "неочакван знак '#'");
  row("Nothing = 1", "'Nothing' не е намерено");
  row("Id = 'x'", "'x' е невалидна стойност за поле 'Id'");
  row("Day = '31.02.2024'", "невалидна стойност");
  row("Id LIKE", "не е завършен");
  row("Име = Day", "не могат да се сравнят");
}

void TestViews::wrongFilters()
{
  QFETCH(QString, filter);
  QFETCH(QString, part);
  TClientDataSet dataSet;
  dataSet.SetRecords(people());
  dataSet.SetFilter(QStringLiteral("Id > 3"));
  dataSet.SetFiltered(true);
  const QString message = messageOf([&] { dataSet.SetFilter(filter); });
  QVERIFY2(message.contains(part), qPrintable(message));
  QCOMPARE(dataSet.Filter(), "Id > 3");
  QCOMPARE(column(dataSet, "Id"), "4|5");
  QVERIFY(messageOf([&] { dataSet.SetFilter(QString(5000, u'(')); }).contains(QStringLiteral("твърде много скоби")));
}

// Finds at the borders of texts and of blocks, where a search over many texts at once could go wrong.
void TestViews::containsScansWholeArenas()
{
  RecordSet records({fieldDef("Id", DataType::Integer), fieldDef("T", DataType::WideString)});
  QStringList expected;
  for (int i = 0; i < 5000; ++i) {
    const QString text = i % 7 == 0   ? QString()
                         : i % 5 == 0 ? QStringLiteral("аа")
                                      : QStringLiteral("хаХа%1").arg(i % 3);
    records.appendRow({i, i % 11 == 0 ? Variant() : Variant(text)});
    if (i % 11 != 0 && text.contains(u"хах", Qt::CaseInsensitive))
      expected << QString::number(i);
  }
  TClientDataSet dataSet;
  dataSet.SetRecords(records);
  dataSet.SetFilter(QStringLiteral("T LIKE '%ХАХ%'"));
  dataSet.SetFiltered(true);
  QCOMPARE(column(dataSet, "Id"), expected.join(u'|'));
  dataSet.SetFilter(QStringLiteral("T LIKE '%ахах%'"));  // only across a border
  QCOMPARE(dataSet.RecordCount(), 0);
  dataSet.FilterCaseInsensitive = false;
  dataSet.SetFilter(QStringLiteral("T LIKE '%хах%'"));
  QCOMPARE(dataSet.RecordCount(), 0);
}

void TestViews::filterFollowsEdits()
{
  TClientDataSet dataSet;
  dataSet.SetRecords(itemRecords(5));
  dataSet.SetFilter(QStringLiteral("Amount < 5"));
  dataSet.SetFiltered(true);
  QCOMPARE(column(dataSet, "Id"), "1|2|3");
  dataSet.Next();
  dataSet.Edit();
  field(dataSet, "Amount")->SetAsFloat(9);
  dataSet.Post();
  QCOMPARE(column(dataSet, "Id"), "1|3");
  QCOMPARE(field(dataSet, "Id")->AsInteger(), 3);
  dataSet.AppendRecord({10, QString(), 1});
  dataSet.AppendRecord({11, QString(), 50});
  QCOMPARE(column(dataSet, "Id"), "1|3|10");
  QVERIFY(dataSet.Locate(QStringLiteral("Id"), 3));
  QVERIFY(!dataSet.Locate(QStringLiteral("Id"), 5));
  dataSet.CancelUpdates();
  QCOMPARE(column(dataSet, "Id"), "1|2|3");
}

void TestViews::filterEventDecides()
{
  TClientDataSet dataSet;
  dataSet.SetRecords(itemRecords(6));
  int modulus = 2;
  dataSet.OnFilterRecord = [&](TClientDataSet* d, bool& accept) {
    QCOMPARE(d->State(), DataSetState::Filter);
    accept = field(*d, "Id")->AsInteger() % modulus == 0;
  };
  dataSet.SetFilter(QStringLiteral("Id > 2"));
  dataSet.SetFiltered(true);
  QCOMPARE(column(dataSet, "Id"), "4|6");
  modulus = 3;
  dataSet.RefreshFilter();
  QCOMPARE(column(dataSet, "Id"), "3|6");
  dataSet.OnFilterRecord = [](TClientDataSet*, bool&) { throw DataError(QStringLiteral("стоп")); };
  QCOMPARE(messageOf([&] { dataSet.RefreshFilter(); }), QStringLiteral("стоп"));
  QCOMPARE(column(dataSet, "Id"), "3|6");
  QCOMPARE(dataSet.State(), DataSetState::Browse);
}

void TestViews::orders_data()
{
  QTest::addColumn<QString>("names");
  QTest::addColumn<QString>("ids");
  QTest::newRow("text, null first") << QStringLiteral("Име") << "5|2|1|3|4";
  QTest::newRow("text down") << QStringLiteral("Име DESC") << "4|3|1|2|5";
  QTest::newRow("number, then arrival") << "Amount" << "2|5|3|1|4";
  QTest::newRow("two fields") << "Amount;Day" << "5|2|3|4|1";
  QTest::newRow("mixed") << "amount desc; Id DESC" << "4|1|3|5|2";
  QTest::newRow("date") << "Day" << "3|5|4|1|2";
  QTest::newRow("arrival") << "" << "1|2|3|4|5";
}

void TestViews::orders()
{
  QFETCH(QString, names);
  QFETCH(QString, ids);
  TClientDataSet dataSet;
  dataSet.SetRecords(people());
  dataSet.SetRecNo(4);
  dataSet.SetIndexFieldNames(names);
  QCOMPARE(column(dataSet, "Id"), ids);
  QCOMPARE(field(dataSet, "Id")->AsInteger(), 4);
  QVERIFY_EXCEPTION_THROWN(dataSet.SetIndexFieldNames(QStringLiteral("Id;Nothing")), DataError);
  QCOMPARE(dataSet.IndexFieldNames(), names);
  QCOMPARE(column(dataSet, "Id"), ids);
}

void TestViews::orderFollowsEdits()
{
  TClientDataSet dataSet;
  dataSet.SetRecords(itemRecords(4));
  dataSet.SetIndexFieldNames(QStringLiteral("Amount DESC"));
  dataSet.AppendRecord({9, QString(), 4.0});
  QCOMPARE(column(dataSet, "Id"), "4|3|9|2|1");
  QCOMPARE(dataSet.RecNo(), 3);
  dataSet.Edit();
  field(dataSet, "Amount")->SetAsFloat(100);
  dataSet.Post();
  QCOMPARE(column(dataSet, "Id"), "9|4|3|2|1");
  QCOMPARE(dataSet.RecNo(), 1);
  dataSet.Edit();
  field(dataSet, "Amount")->Clear();
  dataSet.Post();
  QCOMPARE(column(dataSet, "Id"), "4|3|2|1|9");
  const Bookmark ninth = dataSet.GetBookmark();
  dataSet.SetIndexFieldNames(QString());
  QCOMPARE(dataSet.RowOfBookmark(ninth), 4);
  QCOMPARE(dataSet.RecNo(), 5);
}

void TestViews::keysAreFound()
{
  TClientDataSet dataSet;
  dataSet.SetRecords(people());
  QVERIFY_EXCEPTION_THROWN(dataSet.SetKey(), DataError);
  dataSet.SetIndexFieldNames(QStringLiteral("Amount;Id"));
  const auto search = [&](double amount, const Variant& id) {
    dataSet.SetKey();
    field(dataSet, "Amount")->SetAsFloat(amount);
    if (!isNull(id))
      field(dataSet, "Id")->SetValue(id);
    return dataSet.GotoKey();
  };
  QVERIFY(search(10.5, 4));
  QCOMPARE(dataSet.State(), DataSetState::Browse);
  QCOMPARE(field(dataSet, "Id")->AsInteger(), 4);
  QVERIFY(search(10.5, {}));
  QCOMPARE(field(dataSet, "Id")->AsInteger(), 1);
  QVERIFY(!search(10.5, 3));
  QCOMPARE(field(dataSet, "Id")->AsInteger(), 1);
  dataSet.SetIndexFieldNames(QStringLiteral("Име"));
  dataSet.SetKey();
  field(dataSet, "Име")->SetAsString(QStringLiteral("щерьо"));
  QVERIFY(!dataSet.GotoKey());
  dataSet.GotoNearest();
  QCOMPARE(field(dataSet, "Id")->AsInteger(), 3);
  QCOMPARE(dataSet.ChangeCount(), 0);
}

void TestViews::rangesCut()
{
  TClientDataSet dataSet;
  dataSet.SetRecords(itemRecords(9));
  QVERIFY_EXCEPTION_THROWN(dataSet.SetRange({1}, {2}), DataError);
  dataSet.SetIndexFieldNames(QStringLiteral("Id"));
  dataSet.SetRange({3}, {5});
  QCOMPARE(column(dataSet, "Id"), "3|4|5");
  dataSet.AppendRecord({4});
  dataSet.AppendRecord({40});
  QCOMPARE(column(dataSet, "Id"), "3|4|4|5");
  dataSet.SetRange({8}, {});
  QCOMPARE(column(dataSet, "Id"), "8|9|40");
  dataSet.CancelRange();
  QCOMPARE(dataSet.RecordCount(), 11);
}

void TestViews::locate_data()
{
  QTest::addColumn<QString>("fields");
  QTest::addColumn<QVariant>("values");
  QTest::addColumn<bool>("caseInsensitive");
  QTest::addColumn<bool>("partial");
  QTest::addColumn<int>("id");
  const auto text = [](const char* t) { return QVariant(QString::fromUtf8(t)); };
  const QString name = QStringLiteral("Име");
  QTest::newRow("exact") << name << text("ЩЕРЬО") << false << false << 3;
  QTest::newRow("case matters") << name << text("щерьо") << false << false << 0;
  QTest::newRow("case does not matter") << name << text("щерьо") << true << false << 3;
  QTest::newRow("beginning") << name << text("ив") << true << true << 1;
  QTest::newRow("null") << name << QVariant() << false << false << 5;
  QTest::newRow("several") << QStringLiteral("Amount;Id") << QVariant(VariantArray{10.5, 4}) << false << false << 4;
  QTest::newRow("number as text") << QStringLiteral("Id") << text("4") << false << false << 4;
  QTest::newRow("a fraction is no whole number") << QStringLiteral("Id") << QVariant(3.6) << false << false << 0;
  QTest::newRow("does not convert") << QStringLiteral("Id") << text("x") << false << false << 0;
  QTest::newRow("day") << QStringLiteral("Day") << QVariant(QDate(2024, 2, 1)) << false << false << 2;
}

void TestViews::locate()
{
  QFETCH(QString, fields);
  QFETCH(QVariant, values);
  QFETCH(bool, caseInsensitive);
  QFETCH(bool, partial);
  QFETCH(int, id);
  TClientDataSet dataSet;
  dataSet.SetRecords(people());
  QCOMPARE(dataSet.Locate(fields, values, {caseInsensitive, partial}), id != 0);
  QCOMPARE(field(dataSet, "Id")->AsInteger(), id ? id : 1);
  QVERIFY_EXCEPTION_THROWN(dataSet.Locate(QStringLiteral("Id;Day"), 1), DataError);
  const Variant found = dataSet.Lookup(QStringLiteral("Id"), 4, QStringLiteral("Active;Amount"));
  QCOMPARE(found, QVariant(VariantArray{false, 10.5}));
  QVERIFY(isNull(dataSet.Lookup(QStringLiteral("Id"), 400, QStringLiteral("Amount"))));
}

QTEST_GUILESS_MAIN(TestViews)
#include "tst_views.moc"
