// Moving the master, keys of the form, activation, the title.
#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QTabWidget>

#include "forms/field_metadata.h"
#include "forms/windows/base_form_private.h"
#include "forms/windows/form_focus.h"
#include "registry/windows/form_host.h"
#include "widgets/data_control.h"
#include "widgets/db_grid.h"

namespace kalvor {

// --- Records ---------------------------------------------------------------------------------------------------

void TfBase::moveMaster(void (TClientDataSet::*move)())
{
  runGuarded(QStringLiteral("TfBase.MoveRecord"), [this, move] {
    TClientDataSet* master = GetCdsMaster();
    if (master && master->Active() && mayLeaveRecord()) {
      (master->*move)();
    }
  });
}

void TfBase::FirstRecord()
{
  moveMaster(&TClientDataSet::First);
}

void TfBase::PrevRecord()
{
  moveMaster(&TClientDataSet::Prior);
}

void TfBase::NextRecord()
{
  moveMaster(&TClientDataSet::Next);
}

void TfBase::LastRecord()
{
  moveMaster(&TClientDataSet::Last);
}

// Details belong to their master's record: leaving it drops what is not saved of them.
bool TfBase::mayLeaveRecord()
{
  for (int index = 1; index < dataSetCount(); ++index) {
    const TClientDataSet* detail = cdsOptions(index).DataSet;
    if (detail->Active() && (detail->ChangeCount() > 0 || detail->Modified())) {
      return QueryToSaveBeforeToDo();
    }
  }
  return true;
}

// --- Keys ------------------------------------------------------------------------------------------------------

bool TfBase::handleEnter(QKeyEvent* event)
{
  const bool choosing = d->options.testFlag(so_SelectSingle) || d->options.testFlag(so_SelectMulty);
  if (!choosing || CheckState() || event->modifiers().testFlag(Qt::ControlModifier)) {
    return false;
  }
  execute(QStringLiteral("acSelect"));
  return true;
}

void TfBase::keyPressEvent(QKeyEvent* event)
{
  const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  if (enter && handleEnter(event)) {
    event->accept();
  } else if (event->key() == Qt::Key_Escape && !CheckState()) {
    event->accept();
    windowOf(this)->close();
  } else {
    QWidget::keyPressEvent(event);
  }
}

void TfBase::SelectAll()
{
  QWidget* focused = focusWidget();
  if (auto* grid = qobject_cast<TDBGrid*>(focused)) {
    grid->markAll();
  } else if (auto* edit = qobject_cast<QLineEdit*>(focused)) {
    edit->selectAll();
  }
}

void TfBase::DBG_ColEnter(TDBGrid* grid, TField* field)
{
  if (hasFlag(field, ffReadOnly)) {
    grid->setColumnReadOnly(field->FieldName(), true);
  }
}

void TfBase::gridDoubleClicked(TDBGrid*)
{
  if (d->options.testFlag(so_SelectSingle)) {
    execute(QStringLiteral("acSelect"));
  }
}

void TfBase::focusField(TField* field)
{
  if (field) {
    focusControlOf(this, field);
  }
}

void TfBase::focusFirstControl()
{
  QWidget* first = nullptr;
  for (QWidget* widget = nextInFocusChain(); widget != this && !first; widget = widget->nextInFocusChain()) {
    const DataControl* control = DataControl::of(widget);
    const bool editable = control && control->field() && widget->isEnabled() && !control->readOnly();
    if (editable && isAncestorOf(widget) && widget->isVisibleTo(this)) {
      first = widget;
    }
  }
  first = first ? first : findChild<TDBGrid*>();
  if (first) {
    first->setFocus(Qt::TabFocusReason);
  }
}

// --- Activation and title --------------------------------------------------------------------------------------

bool TfBase::event(QEvent* event)
{
  if (d && d->stage == Private::Stage::Shown && !d->hosted) {
    if (event->type() == QEvent::WindowActivate) {
      FormActivate();
    } else if (event->type() == QEvent::WindowDeactivate) {
      FormDeactivate();
    }
  }
  return QWidget::event(event);
}

void TfBase::FormActivate()
{
  if (d->stage != Private::Stage::Shown) {
    return;
  }
  if (IMainFormIntf* main = mainForm()) {
    main->SetHasFilter(d->hasFilter);
    if (!d->options.testFlag(so_ImportData)) {
      main->SetWindowTitle(windowTitle(), d->uniqueId);
    }
  }
  UpdateActionState();
}

void TfBase::FormDeactivate()
{
  if (d->stage != Private::Stage::Shown) {
    return;
  }
  if (IMainFormIntf* main = mainForm()) {
    main->SetHasFilter(d->hasFilter);
  }
}

void TfBase::SetFormCaption(const QString& caption, const QString& fields)
{
  QString title = caption;
  const TClientDataSet* master = GetCdsMaster();
  for (const QString& name : fields.split(u';', Qt::SkipEmptyParts)) {
    const TField* field = master && master->Active() ? master->FindField(name.trimmed()) : nullptr;
    if (field && !field->AsString().isEmpty()) {
      title = field->AsString() + QStringLiteral(" - ") + title;
    }
  }
  const bool changed = title != windowTitle();
  setWindowTitle(title);
  IMainFormIntf* main = mainForm();
  const bool silent = d->options & (ShowOption(so_ImportData) | so_StartImport);
  if (main && !silent && (changed || d->stage != Private::Stage::Shown)) {
    main->SetWindowTitle(title, d->uniqueId);
  }
}

void TfBase::refreshCaption()
{
  if (d->stage == Private::Stage::Shown && !d->captionFields.isEmpty()) {
    SetFormCaption(d->caption, d->captionFields);
  }
}

void TfBase::SetPageControlCaptions()
{
  for (QTabWidget* tabs : findChildren<QTabWidget*>()) {
    int number = 0;
    for (int page = 0; page < tabs->count(); ++page) {
      if (!tabs->isTabVisible(page)) {
        continue;
      }
      QString title = tabs->tabText(page);
      if (const qsizetype bracket = title.lastIndexOf(QLatin1String(" [&")); bracket >= 0 && title.endsWith(u']')) {
        title.truncate(bracket);
      }
      tabs->setTabText(page, QStringLiteral("%1 [&%2]").arg(title).arg(++number));
    }
  }
}

}  // namespace kalvor
