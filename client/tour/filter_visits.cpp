#include "visits.h"

namespace kalvor::tour {

// Rows of the table filter: the list's filter is there, a date comes from the calendar.
void composeTableFilter(TourDriver& driver)
{
  driver.step("table filter", formIs("TfBrSaleInvoice"), [&driver] { driver.key(Qt::Key_F3, Qt::ControlModifier); });
  driver.step("a further row", dialogIs("TfTableFilter"), [&driver] {
    driver.key(Qt::Key_Down);
    driver.type(QStringLiteral("дата"));
    driver.key(Qt::Key_Tab);
    driver.type(QStringLiteral(">="));
    driver.key(Qt::Key_Tab);
    driver.key(Qt::Key_Down, Qt::AltModifier);
  });
  driver.picture("table-filter-calendar");
  driver.step("a date", {}, [&driver] {
    driver.key(Qt::Key_Up);
    driver.key(Qt::Key_Return);
    driver.key(Qt::Key_Down);
    driver.key(Qt::Key_Down, Qt::AltModifier);
  });
  driver.picture("table-filter-fields");
  driver.step("close the list", {}, [&driver] { driver.key(Qt::Key_Escape); });
  driver.step("end the edit", dialogIs("TfTableFilter"), [&driver] { driver.key(Qt::Key_Escape); });
  driver.step("give up", dialogIs("TfTableFilter"), [&driver] { driver.key(Qt::Key_Escape); });
}

void chooseInTableFilter(TourDriver& driver)
{
  driver.step("table filter", formIs("TfEdSaleInvoice"), [&driver] { driver.key(Qt::Key_F3, Qt::ControlModifier); });
  driver.step("a contractor", dialogIs("TfTableFilter"), [&driver] {
    driver.type(QStringLiteral("код на к"));
    driver.key(Qt::Key_Tab);
    driver.key(Qt::Key_Tab);
    driver.key(Qt::Key_F4);
  });
  driver.picture("table-filter-lookup");
  driver.step("choose", {}, [&driver] { driver.key(Qt::Key_Return); });
  driver.picture("table-filter-chosen");
  driver.step("give up", dialogIs("TfTableFilter"), [&driver] { driver.key(Qt::Key_Escape); });
}

void applyTableFilter(TourDriver& driver)
{
  driver.step("table filter", formIs("TfBrContragent"), [&driver] { driver.key(Qt::Key_F3, Qt::ControlModifier); });
  driver.step("two rows", dialogIs("TfTableFilter"), [&driver] {
    driver.type(QStringLiteral("наим"));
    driver.key(Qt::Key_Tab);
    driver.type(QStringLiteral("с"));
    driver.key(Qt::Key_Tab);
    driver.type(QStringLiteral("*ООД"));
    driver.key(Qt::Key_Down);
    driver.type(QStringLiteral("неак"));
    driver.key(Qt::Key_Tab);
    driver.key(Qt::Key_Tab);
    driver.type(QStringLiteral("н"));
  });
  driver.picture("table-filter");
  driver.step("apply", dialogIs("TfTableFilter"), [&driver] {
    driver.key(Qt::Key_Return);
    driver.key(Qt::Key_Return);
  });
  driver.expect("only companies are left", [] {
    TClientDataSet* master = activeMaster();
    return master && !TourDriver::dialog() && !master->IsEmpty() &&
           master->FieldByName(u"Name")->AsString().endsWith(QStringLiteral("ООД"));
  });
  driver.picture("table-filtered");
}

void sortAndSearch(TourDriver& driver)
{
  driver.step("sort", formIs("TfBrContragent"), [&driver] { driver.key(Qt::Key_F5, Qt::ShiftModifier); });
  driver.step("choose fields", dialogIs("TfSort"), [&driver] {
    driver.type(QStringLiteral("град"));
    driver.key(Qt::Key_Space);
    driver.type(QStringLiteral("наим"));
    driver.key(Qt::Key_Space);
    driver.key(Qt::Key_S, Qt::AltModifier);
    driver.key(Qt::Key_Tab);
  });
  driver.picture("sort");
  driver.step("apply", dialogIs("TfSort"), [&driver] {
    driver.key(Qt::Key_Return);
    driver.key(Qt::Key_Return);
  });
  driver.picture("sorted");
  gotoColumn(driver, "Name");
  driver.step("search", formIs("TfBrContragent"), [&driver] { driver.key(Qt::Key_F, Qt::ControlModifier); });
  driver.step("text", [] { return TourDriver::visibleWidget(QStringLiteral("TfSearch")) != nullptr; }, [&driver] {
    driver.type(QStringLiteral("ви"));
    driver.key(Qt::Key_Return);
  });
  driver.picture("search");
  driver.step("close the search", {}, [&driver] { driver.key(Qt::Key_Escape); });
}

}  // namespace kalvor::tour
