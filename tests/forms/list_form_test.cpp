#include <QMenu>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTimer>

#include "../several_tests.h"
#include "forms/form_filters.h"
#include "forms/windows/cds_options.h"
#include "forms/windows/columns_dialog.h"
#include "sample_forms.h"
#include "session/settings_document.h"
#include "session/windows/settings_form.h"
#include "session/ini_options.h"
#include "widgets/db_grid_ex.h"

using namespace kalvor;
using namespace kalvor::testing;

namespace {

constexpr int contragents = 140;
constexpr int saleInvoices = 120;
const ShowOption allowAll = ShowOption(so_Normal) | so_AllowEdit | so_AllowInsert | so_AllowDelete;

QString stateOf(const QStringList& states, const QString& name)
{
  for (const QString& line : states) {
    if (line.startsWith(name + u'=')) {
      return line.mid(name.size() + 1);
    }
  }
  return QStringLiteral("missing");
}

FilterArray nameBegins(const QString& text)
{
  return {{QStringLiteral("N_Contragent.Name"), QStringLiteral("LIKE"), text + u'%', QString(), QString()}};
}

QStringList names(const TClientDataSet& dataSet)
{
  QStringList texts;
  const TField* field = dataSet.FieldByName(u"Name");
  for (qsizetype row = 0; row < dataSet.RecordCount(); ++row) {
    texts << field->ValueAt(row).toString();
  }
  return texts;
}

}  // namespace

class ListFormTest : public QObject {
  Q_OBJECT

 private slots:
  void aListOpensWithItsMetadata()
  {
    Desk desk;
    QVERIFY(desk.session.loggedIn);
    auto* list = desk.open<TfBrContragent>(contragents);
    QVERIFY2(list, qPrintable(desk.prompt.messages.join(u'\n')));
    QCOMPARE(list->windowTitle(), QStringLiteral("Контрагенти"));
    QCOMPARE(list->cdsMaster()->FieldByName(u"Name")->DisplayLabel, QStringLiteral("Наименование"));
    QVERIFY(!list->cdsMaster()->FieldByName(u"Id")->Visible);
    QCOMPARE(list->cdsMaster()->RecordCount(), 32);  // the first packet
    QVERIFY(desk.window.titles.contains(QStringLiteral("Контрагенти")));
    QCOMPARE(desk.window.states.size(), 23);
    QCOMPARE(desk.window.states.first(), QStringLiteral("acGlobalSave=0"));
    QCOMPARE(desk.window.states.mid(17, 4).join(u';'),
             QStringLiteral("acNext=-1;acLast=-1;acImport=1;acExport=1"));
    QCOMPARE(desk.window.states.last(), QStringLiteral("acReCalcDoc=0"));
    list->LastRecord();
    QVERIFY(list->cdsMaster()->AllFetched());
    QCOMPARE(stateOf(desk.window.states, QStringLiteral("acNext")), QStringLiteral("0"));
    QCOMPARE(stateOf(desk.window.states, QStringLiteral("acFirst")), QStringLiteral("-1"));
    QVERIFY(desk.prompt.messages.isEmpty());
  }

  void rightsRefuseWithTheFormsIdentifier_data()
  {
    QTest::addColumn<int>("formId");
    QTest::addColumn<QString>("user");
    QTest::addColumn<QString>("action");
    QTest::addColumn<QString>("message");
    const QString turnTo = QStringLiteral("\r\nМоля, обърнете се към системния администратор за отстраняване на проблема!");
    struct Refusal {
      const char* user;
      const char* action;  // empty: opening
      const char* message;
    };
    const Refusal refusals[] = {
        {"GUEST", "", "Забранен е прегледа на данни за форма с код : "},
        {"AUDITOR", "acInsertRecord", "Забранено е добавянето на записи за форма с код : "},
        {"AUDITOR", "acCopyRecord", "Забранено е добавянето на записи за форма с код : "},
        {"AUDITOR", "acEditRecord", "Забранена е редакцията на записа за форма с код : "},
        {"AUDITOR", "acDeleteRecord", "Забранено е изтриването на записи за форма с код : "},
        {"CASHIER", "acExport", "Забранено е Export на данни за форма с код : "},
    };
    for (const int formId : {contragents, contragents + 1}) {
      for (const Refusal& row : refusals) {
        QTest::addRow("%d %s %s", formId, row.user, row.action)
            << formId << QString(row.user) << QString(row.action)
            << QString::fromUtf8(row.message) + QString::number(formId) + turnTo;
      }
    }
  }

  void rightsRefuseWithTheFormsIdentifier()
  {
    QFETCH(const int, formId);
    QFETCH(const QString, user);
    QFETCH(const QString, action);
    QFETCH(const QString, message);
    Desk desk(user);
    QVERIFY(desk.session.loggedIn);
    auto* form = desk.open<TfBase>(formId);
    QCOMPARE(form == nullptr, action.isEmpty());
    if (form) {
      TClientDataSet* master = form->GetCdsMaster();
      const qsizetype before = master->RecordCount();
      QVERIFY(form->execute(action));
      QCOMPARE(master->RecordCount(), before);
      QCOMPARE(master->State(), DataSetState::Browse);
      QCOMPARE(master->ChangeCount(), 0);
      QCOMPARE(desk.window.area.subWindowList().size(), 1);
    }
    QCOMPARE(desk.prompt.takeMessages(), QStringList(message));
  }

  void showOptionsDecideWhatAListOffers()
  {
    Desk desk;
    auto* list = desk.open<TfBrContragent>(contragents, so_Normal);
    for (const char* action : {"acInsertRecord", "acEditRecord", "acDeleteRecord"}) {
      QVERIFY(!list->action(QLatin1String(action))->isEnabled());
    }
    QVERIFY(list->action(QStringLiteral("acShowCard"))->isEnabled());
  }

  void aFilterIsSetMergedAndRemoved()
  {
    Desk desk;
    auto* list = desk.open<TfBrContragent>(contragents, allowAll);
    QVERIFY(!list->hasFilter());
    list->SetPblFilter(nameBegins(QStringLiteral("ЕТ")), {}, true);
    QVERIFY(list->hasFilter());
    QVERIFY(desk.window.hasFilter);
    QVERIFY(list->cdsMaster()->RecordCount() > 0);
    for (const QString& name : names(*list->cdsMaster())) {
      QVERIFY2(name.startsWith(QStringLiteral("ЕТ")), qPrintable(name));
    }
    QCOMPARE(list->cdsMaster()->FieldByName(u"Name")->DisplayLabel, QStringLiteral("Наименование"));

    // Merged: the row on another field stays, the one on the same field is replaced.
    const FilterArray city{{QStringLiteral("N_Contragent.City"), QStringLiteral("="), QStringLiteral("Русе"), QString(), QString()}};
    list->SetPblFilter(city, {}, true);
    QCOMPARE(list->formFilter().size(), 2);
    QCOMPARE(list->formFilter()[0].conjunction, QStringLiteral("AND"));
    list->SetPblFilter(nameBegins(QStringLiteral("няма такъв")), {}, true);
    QCOMPARE(list->formFilter().size(), 2);
    QCOMPARE(list->cdsMaster()->RecordCount(), 0);

    list->RemoveFilter();
    QVERIFY(!list->hasFilter());
    QVERIFY(!desk.window.hasFilter);
    QCOMPARE(list->cdsMaster()->RecordCount(), 32);
  }

  void theCallersFilterStaysUnderTheUsers()
  {
    Desk desk;
    auto* list = desk.open<TfBrContragent>(contragents, allowAll, nameBegins(QStringLiteral("ЕТ")));
    const qsizetype all = list->cdsMaster()->RecordCount();
    QVERIFY(all > 1 && !list->hasFilter());
    list->RemoveFilter();
    QCOMPARE(list->cdsMaster()->RecordCount(), all);
  }

  void aTitleClickOrdersByThatField()
  {
    Desk desk;
    auto* list = desk.open<TfBrContragent>(contragents);
    TField* code = list->cdsMaster()->FieldByName(u"Code");
    emit list->dbgMaster()->titleClicked(code);
    QCOMPARE(list->cdsMaster()->IndexFieldNames(), QStringLiteral("Code"));
    QCOMPARE(list->cdsMaster()->RecNo(), 1);
    QCOMPARE(list->dbgMaster()->selectedField(), code);
    QStringList codes;
    for (qsizetype row = 0; row < list->cdsMaster()->RecordCount(); ++row) {
      codes << code->ValueAt(row).toString();
    }
    QStringList sorted = codes;
    sorted.sort();
    QCOMPARE(codes, sorted);
  }

  void settingsOutliveTheForm()
  {
    Desk desk;
    IniOptions = {true, true, false, true, false};
    auto* list = desk.open<TfBrContragent>(contragents);
    list->SetPblFilter(nameBegins(QStringLiteral("ЕТ")), {}, false);
    list->setSortOrder(QStringLiteral("Code DESC"));
    list->resize(700, 400);
    const QSize size = list->size();
    windowOf(list)->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(desk.window.area.subWindowList().isEmpty());
    QVERIFY(desk.window.told.contains(QStringLiteral("closed:")));
    QStringList lines;
    GetNodeFromXml(*desk.session.dm->userSettingsDocument(), QStringLiteral("Form_Id140"), lines);
    QCOMPARE(lines.filter(QStringLiteral("Filter=")),
             QStringList(QStringLiteral("Filter=N_Contragent.Name,LIKE,ЕТ%,")));

    list = desk.open<TfBrContragent>(contragents);
    QCOMPARE(list->sortOrder(), QStringLiteral("Code DESC"));
    QCOMPARE(list->formFilter().size(), 1);
    QCOMPARE(list->size(), size);
    QVERIFY(list->hasFilter());

    auto* chooser = desk.open<TfBrContragent>(contragents, ShowOption(so_SelectMulty));
    QVERIFY(chooser->formFilter().isEmpty());
    IniOptions = {};
  }

  void aGridKeepsItsViewWhileTheOptionIsOn()
  {
    Desk desk;
    const auto stored = [&desk](const QString& group) {
      QStringList lines;
      GetNodeFromXml(desk.session.dm->UserSettings->document, group, lines);
      return lines;
    };
    const QString group = QStringLiteral("Form_Id140Tag_Id0");
    auto* list = desk.open<TfBrContragent>(contragents);
    list->dbgMaster()->moveColumn(QStringLiteral("Name"), 0);
    emit list->dbgMaster()->columnLayoutChanged();
    QCOMPARE(stored(group), QStringList());
    IniOptions = {false, false, true, false, false};
    list->dbgMaster()->setColumnCharacters(QStringLiteral("Name"), 44);
    emit list->dbgMaster()->columnLayoutChanged();
    QCOMPARE(stored(group).value(0), QStringLiteral("Name=44"));

    auto* second = desk.open<TfBrContragent>(contragents);
    QVERIFY(second != list);
    QCOMPARE(second->dbgMaster()->shownField(0)->FieldName(), QStringLiteral("Name"));
    QCOMPARE(second->dbgMaster()->columnCharacters(QStringLiteral("Name")), 44);
    QVERIFY(!second->dbgMaster()->columnVisible(QStringLiteral("Id")));
    IniOptions = {};
    auto* third = desk.open<TfBrContragent>(contragents);
    QVERIFY(third->dbgMaster()->shownField(0)->FieldName() != QLatin1String("Name"));
  }

  void theGridsMenuChangesItsColumns()
  {
    Desk desk;
    auto* list = desk.open<TfBrContragent>(contragents);
    QAction* entry = list->action(QStringLiteral("acColumnsProps"));
    QVERIFY(entry && list->gridMenu()->actions().contains(entry));
    QCOMPARE(entry->text(), QStringLiteral("Настройка на колони"));
    list->dbgMaster()->setFocus();
    QTimer::singleShot(0, list, [] {
      auto* dialog = qobject_cast<TfColumnsProps*>(QApplication::activeModalWidget());
      dialog->speFixed->setValue(2);
      dialog->btnOkClick();
    });
    entry->trigger();
    QCOMPARE(list->dbgMaster()->fixedColumns(), 2);
  }

  void settingsOpenAsAChildWindow()
  {
    Desk desk;
    RegisterFormClass(formClass<TfSettings>());
    QCOMPARE(RequestForm(250), 3);
    auto* settings = desk.last<TfSettings>();
    QVERIFY(settings && settings->isVisible());
    QVERIFY(desk.window.titles.contains(QStringLiteral("Настройки")));
    const QString id = settings->uniqueId();
    QTest::keyClick(settings->ebxPort, Qt::Key_Escape);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(desk.window.told.contains(QStringLiteral("gone:") + id));
    QVERIFY(desk.window.area.subWindowList().isEmpty());
  }

  void settingsNeedTheRightToRead()
  {
    Desk desk(QStringLiteral("GUEST"));
    RegisterFormClass(formClass<TfSettings>());
    QCOMPARE(RequestForm(250), 0);
    QCOMPARE(desk.prompt.messages.size(), 1);
    QVERIFY2(desk.prompt.messages.first().startsWith(QStringLiteral("Забранен е прегледа на данни за форма с код : 250")),
             qPrintable(desk.prompt.messages.first()));
    QVERIFY(desk.window.area.subWindowList().isEmpty());
  }

  void aListHandsTheChosenRecordsBack()
  {
    struct Owner : QObject, ISelectorOwnerIntf {
      void SetSelectorForm(QObject* form) override { forms << (form ? QStringLiteral("form") : QStringLiteral("gone")); }
      bool ProcessSelectedRecords(const TSelectionList& selection, ShowOption) override
      {
        chosen = selection;
        return true;
      }
      void SelectorFormSaved(QObject*, const QString&) override {}
      QStringList forms;
      TSelectionList chosen;
    } owner;
    Desk desk;
    TFieldSet name, table;
    name.FieldName = QStringLiteral("Name");
    table.FieldName = QStringLiteral("#TABLENAME#");
    TSelectionList selection{{name, table}};
    RequestForm(contragents, so_SelectMulty, {}, {}, {}, selection, {}, &owner, nullptr);
    auto* list = desk.last<TfBrContragent>();
    QVERIFY(list);
    list->dbgMaster()->setMarked(1, true);
    list->dbgMaster()->setMarked(3, true);
    const QStringList shown = names(*list->cdsMaster());
    list->dbgMaster()->setFocus();
    QTest::keyClick(list->dbgMaster(), Qt::Key_Return);
    QCOMPARE(owner.chosen.size(), 2);
    QCOMPARE(owner.chosen[0][0].Value.toString(), shown[1]);
    QCOMPARE(owner.chosen[1][0].Value.toString(), shown[3]);
    QCOMPARE(owner.chosen[0][1].Value.toString(), QStringLiteral("N_Contragent"));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCOMPARE(owner.forms, QStringList({QStringLiteral("form"), QStringLiteral("gone")}));
  }

  void typingSearchesTheColumn()
  {
    Desk desk;
    auto* list = desk.open<TfBrContragent>(contragents);
    list->LastRecord();
    const QString last = list->cdsMaster()->FieldByName(u"Code")->AsString();
    list->FirstRecord();
    list->dbgMaster()->setFocus();
    list->dbgMaster()->selectField(QStringLiteral("Code"));
    list->FindDialogExecute(last);
    QCOMPARE(list->cdsMaster()->FieldByName(u"Code")->AsString(), last);
    auto* search = list->dbgMaster()->findChild<QWidget*>(QStringLiteral("incrementalSearch"));
    QVERIFY(search && search->isVisible());
    QTest::keyClick(search->findChild<QWidget*>(QStringLiteral("searchText")), Qt::Key_Escape);
    QVERIFY(!list->dbgMaster()->findChild<QWidget*>(QStringLiteral("incrementalSearch")));
    QVERIFY(list->dbgMaster()->hasFocus());
  }
};

static const RegisterTest<ListFormTest> registerListFormTest;
#include "list_form_test.moc"
