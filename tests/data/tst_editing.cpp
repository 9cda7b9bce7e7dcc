// States, events and values: what somebody who edits records sees.
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
  void defaultsDoNotCountAsTouching();
  void aFailedNewRecordLeavesNothing();
  void requiredFieldsAreAsked();
  void postErrorActions_data();
  void postErrorActions();
  void editingIsRefused();
  void setValueRunsHandlers();
  void refusedValues_data();
  void refusedValues();
  void loopsEnd();
  void calculatedFields();
  void controlsAreToldOnceAfterDisabling();
  void fieldsOutliveClosing();
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

void TestEditing::defaultsDoNotCountAsTouching()
{
  TClientDataSet dataSet;
  dataSet.SetRecords(itemRecords(1));
  dataSet.OnNewRecord = [](TClientDataSet* d) { field(*d, "Name")->SetAsString(QStringLiteral("нов")); };
  dataSet.Append();
  QCOMPARE(field(dataSet, "Name")->AsString(), QStringLiteral("нов"));
  QVERIFY(!dataSet.Modified());
  dataSet.First();
  QCOMPARE(dataSet.RecordCount(), 1);
  dataSet.AfterInsert = [](TClientDataSet* d) { field(*d, "Id")->SetAsInteger(9); };
  dataSet.Append();
  dataSet.First();
  QCOMPARE(column(dataSet, "Id"), "1|9");
}

void TestEditing::aFailedNewRecordLeavesNothing()
{
  TClientDataSet dataSet;
  dataSet.SetRecords(itemRecords(3));
  dataSet.SetRecNo(2);
  dataSet.OnNewRecord = [](TClientDataSet*) { throw DataError(QStringLiteral("не може")); };
  QCOMPARE(messageOf([&] { dataSet.Append(); }), QStringLiteral("не може"));
  QCOMPARE(dataSet.State(), DataSetState::Browse);
  QCOMPARE(dataSet.RecordCount(), 3);
  QCOMPARE(dataSet.RecNo(), 2);
}

void TestEditing::requiredFieldsAreAsked()
{
  TClientDataSet dataSet;
  dataSet.CreateDataSet({fieldDef("Id", DataType::LargeInt), fieldDef("Name", DataType::WideString, 10, true)});
  Journal journal(dataSet);
  field(dataSet, "Name")->DisplayLabel = QStringLiteral("ID Име");
  dataSet.Append();
  field(dataSet, "Name")->SetAsString(QString());
  journal.take();
  QCOMPARE(messageOf([&] { dataSet.Post(); }), QStringLiteral("Field 'ID Име' must have a value"));
  QCOMPARE(journal.take(), "update BeforePost focus");
  QCOMPARE(dataSet.State(), DataSetState::Insert);
  field(dataSet, "Name")->SetAsString(QStringLiteral("а"));
  dataSet.Post();
  QCOMPARE(dataSet.ChangeCount(), 1);
}

void TestEditing::postErrorActions_data()
{
  QTest::addColumn<ErrorAction>("action");
  QTest::addColumn<bool>("silent");
  QTest::addColumn<bool>("posted");
  QTest::newRow("fail") << ErrorAction::Fail << false << false;
  QTest::newRow("abort") << ErrorAction::Abort << true << false;
  QTest::newRow("retry") << ErrorAction::Retry << false << true;
}

void TestEditing::postErrorActions()
{
  QFETCH(ErrorAction, action);
  QFETCH(bool, silent);
  QFETCH(bool, posted);
  TClientDataSet dataSet;
  dataSet.CreateDataSet({fieldDef("Name", DataType::WideString, 10, true)});
  QString told;
  dataSet.OnPostError = [&](TClientDataSet* d, const DataError& error, ErrorAction& wanted) {
    told = error.message();
    wanted = action;
    if (action == ErrorAction::Retry)
      field(*d, "Name")->SetAsString(QStringLiteral("поправено"));
  };
  dataSet.Append();
  bool wasSilent = false;
  bool failed = false;
  try {
    dataSet.Post();
  } catch (const SilentAbort&) {
    wasSilent = true;
  } catch (const DataError&) {
    failed = true;
  }
  QCOMPARE(told, "Field 'Name' must have a value");
  QCOMPARE(wasSilent, silent);
  QCOMPARE(failed, !silent && !posted);
  QCOMPARE(dataSet.State(), posted ? DataSetState::Browse : DataSetState::Insert);
}

void TestEditing::editingIsRefused()
{
  TClientDataSet dataSet;
  QCOMPARE(messageOf([&] { dataSet.Next(); }), QStringLiteral("Наборът от данни не е отворен!"));
  dataSet.SetRecords(itemRecords(2));
  TField* name = field(dataSet, "Name");
  QCOMPARE(messageOf([&] { name->SetAsString({}); }), QStringLiteral("Данните не са в режим на редакция!"));
  dataSet.ReadOnly = true;
  QString told;
  dataSet.OnEditError = [&told](TClientDataSet*, const DataError& error, ErrorAction&) { told = error.message(); };
  QVERIFY_EXCEPTION_THROWN(dataSet.Edit(), DataError);
  QCOMPARE(told, QStringLiteral("Данните са само за четене!"));
  QVERIFY_EXCEPTION_THROWN(dataSet.Append(), DataError);
  QVERIFY_EXCEPTION_THROWN(dataSet.Delete(), DataError);
  QCOMPARE(dataSet.RecordCount(), 2);
  dataSet.ReadOnly = false;
  name->ReadOnly = true;
  dataSet.Edit();
  QCOMPARE(messageOf([&] { name->SetAsString({}); }), QStringLiteral("Полето 'Name' е само за четене!"));
}

void TestEditing::setValueRunsHandlers()
{
  TClientDataSet dataSet;
  dataSet.SetRecords(itemRecords(1));
  TField* amount = field(dataSet, "Amount");
  TField* name = field(dataSet, "Name");
  QStringList seen;
  amount->OnValidate = [&](TField* f) {
    seen << QStringLiteral("validate %1").arg(f->AsString());
    if (f->AsFloat() < 0)
      throw DataError(QStringLiteral("отрицателно"));
  };
  amount->OnChange = [&](TField* f) {
    seen << QStringLiteral("change %1").arg(f->AsString());
    name->SetAsString(QStringLiteral("сума ") + f->AsString());
  };
  dataSet.Edit();
  amount->SetAsFloat(2.5);
  amount->SetAsFloat(2.5);
  QCOMPARE(messageOf([&] { amount->SetAsFloat(-1); }), QStringLiteral("отрицателно"));
  QCOMPARE(seen.join(u';'), "validate 2,5;change 2,5;validate 2,5;change 2,5;validate -1");
  QCOMPARE(amount->AsFloat(), 2.5);
  QCOMPARE(name->AsString(), QStringLiteral("сума 2,5"));
  QCOMPARE(amount->OldValue().toDouble(), 1.5);
}

void TestEditing::refusedValues_data()
{
  QTest::addColumn<DataType>("type");
  QTest::addColumn<QVariant>("value");
  QTest::addColumn<QString>("message");
  const auto invalid = [](const char* text) {
    return QStringLiteral("'%1' е невалидна стойност за поле 'Поле'!").arg(QString::fromUtf8(text));
  };
  QTest::newRow("not a number") << DataType::Float << QVariant("12а") << invalid("12а");
  QTest::newRow("decimal point") << DataType::Float << QVariant("1.5") << invalid("1.5");
  QTest::newRow("infinite") << DataType::Float << QVariant(qInf()) << invalid("");
  QTest::newRow("fraction typed into whole") << DataType::Integer << QVariant("1,5") << invalid("1,5");
  QTest::newRow("small range") << DataType::SmallInt << QVariant(32768) << invalid("32768");
  QTest::newRow("word range") << DataType::Word << QVariant(-1) << invalid("-1");
  QTest::newRow("integer range") << DataType::Integer << QVariant(3000000000LL) << invalid("3000000000");
  QTest::newRow("no such day") << DataType::Date << QVariant("31.02.2024") << invalid("31.02.2024");
  QTest::newRow("no such hour") << DataType::DateTime << QVariant("01.02.2024 25:00") << invalid("01.02.2024 25:00");
  QTest::newRow("not a truth") << DataType::Boolean << QVariant("може би") << invalid("може би");
  QTest::newRow("too long") << DataType::WideString << QVariant("абвгд")
                            << QStringLiteral("Стойността на поле 'Поле' е 5 знака, а са позволени най-много 4!");
}

void TestEditing::refusedValues()
{
  QFETCH(DataType, type);
  QFETCH(QVariant, value);
  QFETCH(QString, message);
  TClientDataSet dataSet;
  dataSet.CreateDataSet({fieldDef("Field", type, isTextType(type) ? 4 : 0)});
  TField* f = field(dataSet, "Field");
  f->DisplayLabel = QStringLiteral("Поле");
  dataSet.Append();
  QCOMPARE(messageOf([&] { f->SetValue(value); }), message);
  QVERIFY(f->IsNull());
}

void TestEditing::loopsEnd()
{
  TClientDataSet dataSet;
  dataSet.SetRecords(itemRecords(6));
  int visited = 0;
  for (dataSet.First(); !dataSet.Eof(); ++visited)
    field(dataSet, "Id")->AsInteger() % 2 == 0 ? dataSet.Delete() : dataSet.Next();
  QCOMPARE(visited, 6);
  QCOMPARE(column(dataSet, "Id"), "1|3|5");
  dataSet.First();
  QVERIFY(dataSet.Bof() && !dataSet.Eof());
  QCOMPARE(dataSet.MoveBy(10), 2);
  QVERIFY(dataSet.Eof());
  QCOMPARE(dataSet.RecNo(), 3);
  while (!dataSet.IsEmpty())
    dataSet.Delete();
  QVERIFY(dataSet.Bof() && dataSet.Eof());
  QVERIFY_EXCEPTION_THROWN(dataSet.Delete(), DataError);
  dataSet.Edit();
  QCOMPARE(dataSet.State(), DataSetState::Insert);
}

void TestEditing::calculatedFields()
{
  TClientDataSet dataSet;
  TField* doubled = dataSet.AddCalculatedField(fieldDef("Doubled", DataType::Float), FieldValueKind::Calculated);
  TField* rank = dataSet.AddCalculatedField(fieldDef("Rank", DataType::Integer), FieldValueKind::InternalCalculated);
  dataSet.OnCalcFields = [](TClientDataSet* d) {
    const double amount = field(*d, "Amount")->AsFloat();
    if (d->State() == DataSetState::CalcFields)
      field(*d, "Doubled")->SetAsFloat(amount * 2);
    else
      field(*d, "Rank")->SetAsInteger(100 - d->FieldByName(u"Id")->AsInteger());
  };
  dataSet.SetRecords(itemRecords(3));
  QCOMPARE(column(dataSet, "Doubled"), "3|6|9");
  QCOMPARE(doubled->AsFloat(), 3.0);
  dataSet.SetIndexFieldNames(QStringLiteral("Rank"));
  QCOMPARE(column(dataSet, "Id"), "3|2|1");
  QCOMPARE(rank->AsInteger(), 99);
  dataSet.Edit();
  field(dataSet, "Id")->SetAsInteger(50);
  field(dataSet, "Amount")->SetAsFloat(4);
  QCOMPARE(doubled->AsFloat(), 8.0);
  QCOMPARE(rank->AsInteger(), 50);
  dataSet.Post();
  QCOMPARE(column(dataSet, "Id"), "50|3|2");
  QCOMPARE(dataSet.GetDelta()->records.fields.size(), 4);
  QVERIFY_EXCEPTION_THROWN(dataSet.SetIndexFieldNames(QStringLiteral("Doubled")), DataError);
  dataSet.Edit();
  QVERIFY_EXCEPTION_THROWN(doubled->SetAsFloat(1), DataError);
}

void TestEditing::controlsAreToldOnceAfterDisabling()
{
  TClientDataSet dataSet;
  dataSet.SetRecords(itemRecords(3));
  Journal journal(dataSet);
  {
    const ControlsDisabledScope outer(&dataSet);
    const ControlsDisabledScope inner(&dataSet);
    dataSet.Next();
    dataSet.Edit();
    field(dataSet, "Amount")->SetAsFloat(1);
    dataSet.Post();
  }
  QCOMPARE(journal.take(), "BeforeScroll AfterScroll BeforeEdit AfterEdit BeforePost AfterPost state data");
  {
    const ControlsDisabledScope nothingHappens(&dataSet);
  }
  QCOMPARE(journal.take(), QString());
}

void TestEditing::fieldsOutliveClosing()
{
  TClientDataSet dataSet;
  dataSet.SetRecords(itemRecords(2));
  TField* amount = field(dataSet, "AMOUNT");
  amount->DisplayLabel = QStringLiteral("Сума");
  amount->SetIndex(0);
  const Bookmark first = dataSet.GetBookmark();
  dataSet.Close();
  QVERIFY(isNull(amount->Value()));
  dataSet.Open();
  QVERIFY(dataSet.IsEmpty());
  dataSet.SetRecords(itemRecords(1));
  QCOMPARE(field(dataSet, "Amount"), amount);
  QCOMPARE(dataSet.Field(0), amount);
  QCOMPARE(amount->AsFloat(), 1.5);
  QVERIFY(!dataSet.BookmarkValid(first));
  dataSet.CreateDataSet({fieldDef("Other", DataType::Integer)});
  QVERIFY(!dataSet.FindField(u"Amount"));
  QCOMPARE(messageOf([&] { dataSet.FieldByName(u"Amount"); }), QStringLiteral("Полето 'Amount' не е намерено!"));
}

QTEST_GUILESS_MAIN(TestEditing)
#include "tst_editing.moc"
