// From DoShowForm to the shown window, and its closing.
#include <QApplication>
#include <QCloseEvent>
#include <QLayout>
#include <QMdiSubWindow>
#include <QTimer>

#include "filters/windows/search_dialog.h"
#include "filters/windows/table_filter.h"
#include "forms/form_filters.h"
#include "forms/messages.h"
#include "forms/windows/base_form_private.h"
#include "forms/windows/form_server.h"
#include "forms/windows/modal_form_dialog.h"
#include "platform/ports.h"
#include "registry/form_descriptions.h"
#include "registry/windows/form_host.h"
#include "session/error_log.h"
#include "session/server_calls.h"

namespace kalvor {

namespace {

constexpr int largestWidth = 1280;  // what a window opens with fits a screen of 1366 x 768
constexpr int largestHeight = 600;

ISelectorOwnerIntf* selectorOwner(QObject* owner)
{
  return dynamic_cast<ISelectorOwnerIntf*>(owner);
}

}  // namespace

int TfBase::DoShowForm(int formId, ShowOption options, const FilterArray& callerFilter,
                       const FilterArray& extraFilter, TSelectionList& selection, const TDefaultValues& defaults,
                       const ParameterArray& parameter)
{
  FormCreate();
  {
    const WaitCursorScope wait;
    d->formId = formId;
    requireReadRight();
    d->options = options;
    d->ownSelection = selection;
    d->defaultValues = defaults;
    d->sqlParameters = parameter;
    d->callerFilter = callerFilter;
    d->formFilter = extraFilter;
    openWithDescription();
  }
  if (options.testFlag(so_ShowModal)) {
    d->sharedSelection = &selection;
  }
  d->stage = Private::Stage::Opened;
  const int result = SetFormProperties();
  d->sharedSelection = nullptr;
  return result;
}

void TfBase::openWithDescription()
{
  const TFormData* known = GetFromDataObject(QString::number(d->formId), 0);
  const TFormData description = known ? *known : TFormData();
  LoadColorOptionsFromXML();
  d->caption = description.Caption;
  d->captionFields = description.CaptionFields;
  SetFormCaption(d->caption, d->captionFields);
  d->hasFilter = !d->formFilter.isEmpty();
  GetFormSettings();
  if (d->sortOrder.isEmpty()) {
    d->sortOrder = description.OrderBy;
  }
  takeDefaultFilter(description.FormFilter);
  d->hasFilter = !d->formFilter.isEmpty();
  d->callerFilter = callerWithSecurityFilter(d->callerFilter, securityFilter());
  openMaster();
  SetFormCaption(d->caption, d->captionFields);
}

void TfBase::openMaster()
{
  TClientDataSet* master = GetCdsMaster();
  if (!master) {
    return;
  }
  if (!RequestDataSet(0, d->openEmpty ? noRowFilter() : requestFilter(), d->sortOrder)) {
    throw TELException(_err_NoSQL_Found, QStringLiteral("TfBase.DoShowForm"));
  }
  master->Open();
  if (master->IsEmpty() && master->AfterScroll) {
    master->AfterScroll(master);
  }
}

// --- Presentation ----------------------------------------------------------------------------------------------

int TfBase::SetFormProperties()
{
  const ShowOption options = d->options;
  if (options.testFlag(so_StartImport)) {
    execute(QStringLiteral("acImport"));
    deleteLater();  // nobody ever sees this form
    return 0;
  }
  if (options.testFlag(so_ImportData)) {
    return 0;
  }
  prepareLayout();
  if (options.testFlag(so_PostDocument)) {
    adoptChildWindow(this);
    windowOf(this)->setGeometry(QWIDGETSIZE_MAX, 0, 0, 0);
    windowOf(this)->show();
    return 0;
  }
  // Beside a modal form nothing but another one can be used.
  const bool modal = options.testFlag(so_ShowModal) || (QApplication::activeModalWidget() && !options.testFlag(so_DoNotShow));
  if (inSelectionMode() || modal) {
    if (ISelectorOwnerIntf* owner = selectorOwner(d->owner)) {
      owner->SetSelectorForm(this);
    }
    if (modal) {
      return showModally();
    }
  }
  showAsChild();
  return 0;
}

void TfBase::prepareLayout()
{
  if (d->laidOut) {
    return;
  }
  d->laidOut = true;
  buildLayout();
  if (!d->sizeFromSettings && layout()) {
    resize(size().expandedTo(layout()->sizeHint()).boundedTo(QSize(largestWidth, largestHeight)));
  }
}

int TfBase::showModally()
{
  d->modal = true;
  ModalFormDialog dialog(this, QApplication::activeWindow());
  if (d->tableFilterShown) {
    QTimer::singleShot(0, this, [this] { askForFilter(); });
  }
  dialog.exec();
  deleteLater();
  return d->modalResult;
}

void TfBase::showAsChild()
{
  adoptChildWindow(this);
  QWidget* window = windowOf(this);
  auto* sub = qobject_cast<QMdiSubWindow*>(window);
  d->hosted = sub != nullptr;
  d->actions.leaveShortcutsToMainWindow(d->hosted);
  if (sub) {
    connect(sub->mdiArea(), &QMdiArea::subWindowActivated, this, [this, sub](QMdiSubWindow* active) {
      active == sub ? FormActivate() : FormDeactivate();
    });
    cascadeChildWindow(sub);
  }
  if (d->tableFilterShown) {
    askForFilter();
  } else if (!d->options.testFlag(so_DoNotShow)) {
    showWindow();
  }
}

void TfBase::showWindow()
{
  QWidget* window = windowOf(this);
  show();
  window->show();
  if (auto* sub = qobject_cast<QMdiSubWindow*>(window)) {
    fitChildWindow(sub);
  }
  focusFirstControl();
}

void TfBase::closeWith(int modalResult)
{
  d->modalResult = modalResult;
  windowOf(this)->close();
}

// --- Show and close events -------------------------------------------------------------------------------------

void TfBase::showEvent(QShowEvent* event)
{
  QWidget::showEvent(event);
  if (d->stage == Private::Stage::Opened) {
    d->stage = Private::Stage::Shown;
    runGuarded(QStringLiteral("TfBase.FormShow"), [this] { FormShow(); });
  }
}

void TfBase::closeEvent(QCloseEvent* event)
{
  if (d->stage == Private::Stage::Closed) {
    event->accept();
    return;
  }
  if (!closeOpenedForms() || !FormCloseQuery()) {
    event->ignore();
    return;
  }
  event->accept();
  FormClose();
}

bool TfBase::FormCloseQuery()
{
  return true;
}

bool TfBase::closeOpenedForms()
{
  for (const QPointer<QWidget>& form : std::exchange(d->openedForms, {})) {
    if (form && !windowOf(form)->close()) {
      d->openedForms.push_back(form);
    }
  }
  return d->openedForms.empty();
}

void TfBase::FormClose()
{
  d->stage = Private::Stage::Closed;
  // They hold the form that is about to go.
  for (QDialog* dialog : {static_cast<QDialog*>(d->tableFilter), static_cast<QDialog*>(d->search)}) {
    if (dialog) {
      dialog->reject();
    }
  }
  runGuarded(QStringLiteral("TfBase.FormClose"), [this] { SaveFormSetings(); });
  if (IMainFormIntf* main = mainForm()) {
    main->FormClosed(QString());
    main->WindowClosed(d->uniqueId);
    main->SetHasFilter(false);
  }
  emit formClosed();
  if (!d->modal && windowOf(this) == this) {
    deleteLater();
  }
}

void TfBase::FormDestroy()
{
  if (inSelectionMode()) {
    if (ISelectorOwnerIntf* owner = selectorOwner(d->owner)) {
      owner->SetSelectorForm(nullptr);
    }
  }
  for (const auto& entry : d->dataSets) {
    if (!entry->ProviderName.isEmpty()) {
      loggingErrors(QStringLiteral("TfBase.FormDestroy"),
                    [&] { deleteDynamicProvider(sessionCalls(), std::exchange(entry->ProviderName, {})); });
    }
  }
}

}  // namespace kalvor
