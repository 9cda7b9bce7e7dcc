// Running a lookup: what is asked, what is opened, what is handed to the owner.
#include "fake_form.h"
#include "filter_text.h"
#include "forms/field_metadata.h"
#include "session/error_log.h"
#include "session/local_data.h"
#include "several_tests.h"

namespace kalvor::testing {
namespace {

const QString itemDescription =
    QStringLiteral(";150;Code,Name,Custom_Quantity,NEWQTY;Code,Missing,Quantity,Rest;"
                   "N_Item.Code,LIKE,<#Param(OwnerValue)#>,&N_Item.Inactive,=,0,;N_Item.Type,=,1,");

struct Lines {
  Lines()
  {
    dataSet = form.addDataSet(QStringLiteral("cdsMaster"),
                              {fieldDef(QStringLiteral("Code")), fieldDef(QStringLiteral("Quantity"), DataType::Float),
                               fieldDef(QStringLiteral("Rest"), DataType::Float)});
    dataSet->AppendRecord({QStringLiteral("A1")});
  }
  FakeServices services;
  FakeForm form;
  TClientDataSet* dataSet;
};

QString handedText(const TSelectionList& selection)
{
  QStringList texts;
  for (const TFieldSet& set : selection.value(0))
    texts.append(QStringList{set.FieldName, set.Field ? set.Field->FieldName() : QStringLiteral("-"),
                             variantText(set.Value), QString::number(set.KeyField)}
                     .join(u'/'));
  return texts.join(u' ');
}

}  // namespace

class SelectorLookupsTest : public QObject {
  Q_OBJECT
 private slots:
  void opensTheFormWithTheFilters()
  {
    Lines lines;
    FakeControl control(QStringLiteral("A"), lines.dataSet->FindField(u"Code"));
    TSelector selector(&lines.form, &control, itemDescription, lines.dataSet);
    TSelectionList asked;
    lines.services.choose = [&](TSelectionList& selection, QObject*) {
      asked = selection;
      return 0;
    };
    QCOMPARE(selector.Execute(), int(SelectorOpened));
    QCOMPARE(lines.services.openedForms, QList<int>{150});
    QCOMPARE(filterText(lines.services.openedFilter), QStringLiteral("(N_Item.Code;LIKE;A;AND) (N_Item.Inactive;=;0;)"));
    QCOMPARE(filterText(lines.services.openedPublicFilter), QStringLiteral("(N_Item.Type;=;1;)"));
    QCOMPARE(lines.services.openedOptions, ShowOption(so_SelectSingle));
    QCOMPARE(handedText(asked), QStringLiteral("Code/Code//1 Name/-//0 Custom_Quantity/Quantity//0 NEWQTY/Rest//0"));
    QVERIFY(lines.services.askedFilters.isEmpty());

    selector.Execute(nullptr, QStringLiteral("N_Item.Id,=,7,|,N_Item.Id,=,8,"));
    QCOMPARE(filterText(lines.services.openedFilter), QStringLiteral("(N_Item.Id;=;7;OR) (N_Item.Id;=;8;)"));
  }

  void optionsOfTheRun_data()
  {
    QTest::addColumn<bool>("readOnly");
    QTest::addColumn<bool>("byField");
    QTest::addColumn<quint32>("expected");
    QTest::newRow("button") << false << false << quint32(so_SelectSingle);
    QTest::newRow("read-only edit") << true << false << quint32(so_SelectSingle | so_CannotSelect);
    QTest::newRow("change of the field") << false << true << quint32(so_SelectSingle | so_ShowModal);
  }
  void optionsOfTheRun()
  {
    QFETCH(bool, readOnly);
    QFETCH(bool, byField);
    Lines lines;
    TField* code = lines.dataSet->FindField(u"Code");
    FakeControl control(QStringLiteral("A"), code, readOnly);
    TSelector selector(&lines.form, &control, itemDescription, lines.dataSet);
    selector.Execute(byField ? code : nullptr);
    QTEST(quint32(lines.services.openedOptions), "expected");
  }

  void doesNothing_data()
  {
    QTest::addColumn<QString>("description");
    QTest::addColumn<int>("action");
    QTest::newRow("no item applies") << QStringLiteral("<#Field(Code)#>,=,B,;150;Code;Code;") << 1;
    QTest::newRow("the owner vetoes") << itemDescription << -1;
    QTest::newRow("no description") << QString() << 1;
  }
  void doesNothing()
  {
    QFETCH(QString, description);
    QFETCH(int, action);
    Lines lines;
    lines.form.selectorAction = action;
    TSelector selector(&lines.form, lines.dataSet->FindField(u"Code"), description, lines.dataSet);
    selector.Execute();
    QVERIFY(lines.services.openedForms.isEmpty());
    QVERIFY(lines.services.askedFilters.isEmpty());
  }

  void anEmptyDatasetGetsARecord()
  {
    Lines lines;
    lines.dataSet->Delete();
    TSelector selector(&lines.form, lines.dataSet->FindField(u"Code"), itemDescription, lines.dataSet);
    selector.Execute();
    QCOMPARE(lines.dataSet->State(), DataSetState::Insert);
  }

  void copyingFillsInsteadOfOpening()
  {
    Lines lines;
    lines.form.copying = true;
    LocalData.NewQty = 2.5;
    lines.services.answer = [](const FilterArray&, Variant& value) {
      value = VariantArray{QStringLiteral("A1"), QStringLiteral("Ябълки")};
      return 1;
    };
    FakeControl control(QStringLiteral("a1"), lines.dataSet->FindField(u"Code"));
    TSelector selector(&lines.form, &control, itemDescription, lines.dataSet);
    QCOMPARE(selector.Execute(), int(SelectorChosen));
    LocalData.NewQty = 0;
    QVERIFY(lines.services.openedForms.isEmpty());
    QCOMPARE(lines.services.askedColumns, QStringList{QStringLiteral("Code,Name")});
    QCOMPARE(filterText(lines.services.askedFilters.value(0)),
             QStringLiteral("(N_Item.Code;=;a1;AND;() (N_Item.Inactive;=;0;AND;)) (N_Item.Type;=;1;)"));
    QCOMPARE(handedText(lines.form.handed.value(0)),
             QStringLiteral("Code/Code/A1/0 Name/-/Ябълки/0 Custom_Quantity/Quantity/1/0 NEWQTY/Rest/2.5/0"));
    QCOMPARE(lines.form.handedOptions, ShowOption(so_SelectSingle));
    QCOMPARE(lines.dataSet->FindField(u"Quantity")->AsFloat(), 1.0);
  }

  void onlyOneRecordFills_data()
  {
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("handed");
    QTest::newRow("none") << 0 << 0;
    QTest::newRow("one") << 1 << 1;
    QTest::newRow("several") << 2 << 0;
    QTest::newRow("failure") << -1 << 0;
  }
  void onlyOneRecordFills()
  {
    QFETCH(int, count);
    Lines lines;
    lines.services.answer = [count](const FilterArray&, Variant& value) {
      value = QStringLiteral("A1");
      return count;
    };
    TSelector selector(&lines.form, lines.dataSet->FindField(u"Code"), QStringLiteral(";150;Code;Code;A,LIKE,x,"),
                       lines.dataSet);
    selector.Fill(nullptr, false);
    QCOMPARE(filterText(lines.services.askedFilters.value(0)), QStringLiteral("(A;LIKE;x;)"));
    QTEST(int(lines.form.handed.size()), "handed");
    QVERIFY(lines.services.openedForms.isEmpty());
  }

  void showAlwaysAndCounts_data()
  {
    QTest::addColumn<bool>("showAlways");
    QTest::addColumn<int>("count");
    QTest::addColumn<bool>("opened");
    QTest::addColumn<int>("result");
    QTest::newRow("always") << true << 1 << true << 2;
    QTest::newRow("one") << false << 1 << false << 1;
    QTest::newRow("none") << false << 0 << true << 2;
    QTest::newRow("several") << false << 3 << true << 2;
  }
  void showAlwaysAndCounts()
  {
    QFETCH(bool, showAlways);
    QFETCH(int, count);
    QFETCH(bool, opened);
    Lines lines;
    lines.services.choose = [](TSelectionList&, QObject*) { return 2; };
    lines.services.answer = [count](const FilterArray&, Variant& value) {
      value = QStringLiteral("A1");
      return count;
    };
    bool flag = false;
    const int result = GetSelector(150, QStringLiteral("Code"), QStringLiteral("Code"), lines.dataSet, {}, {}, showAlways,
                                   flag, true, so_SelectMulty, {}, &lines.form, selectorNoField);
    QTEST(result, "result");
    QVERIFY(flag);
    QCOMPARE(!lines.services.openedForms.isEmpty(), opened);
    if (!opened) {
      QCOMPARE(lines.form.handedOptions, ShowOption(so_SelectMulty));
      QVERIFY(!lines.form.handed[0][0][0].KeyField);
    }
  }

  void unknownFormStops()
  {
    Lines lines;
    lines.services.registered.clear();
    bool flag = false;
    const int result = GetSelector(150, QStringLiteral("Code"), QStringLiteral("Code"), lines.dataSet, {}, {}, false, flag,
                                   true, so_SelectSingle, {}, &lines.form, {});
    QCOMPARE(result, int(SelectorNotChosen));
    QVERIFY(flag && lines.services.openedForms.isEmpty() && lines.services.askedFilters.isEmpty());
  }

  void controlsWithoutADataset()
  {
    FakeServices services;
    TSelectionList asked;
    services.choose = [&](TSelectionList& selection, QObject*) {
      asked = selection;
      return 0;
    };
    TSelector selector(nullptr, static_cast<TField*>(nullptr), itemDescription, nullptr);
    FakeControl control(QStringLiteral("A"));
    selector.FillControl(&control);
    QCOMPARE(filterText(services.openedFilter), QStringLiteral("(N_Item.Code;LIKE;A;AND) (N_Item.Inactive;=;0;)"));
    QCOMPARE(handedText(asked), QStringLiteral("Code/-//0 Name/-//0 Custom_Quantity/-//0 NEWQTY/-//0"));
  }

  void errorsCarryTheirContext()
  {
    Lines lines;
    lines.services.answer = [](const FilterArray&, Variant&) -> int { throw DataError(QStringLiteral("няма връзка")); };
    const auto contextOf = [](const std::function<void()>& body) {
      try {
        body();
      } catch (const TELException& error) {
        return error.procedure();
      }
      return QString();
    };
    bool flag = false;
    QCOMPARE(contextOf([&] {
               GetSelector(150, QStringLiteral("Code"), QStringLiteral("Code"), lines.dataSet, {}, {}, false, flag, true,
                           so_SelectSingle, {}, &lines.form, {});
             }),
             QStringLiteral("GetSelector"));
    QCOMPARE(contextOf([&] {
               FillSelectorFields(150, QStringLiteral("Code"), QStringLiteral("Code"), lines.dataSet, {}, {}, flag,
                                  &lines.form);
             }),
             QStringLiteral("KalvorUtils.FillSelectorFields"));
    QCOMPARE(contextOf([&] {
               GetControlSelector(150, QStringLiteral("Code"), {}, {}, false, flag, so_SelectSingle, {}, &lines.form);
             }),
             QStringLiteral("GetControlSelector"));
  }
};

const RegisterTest<SelectorLookupsTest> selectorLookupsTest;

}  // namespace kalvor::testing

#include "lookups_test.moc"
