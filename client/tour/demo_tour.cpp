#include <QApplication>
#include <QComboBox>
#include <QTreeWidget>
#include <cstdlib>

#include "data/client_dataset.h"
#include "registry/form_interfaces.h"
#include "registry/windows/form_host.h"
#include "tours.h"
#include "widgets/db_grid.h"

namespace kalvor {

namespace {

IBaseIntf* activeForm()
{
  return dynamic_cast<IBaseIntf*>(activeFormWidget());
}

TClientDataSet* activeMaster()
{
  IBaseIntf* form = activeForm();
  return form ? form->GetCdsMaster() : nullptr;
}

bool activeFormIs(const char* className)
{
  const QWidget* form = activeFormWidget();
  return form && !TourDriver::dialog() && QLatin1String(form->metaObject()->className()).endsWith(QLatin1String(className));
}

TourDriver::Condition formIs(const char* className)
{
  return [className] { return activeFormIs(className) && activeMaster() && activeMaster()->Active(); };
}

TourDriver::Condition dialogIs(const char* className)
{
  return [className] {
    const QWidget* dialog = TourDriver::dialog();
    return dialog && QLatin1String(dialog->metaObject()->className()).endsWith(QLatin1String(className));
  };
}

void logIn(TourDriver& driver)
{
  // At the very first start nothing is remembered: the company and the object are chosen, the user is there.
  driver.step("log-in dialog", dialogIs("TfLogin"), [&driver] {
    auto* company = TourDriver::dialog()->findChild<QComboBox*>(QStringLiteral("cbCompany"));
    if (company->currentIndex() >= 0)
      return;
    for (int i = 0; i < 3; ++i)
      driver.key(Qt::Key_Backtab, Qt::ShiftModifier);
    for (int i = 0; i < 2; ++i) {
      driver.key(Qt::Key_Down);
      driver.key(Qt::Key_Tab);
    }
    driver.key(Qt::Key_Tab);
  });
  driver.picture("log-in");
  driver.step("password", dialogIs("TfLogin"), [&driver] {
    driver.type("demo");
    driver.key(Qt::Key_Return);
  });
  driver.step("main window", [] { return TourDriver::visibleWidget("navigator") && !TourDriver::dialog(); }, [] {});
}

// A window without records.
TourDriver::Condition windowIs(const char* className)
{
  return [className] { return activeFormIs(className); };
}

// Through the navigator, by the keyboard alone.
void chooseInNavigator(TourDriver& driver, const QString& caption)
{
  driver.step("navigator", {}, [&driver] { driver.key(Qt::Key_M, Qt::ControlModifier); });
  driver.step(QStringLiteral("choose ") + caption, [] { return qobject_cast<QTreeWidget*>(TourDriver::focus()); },
              [&driver, caption] {
                auto* tree = qobject_cast<QTreeWidget*>(TourDriver::focus());
                driver.key(Qt::Key_Home);
                for (int i = 0; i < 100 && tree->currentItem() && tree->currentItem()->text(0) != caption; ++i)
                  driver.key(Qt::Key_Down);
                driver.key(Qt::Key_Return);
              });
}

void openForm(TourDriver& driver, const QString& caption, const char* className)
{
  chooseInNavigator(driver, caption);
  driver.step(QStringLiteral("opened ") + caption, formIs(className), [] {});
}

// To the control of that name, by Tab alone.
void tabTo(TourDriver& driver, const QString& control)
{
  driver.step(QStringLiteral("to ") + control, {}, [&driver, control] {
    for (int i = 0; i < 40 && TourDriver::focus()->objectName() != control; ++i)
      driver.key(Qt::Key_Tab);
  });
  driver.expect(QStringLiteral("the focus is in ") + control,
                [control] { return TourDriver::focus()->objectName() == control; });
}

// Moves the grid's current cell to a column, key by key.
void gotoColumn(TourDriver& driver, const QString& field)
{
  driver.step(QStringLiteral("column ") + field,
              [] { return qobject_cast<TDBGrid*>(TourDriver::focus()) != nullptr; },
              [&driver, field] {
                auto* grid = qobject_cast<TDBGrid*>(TourDriver::focus());
                driver.key(Qt::Key_Home);
                for (int i = 0; i < 60 && grid->selectedField() && grid->selectedField()->FieldName() != field; ++i)
                  driver.key(Qt::Key_Right);
              });
}

void filterCurrentColumn(TourDriver& driver, const QString& criterion, const char* picture)
{
  driver.step("field filter", {}, [&driver] { driver.key(Qt::Key_F3); });
  driver.step(QStringLiteral("criterion ") + criterion, dialogIs("TfFilterFields"),
              [&driver, criterion] { driver.type(criterion); });
  driver.picture(picture);
  driver.step("apply", dialogIs("TfFilterFields"), [&driver] { driver.key(Qt::Key_Return); });
}

void changeQuantityAndSave(TourDriver& driver, const QString& quantity, const char* pictures)
{
  const QString prefix = QLatin1String(pictures);
  driver.step("to the lines", formIs("TfEdSaleInvoice"), [&driver] { driver.key(Qt::Key_F4); });
  gotoColumn(driver, "Quantity");
  driver.step("new quantity", {}, [&driver, quantity] {
    driver.type(quantity);
    driver.key(Qt::Key_Return);
  });
  driver.picture(prefix + QStringLiteral("-changed"));
  driver.step("save", formIs("TfEdSaleInvoice"), [&driver] { driver.key(Qt::Key_S, Qt::ControlModifier); });
  driver.expect("the invoice is saved", [] {
    return activeMaster() && activeMaster()->State() == DataSetState::Browse && activeMaster()->ChangeCount() == 0;
  });
  driver.picture(prefix + QStringLiteral("-saved"));
}

void openSettings(TourDriver& driver)
{
  chooseInNavigator(driver, QStringLiteral("Настройки на клиента"));
  driver.step("settings", windowIs("TfSettings"), [] {});
}

// Every page; grids, sizes and orders are kept from here on.
void visitSettings(TourDriver& driver)
{
  openSettings(driver);
  driver.picture("settings-connection");
  const std::pair<Qt::Key, const char*> pages[] = {
      {Qt::Key_2, "settings-devices"}, {Qt::Key_4, "settings-export"}, {Qt::Key_3, "settings-options"}};
  for (const auto& [key, picture] : pages) {
    driver.step(QLatin1String(picture), {}, [&driver, page = key] { driver.key(page, Qt::AltModifier); });
    if (key != Qt::Key_3)
      driver.picture(QLatin1String(picture));
  }
  for (const char* option : {"cbxSortOrder", "cbxGrids", "cbxFormSize"}) {
    tabTo(driver, QLatin1String(option));
    driver.step("check it", {}, [&driver] { driver.key(Qt::Key_Space); });
  }
  driver.picture("settings-options");
  driver.step("keep the settings", windowIs("TfSettings"), [&driver] { driver.key(Qt::Key_Return); });
  driver.expect("the settings are closed", [] { return !activeFormIs("TfSettings"); });
}

void visitPassword(TourDriver& driver)
{
  chooseInNavigator(driver, QStringLiteral("Смяна на парола"));
  driver.step("password", windowIs("TfChangePass"), [&driver] {
    driver.type(QStringLiteral("нова"));
    driver.key(Qt::Key_Tab);
    driver.type(QStringLiteral("друга"));
  });
  driver.picture("password");
  driver.step("try it", {}, [&driver] { driver.key(Qt::Key_Return); });
  driver.step("the passwords differ", dialogIs("QMessageBox"), [] {});
  driver.picture("password-refused");
  driver.step("close the message", dialogIs("QMessageBox"), [&driver] { driver.key(Qt::Key_Return); });
  driver.step("leave", windowIs("TfChangePass"), [&driver] { driver.key(Qt::Key_Escape); });
}

// Two fixed columns, one column less; then the list is scrolled under the fixed ones.
void arrangeColumns(TourDriver& driver, const char* className)
{
  driver.step("columns", formIs(className), [&driver] { driver.key(Qt::Key_K, Qt::ControlModifier); });
  driver.step("hide a column", dialogIs("TfColumnsProps"), [&driver] {
    driver.key(Qt::Key_Down);
    driver.key(Qt::Key_Space);
  });
  tabTo(driver, QStringLiteral("speFixed"));
  driver.step("fix two", {}, [&driver] {
    driver.key(Qt::Key_Up);
    driver.key(Qt::Key_Up);
  });
  driver.picture("columns");
  driver.step("keep the columns", dialogIs("TfColumnsProps"), [&driver] { driver.key(Qt::Key_Return); });
  const auto inGrid = [] { return !TourDriver::dialog() && qobject_cast<TDBGrid*>(TourDriver::focus()); };
  driver.step("to the last column", inGrid, [&driver] {
    for (int i = 0; i < 12; ++i)
      driver.key(Qt::Key_Right);
  });
  driver.picture("fixed-columns");
  driver.step("back", formIs(className), [&driver] { driver.key(Qt::Key_Home); });
}

void visitStoredSettings(TourDriver& driver)
{
  openSettings(driver);
  driver.step("options", {}, [&driver] { driver.key(Qt::Key_3, Qt::AltModifier); });
  tabTo(driver, QStringLiteral("btnGrids"));
  driver.step("which forms", {}, [&driver] { driver.key(Qt::Key_Space); });
  driver.step("choose", dialogIs("TfSelectForm"), [&driver] { driver.key(Qt::Key_Space); });
  driver.picture("stored-settings");
  driver.step("leave the choice", dialogIs("TfSelectForm"), [&driver] { driver.key(Qt::Key_Escape); });
  driver.step("leave the settings", windowIs("TfSettings"), [&driver] { driver.key(Qt::Key_Escape); });
}

void visitCalendar(TourDriver& driver)
{
  driver.step("to a date", formIs("TfEdSaleInvoice"), [&driver] {
    for (int i = 0; i < 60 && !TourDriver::focus()->inherits("kalvor::TDBDateEdit"); ++i)
      driver.key(Qt::Key_Tab);
    driver.key(Qt::Key_Down, Qt::AltModifier);
  });
  driver.step("calendar", [] { return QApplication::activePopupWidget() != nullptr; }, [] {});
  driver.picture("calendar");
  driver.step("leave the calendar", {}, [&driver] { driver.key(Qt::Key_Escape); });
}

void press(TourDriver& driver, const QString& why, int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
  driver.step(why, {}, [&driver, key, modifiers] { driver.key(key, modifiers); });
}

void closeForm(TourDriver& driver, const char* className)
{
  driver.step(QStringLiteral("close ") + QLatin1String(className), formIs(className),
              [&driver] { driver.key(Qt::Key_W, Qt::ControlModifier); });
}

// Groups as a tree: down to a branch, a new group in it, taken back; then the items.
void visitItemGroups(TourDriver& driver)
{
  openForm(driver, QStringLiteral("Артикули по групи"), "TfEdItemGroups");
  for (const Qt::Key key : {Qt::Key_Down, Qt::Key_Right, Qt::Key_Down})
    press(driver, "in the tree", key);
  driver.picture("item-groups");
  press(driver, "a new group", Qt::Key_N, Qt::ControlModifier);
  driver.step("its code", formIs("TfEdItemGroups"), [&driver] { driver.type(QStringLiteral("НОВА")); });
  driver.picture("item-groups-new");
  press(driver, "to the tree", Qt::Key_Backtab, Qt::ShiftModifier);
  press(driver, "take it back", Qt::Key_Z, Qt::ControlModifier);
  driver.expect("the group is gone", [] { return activeMaster()->State() == DataSetState::Browse; });
  press(driver, "to the items", Qt::Key_F4);
  driver.expect("the items have the focus", [] { return TourDriver::focus()->objectName() == u"dbgItems"; });
  closeForm(driver, "TfEdItemGroups");
}

void visitEditGrids(TourDriver& driver)
{
  openForm(driver, QStringLiteral("Мерни единици"), "TfEdMeasures");
  press(driver, "a new measure", Qt::Key_N, Qt::ControlModifier);
  driver.step("its code", formIs("TfEdMeasures"), [&driver] { driver.type(QStringLiteral("тон")); });
  driver.picture("edit-grid-small");
  press(driver, "leave the cell", Qt::Key_Escape);
  press(driver, "take it back", Qt::Key_Z, Qt::ControlModifier);
  driver.expect("nothing is left of it", [] { return activeMaster()->State() == DataSetState::Browse; });
  closeForm(driver, "TfEdMeasures");
  openForm(driver, QStringLiteral("Серии документи"), "TfEdSeries");
  driver.picture("edit-grid-medium");
  closeForm(driver, "TfEdSeries");
  openForm(driver, QStringLiteral("Цени на артикули"), "TfEdItemPrices");
  driver.picture("prices");
  press(driver, "to the panel", Qt::Key_F4);
  press(driver, "purchases", Qt::Key_Down);
  press(driver, "leave the control", Qt::Key_Tab);
  driver.expect("only purchase prices", [] {
    return !activeMaster()->IsEmpty() && activeMaster()->FieldByName(u"Side")->AsInteger() == 0;
  });
  driver.picture("prices-filtered");
  closeForm(driver, "TfEdItemPrices");
}

void visitAdministration(TourDriver& driver)
{
  openForm(driver, QStringLiteral("Потребители"), "TfBrUser");
  driver.picture("users");
  press(driver, "open the user", Qt::Key_Return, Qt::ControlModifier);
  driver.step("user", formIs("TfEdUser"), [] {});
  driver.picture("user");
  closeForm(driver, "TfEdUser");
  openForm(driver, QStringLiteral("Права"), "TfEdUserRights");
  driver.picture("rights");
  press(driver, "float the panel", Qt::Key_F4, Qt::ShiftModifier);
  driver.picture("rights-floating");
  press(driver, "put it back", Qt::Key_F4, Qt::ShiftModifier);
  closeForm(driver, "TfEdUserRights");
  openForm(driver, QStringLiteral("Описания на полета"), "TfEdFieldDescriptions");
  driver.picture("field-descriptions");
  closeForm(driver, "TfEdFieldDescriptions");
  openForm(driver, QStringLiteral("Описания на форми"), "TfBrFormDescription");
  driver.picture("form-descriptions");
  press(driver, "open the description", Qt::Key_Return, Qt::ControlModifier);
  driver.step("description", formIs("TfEdFormDescription"), [] {});
  driver.picture("form-description");
  closeForm(driver, "TfEdFormDescription");
}

}  // namespace

void addLogInTour(TourDriver& driver)
{
  driver.step("log-in window", dialogIs("TfLogin"), [] {
    TourDriver::dialog()->repaint();
    std::_Exit(0);
  });
}

void addDemoTour(TourDriver& driver)
{
  logIn(driver);
  driver.picture("main-window");
  visitSettings(driver);
  visitPassword(driver);
  openForm(driver, QStringLiteral("Фактури за продажба"), "TfBrSaleInvoice");
  driver.picture("sales-list");
  arrangeColumns(driver, "TfBrSaleInvoice");
  gotoColumn(driver, "N_Contragent_Name");
  filterCurrentColumn(driver, QStringLiteral("ЕООД"), "typed-filter");
  driver.expect("the filter is on", [] { return activeMaster() && !activeMaster()->IsEmpty() && !TourDriver::dialog(); });
  driver.picture("filtered-list");
  driver.step("open the card", formIs("TfBrSaleInvoice"), [&driver] { driver.key(Qt::Key_Return, Qt::ControlModifier); });
  driver.step("invoice", formIs("TfEdSaleInvoice"), [] {});
  driver.picture("invoice");
  visitCalendar(driver);
  changeQuantityAndSave(driver, "7", "invoice");
  driver.step("close the card", formIs("TfEdSaleInvoice"), [&driver] { driver.key(Qt::Key_W, Qt::ControlModifier); });
  openForm(driver, QStringLiteral("Контрагенти"), "TfBrContragent");
  driver.picture("contractors");
  driver.step("open the contractor", formIs("TfBrContragent"), [&driver] { driver.key(Qt::Key_Return, Qt::ControlModifier); });
  driver.step("contractor", formIs("TfEdContragent"), [] {});
  driver.picture("contractor");
  openForm(driver, QStringLiteral("Артикули"), "TfBrItem");
  driver.picture("items");
  driver.step("open the item", formIs("TfBrItem"), [&driver] { driver.key(Qt::Key_Return, Qt::ControlModifier); });
  driver.step("item", formIs("TfEdItem"), [] {});
  driver.picture("item");
  visitItemGroups(driver);
  visitEditGrids(driver);
  openForm(driver, QStringLiteral("Редове на фактури"), "TfBrSaleLine");
  driver.picture("sale-lines");
  visitAdministration(driver);
  visitStoredSettings(driver);
}

void addRetailTour(TourDriver& driver)
{
  logIn(driver);
  openForm(driver, QStringLiteral("Фактури за продажба"), "TfBrSaleInvoice");
  driver.step("all records", formIs("TfBrSaleInvoice"), [] { activeForm()->LastRecord(); });
  driver.expect("66 invoices are listed", [] { return activeMaster()->RecordCount() == 66; });
  driver.picture("retail-list");
  gotoColumn(driver, "DocumentNo");
  filterCurrentColumn(driver, "C*", "retail-criterion");
  driver.expect("only cancellations are left", [] {
    TClientDataSet* master = activeMaster();
    if (!master || TourDriver::dialog() || master->RecordCount() == 0 || master->RecordCount() > 60)
      return false;
    const TField* number = master->FieldByName(u"DocumentNo");
    for (qsizetype row = 0; row < master->RecordCount(); ++row)
      if (!number->ValueAt(row).toString().startsWith(u'C'))
        return false;
    return true;
  });
  driver.picture("retail-cancellations");
  driver.step("remove the filter", formIs("TfBrSaleInvoice"), [&driver] { driver.key(Qt::Key_F3, Qt::ShiftModifier); });
  gotoColumn(driver, "DocumentNo");
  filterCurrentColumn(driver, "536365", "retail-one");
  driver.expect("invoice 536365 is found", [] {
    return activeMaster() && !TourDriver::dialog() && activeMaster()->RecordCount() == 1 &&
           activeMaster()->FieldByName(u"DocumentNo")->AsString() == QLatin1String("536365");
  });
  driver.step("open it", formIs("TfBrSaleInvoice"), [&driver] { driver.key(Qt::Key_Return, Qt::ControlModifier); });
  driver.step("invoice", formIs("TfEdSaleInvoice"), [] {});
  driver.picture("retail-invoice");
  changeQuantityAndSave(driver, "11", "retail-invoice");
}

}  // namespace kalvor
