// The editor's life: rows from a filter, the filter from the rows.
#include "filters/windows/table_filter.h"

#include <QDialogButtonBox>
#include <QEvent>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "common/sql_text.h"
#include "forms/messages.h"
#include "platform/ports.h"
#include "registry/selector.h"
#include "session/error_log.h"
#include "widgets/string_grid.h"
#include "widgets/theme.h"

namespace kalvor {

QString FieldCaption;
QString fieldValue;

namespace {

constexpr QSize tableFilterSize(660, 380);

}  // namespace

TfTableFilter::TfTableFilter(IBaseIntf* owner, const QString& formCaption, const VariantArray& descriptions,
                             TClientDataSet* master, const FilterArray& startFilter, QWidget* parent)
    : QDialog(parent),
      owner_(owner),
      formCaption_(formCaption),
      fields_(descriptions, master),
      master_(master),
      startFilter_(startFilter),
      uniqueId_(CreateUniqueID())
{
  setObjectName(QStringLiteral("TfTableFilter"));
  setWindowTitle(QStringLiteral("Табличен филтър"));
  setWindowModality(Qt::WindowModal);
  buildWindow();
  buildMenus();
  InitStrGrid();
}

TfTableFilter::~TfTableFilter() = default;

void TfTableFilter::buildWindow()
{
  grid_ = new TStringGrid(tableFilterColumnCount, this);
  grid_->setObjectName(QStringLiteral("StringGrid"));
  grid_->setAccessibleName(windowTitle());
  grid_->OnGetEditor = [this](int column, int row) { return editorOf(column, row); };
  grid_->OnEllipsis = [this](int, int row) { ellipsisPressed(row); };
  grid_->OnEdited = [this](int, int row) {
    joinRowAbove(grid_->table(), row);
    showHint();
  };
  grid_->OnDisplayText = [this](int column, int row, const QString& text) {
    return column == tfValue ? shownFilterValue(fields_, fieldOfRow(row), text) : text;
  };
  grid_->OnKey = [this](QKeyEvent* event) { return gridKey(event); };
  grid_->viewport()->installEventFilter(this);
  grid_->installEventFilter(this);
  connect(grid_->selectionModel(), &QItemSelectionModel::currentChanged, this, [this] { showHint(); });
  hint_ = new QLabel(this);
  hint_->setObjectName(QStringLiteral("hint"));
  hint_->setWordWrap(true);
  hint_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
  hint_->setMinimumHeight(2 * hint_->fontMetrics().lineSpacing());
  QPalette quiet = hint_->palette();
  quiet.setColor(QPalette::WindowText, theme().quietText);
  hint_->setPalette(quiet);

  auto* buttons = new QDialogButtonBox(this);
  ok_ = buttons->addButton(QStringLiteral("Ok"), QDialogButtonBox::AcceptRole);
  ok_->setObjectName(QStringLiteral("btnOk"));
  QPushButton* cancel = buttons->addButton(QStringLiteral("Отказ"), QDialogButtonBox::RejectRole);
  cancel->setObjectName(QStringLiteral("btnCancel"));
  QPushButton* clear = buttons->addButton(QStringLiteral("&Изчисти"), QDialogButtonBox::ResetRole);
  clear->setObjectName(QStringLiteral("btnClear"));
  ok_->setDefault(true);
  connect(ok_, &QPushButton::clicked, this, [this] { btnOkClick(); });
  connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
  connect(clear, &QPushButton::clicked, this, [this] { btnClearClick(); });

  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(spacing::wide, spacing::wide, spacing::wide, spacing::wide);
  column->setSpacing(spacing::normal);
  column->addWidget(grid_, 1);
  column->addWidget(hint_);
  column->addWidget(buttons);
  setTabOrder(grid_, ok_);
  resize(tableFilterSize);
}

void TfTableFilter::setMacroMode(bool on)
{
  mode_ = on ? TableFilterMode::Macros : TableFilterMode::Values;
}

void TfTableFilter::InitStrGrid()
{
  captions_ = fields_.captions();
  grid_->table().setTitles(tableFilterTitles());
  grid_->setColumnWidths({138, 60, 149, 41});
  grid_->select(tfField, 1);
}

// --- Showing -------------------------------------------------------------------------------------------------

void TfTableFilter::showEditor(int column, int row)
{
  shown_ = true;
  grid_->select(column, row);
  grid_->setFocus();
  showHint();
  show();
  activateWindow();
}

void TfTableFilter::DoShowTableFilter()
{
  owner_->SetActiveSelector(this);
  int row = 1;
  FillGridFromFilter(startFilter_, {}, row);
  if (!FieldCaption.isEmpty()) {
    addCriterionRows(grid_->table(), FieldCaption, fieldValue, row);
    showEditor(tfValue, row - 1);
    return;
  }
  showEditor(tfField, 1);
}

void TfTableFilter::DoShowReportFilter()
{
  owner_->SetActiveSelector(this);
  prefilledRows_ = fillReportRows(grid_->table(), fields_, mode_, startFilter_);
  if (!FieldCaption.isEmpty()) {
    int row = prefilledRows_ + 1;
    addCriterionRows(grid_->table(), FieldCaption, fieldValue, row);
  }
  showEditor(prefilledRows_ > 0 ? tfValue : tfField, 1);
}

void TfTableFilter::FillGridFromFilter(const FilterArray& filter, const ParameterArray& parameters, int& row)
{
  kalvor::FillGridFromFilter(grid_->table(), fields_, mode_, filter, parameters, row);
}

void TfTableFilter::FillCellRowFromFilterLine(const FilterRow& line, int gridRow)
{
  kalvor::FillCellRowFromFilterLine(grid_->table(), fields_, mode_, line, gridRow);
}

bool TfTableFilter::ValidateFilterRow(int row, int& index)
{
  return kalvor::ValidateFilterRow(grid_->table(), fields_, row, index);
}

bool TfTableFilter::event(QEvent* event)
{
  if (event->type() == QEvent::WindowActivate && shown_) {
    if (IMainFormIntf* main = mainForm()) {
      main->SetWindowTitle(QStringLiteral("Филтриране - ") + formCaption_, uniqueId_);
    }
  }
  return QDialog::event(event);
}

// --- The result ----------------------------------------------------------------------------------------------

void TfTableFilter::btnOkClick()
{
  grid_->commitEdit();
  TableFilterFailure failure;
  const auto backToCell = [&] {
    if (failure.row > 0) {
      grid_->select(failure.column, failure.row);
    }
    grid_->setFocus();
  };
  try {
    if (const auto result = buildTableFilter(grid_->table(), fields_, mode_, failure)) {
      failure = {};
      takeFilter(*result);
    } else {
      backToCell();
    }
  } catch (const SilentAbort&) {
    // The user was told.
  } catch (const DataError& error) {
    showError(error.message());
    backToCell();
  }
}

void TfTableFilter::takeFilter(const TableFilterResult& result)
{
  if (macroMode()) {
    owner_->SetSecurityFilter(result.filter);
  } else {
    owner_->SetPblFilter(result.filter, result.parameters, false);
  }
  accept();
}

void TfTableFilter::done(int result)
{
  if (shown_) {
    shown_ = false;
    grid_->cancelEdit();
    owner_->SetActiveSelector(nullptr);
    if (IMainFormIntf* main = mainForm()) {
      main->WindowClosed(uniqueId_);
    }
    FieldCaption.clear();
    fieldValue.clear();
    selectors_.clear();
  }
  QDialog::done(result);
}

void TfTableFilter::btnClearClick()
{
  grid_->cancelEdit();
  for (int row = 1; row < grid_->RowCount(); ++row) {
    if (mayChangeRow(row)) {
      grid_->table().clearRow(row);
    } else {
      grid_->SetCells(tfValue, row, QString());
    }
  }
  grid_->select(prefilledRows_ > 0 ? tfValue : tfField, 1);
  grid_->setFocus();
}

}  // namespace kalvor
