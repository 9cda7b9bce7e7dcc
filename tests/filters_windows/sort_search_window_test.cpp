#include <QAction>
#include <QApplication>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTimer>

#include "../widgets/typing.h"
#include "filter_desk.h"
#include "filters/windows/field_filter_dialog.h"
#include "filters/windows/search_dialog.h"
#include "filters/windows/sort_dialog.h"
#include "several_tests.h"
#include "widgets/string_grid.h"

using namespace kalvor;
using namespace kalvor::testing;

namespace {

void addRecord(TClientDataSet& dataSet, const QString& name)
{
  dataSet.Append();
  dataSet.FieldByName(u"Name")->SetAsString(name);
  dataSet.Post();
}

}  // namespace

class SortSearchWindowTest : public QObject {
  Q_OBJECT

  static void inSortDialog(TfSort& dialog, std::function<void()> body, const char* button)
  {
    QTimer::singleShot(0, &dialog, [&dialog, body = std::move(body), button] {
      body();
      dialog.findChild<QPushButton*>(button)->click();
    });
  }

 private slots:
  void theOrderIsShownAndGivenBack()
  {
    TClientDataSet dataSet;
    createSampleDataSet(dataSet);
    dataSet.FieldByName(u"Name")->DisplayLabel = "Име";
    dataSet.FieldByName(u"Hidden")->Visible = false;
    dataSet.FieldByName(u"Code")->Origin = "T.Code";
    TfSort dialog;
    QString order = "Name DESC, T.Code ASC, T.Unknown DESC";
    inSortDialog(dialog, [&] {
      QCOMPARE(dialog.StringGrid()->Cells(0, 0) + dialog.StringGrid()->Cells(1, 0), QString(" Име на поле Ред"));
      QCOMPARE(dialog.StringGrid()->Cells(0, 1) + dialog.StringGrid()->Cells(1, 1), QString("ИмеНамаляващ"));
      QCOMPARE(dialog.StringGrid()->Cells(0, 2) + dialog.StringGrid()->Cells(1, 2), QString("CodeНарастващ"));
      QVERIFY(dialog.fieldList()->findItems("Име", Qt::MatchExactly).isEmpty());
      QVERIFY(dialog.fieldList()->findItems("Hidden", Qt::MatchExactly).isEmpty());
    }, "btnOk");
    QCOMPARE(dialog.ShowSortForm(&dataSet, order), 1);
    QCOMPARE(order, QString("Name DESC, T.Code ASC, T.Unknown DESC"));
  }

  void fieldsAreChosenByKeyboard()
  {
    TClientDataSet dataSet;
    createSampleDataSet(dataSet);
    // Two fields that read the same must not be mistaken for each other.
    dataSet.FieldByName(u"Amount")->DisplayLabel = "Code";
    TfSort dialog;
    QString order;
    const auto key = [&](QWidget* widget, Qt::Key code) { QTest::keyClick(widget, code); };
    inSortDialog(dialog, [&] {
      QListWidget* list = dialog.fieldList();
      list->setCurrentItem(list->findItems("DocDate", Qt::MatchExactly).first());
      key(list, Qt::Key_Space);
      list->setCurrentItem(list->findItems("Code (Amount)", Qt::MatchExactly).first());
      key(list, Qt::Key_Space);
      list->setCurrentItem(list->findItems("Name", Qt::MatchExactly).first());
      key(list, Qt::Key_Space);
      dialog.StringGrid()->setFocus();
      dialog.StringGrid()->select(1, 2);
      key(dialog.StringGrid(), Qt::Key_Space);
      dialog.moveRow(-1);
      dialog.StringGrid()->select(1, 3);
      key(dialog.StringGrid(), Qt::Key_Delete);
      QCOMPARE(list->currentItem()->text(), QString("Name"));
    }, "btnOk");
    QCOMPARE(dialog.ShowSortForm(&dataSet, order), 1);
    QCOMPARE(order, QString("Amount DESC, DocDate ASC"));
    inSortDialog(dialog, [&] { dialog.acTransfToSortExecute(); }, "btnCancel");
    QCOMPARE(dialog.ShowSortForm(&dataSet, order), 2);
    QCOMPARE(order, QString("Amount DESC, DocDate ASC"));
  }

  void recordsAreFound()
  {
    ScriptedPrompt prompt;
    TClientDataSet dataSet;
    createSampleDataSet(dataSet);
    dataSet.FieldByName(u"Name")->DisplayLabel = "Име";
    for (const char* name : {"ябълка", "круша", "зелена ябълка", "череша"}) {
      addRecord(dataSet, name);
    }
    dataSet.First();
    TfSearch search;
    QCOMPARE(search.windowTitle(), QString("Kalvor Client"));
    search.ShowSearchFormNoGrid(&dataSet, "Name");
    QCOMPARE(search.windowTitle(), QString("Tърсене в [Име]"));
    search.setText("ЯБЪЛКА");
    search.action("acSearch")->trigger();
    QCOMPARE(dataSet.RecNo(), 1);
    search.action("acSearchNext")->trigger();
    QCOMPARE(dataSet.RecNo(), 3);
    search.action("acSearchNext")->trigger();
    QCOMPARE(dataSet.RecNo(), 3);
    QCOMPARE(prompt.takeMessages(), QStringList("Търсената стойност [ЯБЪЛКА] не е намерена!"));

    TextSearchOptions backward;
    backward.direction = SearchDirection::Backward;
    backward.scope = SearchScope::FromCurrent;
    search.setOptions(backward);
    search.setText("череша");
    QVERIFY(!search.acSearchExecute(0));
    QCOMPARE(dataSet.RecNo(), 3);
    QCOMPARE(prompt.takeMessages().size(), 1);
  }

  void typingSearchesFromWhereItBegan()
  {
    ScriptedPrompt prompt;
    TClientDataSet dataSet;
    createSampleDataSet(dataSet);
    for (const char* name : {"бор", "ела", "елша", "ель"}) {
      addRecord(dataSet, name);
    }
    dataSet.First();
    TfSearch search;
    TextSearchOptions options;
    options.searchOnTyping = true;
    search.setOptions(options);
    search.ShowSearchFormNoGrid(&dataSet, "Name");
    QVERIFY(QTest::qWaitForWindowActive(&search));
    typeText(&search, "ел");
    QCOMPARE(dataSet.RecNo(), 2);
    typeText(&search, "ш");
    QCOMPARE(dataSet.RecNo(), 3);
    typeText(&search, "х");
    QCOMPARE(dataSet.RecNo(), 3);
    QCOMPARE(prompt.messages, QStringList());
  }

  void aFieldFilterRunsTheLookup()
  {
    ScriptedLookup lookup;
    lookup.records = {{1, "К1", "Първи"}, {2, "К2", "Втори"}};
    FilterOwner owner;
    TClientDataSet dataSet;
    createSampleDataSet(dataSet);
    applyFieldDescriptions(dataSet, descriptionRows(sampleDescriptions()));
    TfFilterFields dialog(&owner, 1, dataSet.FieldByName(u"Partner"), descriptionRow(sampleDescriptions()[4]), "стар",
                          "Контрагент", nullptr);
    QCOMPARE(dialog.value(), QString("стар"));
    dialog.ExecuteSelector();
    QCOMPARE(lookup.opened, 140);
    QCOMPARE(dialog.value(), QString("К1|К2"));
  }
};

static const RegisterTest<SortSearchWindowTest> registerSortSearchWindowTest;
#include "sort_search_window_test.moc"
