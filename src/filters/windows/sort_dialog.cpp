#include "filters/windows/sort_dialog.h"

#include <QAction>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QToolButton>

#include "filters/sort_order.h"
#include "widgets/string_grid.h"
#include "widgets/theme.h"

namespace kalvor {

namespace {

enum SortColumn : int { scField, scDirection };
constexpr int chosenResult = 1;
constexpr int keptResult = 2;
constexpr QSize sortDialogSize(680, 400);

}  // namespace

TfSort::TfSort(QWidget* parent) : QDialog(parent)
{
  setObjectName(QStringLiteral("TfSort"));
  setWindowTitle(QStringLiteral("Сортиране"));
  buildWindow();
}

void TfSort::buildWindow()
{
  fields_ = new QListWidget(this);
  fields_->setObjectName(QStringLiteral("lbFields"));
  fields_->setAccessibleName(QStringLiteral("Полета"));
  fields_->installEventFilter(this);
  grid_ = new TStringGrid(2, this);
  grid_->setObjectName(QStringLiteral("StringGrid"));
  grid_->setAccessibleName(QStringLiteral("Сортиране по"));
  grid_->table().setTitles({QStringLiteral(" Име на поле"), QStringLiteral(" Ред")});
  grid_->table().SetRowCount(1);
  grid_->setColumnWidths({180, 110});
  grid_->OnGetEditor = [](int column, int) -> StringCellEditor {
    if (column == scField) {
      return {StringCellEditor::Kind::None, {}, {}};
    }
    return {StringCellEditor::Kind::DropDown,
            {sortDirectionText(SortDirection::Ascending), sortDirectionText(SortDirection::Descending)}, {}};
  };
  grid_->OnKey = [this](QKeyEvent* event) { return gridKey(event); };
  connect(fields_, &QListWidget::itemDoubleClicked, this, [this] { acTransfToSortExecute(); });
  connect(grid_, &QAbstractItemView::doubleClicked, this, [this](const QModelIndex& cell) {
    if (cell.column() == scField) {
      acRemoveFromSortExecute();
    }
  });

  struct ActionRow {
    const char* name;
    const char16_t* caption;
    const char* icon;
    const char* shortcut;
    std::function<void()> body;
  };
  const ActionRow rows[] = {
      {"acTransfToSort", u"Добавя полето", "go-next", "Alt+Right", [this] { acTransfToSortExecute(); }},
      {"acRemoveFromSort", u"Маха полето", "go-previous", "Alt+Left", [this] { acRemoveFromSortExecute(); }},
      {"acMoveUp", u"По-напред", "go-up", "Alt+Up", [this] { moveRow(-1); }},
      {"acMoveDown", u"По-назад", "go-down", "Alt+Down", [this] { moveRow(1); }},
  };
  auto* middle = new QVBoxLayout;
  middle->addStretch(1);
  for (const ActionRow& row : rows) {
    auto* action = new QAction(icon(QLatin1String(row.icon)), QString::fromUtf16(row.caption), this);
    action->setObjectName(QLatin1String(row.name));
    action->setShortcut(QKeySequence(QLatin1String(row.shortcut)));
    action->setToolTip(QStringLiteral("%1 (%2)").arg(action->text(),
                                                     action->shortcut().toString(QKeySequence::NativeText)));
    connect(action, &QAction::triggered, this, row.body);
    addAction(action);
    auto* button = new QToolButton(this);
    button->setDefaultAction(action);
    button->setFocusPolicy(Qt::NoFocus);
    middle->addWidget(button);
  }
  middle->addStretch(1);

  auto* buttons = new QDialogButtonBox(this);
  QPushButton* ok = buttons->addButton(QStringLiteral("Избор"), QDialogButtonBox::AcceptRole);
  ok->setObjectName(QStringLiteral("btnOk"));
  ok->setDefault(true);
  buttons->addButton(QStringLiteral("Отказ"), QDialogButtonBox::RejectRole)->setObjectName(QStringLiteral("btnCancel"));
  connect(buttons, &QDialogButtonBox::accepted, this, [this] {
    grid_->commitEdit();
    done(chosenResult);
  });
  connect(buttons, &QDialogButtonBox::rejected, this, [this] { done(keptResult); });

  auto* lists = new QGridLayout;
  lists->setSpacing(spacing::normal);
  auto* fieldCaption = new QLabel(QStringLiteral("&Полета"), this);
  fieldCaption->setBuddy(fields_);
  auto* orderCaption = new QLabel(QStringLiteral("&Сортиране по"), this);
  orderCaption->setBuddy(grid_);
  lists->addWidget(fieldCaption, 0, 0);
  lists->addWidget(orderCaption, 0, 2);
  lists->addWidget(fields_, 1, 0);
  lists->addLayout(middle, 1, 1);
  lists->addWidget(grid_, 1, 2);
  lists->setColumnStretch(0, 2);
  lists->setColumnStretch(2, 3);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(spacing::wide, spacing::wide, spacing::wide, spacing::wide);
  column->setSpacing(spacing::normal);
  column->addLayout(lists, 1);
  column->addWidget(buttons);
  resize(sortDialogSize);
}

QAction* TfSort::action(const QString& name) const
{
  return findChild<QAction*>(name, Qt::FindDirectChildrenOnly);
}

// --- Fields and order ----------------------------------------------------------------------------------------

void TfSort::setDataSet(TClientDataSet* dataSet)
{
  known_.clear();
  for (const TField* field : dataSet ? dataSet->Fields() : QList<TField*>()) {
    QString label = field->DisplayLabel;
    const bool taken = std::any_of(known_.begin(), known_.end(), [&](const SortField& other) { return other.label == label; });
    if (taken) {
      label += QStringLiteral(" (%1)").arg(field->FieldName());
    }
    known_.append({label, field->FieldName(), field->Origin, field->Visible});
  }
}

QString TfSort::labelOf(const QString& fieldName)
{
  for (QString SortField::*part : {&SortField::name, &SortField::origin}) {
    for (SortField& field : known_) {
      if ((field.*part).compare(fieldName, Qt::CaseInsensitive) == 0) {
        field.name = fieldName;
        return field.label;
      }
    }
  }
  return fieldName;
}

QString TfSort::nameOf(const QString& label) const
{
  for (const SortField& field : known_) {
    if (field.label == label) {
      return field.name;
    }
  }
  return label;
}

void TfSort::fillList()
{
  QStringList labels;
  for (const SortField& field : known_) {
    if (field.visible) {
      labels.append(field.label);
    }
  }
  labels.sort(Qt::CaseInsensitive);
  fields_->clear();
  fields_->addItems(labels);
  AddSortedItems();
  fields_->setCurrentRow(0);
}

void TfSort::FillGridFromOrder(const QString& order)
{
  const QList<SortItem> items = readSortOrder(order);
  grid_->table().SetRowCount(int(items.size()) + 1);
  for (int row = 1; row <= items.size(); ++row) {
    grid_->SetCells(scField, row, labelOf(items[row - 1].field));
    grid_->SetCells(scDirection, row, sortDirectionText(items[row - 1].direction));
  }
  grid_->select(scDirection, 1);
}

void TfSort::AddSortedItems()
{
  for (int row = 1; row < grid_->RowCount(); ++row) {
    for (QListWidgetItem* item : fields_->findItems(grid_->Cells(scField, row), Qt::MatchExactly | Qt::MatchCaseSensitive)) {
      delete item;
    }
  }
}

QString TfSort::orderText() const
{
  QList<SortItem> items;
  for (int row = 1; row < grid_->RowCount(); ++row) {
    if (const QString label = grid_->Cells(scField, row); !label.isEmpty()) {
      items.append({nameOf(label), sortDirectionOf(grid_->Cells(scDirection, row))});
    }
  }
  return sortOrderText(items);
}

int TfSort::ShowSortForm(TClientDataSet* dataSet, QString& order)
{
  setDataSet(dataSet);
  FillGridFromOrder(order);
  fillList();
  fields_->setFocus();
  const int result = exec();
  if (result != chosenResult) {
    return keptResult;
  }
  order = orderText();
  return chosenResult;
}

// --- Moving fields -------------------------------------------------------------------------------------------

int TfSort::lastRow() const
{
  return grid_->RowCount() - 1;
}

void TfSort::acTransfToSortExecute()
{
  const QListWidgetItem* item = fields_->currentItem();
  if (!item) {
    return;
  }
  const int row = lastRow() + 1;
  grid_->table().SetRowCount(row + 1);
  grid_->SetCells(scField, row, item->text());
  grid_->SetCells(scDirection, row, sortDirectionText(SortDirection::Ascending));
  grid_->select(scDirection, row);
  delete item;
  fields_->keyboardSearch(QString());  // the next letters begin a new search
}

void TfSort::acRemoveFromSortExecute()
{
  const int row = grid_->Row();
  if (row < 1) {
    return;
  }
  const QString label = grid_->Cells(scField, row);
  DeleteGridRoll(grid_, row);
  fillList();
  if (const auto found = fields_->findItems(label, Qt::MatchExactly); !found.isEmpty()) {
    fields_->setCurrentItem(found.first());
  }
}

void TfSort::moveRow(int by)
{
  const int row = grid_->Row();
  const int target = row + by;
  if (row < 1 || target < 1 || target > lastRow()) {
    return;
  }
  grid_->commitEdit();
  grid_->table().moveRow(row, target);
  grid_->select(grid_->Col(), target);
}

bool TfSort::gridKey(QKeyEvent* event)
{
  if (event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::ShiftModifier)) {
    return false;
  }
  switch (event->key()) {
    case Qt::Key_Delete: acRemoveFromSortExecute(); return true;
    case Qt::Key_Return:
    case Qt::Key_Enter: findChild<QPushButton*>(QStringLiteral("btnOk"))->setFocus(Qt::OtherFocusReason); return true;
    case Qt::Key_Space:
      if (grid_->Row() >= 1) {
        const bool down = sortDirectionOf(grid_->Cells(scDirection, grid_->Row())) == SortDirection::Descending;
        grid_->SetCells(scDirection, grid_->Row(),
                        sortDirectionText(down ? SortDirection::Ascending : SortDirection::Descending));
      }
      return true;
    default: return false;
  }
}

bool TfSort::eventFilter(QObject* watched, QEvent* event)
{
  if (watched == fields_ && event->type() == QEvent::KeyPress) {
    const auto* key = static_cast<QKeyEvent*>(event);
    if (key->key() == Qt::Key_Space || key->key() == Qt::Key_Insert) {
      acTransfToSortExecute();
      return true;
    }
  }
  return QDialog::eventFilter(watched, event);
}

}  // namespace kalvor
