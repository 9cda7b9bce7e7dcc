#include <QApplication>
#include <QCalendarWidget>
#include <QMenu>
#include <QPushButton>
#include <QTableView>

#include "../filter_text.h"
#include "../widgets/typing.h"
#include "filter_desk.h"
#include "filters/windows/table_filter.h"
#include "registry/windows/date_selector.h"
#include "several_tests.h"
#include "widgets/string_grid.h"

using namespace kalvor;
using namespace kalvor::testing;

namespace {

struct Editor {
  explicit Editor(const FilterArray& start = {})
  {
    createSampleDataSet(dataSet);
    window = std::make_unique<TfTableFilter>(&owner, "Контрагенти", descriptionRows(sampleDescriptions()), &dataSet,
                                             start);
    grid = window->StringGrid();
  }
  void show()
  {
    window->InitStrGrid();
    window->DoShowTableFilter();
    if (!QTest::qWaitForWindowActive(window.get())) {
      qWarning("The window did not become active");
    }
  }
  void key(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
  {
    QTest::keyClick(QApplication::focusWidget(), Qt::Key(key), modifiers);
  }
  void type(const QString& text) { typeText(QApplication::focusWidget(), text); }

  ScriptedPrompt prompt;
  ToldMainWindow main;
  FilterOwner owner;
  TClientDataSet dataSet;
  std::unique_ptr<TfTableFilter> window;
  TStringGrid* grid;
};

}  // namespace

class TableFilterWindowTest : public QObject {
  Q_OBJECT

 private slots:
  void twoRowsAreFilledByKeyboard()
  {
    Editor editor;
    editor.show();
    QCOMPARE(editor.owner.active, static_cast<ISelectorOwnerIntf*>(editor.window.get()));
    QCOMPARE(editor.grid->Cells(tfField, 0) + editor.grid->Cells(tfConjunction, 0), QString(" Име на поле Съюз"));
    editor.type("им");
    editor.key(Qt::Key_Tab);
    editor.type("с");
    editor.key(Qt::Key_Tab);
    editor.type("ЕТ*");
    editor.key(Qt::Key_Down);
    QCOMPARE(editor.grid->RowCount(), 3);
    QCOMPARE(editor.grid->Cells(tfConjunction, 1), QString("И"));
    editor.type("акт");
    editor.key(Qt::Key_Tab);
    editor.key(Qt::Key_Tab);
    editor.type("д");
    editor.key(Qt::Key_Return);
    QVERIFY(editor.window->findChild<QPushButton*>("btnOk")->hasFocus());
    QCOMPARE(editor.owner.times, 0);
    editor.key(Qt::Key_Return);
    QCOMPARE(editor.prompt.messages, QStringList());
    QCOMPARE(filterText(editor.owner.taken), QString("(T.Name;LIKE;ЕТ*;AND) (T.Active;=;1;)"));
    QVERIFY(!editor.owner.merged && editor.owner.parameters.isEmpty());
    QVERIFY(!editor.window->isVisible());
    QCOMPARE(editor.window->result(), int(QDialog::Accepted));
    QVERIFY(!editor.owner.active);
  }

  void anEmptyTableIsNoFilter()
  {
    Editor editor;
    editor.show();
    editor.window->btnOkClick();
    QCOMPARE(editor.owner.times, 1);
    QVERIFY(editor.owner.taken.isEmpty());
  }

  void theMainWindowListsIt()
  {
    Editor editor;
    editor.show();
    QTRY_COMPARE(editor.main.titles.value(editor.window->uniqueId()), QString("Филтриране - Контрагенти"));
    FieldCaption = "Име";
    fieldValue = "а";
    editor.key(Qt::Key_Escape);
    QVERIFY(!editor.window->isVisible());
    QCOMPARE(editor.main.closed, QStringList(editor.window->uniqueId()));
    QCOMPARE(FieldCaption + fieldValue, QString());
    QCOMPARE(editor.owner.times, 0);
  }

  void startingFilterAndPresetAreShown()
  {
    Editor editor({{"T.Active", "=", 0, "AND", QString()}, {"T.Name", "LIKE", "а", QString(), QString()}});
    FieldCaption = "Код";
    fieldValue = "5..7";
    editor.show();
    QCOMPARE(tableTexts(editor.grid->table()),
             QStringList({"Активен;=;Не;И", "Име;Съдържа;а;И", "Код;>=;5;И", "Код;<=;7;"}));
    editor.window->btnOkClick();
    QCOMPARE(filterText(editor.owner.taken),
             QString("(T.Active;=;0;AND) (T.Name;LIKE;а;AND) (T.Code;>=;5;AND) (T.Code;<=;7;)"));
  }

  void anInvalidRowKeepsTheEditorOpen()
  {
    Editor editor;
    editor.show();
    fillTable(editor.grid->table(), {"Име;=;a;И", "Код;=;пет;"});
    editor.window->btnOkClick();
    QCOMPARE(editor.prompt.takeMessages(), QStringList("Въведената стойност трябва да е целочислена"));
    QVERIFY(editor.window->isVisible() && editor.grid->hasFocus());
    QCOMPARE(editor.grid->Col() * 10 + editor.grid->Row(), int(tfValue) * 10 + 2);
    QCOMPARE(editor.owner.times, 0);
    editor.grid->SetCells(tfField, 2, "Дата");
    editor.grid->SetCells(tfValue, 2, "31.02.2024");
    editor.window->btnOkClick();
    QCOMPARE(editor.prompt.messages.size(), 1);
    QVERIFY(editor.window->isVisible());
  }

  void rowsAreDeletedAndCleared()
  {
    Editor editor;
    editor.show();
    fillTable(editor.grid->table(), {"Име;=;a;И", "Код;=;5;"});
    editor.grid->select(tfField, 1);
    editor.key(Qt::Key_Delete);
    QCOMPARE(tableTexts(editor.grid->table()), QStringList("Код;=;5;"));
    editor.key(Qt::Key_Delete);
    QCOMPARE(tableTexts(editor.grid->table()), QStringList("Код;=;5;"));
    editor.window->miAddRowClick();
    QCOMPARE(editor.grid->RowCount(), 3);
    editor.window->miDeleteRowClick();
    QCOMPARE(editor.grid->RowCount(), 2);
    editor.window->btnClearClick();
    QCOMPARE(tableTexts(editor.grid->table()), QStringList(";;;"));
  }

  void aReportsRowsTakeValuesOnly()
  {
    Editor editor;
    editor.window->DoShowReportFilter();
    QCOMPARE(editor.window->prefilledRows(), 5);
    QVERIFY(QTest::qWaitForWindowActive(editor.window.get()));
    editor.grid->select(tfField, 1);
    editor.type("код");
    QVERIFY(!editor.grid->cellEditor());
    editor.key(Qt::Key_Delete);
    QCOMPARE(editor.grid->RowCount(), 6);
    editor.grid->select(tfValue, 5);
    editor.type("S1");
    editor.key(Qt::Key_Down);
    QCOMPARE(editor.grid->Cells(tfValue, 5), QString("S1"));
    editor.type("код");
    editor.key(Qt::Key_Tab);
    QCOMPARE(editor.grid->Cells(tfField, 6), QString("Код"));
    editor.window->btnClearClick();
    QCOMPARE(editor.grid->Cells(tfField, 1) + editor.grid->Cells(tfValue, 1), QString("Име"));
    QCOMPARE(editor.grid->Cells(tfField, 6), QString());
  }

  void aLookupFillsTheCell()
  {
    ScriptedLookup lookup;
    lookup.records = {{1, "К1", "Първи"}, {2, "К2", "Втори"}};
    Editor editor;
    editor.show();
    fillTable(editor.grid->table(), {"Контрагент;=;;"});
    editor.grid->select(tfValue, 1);
    editor.key(Qt::Key_F4);
    QCOMPARE(lookup.opened, 140);
    QCOMPARE(editor.grid->Cells(tfValue, 1), QString("К1|К2"));
    editor.window->btnOkClick();
    QCOMPARE(filterText(editor.owner.taken), QString("(T.Partner;=;К1;OR;() (T.Partner;=;К2;;))"));
  }

  void theCalendarWritesTheDate()
  {
    FixedClock clock(QDateTime(QDate(2024, 3, 9), QTime(12, 0)));
    Editor editor;
    editor.show();
    fillTable(editor.grid->table(), {"Дата;=;;"});
    editor.grid->select(tfValue, 1);
    editor.key(Qt::Key_Down, Qt::AltModifier);
    auto* calendar = qobject_cast<TfDateSelectorForm*>(QApplication::activePopupWidget());
    QVERIFY(calendar);
    QCOMPARE(calendar->date(), QDate(2024, 3, 9));
    QTest::keyClick(calendar->findChild<QTableView*>(), Qt::Key_Down);
    QTest::keyClick(calendar->findChild<QTableView*>(), Qt::Key_Return);
    QCOMPARE(editor.grid->Cells(tfValue, 1), QString("16/03/2024"));
    editor.window->btnOkClick();
    QCOMPARE(filterText(editor.owner.taken), QString("(T.DocDate;=;20240316;)"));
  }

  void macrosComeFromTheMenu()
  {
    Editor editor;
    editor.window->setMacroMode(true);
    editor.show();
    fillTable(editor.grid->table(), {"Код;=;;И", "Дата;>=;-1m;"});
    editor.grid->select(tfValue, 1);
    QContextMenuEvent wanted(QContextMenuEvent::Keyboard, QPoint(), QPoint());
    QApplication::sendEvent(editor.grid, &wanted);
    auto* menu = editor.window->findChild<QMenu*>("pmParameter");
    QVERIFY(menu->isVisible());
    QStringList captions;
    for (const QAction* action : menu->actions()) {
      if (!action->isSeparator()) {
        captions.append(action->text());
      }
    }
    QCOMPARE(captions, QStringList({"Текуща компания", "Текущ обект", "Tекущ потребител", "Текуща дата"}));
    menu->close();
    editor.window->miCurrUserClick();
    QCOMPARE(editor.grid->Cells(tfValue, 1), QString("<#Param(USER_ID)#>"));
    editor.window->miCurrCompanyClick();
    editor.window->btnOkClick();
    QCOMPARE(filterText(editor.owner.security),
             QString("(T.Code;=;<#Param(COMPANY_ID)#>;AND) (T.DocDate;>=;<#Param(-1m)#>;)"));
    QVERIFY(editor.owner.taken.isEmpty());
  }
};

static const RegisterTest<TableFilterWindowTest> registerTableFilterWindowTest;
#include "table_filter_window_test.moc"
