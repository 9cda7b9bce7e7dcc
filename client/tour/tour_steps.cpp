#include "tour_steps.h"

#include <QComboBox>
#include <QTreeWidget>

#include "registry/windows/form_host.h"
#include "widgets/db_grid.h"

namespace kalvor::tour {

IBaseIntf* activeForm()
{
  return dynamic_cast<IBaseIntf*>(activeFormWidget());
}

TClientDataSet* activeMaster()
{
  IBaseIntf* form = activeForm();
  return form ? form->GetCdsMaster() : nullptr;
}

TClientDataSet* invoiceLines()
{
  return activeFormWidget()->findChild<TClientDataSet*>(QStringLiteral("cdsDetail"));
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

void gotoColumnNow(TourDriver& driver, const QString& field)
{
  auto* grid = qobject_cast<TDBGrid*>(TourDriver::focus());
  driver.key(Qt::Key_Home);
  for (int i = 0; grid && i < 60 && grid->selectedField() && grid->selectedField()->FieldName() != field; ++i)
    driver.key(Qt::Key_Right);
}

void gotoColumn(TourDriver& driver, const QString& field)
{
  driver.step(QStringLiteral("column ") + field,
              [] { return qobject_cast<TDBGrid*>(TourDriver::focus()) != nullptr; },
              [&driver, field] { gotoColumnNow(driver, field); });
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

}  // namespace kalvor::tour
