#include <QApplication>

#include "visits.h"
#include "widgets/db_grid.h"

namespace kalvor::tour {

namespace {

void openSettings(TourDriver& driver)
{
  chooseInNavigator(driver, QStringLiteral("Настройки на клиента"));
  driver.step("settings", windowIs("TfSettings"), [] {});
}

}  // namespace

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

}  // namespace kalvor::tour
