#include <QWidget>

#include "visits.h"

namespace kalvor::tour {

namespace {

void press(TourDriver& driver, const QString& why, int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
  driver.step(why, {}, [&driver, key, modifiers] { driver.key(key, modifiers); });
}

void closeForm(TourDriver& driver, const char* className)
{
  driver.step(QStringLiteral("close ") + QLatin1String(className), formIs(className),
              [&driver] { driver.key(Qt::Key_W, Qt::ControlModifier); });
}

}  // namespace

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

}  // namespace kalvor::tour
