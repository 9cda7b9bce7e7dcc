#include "forms/windows/base_edit_grid.h"

#include <QVBoxLayout>

#include "forms/windows/grid_totals.h"
#include "widgets/db_grid_ex.h"

namespace kalvor {

namespace {

constexpr QSize editGridSize(900, 480);
constexpr QSize smallGridSize(367, 267);
constexpr QSize mediumGridSize(481, 325);

}  // namespace

TfBaseEditGrid::TfBaseEditGrid(QWidget* parent) : TfBaseEdit(parent), dbgMaster_(new TDBGridEx(this))
{
  dbgMaster_->setObjectName(QStringLiteral("dbgMaster"));
  dbgMaster_->setAccessibleName(QStringLiteral("Редове"));
  dbgMaster_->setDataSet(cdsMaster_);
  dbgMaster_->setFrameShape(QFrame::NoFrame);
  dbgMaster_->setInCellEditing(true);
  resize(editGridSize);
}

void TfBaseEditGrid::buildLayout()
{
  if (layout()) {
    return;
  }
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->addWidget(dbgMaster_);
  new GridTotals(dbgMaster_);
}

void TfBaseEditGrid::acInsertRecordExecute()
{
  TfBase::acInsertRecordExecute();
  if (mayLeaveRecord()) {
    cdsMaster_->Append();
    dbgMaster_->setFocus(Qt::ShortcutFocusReason);
    dbgMaster_->selectFirstColumn(true);
  }
}

void TfBaseEditGrid::acEditRecordExecute()
{
  TfBaseEdit::acEditRecordExecute();
  if (CheckState()) {
    dbgMaster_->setFocus(Qt::ShortcutFocusReason);
    dbgMaster_->editCell();
  }
}

TfBaseEditGridSmall::TfBaseEditGridSmall(QWidget* parent) : TfBaseEditGrid(parent)
{
  resize(smallGridSize);
}

TfBaseEditGridMed::TfBaseEditGridMed(QWidget* parent) : TfBaseEditGrid(parent)
{
  resize(mediumGridSize);
}

}  // namespace kalvor
