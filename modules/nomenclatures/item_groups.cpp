#include "item_groups.h"

#include <QMenu>
#include <QSplitter>
#include <QTabWidget>

#include "forms/form_filters.h"
#include "registry/windows/form_registry.h"
#include "widgets/data_control.h"
#include "widgets/db_grid_ex.h"
#include "widgets/theme.h"

namespace kalvor {

namespace {

constexpr int itemCard = 151;

}  // namespace

TfEdItemGroups::TfEdItemGroups(QWidget* parent)
    : TfBaseEditTreeView(parent), cdsItems_(new TClientDataSet(this)), dbgItems_(new TDBGridEx(this))
{
  cdsItems_->setObjectName(QStringLiteral("cdsItems"));
  dbgItems_->setObjectName(QStringLiteral("dbgItems"));
  dbgItems_->setAccessibleName(QStringLiteral("Артикули от групата"));
  dbgItems_->setDataSet(cdsItems_);
  dbgItems_->setFrameShape(QFrame::NoFrame);
  addNamedAction(QStringLiteral("acShowCard"), QStringLiteral("Карта"), QKeySequence(QStringLiteral("Ctrl+Return")),
                 [this] { openItem(); });
  gridMenu()->addAction(action(QStringLiteral("acShowCard")));
  addNamedAction(QStringLiteral("acToggleItems"), QStringLiteral("Сменя групи/артикули"),
                 QKeySequence(QStringLiteral("F4")), [this] {
                   QWidget* next = dbgItems_->hasFocus() ? static_cast<QWidget*>(tvMaster()) : dbgItems_;
                   next->setFocus(Qt::ShortcutFocusReason);
                 });
  resize(1120, 560);
}

void TfEdItemGroups::buildRecordSide(QSplitter& splitter)
{
  auto* side = new QSplitter(Qt::Vertical, &splitter);
  side->setChildrenCollapsible(false);
  side->setHandleWidth(spacing::tight);
  TfBaseEditTreeView::buildRecordSide(*side);
  for (QWidget* control : pcMaster()->findChildren<QWidget*>()) {
    if (DataControl::of(control)) {
      setTabOrder(control, dbgItems_);
    }
  }
  side->addWidget(dbgItems_);
  side->setStretchFactor(0, 0);
  side->setStretchFactor(1, 1);
  const int record = pcMaster()->sizeHint().height();
  side->setSizes({record, qMax(height() - record, record)});
  splitter.addWidget(side);
}

void TfEdItemGroups::FormShow()
{
  TfBaseEditTreeView::FormShow();
  dbgItems_->setReadOnly(true);
}

QString TfEdItemGroups::detailKeyField(int) const
{
  return QStringLiteral("N_Item.ItemGroup_Id");
}

void TfEdItemGroups::CDS_AfterScroll(TClientDataSet* dataSet)
{
  TfBaseEditTreeView::CDS_AfterScroll(dataSet);
  if (dataSet == cdsMaster()) {
    readItems();
  }
}

void TfEdItemGroups::readItems()
{
  const TField* id = cdsMaster()->FindField(u"Id");
  if (id && (!cdsItems_->Active() || id->AsString() != shownGroup_)) {
    shownGroup_ = id->AsString();
    acGetDetailsExecute();
  }
}

void TfEdItemGroups::gridDoubleClicked(TDBGrid*)
{
  openItem();
}

void TfEdItemGroups::openItem()
{
  if (cdsItems_->Active() && !cdsItems_->IsEmpty()) {
    RequestForm(itemCard, ShowOption(so_Normal) | so_Card,
                recordFilter(QStringLiteral("ID"), cdsItems_->FieldByName(u"Id")->Value()), this);
  }
}

}  // namespace kalvor
