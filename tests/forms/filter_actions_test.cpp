#include <QAbstractButton>
#include <QListWidget>
#include <QTimer>

#include "../filter_text.h"
#include "../several_tests.h"
#include "filters/windows/field_filter_dialog.h"
#include "filters/windows/search_dialog.h"
#include "filters/windows/sort_dialog.h"
#include "filters/windows/table_filter.h"
#include "registry/form_descriptions.h"
#include "sample_forms.h"
#include "widgets/db_grid_ex.h"
#include "widgets/string_grid.h"

using namespace kalvor;
using namespace kalvor::testing;

namespace {

constexpr int filteredForm = 140;

TfTableFilter* editorOf(const QWidget* form)
{
  return form->findChild<TfTableFilter*>();
}

void fillRow(TfTableFilter* editor, int row, const QStringList& cells)
{
  editor->StringGrid()->table().SetRowCount(std::max(editor->StringGrid()->RowCount(), row + 1));
  for (int column = 0; column < cells.size(); ++column) {
    editor->StringGrid()->SetCells(column, row, cells[column]);
  }
}

QStringList rowOf(const TfTableFilter* editor, int row)
{
  QStringList cells;
  for (int column = 0; column < tableFilterColumnCount; ++column) {
    cells.append(editor->StringGrid()->Cells(column, row));
  }
  return cells;
}

// A default filter for the form, for as long as this lives.
class DefaultFilter {
 public:
  explicit DefaultFilter(const QString& text)
      : description_(const_cast<TFormData*>(GetFromDataObject(QString::number(filteredForm), 0)))
  {
    before_ = std::exchange(description_->FormFilter, text);
  }
  ~DefaultFilter() { description_->FormFilter = before_; }

 private:
  TFormData* description_;
  QString before_;
};

}  // namespace

class FilterActionsTest : public QObject {
  Q_OBJECT

 private slots:
  void aTableFilterNarrowsTheList()
  {
    Desk desk;
    auto* list = desk.open<TfBrContragent>(filteredForm);
    list->TableFilter();
    TfTableFilter* editor = editorOf(list);
    QVERIFY(editor && editor->isVisible());
    fillRow(editor, 1, {"Наименование", "Съдържа", "ЕТ", "И"});
    fillRow(editor, 2, {"Неактивен", "=", "Не", ""});
    editor->btnOkClick();
    QCOMPARE(desk.prompt.takeMessages(), QStringList());
    QCOMPARE(list->formFilter().size(), 2);
    QVERIFY(list->hasFilter() && desk.window.hasFilter);
    QVERIFY(list->cdsMaster()->RecordCount() > 0);
    int inside = 0;
    for (qsizetype row = 0; row < list->cdsMaster()->RecordCount(); ++row) {
      const QString name = list->cdsMaster()->FieldByName(u"Name")->ValueAt(row).toString();
      QVERIFY2(name.contains("ЕТ", Qt::CaseInsensitive), qPrintable(name));
      inside += !name.startsWith("ЕТ");
    }
    QVERIFY(inside > 0);  // contains is more than begins
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!editorOf(list));

    list->TableFilter();
    QCOMPARE(rowOf(editorOf(list), 1), QStringList({"Наименование", "Съдържа", "ЕТ", "И"}));
    QCOMPARE(rowOf(editorOf(list), 2), QStringList({"Неактивен", "=", "Не", ""}));
    editorOf(list)->btnClearClick();
    editorOf(list)->btnOkClick();
    QVERIFY(!list->hasFilter());
  }

  void theFieldFilterHandsItsCriterionOver()
  {
    Desk desk;
    auto* list = desk.open<TfBrContragent>(filteredForm);
    list->dbgMaster()->setFocus();
    list->dbgMaster()->selectField("Name");
    QTimer::singleShot(0, list, [] {
      auto* dialog = qobject_cast<TfFilterFields*>(QApplication::activeModalWidget());
      dialog->setValue("А..Б");
      dialog->findChild<QAbstractButton*>("btnTable")->click();
    });
    list->FieldFilter();
    TfTableFilter* editor = editorOf(list);
    QVERIFY(editor && editor->isVisible());
    QCOMPARE(rowOf(editor, 1), QStringList({"Наименование", ">=", "А", "И"}));
    QCOMPARE(rowOf(editor, 2), QStringList({"Наименование", "<=", "Б", ""}));
    // What a lookup chooses goes to the editor now, not to the dialog that closed.
    fillRow(editor, 1, {"", "", "", ""});
    TFieldSet key;
    key.KeyField = true;
    key.Value = "В";
    editor->StringGrid()->select(tfValue, 2);
    QVERIFY(list->ProcessSelectedRecords({{key}}, so_SelectSingle));
    QCOMPARE(rowOf(editor, 2), QStringList({"Наименование", "<=", "В", ""}));
    editor->reject();
    QCOMPARE(FieldCaption, QString());
  }

  void aFormThatAsksOpensWithTheAnswer()
  {
    Desk desk;
    windowOf(desk.open<TfBrContragent>(filteredForm))->close();
    const DefaultFilter asking("N_Contragent.Inactive,=,0,&<#Param(USER_FILTER)#>");
    auto* list = desk.open<TfBrContragent>(filteredForm);
    QVERIFY(list && !list->isVisible() && list->tableFilterShown());
    QVERIFY(list->cdsMaster()->Active() && list->cdsMaster()->IsEmpty());
    TfTableFilter* editor = editorOf(list);
    QVERIFY(editor && editor->isVisible());
    QCOMPARE(rowOf(editor, 1), QStringList({"Неактивен", "=", "Не", ""}));
    fillRow(editor, 1, {"Неактивен", "=", "Не", "И"});
    fillRow(editor, 2, {"Наименование", "Съдържа", "ЕТ", ""});
    editor->btnOkClick();
    QVERIFY(list->isVisible());
    QVERIFY(list->cdsMaster()->RecordCount() > 0);
    QCOMPARE(list->formFilter().size(), 2);
    QVERIFY(list->hasFilter());
  }

  void aFormThatGetsNoAnswerCloses()
  {
    Desk desk;
    windowOf(desk.open<TfBrContragent>(filteredForm))->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    const DefaultFilter asking("<#Param(USER_FILTER)#>");
    QPointer<TfBrContragent> list = desk.open<TfBrContragent>(filteredForm);
    editorOf(list)->reject();
    QTRY_VERIFY(!list);
    QVERIFY(desk.window.area.subWindowList().isEmpty());
  }

  void sortingAsksTheServerAgain()
  {
    Desk desk;
    auto* list = desk.open<TfBrContragent>(filteredForm);
    QTimer::singleShot(0, list, [] {
      auto* dialog = qobject_cast<TfSort*>(QApplication::activeModalWidget());
      dialog->FillGridFromOrder("Name DESC");
      dialog->findChild<QAbstractButton*>("btnOk")->click();
    });
    list->Sort();
    QCOMPARE(list->sortOrder(), QString("Name DESC"));
    const TField* name = list->cdsMaster()->FieldByName(u"Name");
    QVERIFY(QString::localeAwareCompare(name->ValueAt(0).toString(), name->ValueAt(20).toString()) > 0);
  }

  void findOpensTheSearch()
  {
    Desk desk;
    auto* list = desk.open<TfBrContragent>(filteredForm);
    list->dbgMaster()->setFocus();
    list->dbgMaster()->selectField("Name");
    list->Find();
    auto* search = list->findChild<TfSearch*>();
    QVERIFY(search && search->isVisible());
    QCOMPARE(search->windowTitle(), QString("Tърсене в [Наименование]"));
    list->LastRecord();
    const QString last = list->cdsMaster()->FieldByName(u"Name")->AsString();
    list->FirstRecord();
    search->setText(last.mid(2));
    QVERIFY(search->acSearchExecute(0));
    QVERIFY(list->cdsMaster()->FieldByName(u"Name")->AsString().contains(last.mid(2)));
    search->setOptions({SearchDirection::Backward, SearchScope::FromCurrent, true, false, false});
    search->reject();
    list->Find();
    QCOMPARE(search->options().direction, SearchDirection::Backward);
  }

  void unsavedChangesAreAskedForFirst()
  {
    Desk desk;
    auto* list = desk.open<TfBrContragent>(filteredForm);
    list->SetPblFilter({{"N_Contragent.Inactive", "=", 0, QString(), QString()}}, {}, false);
    list->cdsMaster()->Edit();
    list->cdsMaster()->FieldByName(u"Name")->SetAsString("Ново");
    for (void (TfBase::*verb)() : {&TfBase::TableFilter, &TfBase::Sort, &TfBase::RemoveFilter}) {
      desk.prompt.answers = {PromptButton::No};
      (list->*verb)();
      QCOMPARE(desk.prompt.takeMessages().size(), 1);
      QVERIFY(!editorOf(list));
      QVERIFY(list->hasFilter() && list->formFilter().size() == 1);
      QCOMPARE(list->cdsMaster()->FieldByName(u"Name")->AsString(), QString("Ново"));
    }
  }
};

static const RegisterTest<FilterActionsTest> registerFilterActionsTest;
#include "filter_actions_test.moc"
