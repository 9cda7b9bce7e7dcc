// The filter panel over an edit grid: its controls, what leaving one does, what it shows for the filters in force.
#include <QGridLayout>
#include <QLabel>
#include <QTabBar>
#include <QTabWidget>
#include <QVBoxLayout>

#include "forms/field_metadata.h"
#include "forms/form_filters.h"
#include "forms/windows/base_edit_grid.h"
#include "forms/windows/base_form_private.h"
#include "forms/windows/filter_controls.h"
#include "forms/windows/form_focus.h"
#include "forms/windows/grid_totals.h"
#include "platform/ports.h"
#include "widgets/db_grid_ex.h"
#include "widgets/theme.h"

namespace kalvor {

namespace {

constexpr int controlsInRow = 3;
constexpr int panelControlWidth = 170;

}  // namespace

TfBaseEditGridFilter::TfBaseEditGridFilter(QWidget* parent) : TfBaseEditGrid(parent), pcFilterOptions_(new QTabWidget(this))
{
  pcFilterOptions_->setObjectName(QStringLiteral("pcFilterOptions"));
  pcFilterOptions_->setDocumentMode(true);
  pcFilterOptions_->setTabBarAutoHide(true);
  pcFilterOptions_->tabBar()->setFocusPolicy(Qt::NoFocus);
  pcFilterOptions_->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Maximum);
  addNamedAction(QStringLiteral("acTogglePanel"), QStringLiteral("Сменя филтър/редове"),
                 QKeySequence(QStringLiteral("F4")), [this] { acTogglePanelExecute(); });
  setActionHandler(QStringLiteral("acRemoveFilter"), [this] {
    acRemoveFilterExecute();
    CheckPblFilter();
  });
}

// --- Controls --------------------------------------------------------------------------------------------------

template <class Control>
Control* TfBaseEditGridFilter::addControl(Control* control, const QString& caption, const QString& fieldName,
                                          bool compareStored)
{
  if (!controlsGrid_) {
    auto* page = new QWidget(pcFilterOptions_);
    controlsGrid_ = new QGridLayout(page);
    controlsGrid_->setContentsMargins(spacing::normal, spacing::normal, spacing::normal, spacing::normal);
    controlsGrid_->setHorizontalSpacing(spacing::normal);
    controlsGrid_->setVerticalSpacing(spacing::tight);
    controlsGrid_->setColumnStretch(2 * controlsInRow, 1);
    pcFilterOptions_->addTab(page, QStringLiteral("Филтър"));
  }
  control->setObjectName(QStringLiteral("flt") + fieldName);
  control->setAccessibleName(caption);
  control->setMinimumWidth(panelControlWidth);
  auto* label = new QLabel(caption);
  label->setBuddy(control);
  const int position = int(filterControls_.size());
  const int column = position % controlsInRow * 2;
  controlsGrid_->addWidget(label, position / controlsInRow, column, Qt::AlignRight | Qt::AlignVCenter);
  controlsGrid_->addWidget(control, position / controlsInRow, column + 1);
  control->events.entered = [this, control] { OnEnter(control); };
  control->events.left = [this, control] {
    runGuarded(QStringLiteral("TfBaseEditGridFilter.OnExit"), [&] { OnExit(control); });
  };
  filterControls_.append({control, fieldName, compareStored, {}, {}, {}});
  return control;
}

FlatFilterEdit* TfBaseEditGridFilter::addFilterEdit(const QString& caption, const QString& fieldName,
                                                    bool compareStored)
{
  return addControl(new FlatFilterEdit, caption, fieldName, compareStored);
}

FlatFilterDropDown* TfBaseEditGridFilter::addFilterDropDown(const QString& caption, const QString& fieldName,
                                                            bool compareStored)
{
  return addControl(new FlatFilterDropDown, caption, fieldName, compareStored);
}

EnhancedFilterDropDown* TfBaseEditGridFilter::addFilterLookup(const QString& caption, const QString& fieldName,
                                                              int lookupForm, const QString& displayField,
                                                              bool compareStored)
{
  return addControl(new EnhancedFilterDropDown(lookupForm, displayField), caption, fieldName, compareStored);
}

TFilterControl* TfBaseEditGridFilter::entryOf(const PanelControl* control)
{
  for (TFilterControl& entry : filterControls_) {
    if (entry.Control == control) {
      return &entry;
    }
  }
  return nullptr;
}

QStringList TfBaseEditGridFilter::origins() const
{
  QStringList names;
  for (const TFilterControl& entry : filterControls_) {
    const TField* field = cdsMaster_->FindField(entry.FieldName);
    names.append(field ? field->Origin : QString());
  }
  return names;
}

// --- Entering, leaving, applying -------------------------------------------------------------------------------

void TfBaseEditGridFilter::OnEnter(PanelControl* control)
{
  if (TFilterControl* entry = entryOf(control)) {
    entry->EnteredValue = control->value();
  }
}

void TfBaseEditGridFilter::OnExit(PanelControl* control)
{
  const TFilterControl* entry = entryOf(control);
  if (!entry || !panelValueChanged(*entry)) {
    return;
  }
  const Variant remembered = rememberedPanelValue(*entry);
  if (QueryToSaveBeforeToDo()) {
    OnChange(control);
  } else {
    control->setValue(isNull(remembered) ? emptyPanelValue(control->kind()) : remembered);
  }
}

void TfBaseEditGridFilter::OnChange(PanelControl* control)
{
  TFilterControl* entry = entryOf(control);
  if (!entry) {
    return;
  }
  entry->CurrentValue = entry->EnteredValue = entry->StoredValue = control->value();
  if (!synchronising_ && !showOptions().testFlag(so_ImportData)) {
    applyPanel();
  }
}

void TfBaseEditGridFilter::applyPanel()
{
  const WaitCursorScope wait;
  const FilterArray merged = formFilterWithPanel(d->formFilter, origins(), BuildTabFilter());
  d->hasFilter = true;
  if (!RequestDataSet(0, buildRequestFilter(d->callerFilter, merged), d->sortOrder)) {
    return;
  }
  d->formFilter = merged;
  reopenMaster();
  if (IMainFormIntf* main = mainForm()) {
    main->SetHasFilter(d->hasFilter);
  }
}

FilterArray TfBaseEditGridFilter::BuildTabFilter()
{
  return {};
}

FilterArray TfBaseEditGridFilter::controlFilter() const
{
  return panelFilter(filterControls_, origins());
}

// --- Following the form's filters ------------------------------------------------------------------------------

void TfBaseEditGridFilter::CheckPblFilter()
{
  synchronising_ = true;
  d->hasFilter = showFiltersInPanel(filterControls_, origins(), d->formFilter, d->callerFilter);
  for (TFilterControl& entry : filterControls_) {
    entry.CurrentValue = entry.EnteredValue = entry.StoredValue = entry.Control->value();
  }
  synchronising_ = false;
  if (IMainFormIntf* main = mainForm()) {
    main->SetHasFilter(d->hasFilter);
  }
  UpdateActionState();
}

void TfBaseEditGridFilter::SetPblFilter(const FilterArray& publicFilter, const ParameterArray& params, bool merge)
{
  TfBaseEditGrid::SetPblFilter(publicFilter, params, merge);
  CheckPblFilter();
}

void TfBaseEditGridFilter::CDS_AfterOpen(TClientDataSet* dataSet)
{
  TfBaseEditGrid::CDS_AfterOpen(dataSet);
  if (dataSet == cdsMaster_ && !dropDownsFilled_) {
    dropDownsFilled_ = true;
    fillDropDowns();
  }
}

void TfBaseEditGridFilter::fillDropDowns()
{
  for (const TFilterControl& entry : filterControls_) {
    auto* flat = dynamic_cast<FlatFilterDropDown*>(entry.Control);
    const TField* field = cdsMaster_->FindField(entry.FieldName);
    const QStringList options = field ? FieldDescription(fieldDescriptionRow(field)).options() : QStringList();
    if (flat && !options.isEmpty()) {
      flat->setItems(options);
    }
  }
}

// --- Layout ----------------------------------------------------------------------------------------------------

void TfBaseEditGridFilter::buildLayout()
{
  if (layout()) {
    return;
  }
  column_ = new QVBoxLayout(this);
  column_->setContentsMargins(0, 0, 0, 0);
  column_->setSpacing(0);
  column_->addWidget(dbgMaster_, 1);
  new GridTotals(dbgMaster_);
  placePanel();
}

void TfBaseEditGridFilter::placePanel()
{
  column_->insertWidget(0, pcFilterOptions_);
  pcFilterOptions_->setVisible(pcFilterOptions_->count() > 0);
}

void TfBaseEditGridFilter::FormShow()
{
  TfBaseEditGrid::FormShow();
  CheckPblFilter();
}

void TfBaseEditGridFilter::acTogglePanelExecute()
{
  if (focusedGrid(this) != dbgMaster_) {
    activateWindow();
    dbgMaster_->setFocus(Qt::ShortcutFocusReason);
    return;
  }
  QWidget* page = pcFilterOptions_->currentWidget();
  for (QWidget* widget : page ? page->findChildren<QWidget*>() : QWidgetList()) {
    if (widget->focusPolicy() & Qt::TabFocus && widget->isEnabled()) {
      widget->window()->activateWindow();
      widget->setFocus(Qt::ShortcutFocusReason);
      return;
    }
  }
}

}  // namespace kalvor
