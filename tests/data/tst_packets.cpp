// A dataset that reads a provider packet by packet.
#include "data/data_tests.h"

using namespace kalvor;
using namespace kalvor::test;

class TestPackets : public QObject {
  Q_OBJECT

 private slots:
  void nextAsksForMore();
  void lastFetchesTheRest();
  void nothingIsAskedWhenNotWanted();
  void filtersReadOnUntilARecordPasses();
  void ordersTakeNewRecordsIn();
  void locateFetchesWhatItDoesNotFind();
  void anInsertedRecordStaysWhileFetching();
  void deletingWhileLooping();
  void refreshKeepsTheRecord_data();
  void refreshKeepsTheRecord();
  void refreshNeedsNoChanges();
  void aFailingProviderLeavesItClosed();
  void foreignPacketsAreRefused();
};

namespace {

struct Served {
  FakeBroker broker;
  TClientDataSet dataSet;

  Served(int records, int packet)
  {
    broker.records = itemRecords(records);
    dataSet.SetRemoteServer(&broker);
    dataSet.ProviderName = QStringLiteral("p");
    dataSet.PacketRecords = packet;
  }
};

}  // namespace

void TestPackets::nextAsksForMore()
{
  Served s(10, 4);
  s.dataSet.Open();
  QCOMPARE(s.dataSet.RecordCount(), 4);
  QVERIFY(!s.dataSet.AllFetched());
  int seen = 0;
  for (; !s.dataSet.Eof(); s.dataSet.Next())
    QCOMPARE(field(s.dataSet, "Id")->AsInteger(), ++seen);
  QCOMPARE(seen, 10);
  QCOMPARE(s.broker.packets, 2);
  QVERIFY(s.dataSet.AllFetched());
  QVERIFY(!s.dataSet.GetNextPacket());
}

void TestPackets::lastFetchesTheRest()
{
  Served s(10, 4);
  s.dataSet.Open();
  s.dataSet.Last();
  QCOMPARE(s.dataSet.RecNo(), 10);
  QCOMPARE(s.broker.packets, 1);
  QVERIFY(s.dataSet.Eof());
}

void TestPackets::nothingIsAskedWhenNotWanted()
{
  Served s(10, 4);
  s.dataSet.FetchOnDemand = false;
  s.dataSet.Open();
  s.dataSet.Last();
  QCOMPARE(s.dataSet.RecNo(), 4);
  s.dataSet.Next();
  QVERIFY(s.dataSet.Eof());
  QCOMPARE(s.broker.packets, 0);
  QVERIFY(s.dataSet.GetNextPacket());
  QCOMPARE(s.dataSet.RecordCount(), 8);
}

void TestPackets::filtersReadOnUntilARecordPasses()
{
  Served s(20, 3);
  s.dataSet.SetFilter(QStringLiteral("Id = 8 OR Id = 9 OR Id = 19"));
  s.dataSet.SetFiltered(true);
  s.dataSet.Open();
  QCOMPARE(column(s.dataSet, "Id"), "8|9");
  s.dataSet.MoveBy(2);
  QCOMPARE(field(s.dataSet, "Id")->AsInteger(), 19);
  s.dataSet.Next();
  QVERIFY(s.dataSet.Eof());
}

void TestPackets::ordersTakeNewRecordsIn()
{
  Served s(300, 100);
  s.dataSet.SetIndexFieldNames(QStringLiteral("Id DESC"));
  s.dataSet.Open();
  QCOMPARE(field(s.dataSet, "Id")->AsInteger(), 100);
  s.dataSet.MoveBy(99);
  s.dataSet.Next();
  QCOMPARE(field(s.dataSet, "Id")->AsInteger(), 1);
  QVERIFY(s.dataSet.Eof());
  QCOMPARE(s.dataSet.RecNo(), 300);
  QStringList down;
  for (int id = 300; id > 0; --id)
    down << QString::number(id);
  QCOMPARE(column(s.dataSet, "Id"), down.join(u'|'));
}

void TestPackets::locateFetchesWhatItDoesNotFind()
{
  Served s(50, 5);
  s.dataSet.Open();
  QVERIFY(s.dataSet.Locate(QStringLiteral("Id"), 3));
  QCOMPARE(s.broker.packets, 0);
  QVERIFY(s.dataSet.Locate(QStringLiteral("Id"), 44));
  QCOMPARE(s.dataSet.RecNo(), 44);
  QCOMPARE(s.broker.packets, 1);
}

void TestPackets::anInsertedRecordStaysWhileFetching()
{
  Served s(10, 4);
  s.dataSet.Open();
  s.dataSet.Append();
  field(s.dataSet, "Id")->SetAsInteger(99);
  QVERIFY(s.dataSet.GetNextPacket());
  QCOMPARE(s.dataSet.State(), DataSetState::Insert);
  QCOMPARE(column(s.dataSet, "Id"), "1|2|3|4|5|6|7|8|99");
  QCOMPARE(s.dataSet.RecNo(), 9);
  s.dataSet.Post();
  s.dataSet.SetRecNo(2);
  s.dataSet.Insert();
  s.dataSet.GetNextPacket();
  QCOMPARE(s.dataSet.RecNo(), 2);
  s.dataSet.Cancel();
  QCOMPARE(column(s.dataSet, "Id"), "1|2|3|4|5|6|7|8|99|9|10");
}

void TestPackets::deletingWhileLooping()
{
  Served s(9, 4);
  s.dataSet.Open();
  int seen = 0;
  for (; !s.dataSet.Eof(); ++seen)
    s.dataSet.Delete();
  QCOMPARE(seen, 9);
  QCOMPARE(s.dataSet.ChangeCount(), 9);
}

void TestPackets::refreshKeepsTheRecord_data()
{
  QTest::addColumn<int>("on");
  QTest::addColumn<int>("then");
  QTest::newRow("in the first packet") << 2 << 2;
  QTest::newRow("in a later packet") << 9 << 9;
  QTest::newRow("gone") << 7 << 1;
}

void TestPackets::refreshKeepsTheRecord()
{
  QFETCH(int, on);
  QFETCH(int, then);
  Served s(10, 3);
  s.dataSet.Open();
  QVERIFY(s.dataSet.Locate(QStringLiteral("Id"), on));
  RecordSet changed(itemFields());
  for (int i = 1; i <= 10; ++i)
    if (i != 7)
      changed.appendRow({i, QStringLiteral("нов"), i});
  s.broker.records = changed;
  TField* name = field(s.dataSet, "Name");
  s.dataSet.Refresh();
  QCOMPARE(field(s.dataSet, "Id")->AsInteger(), then);
  QCOMPARE(name->AsString(), QStringLiteral("нов"));
  s.broker.failure = QStringLiteral("няма връзка");
  QCOMPARE(messageOf([&] { s.dataSet.Refresh(); }), QStringLiteral("няма връзка"));
  QCOMPARE(field(s.dataSet, "Id")->AsInteger(), then);
}

void TestPackets::refreshNeedsNoChanges()
{
  Served s(3, -1);
  s.dataSet.Open();
  s.dataSet.Delete();
  QCOMPARE(messageOf([&] { s.dataSet.Refresh(); }), QStringLiteral("Има незаписани промени!"));
  QCOMPARE(s.dataSet.RecordCount(), 2);
}

void TestPackets::aFailingProviderLeavesItClosed()
{
  Served s(3, -1);
  s.broker.failure = QStringLiteral("няма връзка");
  s.dataSet.DisableControls();
  QCOMPARE(messageOf([&] { s.dataSet.Open(); }), QStringLiteral("няма връзка"));
  QVERIFY(!s.dataSet.Active());
  s.broker.failure.clear();
  s.dataSet.SetIndexFieldNames(QStringLiteral("Nothing"));
  QVERIFY_EXCEPTION_THROWN(s.dataSet.Open(), DataError);
  QVERIFY(!s.dataSet.Active());
  s.dataSet.SetIndexFieldNames(QString());
  s.dataSet.Open();
  QCOMPARE(s.dataSet.RecordCount(), 3);
  s.dataSet.EnableControls();
  s.dataSet.Close();
  s.dataSet.SetRemoteServer(nullptr);
  QVERIFY_EXCEPTION_THROWN(s.dataSet.Open(), DataError);
}

void TestPackets::foreignPacketsAreRefused()
{
  Served s(10, 4);
  s.dataSet.Open();
  s.broker.records.fields[2].type = DataType::WideString;
  s.broker.records.columns[2] = s.broker.records.columns[1];
  QVERIFY_EXCEPTION_THROWN(s.dataSet.GetNextPacket(), DataError);
  QCOMPARE(s.dataSet.RecordCount(), 4);
}

QTEST_GUILESS_MAIN(TestPackets)
#include "tst_packets.moc"
