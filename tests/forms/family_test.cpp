// The members of the form family that modules/nomenclatures and modules/administration use, on the demo company.
#include "../../modules/administration/administration.h"
#include "../../modules/nomenclatures/edit_grids.h"
#include "../../modules/nomenclatures/item_groups.h"
#include "../../modules/sales/sale_invoices.h"
#include "../several_tests.h"
#include "forms/form_filters.h"
#include "forms/messages.h"
#include "forms/windows/barcode_entry.h"
#include "forms/windows/cds_options.h"
#include "forms/windows/filter_controls.h"
#include "sample_forms.h"
#include "session/server_calls.h"
#include "session/settings_document.h"
#include "widgets/db_grid_ex.h"

using namespace kalvor;
using kalvor::testing::Desk;

namespace {

constexpr int itemGroups = 196;
constexpr int itemPrices = 190;
constexpr int measures = 198;
constexpr int userRights = 202;
constexpr int fieldRows = 206;
constexpr int queryRows = 208;
constexpr int saleLines = 130;

struct FamilyDesk : Desk {
  explicit FamilyDesk(const QString& user = QStringLiteral("SUPERVSR")) : Desk(user)
  {
    RegisterFormClass(formClass<TfEdItemGroups>());
    RegisterFormClass(formClass<TfEdItemPrices>());
    RegisterFormClass(formClass<TfEdMeasures>());
    RegisterFormClass(formClass<TfEdUserRights>());
    RegisterFormClass(formClass<TfEdFieldDescriptions>());
    RegisterFormClass(formClass<TfBrFormDescription>());
    RegisterFormClass(formClass<TfBrSaleLine>());
  }
};

FieldDef text(const char* name)
{
  FieldDef field;
  field.name = QLatin1String(name);
  field.type = DataType::WideString;
  field.size = 20;
  return field;
}

QString idOf(const TClientDataSet& dataSet)
{
  return dataSet.FieldByName(u"Id")->AsString();
}

QTreeWidgetItem* addGroup(TfEdItemGroups& form, const QString& code)
{
  form.InsertRecord();
  form.cdsMaster()->FieldByName(u"Code")->SetAsString(code);
  form.cdsMaster()->FieldByName(u"Name")->SetAsString(QStringLiteral("Група ") + code);
  form.cdsMaster()->Post();
  return form.tvMaster()->currentItem();
}

QStringList childTexts(const QTreeWidgetItem* item)
{
  QStringList texts;
  for (int i = 0; i < item->childCount(); ++i) {
    texts << item->child(i)->text(0);
  }
  return texts;
}

}  // namespace

class FamilyTest : public QObject {
  Q_OBJECT

 private slots:
  void sizesOfTheEditGrids()
  {
    QCOMPARE(TfBaseEditGridSmall().size(), QSize(367, 267));
    QCOMPARE(TfBaseEditGridMed().size(), QSize(481, 325));
    FamilyDesk desk;
    auto* form = desk.open<TfEdMeasures>(measures);
    QVERIFY2(form, qPrintable(desk.prompt.messages.join(u'\n')));
    QCOMPARE(form->size(), QSize(367, 267));
  }

  void anEditGridKeepsOtherChangesWhenADeleteIsRefused()
  {
    FamilyDesk desk;
    auto* form = desk.open<TfEdMeasures>(measures);
    TClientDataSet* records = form->cdsMaster();
    const qsizetype before = records->RecordCount();
    records->First();
    records->Edit();
    records->FieldByName(u"Name")->SetAsString(QStringLiteral("Друго име"));
    records->Post();
    records->Next();
    // Somebody else changed the record meanwhile.
    const QString id = idOf(*records);
    {
      auto* other = desk.open<TfEdMeasures>(measures);
      QVERIFY(other->cdsMaster()->Locate(QStringLiteral("Id"), id));
      other->cdsMaster()->Edit();
      TField* decimals = other->cdsMaster()->FieldByName(u"Decimals");
      decimals->SetAsInteger(decimals->AsInteger() + 1);
      other->SaveDocument();
      QVERIFY2(other->lastSaveSucceeded(), qPrintable(desk.prompt.messages.join(u'\n')));
    }
    form->DeleteRecord();
    QVERIFY(!desk.prompt.takeMessages().isEmpty());
    QCOMPARE(records->RecordCount(), before);
    QCOMPARE(records->ChangeCount(), 1);
    form->CancelChanges();
    QCOMPARE(records->ChangeCount(), 0);
  }

  // --- Filter panel ----------------------------------------------------------------------------------------------

  void leavingAControlAppliesTheFilter()
  {
    FamilyDesk desk;
    auto* form = desk.open<TfEdItemPrices>(itemPrices);
    QVERIFY2(form, qPrintable(desk.prompt.messages.join(u'\n')));
    auto* side = form->findChild<FlatFilterDropDown*>(QStringLiteral("fltSide"));
    QVERIFY(side);
    QCOMPARE(side->count(), 2);
    QCOMPARE(side->itemText(1), QStringLiteral("Продажби"));
    QCOMPARE(side->currentIndex(), -1);
    form->OnEnter(side);
    form->OnExit(side);
    QVERIFY(!form->hasFilter());
    side->setCurrentIndex(0);
    form->OnExit(side);
    QVERIFY(form->hasFilter());
    QCOMPARE(form->formFilter().size(), 1);
    QCOMPARE(form->formFilter()[0].field, QStringLiteral("N_ItemPrice.Side"));
    TClientDataSet* prices = form->cdsMaster();
    prices->FetchAll();
    QVERIFY(!prices->IsEmpty());
    for (qsizetype row = 0; row < prices->RecordCount(); ++row) {
      QCOMPARE(prices->FieldByName(u"Side")->ValueAt(row).toInt(), 0);
    }
    form->RemoveFilter();
    QVERIFY(!form->hasFilter());
    QCOMPARE(side->currentIndex(), -1);
  }

  void unsavedChangesAreAskedAboutOnLeaving_data()
  {
    QTest::addColumn<PromptButton>("answer");
    QTest::addColumn<int>("position");
    QTest::addColumn<int>("changes");
    QTest::newRow("drop them") << PromptButton::Yes << 0 << 0;
    QTest::newRow("keep them") << PromptButton::No << -1 << 1;
  }

  void unsavedChangesAreAskedAboutOnLeaving()
  {
    QFETCH(const PromptButton, answer);
    FamilyDesk desk;
    auto* form = desk.open<TfEdItemPrices>(itemPrices);
    auto* side = form->findChild<FlatFilterDropDown*>(QStringLiteral("fltSide"));
    form->cdsMaster()->Edit();
    form->cdsMaster()->FieldByName(u"UnitPrice")->SetAsFloat(7);
    form->cdsMaster()->Post();
    form->OnEnter(side);
    side->setCurrentIndex(0);
    desk.prompt.answers = {answer};
    form->OnExit(side);
    QCOMPARE(desk.prompt.takeMessages(), QStringList(_que_unSaveRecords));
    QTEST(side->currentIndex(), "position");
    QTEST(form->cdsMaster()->ChangeCount(), "changes");
    form->CancelChanges();
  }

  void thePanelFollowsTheFormsFilter()
  {
    FamilyDesk desk;
    auto* form = desk.open<TfEdItemPrices>(itemPrices);
    const QString item = form->cdsMaster()->FieldByName(u"Item_Id")->AsString();
    const QString name = form->cdsMaster()->FieldByName(u"N_Item_Name")->AsString();
    form->SetPblFilter({{QStringLiteral("n_itemprice.ITEM_ID"), QStringLiteral("="), item, QStringLiteral("AND"), {}},
                        {QStringLiteral("N_Measure.Code"), QStringLiteral("LIKE"), QStringLiteral(" %бр% "), {}, {}}},
                       {}, false);
    auto* lookup = form->findChild<EnhancedFilterDropDown*>(QStringLiteral("fltItem_Id"));
    auto* measure = form->findChild<FlatFilterEdit*>(QStringLiteral("fltN_Measure_Code"));
    QVERIFY(form->hasFilter());
    QCOMPARE(lookup->value().toString(), item);
    QCOMPARE(lookup->text(), name);
    QCOMPARE(measure->text(), QStringLiteral("бр"));
    form->OnExit(lookup);
    QVERIFY(desk.prompt.messages.isEmpty());
  }

  void theFloatingPanelIsRemembered()
  {
    FamilyDesk desk;
    auto* form = desk.open<TfEdUserRights>(userRights);
    QVERIFY2(form, qPrintable(desk.prompt.messages.join(u'\n')));
    QVERIFY(!form->FloatPanel());
    form->setFloatPanel(true);
    QVERIFY(form->pcFilterOptions()->window() != form->window());
    QVERIFY(form->pcFilterOptions()->isVisible());
    windowOf(form)->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QStringList lines;
    GetNodeFromXml(*desk.session.dm->userSettingsDocument(), QStringLiteral("Form_Id202"), lines);
    QVERIFY2(lines.contains(QStringLiteral("FloatPanel=1")), qPrintable(lines.join(u';')));
    form = desk.open<TfEdUserRights>(userRights);
    QVERIFY(form->FloatPanel());
    form->setFloatPanel(false);
    QCOMPARE(form->pcFilterOptions()->window(), form->window());
  }

  void aLinkShowsAnotherQuery()
  {
    FamilyDesk desk;
    auto* form = desk.open<TfEdFieldDescriptions>(fieldRows);
    QVERIFY2(form, qPrintable(desk.prompt.messages.join(u'\n')));
    QVERIFY(form->cdsMaster()->FindField(u"FieldName"));
    form->chooseLink(1);
    QCOMPARE(form->currentLink(), 1);
    QVERIFY(!form->cdsMaster()->FindField(u"FieldName"));
    QCOMPARE(form->cdsMaster()->FieldByName(u"Description")->DisplayLabel, QStringLiteral("Описание"));
    QVERIFY(form->ReloadQuery(queryRows, {{QStringLiteral("S_QueryList.Form_Id"), QStringLiteral("="), 120, {}, {}}}));
    QCOMPARE(form->cdsMaster()->RecordCount(), 1);
    QVERIFY(form->ReloadQuery(fieldRows, {}));
    QCOMPARE(form->cdsMaster()->FieldByName(u"FieldName")->DisplayLabel, QStringLiteral("Поле"));
  }

  // --- Trees -----------------------------------------------------------------------------------------------------

  void theTreeShowsGroupsUnderTheirParents()
  {
    FamilyDesk desk;
    auto* form = desk.open<TfEdItemGroups>(itemGroups);
    QVERIFY2(form, qPrintable(desk.prompt.messages.join(u'\n')));
    TClientDataSet* groups = form->cdsMaster();
    int roots = 0;
    for (qsizetype row = 0; row < groups->RecordCount(); ++row) {
      roots += isNull(groups->FieldByName(u"Parent_Id")->ValueAt(row));
    }
    QVERIFY(roots > 1);
    QCOMPARE(form->tvMaster()->topLevelItemCount(), roots);
    QTreeWidgetItem* child = form->tvMaster()->topLevelItem(1)->child(0);
    QVERIFY(child);
    QCOMPARE(PosItemById(*form->tvMaster(), treeItemId(child)), child);
    QVERIFY(form->tvMaster()->topLevelItem(1)->isExpanded());
    QCOMPARE(idOf(*groups), treeItemId(child));
    QVERIFY(!form->dbgItems()->dataSet()->IsEmpty());
    QVERIFY(!PosItemById(*form->tvMaster(), QStringLiteral("няма")));
    // The filter verbs do nothing here.
    form->FieldFilter();
    form->TableFilter();
    QVERIFY(desk.prompt.messages.isEmpty());
  }

  void itemTexts()
  {
    TClientDataSet records;
    QTreeWidget tree;
    records.CreateDataSet({text("Id"), text("Parent_Id"), text("Name")});
    records.AppendRecord({QStringLiteral("1"), {}, QStringLiteral("Корен")});
    records.AppendRecord({QStringLiteral("2"), QStringLiteral("1"), QStringLiteral("Лист")});
    records.AppendRecord({QStringLiteral("3"), QStringLiteral("4"), QStringLiteral("Кръг")});
    records.AppendRecord({QStringLiteral("4"), QStringLiteral("3"), QStringLiteral("Кръг")});
    DStoTV(records, tree, {QStringLiteral("Name"), true});
    QCOMPARE(tree.topLevelItemCount(), 1);
    QCOMPARE(tree.topLevelItem(0)->text(0), QStringLiteral("Корен (1)"));
    QCOMPARE(childTexts(tree.topLevelItem(0)), QStringList(QStringLiteral("Лист (2)")));
    records.SetFilter(QStringLiteral("Name <> 'Лист'"));
    records.SetFiltered(true);
    RedrawDBTreeView(tree, records, {QStringLiteral("Name"), false}, QStringLiteral("1"));
    QCOMPARE(tree.topLevelItem(0)->childCount(), 0);
    QCOMPARE(treeItemId(tree.currentItem()), QStringLiteral("1"));
    QVERIFY_THROWS_EXCEPTION(DataError, DStoTV(records, tree, {QStringLiteral("Title"), false}));
    try {
      DStoTV(records, tree, {QStringLiteral("Title"), false});
    } catch (const DataError& error) {
      QCOMPARE(error.message(), QStringLiteral("Не валидно поле !"));
    }
  }

  void aNodeIsAddedMovedAndDeletedWithEverythingBelow()
  {
    FamilyDesk desk;
    auto* form = desk.open<TfEdItemGroups>(itemGroups);
    TClientDataSet* groups = form->cdsMaster();
    groups->FetchAll();
    const qsizetype before = groups->RecordCount();
    QTreeWidgetItem* root = form->tvMaster()->topLevelItem(0);
    const QString rootId = treeItemId(root);
    const int siblings = root->childCount();
    form->tvMaster()->setCurrentItem(root);
    const QString first = treeItemId(addGroup(*form, QStringLiteral("Т1")));
    QCOMPARE(groups->FieldByName(u"Parent_Id")->AsString(), rootId);
    QCOMPARE(groups->FieldByName(u"SubIndex")->AsInteger(), siblings);
    QCOMPARE(form->tvMaster()->currentItem()->text(0), QStringLiteral("Група Т1"));
    addGroup(*form, QStringLiteral("Т11"));
    QCOMPARE(groups->FieldByName(u"Parent_Id")->AsString(), first);
    addGroup(*form, QStringLiteral("Т111"));
    form->SaveDocument();
    QVERIFY2(form->lastSaveSucceeded(), qPrintable(desk.prompt.messages.join(u'\n')));
    QCOMPARE(form->tvMaster()->currentItem()->text(0), QStringLiteral("Група Т111"));

    QTreeWidgetItem* node = PosItemById(*form->tvMaster(), first);
    const int at = node->parent()->indexOfChild(node);
    form->moveNode(-1);
    node = form->tvMaster()->currentItem();
    QCOMPARE(treeItemId(node), first);
    QCOMPARE(node->parent()->indexOfChild(node), at - 1);
    form->SaveDocument();
    QCOMPARE(groups->FieldByName(u"SubIndex")->AsInteger(), at - 1);

    PosItemById(*form->tvMaster(), first);
    form->DeleteRecord();
    QCOMPARE(desk.prompt.takeMessages(), QStringList());
    QCOMPARE(form->selectedId(), rootId);
    QCOMPARE(groups->RecordCount(), before);
    auto* again = desk.open<TfEdItemGroups>(itemGroups);
    again->cdsMaster()->FetchAll();
    QCOMPARE(again->cdsMaster()->RecordCount(), before);
  }

  void deletingGoesDeepestFirst()
  {
    TClientDataSet records;
    records.CreateDataSet({text("Id"), text("Parent_Id")});
    for (const char* row : {"1 -", "2 1", "3 2", "4 3", "5 1", "6 -"}) {
      const QStringList values = QString::fromLatin1(row).split(u' ');
      records.AppendRecord({values[0], values[1] == u"-" ? Variant() : Variant(values[1])});
    }
    QStringList gone;
    records.BeforeDelete = [&](TClientDataSet* dataSet) { gone << dataSet->FieldByName(u"Id")->AsString(); };
    DeleteTree(records, QStringLiteral("1"));
    QCOMPARE(gone, QStringList({"4", "3", "2", "5", "1"}));
    QCOMPARE(records.RecordCount(), 1);
  }

  void aFilterLineNamesTheNode()
  {
    FamilyDesk desk;
    auto* whole = desk.open<TfEdItemGroups>(itemGroups);
    const QString id = treeItemId(whole->tvMaster()->topLevelItem(1)->child(0));
    const qsizetype count = whole->cdsMaster()->RecordCount();
    auto* form = desk.open<TfEdItemGroups>(itemGroups, so_Normal,
                                           recordFilter(QStringLiteral("N_ItemGroup.Id"), id));
    QCOMPARE(form->selectedId(), id);
    QCOMPARE(idOf(*form->cdsMaster()), id);
    QCOMPARE(form->cdsMaster()->RecordCount(), count);
  }

  void deletingWithoutANodeSaysSo()
  {
    FamilyDesk desk;
    auto* form = desk.open<TfEdItemGroups>(itemGroups);
    form->tvMaster()->setCurrentItem(nullptr);
    form->DeleteRecord();
    QCOMPARE(desk.prompt.takeMessages(), QStringList(QStringLiteral("Изберете първо поле за изстриване")));
  }

  // --- Lists -----------------------------------------------------------------------------------------------------

  void documentsShowTheirNumberOnce()
  {
    FamilyDesk desk;
    auto* form = desk.open<TfBrSaleLine>(saleLines, so_SelectMulty);
    QVERIFY2(form, qPrintable(desk.prompt.messages.join(u'\n')));
    QVERIFY(!form->dbgMaster()->titleButtons());
    const TClientDataSet* lines = form->cdsMaster();
    const TField* number = lines->FieldByName(u"DocumentNo");
    const TField* date = lines->FieldByName(u"DocumentDate");
    int hidden = 0;
    QVERIFY(lines->RecordCount() > 10);
    for (qsizetype row = 0; row < lines->RecordCount(); ++row) {
      const bool first = row == 0 || number->ValueAt(row - 1) != number->ValueAt(row);
      QCOMPARE(number->DisplayTextAt(row).isEmpty(), !first);
      QCOMPARE(date->DisplayTextAt(row).isEmpty(), !first);
      hidden += !first;
    }
    QVERIFY(hidden > 0);
  }

  void aListOpensTheCardAsItWasOpenedItself_data()
  {
    QTest::addColumn<int>("list");
    QTest::addColumn<int>("card");
    QTest::newRow("for one record") << int(so_SelectSingle) << int(so_SelectEdit);
    QTest::newRow("for several") << int(so_SelectMulty) << int(so_EditRecord);
    QTest::newRow("to work in") << int(so_Normal) << int(so_EditRecord);
  }

  void aListOpensTheCardAsItWasOpenedItself()
  {
    QFETCH(const int, list);
    FamilyDesk desk;
    auto* form = desk.open<testing::TfBrContragent>(140, ShowOption(QFlag(list)) | so_AllowEdit);
    QVERIFY(form);
    form->EditRecord();
    auto* card = desk.last<testing::TfEdContragent>();
    QVERIFY2(card, qPrintable(desk.prompt.messages.join(u'\n')));
    QTEST(int(card->showOptions()), "card");
    QCOMPARE(idOf(*card->cdsMaster()), idOf(*form->cdsMaster()));
    card->CancelChanges();
  }

  void aListWithoutIdOpensNoCard()
  {
    FamilyDesk desk;
    auto* form = desk.open<testing::TfBrContragent>(140);
    form->cdsMaster()->Close();
    form->cdsMaster()->SetRemoteServer(nullptr);
    form->cdsMaster()->CreateDataSet({text("Code")});
    form->cdsMaster()->AppendRecord({QStringLiteral("1")});
    const auto windows = desk.window.area.subWindowList().size();
    form->acInsertRecordExecute();
    form->acEditRecordExecute();
    form->acShowCardExecute();
    QCOMPARE(desk.window.area.subWindowList().size(), windows);
  }

  void aCardListWithoutModificationOffersNone()
  {
    FamilyDesk desk;
    auto* form = desk.open<TfBrFormDescription>(204);
    QVERIFY2(form, qPrintable(desk.prompt.messages.join(u'\n')));
    for (const char* action : {"acEditRecord", "acDeleteRecord", "acInsertRecord"}) {
      QVERIFY(!form->action(QLatin1String(action))->isEnabled());
    }
    QVERIFY(form->action(QStringLiteral("acShowCard"))->isEnabled());
  }

  // --- Administration --------------------------------------------------------------------------------------------

  void onlyAnAdministratorReachesIt_data()
  {
    QTest::addColumn<QString>("user");
    QTest::addColumn<bool>("allowed");
    QTest::newRow("administrator") << QStringLiteral("SUPERVSR") << true;
    QTest::newRow("clerk") << QStringLiteral("CLERK") << false;
    QTest::newRow("auditor") << QStringLiteral("AUDITOR") << false;
  }

  void onlyAnAdministratorReachesIt()
  {
    QFETCH(const QString, user);
    QFETCH(const bool, allowed);
    FamilyDesk desk(user);
    const QString provider = createDynamicProvider(*DM->ConBroker);
    for (const int form : {200, 201, 202, 204, 205, 206, 208, 210, 212, 213}) {
      bool answered = false;
      try {
        answered = requestData(*DM->ConBroker, form, 0, provider, {}, {}, {}) == 0;
      } catch (const RpcError& error) {
        QVERIFY(error.message().contains(QString::number(form)));
      }
      QCOMPARE(answered, allowed);
    }
    deleteDynamicProvider(*DM->ConBroker, provider);
  }

  void rightsAreEditedInTheGrid()
  {
    FamilyDesk desk;
    auto* form = desk.open<TfEdUserRights>(userRights);
    TClientDataSet* rows = form->cdsMaster();
    rows->Edit();
    TField* annul = rows->FieldByName(u"AnnulRight");
    annul->SetAsInteger(annul->AsInteger() == 0);
    const qint64 wanted = annul->AsInteger();
    const QString id = idOf(*rows);
    form->SaveDocument();
    QVERIFY2(form->lastSaveSucceeded(), qPrintable(desk.prompt.messages.join(u'\n')));
    auto* again = desk.open<TfEdUserRights>(userRights);
    QVERIFY(again->cdsMaster()->Locate(QStringLiteral("Id"), id));
    QCOMPARE(again->cdsMaster()->FieldByName(u"AnnulRight")->AsInteger(), wanted);
  }

  void theScannersFirstCharacterOpensTheEntry()
  {
    FamilyDesk desk;
    auto* form = desk.open<TfEdMeasures>(measures);
    QTest::keyClick(form->dbgMaster(), 'x');
    QVERIFY(!form->findChild<BarcodeEntry*>());
    QKeyEvent start(QEvent::KeyPress, Qt::Key_AsciiCircum, Qt::NoModifier, QString(desk.session.dm->BarcodeStart));
    QCoreApplication::sendEvent(form->dbgMaster(), &start);
    auto* entry = form->findChild<BarcodeEntry*>();
    QVERIFY(entry && entry->isVisible());
  }
};

static const testing::RegisterTest<FamilyTest> registerFamilyTest;
#include "family_test.moc"
