#include "widgets/data_control.h"
#include "widgets/db_grid.h"

namespace kalvor {
namespace {

template <class Control>
void bindOne(Control* control, QObject* owner, QStringList& missing)
{
  const QString& name = control->dataSetName();
  if (name.isEmpty()) {
    return;
  }
  if (auto* dataSet = owner->findChild<TClientDataSet*>(name)) {
    control->setDataSet(dataSet);
  } else if (!missing.contains(name)) {
    missing.append(name);
  }
}

}  // namespace

QStringList bindControls(QWidget* root, QObject* owner)
{
  QStringList missing;
  for (QWidget* widget : root->findChildren<QWidget*>()) {
    if (DataControl* control = DataControl::of(widget)) {
      bindOne(control, owner, missing);
    } else if (auto* grid = qobject_cast<TDBGrid*>(widget)) {
      bindOne(grid, owner, missing);
    }
  }
  return missing;
}

}  // namespace kalvor
