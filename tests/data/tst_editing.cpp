// States, events and changes: what somebody who edits records sees.
#include "data/data_tests.h"

using namespace kalvor;
using namespace kalvor::test;

namespace {

// Writes down every event of a dataset and its controls.
class Journal : public DataLink {
 public:
  explicit Journal(TClientDataSet& dataSet)
  {
    setDataSet(&dataSet);
    const auto note = [this](const char* name) { return [this, name](TClientDataSet*) { entries << name; }; };
    dataSet.BeforeInsert = note("BeforeInsert");
    dataSet.AfterInsert = note("AfterInsert");
    dataSet.BeforeEdit = note("BeforeEdit");
    dataSet.AfterEdit = note("AfterEdit");
    dataSet.BeforePost = note("BeforePost");
    dataSet.AfterPost = note("AfterPost");
    dataSet.BeforeCancel = note("BeforeCancel");
    dataSet.AfterCancel = note("AfterCancel");
    dataSet.BeforeDelete = note("BeforeDelete");
    dataSet.AfterDelete = note("AfterDelete");
    dataSet.BeforeScroll = note("BeforeScroll");
    dataSet.AfterScroll = note("AfterScroll");
    dataSet.BeforeOpen = note("BeforeOpen");
    dataSet.AfterOpen = note("AfterOpen");
    dataSet.BeforeClose = note("BeforeClose");
    dataSet.AfterClose = note("AfterClose");
    dataSet.OnNewRecord = note("OnNewRecord");
  }

  void dataEvent(DataEvent event, TField*) override
  {
    static const char* const names[] = {"active", "layout", "data", "scroll", "record", "state", "update", "focus"};
    entries << names[int(event)];
  }

  QString take() { return std::exchange(entries, {}).join(u' '); }

  QStringList entries;
};

}  // namespace

class TestEditing : public QObject {
  Q_OBJECT

 private slots:
  void eventsComeInOrder();
};

void TestEditing::eventsComeInOrder()
{
  TClientDataSet dataSet;
  Journal journal(dataSet);
  dataSet.SetRecords(itemRecords(3));
  QCOMPARE(journal.take(), "BeforeOpen active state AfterOpen AfterScroll");
  dataSet.Append();
  QCOMPARE(journal.take(), "BeforeInsert BeforeScroll state OnNewRecord data AfterInsert AfterScroll");
  QCOMPARE(dataSet.RecordCount(), 4);
  dataSet.CheckBrowseMode();
  QCOMPARE(journal.take(), "update BeforeCancel BeforeScroll state data AfterCancel AfterScroll");
  QCOMPARE(column(dataSet, "Id"), "1|2|3");
  dataSet.First();
  journal.take();
  dataSet.Edit();
  QCOMPARE(journal.take(), "BeforeEdit state record AfterEdit");
  field(dataSet, "Name")->SetAsString(QStringLiteral("Захар"));
  QCOMPARE(journal.take(), "record");
  dataSet.Next();
  QCOMPARE(journal.take(), "update update BeforePost state data AfterPost BeforeScroll scroll AfterScroll");
  dataSet.Delete();
  QCOMPARE(journal.take(), "BeforeDelete BeforeScroll data AfterDelete AfterScroll");
  QCOMPARE(dataSet.ChangeCount(), 2);
  QCOMPARE(column(dataSet, "Name"), QStringLiteral("Захар|Артикул 3"));
  dataSet.Close();
  QCOMPARE(journal.take(), "BeforeClose state active AfterClose");
}

KALVOR_TEST_CLASS(TestEditing)
#include "tst_editing.moc"
