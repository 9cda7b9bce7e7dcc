#include <QApplication>

#include "tour_steps.h"
#include "tours.h"
#include "widgets/db_grid.h"

namespace kalvor {

using namespace tour;

namespace {

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

}  // namespace

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
  visitStoredSettings(driver);
}

}  // namespace kalvor
