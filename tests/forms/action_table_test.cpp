// Every option that a form can be opened with, in every state of its master: which actions are enabled, and how the
// form stands there.
#include <QTimer>

#include "../several_tests.h"
#include "forms/form_filters.h"
#include "import/messages.h"
#include "sample_forms.h"

using namespace kalvor;
using namespace kalvor::testing;

namespace {

// States: B browse, E edit, I insert, C changed and posted.
struct ActionRow {
  const char* action;
  const char* enabledIn;
};
const ActionRow actionsOfEveryForm[] = {
    {"acSave", "EIC"},      {"acCancel", "EIC"},      {"acRefresh", "B"},        {"acCopyNew", "BC"},
    {"acSort", "BEIC"},     {"acFieldFilter", "BEIC"}, {"acTableFilter", "BEIC"}, {"acFind", "BEIC"},
    {"acPrint", "B"},       {"acPreview", "B"},       {"acRemoveFilter", ""},
};

// What an option grants: S choose, E edit, D delete, I insert, in every state.
struct OptionRow {
  const char* name;
  ShowOptionValue option;
  const char* list;
  const char* card;
  const char* stands;  // shown, hidden, modal, child (of no size), nowhere
  char opensIn;        // state of a card that opens on a record
};
const OptionRow optionRows[] = {
    {"so_Normal", so_Normal, "S", "SEDI", "shown", 'B'},
    {"so_SelectSingle", so_SelectSingle, "S", "SEDI", "shown", 'B'},
    {"so_SelectMulty", so_SelectMulty, "S", "SEDI", "shown", 'B'},
    {"so_SelectNew", so_SelectNew, "S", "SEDI", "shown", 'I'},
    {"so_SelectPreview", so_SelectPreview, "S", "SEDI", "shown", 'B'},
    {"so_SelectEdit", so_SelectEdit, "S", "SEDI", "shown", 'E'},
    {"so_NewRecord", so_NewRecord, "S", "SEDI", "shown", 'I'},
    {"so_EditRecord", so_EditRecord, "S", "SEDI", "shown", 'E'},
    {"so_CopyRecord", so_CopyRecord, "S", "SEDI", "shown", 'I'},
    {"so_CannotSelect", so_CannotSelect, "", "EDI", "shown", 'B'},
    {"so_ReusableArticles", so_ReusableArticles, "S", "SEDI", "shown", 'B'},
    {"so_ImportData", so_ImportData, "S", "SEDI", "nowhere", 'B'},
    {"so_SingleRecordView", so_SingleRecordView, "S", "SEDI", "shown", 'B'},
    {"so_ShowModal", so_ShowModal, "S", "SEDI", "modal", 'B'},
    {"so_AllowEdit", so_AllowEdit, "SE", "SEDI", "shown", 'B'},
    {"so_AllowDelete", so_AllowDelete, "SD", "SEDI", "shown", 'B'},
    {"so_AllowInsert", so_AllowInsert, "SI", "SEDI", "shown", 'B'},
    {"so_DoNotShow", so_DoNotShow, "S", "SEDI", "hidden", 'B'},
    {"so_StartImport", so_StartImport, "S", "SEDI", "nowhere", 'B'},
    {"so_Card", so_Card, "S", "SEDI", "shown", 'B'},
    {"so_PostDocument", so_PostDocument, "S", "SEDI", "child", 'B'},
};

QStringList expectedActions(const QString& granted, QChar state)
{
  QStringList names;
  for (const ActionRow& row : actionsOfEveryForm) {
    if (QString(row.enabledIn).contains(state)) {
      names << row.action;
    }
  }
  const QList<std::pair<QChar, QString>> byOption{
      {u'S', "acSelect"}, {u'E', "acEditRecord"}, {u'D', "acDeleteRecord"}, {u'I', "acInsertRecord"}};
  for (const auto& [letter, action] : byOption) {
    if (granted.contains(letter)) {
      names << action;
    }
  }
  names.sort();
  return names;
}

QStringList enabledActions(const TfBase& form)
{
  QStringList names;
  for (const ActionRow& row : actionsOfEveryForm) {
    names << row.action;
  }
  names << "acSelect" << "acEditRecord" << "acDeleteRecord" << "acInsertRecord";
  names.removeIf([&](const QString& name) { return !form.action(name)->isEnabled(); });
  names.sort();
  return names;
}

QChar stateOf(const TClientDataSet& data)
{
  if (data.State() == DataSetState::Browse) {
    return data.ChangeCount() > 0 ? u'C' : u'B';
  }
  return data.State() == DataSetState::Edit ? u'E' : u'I';
}

TfBase* formWith(int formId, QWidget* except = nullptr)
{
  for (QWidget* widget : QApplication::allWidgets()) {
    auto* form = dynamic_cast<TfBase*>(widget);
    if (form && form != except && form->formId() == formId) {
      return form;
    }
  }
  return nullptr;
}

QString standing(TfBase& form)
{
  QWidget* window = form.window() == &form ? &form : form.parentWidget();
  if (QApplication::activeModalWidget()) {
    return form.isVisible() ? "modal" : "modal, hidden";
  }
  if (form.window() == &form) {
    return form.isVisible() ? "on its own" : "nowhere";
  }
  return !form.isVisible() ? "hidden" : window->x() > 100000 ? "child" : "shown";
}

void takeTo(QChar state, TClientDataSet& data)
{
  data.CancelUpdates();
  if (state == u'E' || state == u'C') {
    data.Edit();
  } else if (state == u'I') {
    data.Append();
  }
  if (state == u'C') {
    data.FieldByName(u"Name")->SetAsString("Променено");
    data.Post();
  }
}

}  // namespace

class ActionTableTest : public QObject {
  Q_OBJECT

 private slots:
  void everyOptionAndState_data()
  {
    QTest::addColumn<int>("row");
    QTest::addColumn<int>("form");
    for (int row = 0; row < int(std::size(optionRows)); ++row) {
      QTest::addRow("%s, list", optionRows[row].name) << row << 140;
      QTest::addRow("%s, card", optionRows[row].name) << row << 141;
    }
  }
  void everyOptionAndState()
  {
    QFETCH(int, row);
    QFETCH(int, form);
    const OptionRow& expected = optionRows[row];
    const bool list = form == 140;
    Desk desk;
    const Variant id =
        demoServer()->core().openReader()->value("SELECT MIN(Id) FROM N_Contragent WHERE Comp_Id = '1'", {});
    int walked = 0;
    const auto walk = [&] {
      TfBase* opened = formWith(form);
      QVERIFY(opened);
      QCOMPARE(standing(*opened), QString(expected.stands));
      TClientDataSet& data = *opened->GetCdsMaster();
      if (!list) {
        QCOMPARE(stateOf(data), QChar(expected.opensIn));
      }
      for (const QChar state : QString("BEIC")) {
        const QString granted = list ? expected.list : expected.card;
        // A list is not written in place: only its options let it be.
        const QChar needed = state == u'I' ? u'I' : u'E';
        if (list && state != u'B' && !granted.contains(needed)) {
          continue;
        }
        takeTo(state, data);
        QCOMPARE(stateOf(data), state);
        QCOMPARE(enabledActions(*opened), expectedActions(granted, state));
        ++walked;
      }
      data.CancelUpdates();
      opened->window()->close();
    };
    QTimer::singleShot(0, &desk.window.area, [&] {
      if (expected.option == so_ShowModal) {
        walk();
      }
      if (QWidget* modal = QApplication::activeModalWidget()) {
        modal->close();
      }
    });
    RequestForm(form, expected.option, recordFilter("ID", id));
    if (expected.option != so_ShowModal) {
      walk();
    }
    QVERIFY(walked > 0);
    // A card that was opened to import asks for its import filter; there is none for contractors.
    const bool asked = expected.option == so_StartImport && !list;
    QCOMPARE(desk.prompt.takeMessages(), asked ? QStringList{_err_NotRegistredDP} : QStringList());
  }
};

static const RegisterTest<ActionTableTest> registerActionTableTest;
#include "action_table_test.moc"
