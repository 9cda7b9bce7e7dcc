// Groups and aggregates.
#include "data/data_tests.h"

using namespace kalvor;
using namespace kalvor::test;

class TestAggregates : public QObject {
  Q_OBJECT

 private slots:
  void groupsBeginAndEnd();
  void aggregates_data();
  void aggregates();
  void aggregatesFollowChanges();
  void aggregateFields();
};

void TestAggregates::groupsBeginAndEnd()
{
  TClientDataSet dataSet;
  dataSet.CreateDataSet({fieldDef("A", DataType::Integer), fieldDef("B", DataType::WideString)});
  for (const char* pair : {"1x", "1y", "1Y", "2y", "2z"})
    dataSet.AppendRecord({pair[0] - '0', QString(QLatin1Char(pair[1]))});
  dataSet.SetIndexFieldNames(QStringLiteral("A;B"));
  dataSet.SetGroupingLevel(2);
  QString states;
  for (dataSet.First(); !dataSet.Eof(); dataSet.Next())
    for (int level : {1, 2}) {
      const TClientDataSet::GroupPosition p = dataSet.GetGroupState(level);
      states += p.first && p.last ? u'o' : p.first ? u'f' : p.last ? u'l' : p.middle ? u'm' : u'-';
    }
  QCOMPARE(states, "fo" "mf" "ll" "fo" "lo");
  QVERIFY(!dataSet.GetGroupState(3).first);
}

void TestAggregates::aggregates_data()
{
  QTest::addColumn<QString>("expression");
  QTest::addColumn<QVariant>("value");
  QTest::newRow("sum") << "SUM(Amount)" << QVariant(18.0);
  QTest::newRow("sum of whole numbers") << "sum( Id )" << QVariant(15LL);
  QTest::newRow("average skips nulls") << "AVG(Amount)" << QVariant(6.0);
  QTest::newRow("least") << "MIN(Amount)" << QVariant(-3.0);
  QTest::newRow("greatest day") << "MAX(Day)" << QVariant(QDate(2024, 2, 1));
  QTest::newRow("least text") << "MIN(Име)" << QVariant(QStringLiteral("анна"));
  QTest::newRow("count of records") << "COUNT(*)" << QVariant(5LL);
  QTest::newRow("count of values") << "COUNT(Amount)" << QVariant(3LL);
  QTest::newRow("arithmetic") << "(SUM(Amount) - MIN(Amount)) * 2 / COUNT(*)" << QVariant(8.4);
  QTest::newRow("arithmetic inside") << "SUM(Amount * Id + 1)" << QVariant(10.5 - 9 + 42 + 3);
  QTest::newRow("greatest of arithmetic") << "MAX(Amount * -1)" << QVariant(3.0);
  QTest::newRow("division by zero") << "SUM(Amount) / (COUNT(*) - 5)" << QVariant();
  QTest::newRow("blank in the name") << "COUNT([Full Name])" << QVariant(4LL);
}

void TestAggregates::aggregates()
{
  QFETCH(QString, expression);
  QFETCH(QVariant, value);
  TClientDataSet dataSet;
  dataSet.SetRecords(people());
  QCOMPARE(dataSet.AggregateValue(expression), value);
  dataSet.SetFilter(QStringLiteral("Id = 100"));
  dataSet.SetFiltered(true);
  const Variant none = dataSet.AggregateValue(expression);
  QVERIFY(expression.startsWith(u"COUNT") ? none == Variant(0LL) : isNull(none));
}

void TestAggregates::aggregatesFollowChanges()
{
  TClientDataSet dataSet;
  dataSet.SetRecords(itemRecords(4));
  dataSet.AggregatesActive = true;
  const auto all = [&] {
    QStringList values;
    for (const char* e : {"SUM(Amount)", "MIN(Amount)", "MAX(Amount)", "COUNT(*)", "AVG(Amount)"})
      values << variantText(dataSet.AggregateValue(QString::fromLatin1(e)));
    return values.join(u' ');
  };
  QCOMPARE(all(), "15 1.5 6 4 3.75");
  dataSet.Edit();
  field(dataSet, "Amount")->SetAsFloat(10);
  QCOMPARE(all(), "15 1.5 6 4 3.75");
  dataSet.Post();
  QCOMPARE(all(), "23.5 3 10 4 5.875");
  dataSet.AppendRecord({5, QString(), 0.5});
  QCOMPARE(all(), "24 0.5 10 5 4.8");
  dataSet.Delete();
  QCOMPARE(all(), "23.5 3 10 4 5.875");
  dataSet.SetFilter(QStringLiteral("Amount < 9"));
  dataSet.SetFiltered(true);
  QCOMPARE(all(), "13.5 3 6 3 4.5");
  dataSet.Edit();
  field(dataSet, "Amount")->SetAsFloat(20);
  dataSet.Post();
  QCOMPARE(all(), "10.5 4.5 6 2 5.25");
  dataSet.CancelUpdates();
  QCOMPARE(all(), "15 1.5 6 4 3.75");
  dataSet.SetFiltered(false);
  const RecordSet tenths = [] {
    RecordSet records({fieldDef("Amount", DataType::Float)});
    for (int i = 0; i < 1000; ++i)
      records.appendRow({0.1});
    return records;
  }();
  dataSet.SetRecords(tenths);
  QCOMPARE(dataSet.AggregateValue(QStringLiteral("SUM(Amount)")).toDouble(), 100.0);
  for (int i = 0; i < 999; ++i)
    dataSet.Delete();
  QCOMPARE(dataSet.AggregateValue(QStringLiteral("SUM(Amount)")).toDouble(), 0.1);
}

void TestAggregates::aggregateFields()
{
  TClientDataSet dataSet;
  dataSet.SetRecords(itemRecords(3));
  QVERIFY_EXCEPTION_THROWN(dataSet.AddAggregateField(QStringLiteral("Bad"), QStringLiteral("SUM(Name)")), DataError);
  TField* line = dataSet.AddAggregateField(QStringLiteral("Agg_Id"), QStringLiteral("MAX(Id)"));
  TField* total = dataSet.AddAggregateField(QStringLiteral("aggAmount"), QStringLiteral("SUM(Amount)"));
  QVERIFY(line->IsNull());
  dataSet.AggregatesActive = true;
  QCOMPARE(dataSet.FieldByName(u"agg_id")->AsInteger(), 3);
  total->DisplayFormat = QStringLiteral("0.00");
  QCOMPARE(total->AggregateText(), "9,00");
  dataSet.Edit();
  QVERIFY_EXCEPTION_THROWN(total->SetAsFloat(1), DataError);
  dataSet.Cancel();
  while (!dataSet.IsEmpty())
    dataSet.Delete();
  QVERIFY(total->IsNull());
  QCOMPARE(total->AggregateText(), QString());
  dataSet.RemoveField(total);
  QVERIFY(!dataSet.FindField(u"aggAmount"));
}

QTEST_GUILESS_MAIN(TestAggregates)
#include "tst_aggregates.moc"
