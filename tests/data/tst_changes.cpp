// The change log: what is told to the server, and what can be taken back.
#include "data/data_tests.h"

using namespace kalvor;
using namespace kalvor::test;

class TestChanges : public QObject {
  Q_OBJECT

 private slots:
  void changeLog_data();
  void changeLog();
  void undoWalksBack();
  void deltaTellsOriginals();
  void insertKeepsItsPlace();
};

// Letters: a append, e edit, t touch (edit a value), x edit without touching, d delete; then what is left.
void TestChanges::changeLog_data()
{
  QTest::addColumn<QString>("steps");
  QTest::addColumn<QString>("delta");
  QTest::newRow("touched") << "e1 t p" << "Unmodified 1 1.5|Modified 1 7";
  QTest::newRow("twice") << "e1 t p e1 t p" << "Unmodified 1 1.5|Modified 1 7";
  QTest::newRow("untouched") << "e1 p" << "";
  QTest::newRow("cancelled") << "e1 t c" << "";
  QTest::newRow("inserted and deleted") << "a t p d" << "";
  QTest::newRow("inserted and touched") << "a t p e3 t p" << "Inserted  7";
  QTest::newRow("touched and deleted") << "e2 t p d" << "Deleted 2 3";
  QTest::newRow("order of first change") << "e2 t p e1 t p e2 d" << "Deleted 2 3|Unmodified 1 1.5|Modified 1 7";
}

void TestChanges::changeLog()
{
  QFETCH(QString, steps);
  QFETCH(QString, delta);
  TClientDataSet dataSet;
  dataSet.SetRecords(itemRecords(2));
  for (const QString& step : steps.split(u' ')) {
    switch (step[0].toLatin1()) {
      case 'a': dataSet.Append(); break;
      case 'e': dataSet.SetRecNo(step.mid(1).toInt()); dataSet.Edit(); break;
      case 't': field(dataSet, "Amount")->SetAsFloat(7); break;
      case 'p': dataSet.Post(); break;
      case 'c': dataSet.Cancel(); break;
      case 'd': dataSet.Delete(); break;
    }
  }
  QStringList lines;
  static const char* const names[] = {"Unmodified", "Modified", "Inserted", "Deleted"};
  if (const DeltaPtr changes = dataSet.GetDelta())
    for (qsizetype row = 0; row < changes->records.rows; ++row)
      lines << QStringLiteral("%1 %2 %3").arg(QLatin1String(names[int(changes->status[size_t(row)])]),
                                              variantText(changes->records.value(row, 0)),
                                              variantText(changes->records.value(row, 2)));
  QCOMPARE(lines.join(u'|'), delta);
  dataSet.CancelUpdates();
  QCOMPARE(dataSet.ChangeCount(), 0);
  QCOMPARE(column(dataSet, "Amount"), "1.5|3");
}

void TestChanges::undoWalksBack()
{
  TClientDataSet dataSet;
  dataSet.SetRecords(itemRecords(3));
  const auto setAmount = [&](double value) {
    dataSet.Edit();
    field(dataSet, "Amount")->SetAsFloat(value);
    dataSet.Post();
  };
  setAmount(10);
  setAmount(20);
  dataSet.Delete();
  dataSet.Last();
  setAmount(30);
  QCOMPARE(dataSet.ChangeCount(), 2);
  QVERIFY(dataSet.UndoLastChange(true));
  QVERIFY(dataSet.UndoLastChange(true));
  QCOMPARE(dataSet.RecNo(), 1);
  QCOMPARE(dataSet.UpdateStatus(), kalvor::UpdateStatus::Modified);
  QCOMPARE(column(dataSet, "Amount"), "20|3|4.5");
  QVERIFY(dataSet.UndoLastChange(true));
  QCOMPARE(column(dataSet, "Amount"), "10|3|4.5");
  QVERIFY(dataSet.UndoLastChange(true));
  QVERIFY(!dataSet.UndoLastChange(true));
  QCOMPARE(dataSet.ChangeCount(), 0);
  QVERIFY(!dataSet.GetDelta());

  setAmount(40);
  dataSet.RevertRecord();
  QCOMPARE(column(dataSet, "Amount"), "1.5|3|4.5");
  dataSet.LogChanges = false;
  setAmount(50);
  dataSet.Delete();
  QCOMPARE(dataSet.ChangeCount(), 0);
  QCOMPARE(dataSet.RecordCount(), 2);
}

void TestChanges::deltaTellsOriginals()
{
  TClientDataSet dataSet;
  dataSet.SetRecords(itemRecords(2));
  field(dataSet, "Name")->InUpdate = false;
  dataSet.Edit();
  field(dataSet, "Amount")->Clear();
  dataSet.Post();
  const DeltaPtr delta = dataSet.GetDelta();
  QVERIFY(!delta->records.fields[1].updatable);
  QVERIFY(delta->records.fields[2].updatable);
  QVERIFY(isNull(delta->records.value(1, 2)));
  QCOMPARE(field(dataSet, "Amount")->OldValue().toDouble(), 1.5);
  dataSet.Next();
  const Bookmark second = dataSet.GetBookmark();
  dataSet.Delete();
  QCOMPARE(dataSet.DeletedRecords().size(), 1);
  QVERIFY(!dataSet.BookmarkValid(second));
  dataSet.MergeChangeLog();
  QCOMPARE(dataSet.ChangeCount(), 0);
  QCOMPARE(dataSet.UpdateStatus(), kalvor::UpdateStatus::Unmodified);
  dataSet.CancelUpdates();
  QCOMPARE(column(dataSet, "Amount"), QString());
}

void TestChanges::insertKeepsItsPlace()
{
  TClientDataSet dataSet;
  dataSet.SetRecords(itemRecords(3));
  dataSet.SetRecNo(2);
  dataSet.Insert();
  field(dataSet, "Id")->SetAsInteger(20);
  dataSet.Post();
  QCOMPARE(column(dataSet, "Id"), "1|20|2|3");
  dataSet.SetFilter(QStringLiteral("Id >= 2"));
  dataSet.SetFiltered(true);
  QCOMPARE(column(dataSet, "Id"), "20|2|3");
  dataSet.SetFiltered(false);
  dataSet.AppendRecord({4, QStringLiteral("край")});
  QCOMPARE(column(dataSet, "Id"), "1|20|2|3|4");
}

QTEST_GUILESS_MAIN(TestChanges)
#include "tst_changes.moc"
