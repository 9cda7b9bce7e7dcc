#include "tour_steps.h"

#include "data/client_dataset.h"
#include "registry/windows/form_host.h"
#include "widgets/db_grid.h"

namespace kalvor {

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

TourDriver::Condition windowIs(const char* className)
{
  return [className] { return activeFormIs(className); };
}

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

}  // namespace kalvor
