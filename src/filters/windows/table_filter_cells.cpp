// The cells of the table filter editor: what edits them, lookups and calendar, keys and menus.
#include <QContextMenuEvent>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QScreen>

#include "filters/selector_macros.h"
#include "filters/windows/table_filter.h"
#include "registry/selector.h"
#include "registry/windows/date_selector.h"
#include "widgets/data_control.h"
#include "widgets/string_grid.h"

namespace kalvor {

namespace {

using Kind = StringCellEditor::Kind;

struct CellHint {
  int column;
  const char16_t* text;
};
constexpr CellHint cellHints[] = {
    {tfField, u"Започнете да пишете името или Alt+↓ за списъка. ↓ на последния ред добавя ред, Delete изтрива реда."},
    {tfOperator, u"= > < >= <= <> или Съдържа (С); Alt+↓ за списъка."},
    {tfConjunction, u"И или ИЛИ към следващия ред; Alt+↓ за списъка."},
};
const QString containsHint =
    QStringLiteral("Търси се навсякъде в текста; С* започва със С, *ООД завършва на ООД.");
const QString dateHint = QStringLiteral("15, 15.01, 15.01.2026, -1м (преди месец), +3д; Alt+↓ отваря календара.");
const QString selectorHint = QStringLiteral("Alt+↓ отваря избор; няколко стойности се делят с |.");
const QString severalHint = QStringLiteral("Няколко стойности се делят с |; празна стойност търси непопълнените.");
const QString listHint = QStringLiteral("Alt+↓ отваря списъка.");

}  // namespace

QString TfTableFilter::ValueCell::Text() const
{
  return editor_->grid_->Cells(tfValue, editor_->grid_->Row());
}

int TfTableFilter::fieldOfRow(int row) const
{
  return fields_.byCaption(grid_->Cells(tfField, row));
}

// --- Editors -------------------------------------------------------------------------------------------------

StringCellEditor TfTableFilter::editorOf(int column, int row) const
{
  if (!mayChangeRow(row) && column != tfValue) {
    return {Kind::None, {}, {}};
  }
  switch (column) {
    case tfField: return {Kind::DropDown, captions_, {}};
    case tfOperator: return {Kind::DropDown, tableFilterOperators(), {}};
    case tfConjunction: return {Kind::DropDown, tableFilterConjunctions(), {}};
    default: return valueEditor(fieldOfRow(row));
  }
}

StringCellEditor TfTableFilter::valueEditor(int index) const
{
  switch (fields_.kindAt(index)) {
    case fkOptions: return {Kind::DropDown, fields_.at(index).options(), {}};
    case fkYesNo: return {Kind::DropDown, yesNoTexts(), {}};
    case fkDate:
    case fkDateParameter: return {Kind::Ellipsis, {}, QStringLiteral("view-calendar")};
    case fkSelector: return {Kind::Ellipsis, {}, {}};
    case fkParameter:
      return {fields_.at(index).text(FieldColumn::SelectorDesc).isEmpty() ? Kind::Plain : Kind::Ellipsis, {}, {}};
    default: return {};
  }
}

void TfTableFilter::showHint()
{
  const int index = fieldOfRow(grid_->Row());
  QString text;
  for (const CellHint& hint : cellHints) {
    if (hint.column == grid_->Col()) {
      text = QString::fromUtf16(hint.text);
    }
  }
  if (grid_->Col() == tfValue) {
    const Kind kind = valueEditor(index).kind;
    text = fields_.isDate(index)          ? dateHint
           : kind == Kind::Ellipsis       ? selectorHint
           : kind == Kind::DropDown       ? listHint
           : grid_->Cells(tfOperator, grid_->Row()) == tableFilterOperators().last() ? containsHint
                                                                                     : severalHint;
  }
  hint_->setText(text);
}

// --- Lookups and calendar ------------------------------------------------------------------------------------

TSelector* TfTableFilter::selectorOf(int index)
{
  const QString description = fields_.at(index).text(FieldColumn::SelectorDesc);
  if (description.trimmed().isEmpty()) {
    return nullptr;
  }
  const QString name = fields_.at(index).fieldName();
  std::unique_ptr<TSelector>& selector = selectors_[name];
  if (!selector) {
    selector = std::make_unique<TSelector>(this, &valueCell_, description, master_);
    selector->FieldName = name;
    RemoveSelectorFilterLinesWithFieldRels(*selector);
  }
  return selector.get();
}

void TfTableFilter::ellipsisPressed(int row)
{
  const int index = fieldOfRow(row);
  if (fields_.isDate(index)) {
    showCalendar(row);
    return;
  }
  attempt(grid_, [&] {
    if (TSelector* selector = selectorOf(index)) {
      selector->Execute();
    }
  });
}

void TfTableFilter::showCalendar(int row)
{
  auto* calendar = new TfDateSelectorForm(grid_, QDate(), [this, row](QDate date) {
    grid_->SetCells(tfValue, row, date.toString(QStringLiteral("dd/MM/yyyy")));
    joinRowAbove(grid_->table(), row);
  });
  const QRect cell = grid_->visualRect(grid_->currentIndex());
  const QRect place(grid_->viewport()->mapToGlobal(cell.topLeft()), cell.size());
  QPoint corner(place.left(), place.bottom() + 1);
  if (const QScreen* screen = grid_->screen()) {
    const QRect room = screen->availableGeometry();
    corner.setX(std::min(corner.x(), room.right() - calendar->width() + 1));
    if (corner.y() + calendar->height() > room.bottom()) {
      corner.setY(place.top() - calendar->height());
    }
  }
  calendar->move(corner);
  calendar->show();
  calendar->setFocus();
}

bool TfTableFilter::ProcessSelectedRecords(const TSelectionList& selection, ShowOption)
{
  const int row = grid_->Row();
  const int index = fieldOfRow(row);
  const TSelector* selector = index < 0 ? nullptr : selectorOf(index);
  if (row < 1 || selection.isEmpty()) {
    return false;
  }
  const TSelectorItem item = selector ? selector->Items.value(selector->GetIndex()) : TSelectorItem();
  const QString text = chosenFilterValue(selection, item.SourceFields, item.TargetFields, fields_.at(index).fieldName());
  if (text.isEmpty()) {
    return false;
  }
  grid_->SetCells(tfValue, row, text);
  joinRowAbove(grid_->table(), row);
  return true;
}

void TfTableFilter::SetSelectorForm(QObject* form)
{
  if (!form) {
    grid_->setFocus();
  }
}

void TfTableFilter::SelectorFormSaved(QObject*, const QString&) {}

// --- Keys and menus ------------------------------------------------------------------------------------------

bool TfTableFilter::gridKey(QKeyEvent* event)
{
  if (event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::ShiftModifier)) {
    return false;
  }
  switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter: ok_->setFocus(Qt::OtherFocusReason); return true;
    case Qt::Key_Escape: reject(); return true;
    case Qt::Key_Down:
      if (grid_->Row() != grid_->RowCount() - 1) {
        return false;
      }
      if (grid_->Cells(tfConjunction, grid_->Row()).isEmpty()) {
        grid_->SetCells(tfConjunction, grid_->Row(), tableFilterConjunctions().first());
      }
      addRow();
      return true;
    case Qt::Key_Delete:
      if (grid_->RowCount() > 2 && mayChangeRow(grid_->Row())) {
        DeleteGridRoll(grid_, grid_->Row());
      }
      return true;
    default: return false;
  }
}

void TfTableFilter::addRow()
{
  grid_->table().SetRowCount(grid_->RowCount() + 1);
  grid_->select(tfField, grid_->RowCount() - 1);
}

void TfTableFilter::miAddRowClick()
{
  grid_->commitEdit();
  addRow();
  joinRowAbove(grid_->table(), grid_->Row());
  grid_->setFocus();
}

void TfTableFilter::miDeleteRowClick()
{
  grid_->cancelEdit();
  const int row = grid_->Row();
  if (!mayChangeRow(row)) {
    return;
  }
  if (grid_->RowCount() > 2) {
    DeleteGridRoll(grid_, row);
  } else {
    grid_->table().clearRow(row);
  }
}

void TfTableFilter::writeMacro(const QString& name)
{
  grid_->cancelEdit();
  grid_->SetCells(grid_->Col(), grid_->Row(), QStringLiteral("<#Param(%1)#>").arg(name));
  joinRowAbove(grid_->table(), grid_->Row());
}

void TfTableFilter::miCurrCompanyClick()
{
  writeMacro(QStringLiteral("COMPANY_ID"));
}

void TfTableFilter::miCurrBGClick()
{
  writeMacro(QStringLiteral("BUSINESSGROUP_ID"));
}

void TfTableFilter::miCurrUserClick()
{
  writeMacro(QStringLiteral("USER_ID"));
}

void TfTableFilter::miCurrDateClick()
{
  writeMacro(QStringLiteral("CURRENT_DATE"));
}

void TfTableFilter::buildMenus()
{
  rowMenu_ = new QMenu(this);
  macroMenu_ = new QMenu(QStringLiteral("Параметър"), this);
  rowMenu_->setObjectName(QStringLiteral("pmRows"));
  macroMenu_->setObjectName(QStringLiteral("pmParameter"));
  // A menu's own title does not show.
  macroMenu_->addSection(macroMenu_->title());
  struct Item {
    QMenu* menu;
    const char* name;
    const char16_t* caption;
    void (TfTableFilter::*handler)();
  };
  const Item items[] = {
      {rowMenu_, "miAddRow", u"Добави ред", &TfTableFilter::miAddRowClick},
      {rowMenu_, "miDeleteRow", u"Изтрий текущия ред", &TfTableFilter::miDeleteRowClick},
      {macroMenu_, "miCurrCompany", u"Текуща компания", &TfTableFilter::miCurrCompanyClick},
      {macroMenu_, "miCurrBG", u"Текущ обект", &TfTableFilter::miCurrBGClick},
      {macroMenu_, "miCurrUser", u"Tекущ потребител", &TfTableFilter::miCurrUserClick},
      {macroMenu_, "miCurrDate", u"Текуща дата", &TfTableFilter::miCurrDateClick},
  };
  for (const Item& item : items) {
    QAction* action = item.menu->addAction(QString::fromUtf16(item.caption), this, item.handler);
    action->setObjectName(QLatin1String(item.name));
  }
}

void TfTableFilter::showMenu(const QPoint& globalPosition)
{
  (macroMode() && grid_->Col() == tfValue ? macroMenu_ : rowMenu_)->popup(globalPosition);
}

bool TfTableFilter::eventFilter(QObject* watched, QEvent* event)
{
  if (event->type() != QEvent::ContextMenu || (watched != grid_ && watched != grid_->viewport())) {
    return QDialog::eventFilter(watched, event);
  }
  const auto* wanted = static_cast<QContextMenuEvent*>(event);
  if (wanted->reason() == QContextMenuEvent::Mouse) {
    const QModelIndex cell = grid_->indexAt(grid_->viewport()->mapFromGlobal(wanted->globalPos()));
    if (cell.isValid()) {
      grid_->select(cell.column(), cell.row() + 1);
    }
    showMenu(wanted->globalPos());
  } else {
    showMenu(grid_->viewport()->mapToGlobal(grid_->visualRect(grid_->currentIndex()).bottomLeft()));
  }
  return true;
}

}  // namespace kalvor
