#include "forms/action_states.h"
#include "several_tests.h"

using namespace kalvor;

class ActionStatesTest : public QObject {
  Q_OBJECT

  static QString enabledOf(const ActionFacts& facts)
  {
    QStringList names;
    const QHash<QString, bool> states = actionStates(facts);
    for (auto it = states.begin(); it != states.end(); ++it)
      if (it.value())
        names.append(it.key().mid(2));
    names.sort();
    return names.join(' ');
  }

 private slots:
  void states_data()
  {
    QTest::addColumn<QString>("facts");
    QTest::addColumn<QString>("enabled");
    QTest::newRow("browse") << "" << "CopyNew DeleteRecord EditRecord FieldFilter Find InsertRecord Preview Print "
                                     "Refresh Select Sort TableFilter";
    QTest::newRow("editing") << "E" << "Cancel DeleteRecord EditRecord FieldFilter Find InsertRecord Save Select Sort "
                                       "TableFilter";
    QTest::newRow("changed") << "C" << "Cancel CopyNew DeleteRecord EditRecord FieldFilter Find InsertRecord Save "
                                       "Select Sort TableFilter";
    QTest::newRow("may not save") << "ECs" << "DeleteRecord EditRecord FieldFilter Find InsertRecord Preview Print "
                                              "Select Sort TableFilter";
    QTest::newRow("read-only, filtered") << "rf" << "CopyNew FieldFilter Find Preview Print Refresh RemoveFilter "
                                                    "Select Sort TableFilter";
    QTest::newRow("list without modification") << "eidx" << "CopyNew FieldFilter Find Preview Print Refresh Sort "
                                                            "TableFilter";
  }
  void states()
  {
    QFETCH(QString, facts);
    ActionFacts f;
    f.editing = facts.contains('E');
    f.changed = facts.contains('C');
    f.canSave = !facts.contains('s');
    f.masterReadOnly = facts.contains('r');
    f.hasFilter = facts.contains('f');
    f.mayEdit = !facts.contains('e');
    f.mayInsert = !facts.contains('i');
    f.mayDelete = !facts.contains('d');
    f.cannotSelect = facts.contains('x');
    QTEST(enabledOf(f), "enabled");
  }

  void linesForTheMainWindow()
  {
    const QStringList on{"acSave", "acEditRecord", "acRemoveFilter", "acCopyNew"};
    const PositionFacts position{true, false, true};
    const QStringList lines = mainWindowActionLines([&](const QString& name) { return on.contains(name); }, position);
    QCOMPARE(lines, (QStringList{"acGlobalSave=-1", "acGlobalCancel=0", "acGlobalRefresh=0", "acDeleteRecord=0",
                                 "acDocumentEdit=-1", "acSort=0", "acFieldFilter=0", "acTableFilter=0",
                                 "acShowAll=-1", "acFind=0", "acTextPrint=0", "acAddRecord=0", "acPrint=0",
                                 "acPreview=0", "acCopyNewRecord=-1", "acFirst=0", "acPrev=0", "acNext=-1",
                                 "acLast=-1", "acImport=1", "acExport=1", "acSelectAll=-1", "acReCalcDoc=0"}));
  }
};

static const testing::RegisterTest<ActionStatesTest> registerActionStatesTest;
#include "action_states_test.moc"
