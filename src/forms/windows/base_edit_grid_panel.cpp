// The filter panel in a window of its own, and panels of links that change the query.
#include <QEvent>
#include <QPushButton>
#include <QTabWidget>
#include <QVBoxLayout>

#include "forms/form_filters.h"
#include "forms/form_settings.h"
#include "forms/windows/base_edit_grid.h"
#include "forms/windows/base_form_private.h"
#include "platform/ports.h"
#include "registry/form_descriptions.h"
#include "registry/windows/form_host.h"
#include "session/dm.h"
#include "session/local_settings_file.h"
#include "session/settings_document.h"
#include "widgets/db_grid_ex.h"
#include "widgets/theme.h"

namespace kalvor {

namespace {

const QString floatPanelKey = QStringLiteral("FloatPanel");

QStringList panelSettings(int formId)
{
  QStringList lines;
  if (const QDomDocument* document = DM ? DM->userSettingsDocument() : nullptr) {
    GetNodeFromXml(*document, formSettingsGroup(formId), lines);
  }
  return lines;
}

}  // namespace

TfBaseEditGridFilterPanel::TfBaseEditGridFilterPanel(QWidget* parent) : TfBaseEditGridFilter(parent)
{
  QAction* toggle = addNamedAction(QStringLiteral("acFloatPanel"), QStringLiteral("Плаващ панел"),
                                   QKeySequence(QStringLiteral("Shift+F4")), [this] { setFloatPanel(!floating_); });
  gridMenu()->addAction(toggle);
}

TfBaseEditGridFilterPanel::~TfBaseEditGridFilterPanel()
{
  if (floatWindow_) {
    floatWindow_->removeEventFilter(this);
    delete floatWindow_;
  }
}

void TfBaseEditGridFilterPanel::setFloatPanel(bool on)
{
  if (floating_ == on) {
    return;
  }
  floating_ = on;
  if (column()) {
    placePanel();
  }
}

void TfBaseEditGridFilterPanel::placePanel()
{
  if (floating_) {
    floatPanel();
    return;
  }
  TfBaseEditGridFilter::placePanel();
  if (floatWindow_) {
    floatWindow_->removeEventFilter(this);
    floatWindow_->deleteLater();
    floatWindow_.clear();
  }
}

void TfBaseEditGridFilterPanel::floatPanel()
{
  if (!floatWindow_) {
    floatWindow_ = new QWidget(this, Qt::Tool | Qt::WindowTitleHint | Qt::WindowCloseButtonHint);
    floatWindow_->setObjectName(QStringLiteral("floatPanel"));
    floatWindow_->addActions(actions());
    floatWindow_->installEventFilter(this);
    auto* whole = new QVBoxLayout(floatWindow_);
    whole->setContentsMargins(0, 0, 0, 0);
  }
  floatWindow_->setWindowTitle(windowTitle());
  column()->removeWidget(pcFilterOptions());
  floatWindow_->layout()->addWidget(pcFilterOptions());
  pcFilterOptions()->show();
  if (isVisible()) {
    floatWindow_->adjustSize();
    floatWindow_->move(mapToGlobal(QPoint(width() - floatWindow_->width(), height() - floatWindow_->height())));
    floatWindow_->show();
  }
}

void TfBaseEditGridFilterPanel::FormShow()
{
  TfBaseEditGridFilter::FormShow();
  if (floating_) {
    placePanel();
  }
}

// Its cross puts the panel back.
bool TfBaseEditGridFilterPanel::eventFilter(QObject* watched, QEvent* event)
{
  if (watched == floatWindow_ && event->type() == QEvent::Close && floating_ && isVisible()) {
    QMetaObject::invokeMethod(this, [this] { setFloatPanel(false); }, Qt::QueuedConnection);
  }
  return TfBaseEditGridFilter::eventFilter(watched, event);
}

void TfBaseEditGridFilterPanel::GetFormSettings()
{
  TfBaseEditGridFilter::GetFormSettings();
  setFloatPanel(valueOfLine(panelSettings(formId()), floatPanelKey).toInt() != 0);
}

void TfBaseEditGridFilterPanel::SaveFormSetings()
{
  TfBaseEditGridFilter::SaveFormSetings();
  QDomDocument* document = DM ? DM->userSettingsDocument() : nullptr;
  if (document && formId() != 0) {
    const QString line = floatPanelKey + QLatin1String(floating_ ? "=1" : "=0");
    SaveNodeToXml(*document, formSettingsGroup(formId()), {line}, false);
  }
}

// --- Links -----------------------------------------------------------------------------------------------------

TfBaseEditGridFilterMultyQuery::TfBaseEditGridFilterMultyQuery(QWidget* parent) : TfBaseEditGridFilterPanel(parent) {}

QAbstractButton* TfBaseEditGridFilterMultyQuery::addLink(const TFilterLink& link)
{
  if (!linksColumn_) {
    auto* page = new QWidget(pcFilterOptions());
    linksColumn_ = new QVBoxLayout(page);
    linksColumn_->setContentsMargins(spacing::normal, spacing::tight, spacing::normal, spacing::tight);
    linksColumn_->setSpacing(0);
    pcFilterOptions()->addTab(page, QStringLiteral("Данни"));
  }
  auto* button = new QPushButton(link.Caption);
  button->setObjectName(QStringLiteral("link%1").arg(links_.size()));
  button->setFlat(true);
  button->setCursor(Qt::PointingHandCursor);
  const int position = int(links_.size());
  connect(button, &QPushButton::clicked, this, [this, position] { chooseLink(position); });
  linksColumn_->addWidget(button, 0, Qt::AlignLeft);
  links_.append(link);
  linkButtons_.append(button);
  markCurrentLink();
  return button;
}

void TfBaseEditGridFilterMultyQuery::markCurrentLink()
{
  for (qsizetype i = 0; i < linkButtons_.size(); ++i) {
    QFont font = linkButtons_[i]->font();
    font.setBold(i == currentLink_);
    font.setUnderline(i != currentLink_);
    linkButtons_[i]->setFont(font);
  }
}

// Filter and order of another query mean nothing for the form's own.
void TfBaseEditGridFilterMultyQuery::SaveFormSetings()
{
  if (d->queryFormId != 0 && d->queryFormId != formId()) {
    d->formFilter.clear();
    d->sortOrder.clear();
  }
  TfBaseEditGridFilterPanel::SaveFormSetings();
}

void TfBaseEditGridFilterMultyQuery::chooseLink(int position)
{
  runGuarded(QStringLiteral("TfBaseEditGridFilterMultyQuery.ReloadQuery"), [&] {
    if (position < 0 || position >= links_.size() || !QueryToSaveBeforeToDo()) {
      return;
    }
    if (ReloadQuery(links_[position].FormId, links_[position].Filter)) {
      currentLink_ = position;
      markCurrentLink();
    }
  });
}

bool TfBaseEditGridFilterMultyQuery::ReloadQuery(int otherForm, const FilterArray& filter)
{
  const WaitCursorScope wait;
  const TFormData* description = GetFromDataObject(QString::number(otherForm), 0);
  const QString order = description ? description->OrderBy : QString();
  const int before = std::exchange(d->queryFormId, otherForm);
  bool taken = false;
  try {
    taken = RequestDataSet(0, buildRequestFilter(d->callerFilter, filter), order);
  } catch (...) {
    d->queryFormId = before;
    throw;
  }
  if (!taken) {
    d->queryFormId = before;
    return false;
  }
  d->formFilter = filter;
  d->sortOrder = order;
  reopenMaster();
  CheckPblFilter();
  return true;
}

}  // namespace kalvor
