#include "filter_text.h"
#include "forms/record_rules.h"
#include "records.h"
#include "scripted_ports.h"
#include "several_tests.h"

using namespace kalvor;
using kalvor::testing::fieldDef;

class RecordRulesTest : public QObject {
  Q_OBJECT
 private slots:
  void requiredFieldErrors_data()
  {
    QTest::addColumn<QString>("error");
    QTest::addColumn<QString>("message");
    QTest::newRow("caption") << requiredFieldMessage("Контрагент") << "Некоректна стойност за поле: Контрагент.";
    QTest::newRow("ID prefix") << requiredFieldMessage("ID Контрагент") << "Некоректна стойност за поле: Контрагент.";
    QTest::newRow("word must inside") << requiredFieldMessage("You must") << "Некоректна стойност за поле: You must.";
    QTest::newRow("short") << " must have a value" << "Некоректна стойност за поле: .";
    QTest::newRow("other") << "Дублиран ключ" << "";
  }
  void requiredFieldErrors()
  {
    QFETCH(QString, error);
    QFETCH(QString, message);
    testing::ScriptedPrompt prompt;
    ErrorAction action = ErrorAction::Fail;
    translateRecordError(DataError(error), action);
    QCOMPARE(action, message.isEmpty() ? ErrorAction::Fail : ErrorAction::Abort);
    QCOMPARE(prompt.takeMessages(), message.isEmpty() ? QStringList() : QStringList{message});
  }

  void postingARecordWithoutItsRequiredField()
  {
    testing::ScriptedPrompt prompt;
    TClientDataSet dataSet;
    dataSet.CreateDataSet({fieldDef("Code")});
    dataSet.FieldByName(u"Code")->Required = true;
    dataSet.FieldByName(u"Code")->DisplayLabel = "ID Код";
    dataSet.OnPostError = [](TClientDataSet*, const DataError& error, ErrorAction& action) {
      translateRecordError(error, action);
    };
    dataSet.Append();
    QVERIFY_EXCEPTION_THROWN(dataSet.Post(), SilentAbort);
    QVERIFY(dataSet.IsEditing());
    QCOMPARE(prompt.takeMessages(), QStringList{"Некоректна стойност за поле: Код."});
  }

  void selectorFieldChanges()
  {
    QCOMPARE(selectorFieldChange("", true), SelectorFieldChange::RunWithoutText);
    QCOMPARE(selectorFieldChange("", false), SelectorFieldChange::SetNull);
    QCOMPARE(selectorFieldChange("x", true), SelectorFieldChange::RunWithText);
  }

  void seriesWithAutomaticNumbers_data()
  {
    QTest::addColumn<int>("found");
    QTest::addColumn<Variant>("answer");
    QTest::addColumn<bool>("inProgress");
    QTest::addColumn<QString>("number");
    QTest::newRow("automatic only") << 1 << Variant(0) << false << "old";
    QTest::newRow("as text") << 1 << Variant("0") << false << "old";
    QTest::newRow("manual allowed") << 1 << Variant(1) << false << "new";
    QTest::newRow("no value") << 1 << Variant() << false << "new";
    QTest::newRow("not found") << 0 << Variant(0) << false << "new";
    QTest::newRow("defaults in progress") << 1 << Variant(0) << true << "new";
  }
  void seriesWithAutomaticNumbers()
  {
    QFETCH(int, found);
    QFETCH(Variant, answer);
    QFETCH(bool, inProgress);
    QFETCH(QString, number);
    testing::ScriptedPrompt prompt;
    TClientDataSet dataSet;
    dataSet.CreateDataSet({fieldDef("No"), fieldDef("Series_Id")});
    dataSet.AppendRecord({"old", "S1"});
    dataSet.MergeChangeLog();
    QStringList asked;
    SeriesCalls server;
    server.GetQueryID = [](int formId, int dsIndex) { return formId * 10 + dsIndex; };
    server.RequestValue = [&](int query, const QString& source, const QString& columns, const FilterArray& filter,
                              Variant& value, bool all) {
      asked.append(QString("%1 '%2' %3 %4 %5").arg(query).arg(source, columns, testing::filterText(filter)).arg(all));
      value = answer;
      return found;
    };
    TField* field = dataSet.FieldByName(u"No");
    field->OnChange = [&](TField* changed) { SerieFieldOnChange(changed, inProgress, server); };
    dataSet.Edit();
    field->SetAsString("new");
    QCOMPARE(field->AsString(), number);
    QCOMPARE(asked, inProgress ? QStringList() : QStringList{"7800 '' ManualNo (Id;=;S1;) 0"});
    QCOMPARE(prompt.takeMessages(),
             number == "old" ? QStringList{"Серията позволява само автоматична номерация"} : QStringList());
  }

  void seriesNeedASeriesField()
  {
    TClientDataSet dataSet;
    dataSet.CreateDataSet({fieldDef("No")});
    SerieFieldOnChange(dataSet.FieldByName(u"No"), false, {});  // would call what is not there
    QCOMPARE(lockedFieldMessage(dataSet.FieldByName(u"No")), QString("Полето No е заключено."));
  }
};

static const testing::RegisterTest<RecordRulesTest> registerRecordRulesTest;
#include "record_rules_test.moc"
