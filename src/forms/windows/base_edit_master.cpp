// Forms with the master on pages, and with its lines below.
#include <QSplitter>
#include <QTabBar>
#include <QTabWidget>
#include <QVBoxLayout>

#include "forms/form_rights.h"
#include "forms/messages.h"
#include "forms/windows/base_edit.h"
#include "forms/windows/cds_options.h"
#include "forms/windows/form_focus.h"
#include "forms/windows/grid_totals.h"
#include "forms/windows/record_layout.h"
#include "platform/ports.h"
#include "widgets/data_control.h"
#include "widgets/db_grid_ex.h"
#include "widgets/theme.h"

namespace kalvor {

namespace {

constexpr int cardRowsPerColumn = 11;
constexpr int headerRowsPerColumn = 6;
constexpr QSize cardSize(760, 240);
constexpr QSize documentSize(1120, 600);

}  // namespace

// --- Pages -----------------------------------------------------------------------------------------------------

TfBaseEditMaster::TfBaseEditMaster(QWidget* parent) : TfBaseEdit(parent), pcMaster_(new QTabWidget(this))
{
  pcMaster_->setObjectName(QStringLiteral("pcMaster"));
  pcMaster_->setDocumentMode(true);
  pcMaster_->setTabBarAutoHide(true);
  pcMaster_->tabBar()->setFocusPolicy(Qt::NoFocus);  // pages have their own keys, Alt and the number
  resize(cardSize);
}

void TfBaseEditMaster::buildPages(int rowsPerColumn)
{
  if (pcMaster_->count() == 0) {
    const VariantArray& descriptions = cdsOptions(0).FieldDescriptions;
    RecordLayout(*cdsMaster_, recordLayoutItems(*cdsMaster_, descriptions), rowsPerColumn).build(*pcMaster_);
  }
}

void TfBaseEditMaster::buildLayout()
{
  if (layout()) {
    return;
  }
  buildPages(cardRowsPerColumn);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->addWidget(pcMaster_);
}

void TfBaseEditMaster::CDS_AfterScroll(TClientDataSet* dataSet)
{
  TfBaseEdit::CDS_AfterScroll(dataSet);
  if (dataSet == cdsMaster_) {
    SetEditControlsReadOnly();
  }
}

// --- Lines -----------------------------------------------------------------------------------------------------

TfBaseEditMasterDetail::TfBaseEditMasterDetail(QWidget* parent)
    : TfBaseEditMaster(parent), cdsDetail_(new TClientDataSet(this)), dbgDetail_(new TDBGridEx(this))
{
  cdsDetail_->setObjectName(QStringLiteral("cdsDetail"));
  dbgDetail_->setObjectName(QStringLiteral("dbgDetail"));
  dbgDetail_->setAccessibleName(QStringLiteral("Редове"));
  dbgDetail_->setDataSet(cdsDetail_);
  dbgDetail_->setFrameShape(QFrame::NoFrame);
  dbgDetail_->setInCellEditing(true);
  dbgDetail_->setMultiSelect(true);
  addNamedAction(QStringLiteral("acToggleMasterDetail"), QStringLiteral("Сменя заглавие/редове"),
                 QKeySequence(QStringLiteral("F4")), [this] { acToggleMasterDetailExecute(); });
  resize(documentSize);
}

void TfBaseEditMasterDetail::buildLayout()
{
  if (layout()) {
    return;
  }
  buildPages(headerRowsPerColumn);
  for (QWidget* page : pcMaster_->findChildren<QWidget*>()) {
    if (DataControl::of(page)) {
      setTabOrder(page, dbgDetail_);
    }
  }
  splitter_ = new QSplitter(Qt::Vertical, this);
  splitter_->setChildrenCollapsible(false);
  splitter_->setHandleWidth(spacing::tight);
  splitter_->addWidget(pcMaster_);
  splitter_->addWidget(dbgDetail_);
  splitter_->setStretchFactor(0, 0);
  splitter_->setStretchFactor(1, 1);
  new GridTotals(dbgDetail_);
  const int header = pcMaster_->sizeHint().height();
  splitter_->setSizes({header, std::max(height() - header, header)});
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->addWidget(splitter_);
}

void TfBaseEditMasterDetail::CDS_AfterScroll(TClientDataSet* dataSet)
{
  TfBaseEditMaster::CDS_AfterScroll(dataSet);
  if (dataSet == cdsMaster_) {
    acGetDetailsExecute();
  }
}

void TfBaseEditMasterDetail::requireEditableDocument()
{
  if (!CheckDataModification(true, false, false)) {
    throw FormRefusal(rightsRefusal(_err_EditNotAllowed, formId()));
  }
  if (cdsMaster_->IsEmpty() && !CheckState()) {
    throw SilentAbort();
  }
  if (!CheckState()) {
    cdsMaster_->Edit();
  }
}

void TfBaseEditMasterDetail::CDS_BeforeEdit(TClientDataSet* dataSet)
{
  if (dataSet == cdsDetail_) {
    requireEditableDocument();
  }
  TfBaseEditMaster::CDS_BeforeEdit(dataSet);
}

void TfBaseEditMasterDetail::CDS_BeforeInsert(TClientDataSet* dataSet)
{
  if (dataSet == cdsDetail_) {
    requireEditableDocument();
  }
  TfBaseEditMaster::CDS_BeforeInsert(dataSet);
}

// With the focus in the lines a new record is a new line.
void TfBaseEditMasterDetail::acInsertRecordExecute()
{
  if (focusedGrid(this) == dbgDetail_ && CheckState()) {
    cdsDetail_->Append();
    dbgDetail_->selectFirstColumn(true);
  } else {
    TfBaseEditMaster::acInsertRecordExecute();
  }
}

void TfBaseEditMasterDetail::acDeleteRecordExecute()
{
  requireDeleteRight();
  TDBGrid* grid = focusedGrid(this);
  if (grid && grid->dataSet() && grid->dataSet() != cdsMaster_) {
    deleteLines(*grid);
  } else if (confirm(_que_ConfirmDocumentDelete)) {
    TfBaseEditMaster::acDeleteRecordExecute();
  }
}

// Local until the next save. A line that is only being entered goes with its entry.
void TfBaseEditMasterDetail::deleteLines(TDBGrid& grid)
{
  TClientDataSet* lines = grid.dataSet();
  const QList<Bookmark> marked = grid.markedRecords();
  const bool entered = lines->State() == DataSetState::Insert && marked.isEmpty();
  if (lines->IsEditing()) {
    lines->Cancel();
  }
  if (entered || (marked.isEmpty() && lines->IsEmpty())) {
    return;
  }
  requireEditableDocument();
  if (marked.isEmpty()) {
    lines->Delete();
    return;
  }
  const ControlsDisabledScope quiet(lines);
  for (const Bookmark line : marked) {
    if (lines->GotoBookmark(line)) {
      lines->Delete();
    }
  }
  grid.clearMarks();
}

void TfBaseEditMasterDetail::acToggleMasterDetailExecute()
{
  if (focusedGrid(this) == dbgDetail_) {
    focusFirstControl();
  } else {
    dbgDetail_->setFocus(Qt::ShortcutFocusReason);
  }
}

}  // namespace kalvor
