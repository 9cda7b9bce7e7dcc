#include "filter_text.h"
#include "forms/form_rights.h"
#include "records.h"
#include "session/local_data.h"
#include "several_tests.h"

using namespace kalvor;
using kalvor::testing::fieldDef;
using Refusal = StateChangeRefusal;

class FormRightsTest : public QObject {
  Q_OBJECT

  static QString lettersOf(const TFormRights& r)
  {
    const QList<QPair<bool, char>> rights{{r.ReadRight, 'R'},   {r.EditRight, 'E'},   {r.InsertRight, 'I'},
                                          {r.DeleteRight, 'D'}, {r.FinishRight, 'F'}, {r.PrintRight, 'P'},
                                          {r.ExportRight, 'X'}, {r.EditPropsRight, 'O'}, {r.AnnulRight, 'A'}};
    QString letters;
    for (const auto& [given, letter] : rights)
      letters += given ? letter : '-';
    return letters;
  }

 private slots:
  void initTestCase()
  {
    rights_.CreateDataSet({fieldDef("FormId", DataType::Integer), fieldDef("ReadRight", DataType::Integer),
                           fieldDef("EditRight", DataType::Integer), fieldDef("InsertRight", DataType::Integer),
                           fieldDef("DeleteRight", DataType::Integer), fieldDef("FinishRight", DataType::Integer),
                           fieldDef("PrintRight", DataType::Integer), fieldDef("ExportRight", DataType::Integer),
                           fieldDef("EditPropsRight", DataType::Integer), fieldDef("AnnulRight", DataType::Integer),
                           fieldDef("SecurityFilter")});
    rights_.AppendRecord({10, 1, 0, 1, Variant(), 2, 1, -1, 1, 0, "T.Comp_Id,=,<#Param(COMPANY_ID)#>,&T.A,>,5,"});
    rights_.AppendRecord({20, 1, 1, 1, 1, 1, 1, 1, 1, 1, ""});
  }

  void rightsOfAForm_data()
  {
    QTest::addColumn<int>("formId");
    QTest::addColumn<bool>("byDefault");
    QTest::addColumn<QString>("user");
    QTest::addColumn<QString>("letters");
    QTest::addColumn<QString>("filter");
    QTest::newRow("exactly one") << 10 << true << "ivan" << "R-I--P-O-" << "(T.Comp_Id;=;7;AND) (T.A;>;5;)";
    QTest::newRow("no filter") << 20 << false << "ivan" << "REIDFPXOA" << "";
    QTest::newRow("no row, default") << 30 << true << "ivan" << "REIDFPXOA" << "";
    QTest::newRow("no row, none") << 30 << false << "ivan" << "---------" << "";
    QTest::newRow("administrator") << 10 << false << "SuperVSR" << "REIDFPXOA" << "";
  }
  void rightsOfAForm()
  {
    LocalData.CompanyId = "7";
    QFETCH(int, formId);
    QFETCH(bool, byDefault);
    QFETCH(QString, user);
    const TFormRights rights = loadFormRights(formId, byDefault, user, &rights_);
    QTEST(lettersOf(rights), "letters");
    QTEST(testing::filterText(rights.SecurityFilter), "filter");
  }

  void closedDatasetGivesTheDefault()
  {
    TClientDataSet closed;
    QCOMPARE(lettersOf(loadFormRights(10, true, "ivan", &closed)), QString("REIDFPXOA"));
    QCOMPARE(lettersOf(loadFormRights(10, false, "ivan", nullptr)), QString("---------"));
  }

  void statesAreRefused_data()
  {
    QTest::addColumn<int>("state");
    QTest::addColumn<bool>("editRight");
    QTest::addColumn<bool>("mayEdit");
    QTest::addColumn<int>("refusal");
    const auto row = [](const char* name, DataSetState state, bool right, bool may, Refusal refusal) {
      QTest::newRow(name) << int(state) << right << may << int(refusal);
    };
    row("edit", DataSetState::Edit, true, true, Refusal::None);
    row("edit without right", DataSetState::Edit, false, true, Refusal::CancelAllChanges);
    row("edit not now", DataSetState::Edit, true, false, Refusal::CancelEdit);
    row("key without right", DataSetState::SetKey, false, true, Refusal::CancelAllChanges);
    row("key not now", DataSetState::SetKey, true, false, Refusal::None);
    row("insert", DataSetState::Insert, true, true, Refusal::None);
    row("insert without right", DataSetState::Insert, false, true, Refusal::CancelInsert);
    row("insert not now", DataSetState::Insert, true, false, Refusal::CancelInsert);
    row("browse", DataSetState::Browse, false, false, Refusal::None);
  }
  void statesAreRefused()
  {
    QFETCH(int, state);
    QFETCH(bool, editRight);
    QFETCH(bool, mayEdit);
    TFormRights rights;
    rights.EditRight = rights.InsertRight = editRight;
    QTEST(int(checkStateChange(DataSetState(state), rights, mayEdit, mayEdit)), "refusal");
  }

 private:
  TClientDataSet rights_;
};

static const testing::RegisterTest<FormRightsTest> registerFormRightsTest;
#include "form_rights_test.moc"
