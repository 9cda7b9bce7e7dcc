#include "forms/windows/base_edit_tree.h"

#include <QSplitter>
#include <QTabBar>
#include <QTabWidget>
#include <QVBoxLayout>

#include "forms/form_filters.h"
#include "forms/messages.h"
#include "forms/windows/cds_options.h"
#include "forms/windows/form_focus.h"
#include "forms/windows/record_layout.h"
#include "platform/ports.h"
#include "widgets/data_control.h"
#include "widgets/theme.h"

namespace kalvor {

namespace {

constexpr QSize treeFormSize(860, 480);
constexpr int treeWidth = 320;
constexpr int recordRows = 11;

// The tree follows the record, or the record the tree: never both at once.
class Following {
 public:
  explicit Following(bool& flag) : flag_(flag), before_(std::exchange(flag, true)) {}
  ~Following() { flag_ = before_; }
  Following(const Following&) = delete;
  Following& operator=(const Following&) = delete;

 private:
  bool& flag_;
  bool before_;
};

// Takes the first line whose field ends in ".Id" out of a filter: the tree needs its ancestors too.
QString takeNodeLine(FilterArray& filter)
{
  for (qsizetype i = 0; i < filter.size(); ++i) {
    if (!filter[i].field.endsWith(QLatin1String(".Id"), Qt::CaseInsensitive)) {
      continue;
    }
    const QString id = variantText(filter[i].value);
    filter.removeAt(i);
    if (!filter.isEmpty()) {
      filter.last().conjunction.clear();
    }
    return id;
  }
  return {};
}

}  // namespace

TfBaseEditTreeView::TfBaseEditTreeView(QWidget* parent)
    : TfBaseEdit(parent), tvMaster_(new QTreeWidget(this)), pcMaster_(new QTabWidget(this))
{
  tvMaster_->setObjectName(QStringLiteral("tvMaster"));
  tvMaster_->setAccessibleName(QStringLiteral("Дърво"));
  tvMaster_->setHeaderHidden(true);
  tvMaster_->setFrameShape(QFrame::NoFrame);
  tvMaster_->setUniformRowHeights(true);
  pcMaster_->setObjectName(QStringLiteral("pcMaster"));
  pcMaster_->setDocumentMode(true);
  pcMaster_->setTabBarAutoHide(true);
  pcMaster_->tabBar()->setFocusPolicy(Qt::NoFocus);
  connect(tvMaster_, &QTreeWidget::currentItemChanged, this, [this](QTreeWidgetItem* item) { nodeSelected(item); });
  const auto nothing = [] {};
  setActionHandler(QStringLiteral("acTableFilter"), nothing);
  setActionHandler(QStringLiteral("acFieldFilter"), nothing);
  addNamedAction(QStringLiteral("acMoveUp"), QStringLiteral("Нагоре"), QKeySequence(QStringLiteral("Alt+Up")),
                 [this] { moveNode(-1); });
  addNamedAction(QStringLiteral("acMoveDown"), QStringLiteral("Надолу"), QKeySequence(QStringLiteral("Alt+Down")),
                 [this] { moveNode(1); });
  addNamedAction(QStringLiteral("acPromote"), QStringLiteral("До горния"), QKeySequence(QStringLiteral("Alt+Left")),
                 [this] { promoteNode(); });
  for (const char* name : {"acMoveUp", "acMoveDown", "acPromote"}) {
    QAction* move = action(QLatin1String(name));
    removeAction(move);
    tvMaster_->addAction(move);
    move->setShortcutContext(Qt::WidgetShortcut);
  }
  cdsMaster_->AfterPost = [this](TClientDataSet*) { recordPosted(); };
  cdsMaster_->AfterRefresh = [this](TClientDataSet*) { redrawTree(); };
  cdsMaster_->AfterCancel = [this](TClientDataSet*) { redrawTree(); };
  resize(treeFormSize);
}

// --- Building --------------------------------------------------------------------------------------------------

void TfBaseEditTreeView::buildRecordSide(QSplitter& splitter)
{
  if (pcMaster_->count() == 0) {
    const VariantArray& descriptions = cdsOptions(0).FieldDescriptions;
    RecordLayout(*cdsMaster_, recordLayoutItems(*cdsMaster_, descriptions), recordRows).build(*pcMaster_);
  }
  splitter.addWidget(pcMaster_);
}

void TfBaseEditTreeView::buildLayout()
{
  if (layout()) {
    return;
  }
  auto* splitter = new QSplitter(this);
  splitter->setChildrenCollapsible(false);
  splitter->setHandleWidth(spacing::tight);
  splitter->addWidget(tvMaster_);
  buildRecordSide(*splitter);
  splitter->setStretchFactor(0, 0);
  splitter->setStretchFactor(1, 1);
  splitter->setSizes({treeWidth, qMax(width() - treeWidth, treeWidth)});
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->addWidget(splitter);
}

void TfBaseEditTreeView::redrawTree()
{
  const Following quiet(following_);
  const QString selected = selectedId();
  const TField* id = cdsMaster_->FindField(u"Id");
  RedrawDBTreeView(*tvMaster_, *cdsMaster_, caption_, selected);
  if (!tvMaster_->currentItem() && id) {
    PosItemById(*tvMaster_, id->AsString());
  }
  if (!tvMaster_->currentItem() && tvMaster_->topLevelItemCount() > 0) {
    tvMaster_->setCurrentItem(tvMaster_->topLevelItem(0));
  }
  const QString now = selectedId();
  if (id && !now.isEmpty() && id->AsString() != now && !cdsMaster_->IsEditing()) {
    cdsMaster_->Locate(QStringLiteral("Id"), now);
  }
}

int TfBaseEditTreeView::DoShowForm(int formId, ShowOption options, const FilterArray& callerFilter,
                                   const FilterArray& extraFilter, TSelectionList& selection,
                                   const TDefaultValues& defaults, const ParameterArray& parameter)
{
  FilterArray caller = callerFilter, extra = extraFilter;
  openedOn_ = takeNodeLine(caller);
  if (openedOn_.isEmpty()) {
    openedOn_ = takeNodeLine(extra);
  }
  return TfBaseEdit::DoShowForm(formId, options, caller, extra, selection, defaults, parameter);
}

void TfBaseEditTreeView::CDS_AfterOpen(TClientDataSet* dataSet)
{
  TfBaseEdit::CDS_AfterOpen(dataSet);
  if (dataSet == cdsMaster_) {
    redrawTree();
    if (PosItemById(*tvMaster_, openedOn_)) {
      openedOn_.clear();
    }
  }
}

void TfBaseEditTreeView::FormShow()
{
  TfBaseEdit::FormShow();
  if (!CheckState()) {
    tvMaster_->setFocus(Qt::OtherFocusReason);
    QMetaObject::invokeMethod(tvMaster_, [this] { tvMaster_->setFocus(Qt::OtherFocusReason); }, Qt::QueuedConnection);
  }
}

// --- Tree and record -------------------------------------------------------------------------------------------

void TfBaseEditTreeView::nodeSelected(QTreeWidgetItem* item)
{
  if (following_ || !item || !cdsMaster_->Active()) {
    return;
  }
  const Following quiet(following_);
  const bool there = runGuarded(QStringLiteral("TfBaseEditTreeView.tvMasterChange"), [&] {
    const TField* id = cdsMaster_->FieldByName(u"Id");
    if (id->AsString() != treeItemId(item) && !cdsMaster_->Locate(QStringLiteral("Id"), treeItemId(item))) {
      throw SilentAbort();
    }
  });
  if (!there) {
    followRecord();
  }
}

void TfBaseEditTreeView::followRecord()
{
  const TField* id = cdsMaster_->Active() ? cdsMaster_->FindField(u"Id") : nullptr;
  if (id && id->AsString() != selectedId()) {
    PosItemById(*tvMaster_, id->AsString());
  }
}

void TfBaseEditTreeView::CDS_AfterScroll(TClientDataSet* dataSet)
{
  TfBaseEdit::CDS_AfterScroll(dataSet);
  if (dataSet == cdsMaster_ && !following_) {
    const Following quiet(following_);
    followRecord();
  }
}

void TfBaseEditTreeView::recordPosted()
{
  QTreeWidgetItem* item = tvMaster_->currentItem();
  if (item && cdsMaster_->FindField(caption_.fieldName)) {
    setTreeItem(item, cdsMaster_->FieldByName(u"Id")->AsString(), treeItemText(*cdsMaster_, caption_));
  }
}

// --- Records ---------------------------------------------------------------------------------------------------

QTreeWidgetItem* TfBaseEditTreeView::parentOf(QTreeWidgetItem* item) const
{
  return item && item->parent() ? item->parent() : tvMaster_->invisibleRootItem();
}

void TfBaseEditTreeView::acInsertRecordExecute()
{
  TfBase::acInsertRecordExecute();
  cdsMaster_->CheckBrowseMode();
  if (!mayLeaveRecord()) {
    return;
  }
  QTreeWidgetItem* selected = tvMaster_->currentItem();
  {
    const Following quiet(following_);
    cdsMaster_->Append();
    auto* node = new QTreeWidgetItem(selected ? selected : tvMaster_->invisibleRootItem());
    const QString text = treeItemText(*cdsMaster_, caption_);
    setTreeItem(node, cdsMaster_->FieldByName(u"Id")->AsString(), text.isEmpty() ? QStringLiteral("(нов)") : text);
    if (selected) {
      selected->setExpanded(true);
    }
    tvMaster_->setCurrentItem(node);
  }
  focusFirstControl();
}

// The selected node is still the parent to be.
void TfBaseEditTreeView::CDS_OnNewRecord(TClientDataSet* dataSet)
{
  TfBaseEdit::CDS_OnNewRecord(dataSet);
  if (dataSet != cdsMaster_) {
    return;
  }
  QTreeWidgetItem* selected = tvMaster_->currentItem();
  dataSet->FieldByName(u"Parent_Id")->SetValue(selected ? Variant(treeItemId(selected)) : Variant());
  if (TField* position = dataSet->FindField(u"SubIndex")) {
    position->SetAsInteger((selected ? selected : tvMaster_->invisibleRootItem())->childCount());
  }
}

void TfBaseEditTreeView::acEditRecordExecute()
{
  TfBaseEdit::acEditRecordExecute();
  if (CheckState()) {
    focusFirstControl();
  }
}

void TfBaseEditTreeView::acDeleteRecordExecute()
{
  TfBase::acDeleteRecordExecute();
  if (!CheckDataModification(false, true, false)) {
    return;
  }
  QTreeWidgetItem* node = tvMaster_->currentItem();
  if (!node) {
    userPrompt().message(PromptKind::Plain, QStringLiteral("Изберете първо поле за изстриване"), {PromptButton::Ok});
    return;
  }
  const QString id = treeItemId(node);
  const QString parentId = treeItemId(node->parent());
  const bool unposted = cdsMaster_->State() == DataSetState::Insert;
  if (CheckState()) {
    cdsMaster_->Cancel();
  }
  if (!unposted) {
    {
      const Following quiet(following_);
      DeleteTree(*cdsMaster_, id);
      redrawTree();
    }
    UpdateActionState();
    execute(QStringLiteral("acSave"));
  }
  PosItemById(*tvMaster_, parentId);
}

void TfBaseEditTreeView::acCancelExecute()
{
  {
    const Following quiet(following_);
    TfBaseEdit::acCancelExecute();
  }
  redrawTree();
}

// --- Moving nodes ----------------------------------------------------------------------------------------------

void TfBaseEditTreeView::requireMovable()
{
  requireEditRight();
  cdsMaster_->CheckBrowseMode();
  if (!CheckDataModification(true, false, false) || !tvMaster_->currentItem() || !cdsMaster_->FindField(u"SubIndex")) {
    throw SilentAbort();
  }
}

void TfBaseEditTreeView::renumber(QTreeWidgetItem* parent, const QList<QTreeWidgetItem*>& order)
{
  const Following quiet(following_);
  const QString selected = selectedId();
  const Variant parentId = parent == tvMaster_->invisibleRootItem() ? Variant() : Variant(treeItemId(parent));
  for (qsizetype i = 0; i < order.size(); ++i) {
    if (!cdsMaster_->Locate(QStringLiteral("Id"), treeItemId(order[i]))) {
      continue;
    }
    TField* position = cdsMaster_->FieldByName(u"SubIndex");
    TField* above = cdsMaster_->FieldByName(u"Parent_Id");
    if (position->AsInteger() == i && variantText(above->Value()) == variantText(parentId)) {
      continue;
    }
    cdsMaster_->Edit();
    above->SetValue(parentId);
    position->SetAsInteger(i);
    tvMaster_->setCurrentItem(order[i]);
    cdsMaster_->Post();
  }
  PosItemById(*tvMaster_, selected);
  cdsMaster_->Locate(QStringLiteral("Id"), selected);
}

void TfBaseEditTreeView::moveNode(int step)
{
  requireMovable();
  QTreeWidgetItem* node = tvMaster_->currentItem();
  QTreeWidgetItem* parent = parentOf(node);
  const int from = parent->indexOfChild(node);
  if (from + step < 0 || from + step >= parent->childCount()) {
    return;
  }
  {
    const Following quiet(following_);
    const bool expanded = node->isExpanded();
    parent->takeChild(from);
    parent->insertChild(from + step, node);
    node->setExpanded(expanded);
    tvMaster_->setCurrentItem(node);
  }
  QList<QTreeWidgetItem*> order;
  for (int i = 0; i < parent->childCount(); ++i) {
    order.append(parent->child(i));
  }
  renumber(parent, order);
  UpdateActionState();
}

void TfBaseEditTreeView::promoteNode()
{
  requireMovable();
  QTreeWidgetItem* node = tvMaster_->currentItem();
  QTreeWidgetItem* parent = node->parent();
  if (!parent) {
    return;
  }
  QTreeWidgetItem* target = parentOf(parent);
  {
    const Following quiet(following_);
    parent->removeChild(node);
    target->insertChild(target->indexOfChild(parent) + 1, node);
    tvMaster_->setCurrentItem(node);
  }
  QList<QTreeWidgetItem*> order;
  for (int i = 0; i < target->childCount(); ++i) {
    order.append(target->child(i));
  }
  renumber(target, order);
  UpdateActionState();
}

}  // namespace kalvor
