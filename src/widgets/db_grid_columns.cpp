#include <QScopedValueRollback>

#include "widgets/db_grid.h"
#include "widgets/grid_header.h"
#include "widgets/theme.h"

namespace kalvor {
namespace {

constexpr int sampledRecords = 32;
constexpr int widestStart = 320;  // a long text does not push the other columns out of the window

int charactersByType(const TField* field)
{
  switch (field->FieldDataType()) {
    case DataType::Boolean: return 4;
    case DataType::SmallInt:
    case DataType::Word: return 6;
    case DataType::Integer:
    case DataType::AutoInc:
    case DataType::Date: return 10;
    case DataType::LargeInt:
    case DataType::Float:
    case DataType::Currency:
    case DataType::Bcd: return 12;
    case DataType::Time: return 8;
    case DataType::DateTime:
    case DataType::TimeStamp: return 19;
    default: return field->Size() > 0 ? qMin(field->Size(), 20) : 20;
  }
}

}  // namespace

const TDBGrid::ColumnState& TDBGrid::stateOf(const QString& fieldName) const
{
  static const ColumnState plain;
  const auto known = states_.constFind(fieldName.toLower());
  return known == states_.constEnd() ? plain : *known;
}

const TDBGrid::ColumnState& TDBGrid::stateOf(const TField* field) const
{
  return stateOf(field ? field->FieldName() : QString());
}

int TDBGrid::characterPixels(int characters) const
{
  return characters * fontMetrics().horizontalAdvance(u'0') + 2 * spacing::cellPadding + 1;
}

int TDBGrid::textWidth(int row, int column) const
{
  return fontMetrics().horizontalAdvance(cellText(model_->index(row, column))) + 2 * spacing::cellPadding +
         spacing::tight;
}

// An amount that grows while it is typed is never cut.
void TDBGrid::growColumns(int row)
{
  for (const int column : shownColumns()) {
    if (const TField* field = model_->fieldAt(column); field && fieldAlignment(field) == Qt::AlignRight) {
      growColumn(field->FieldName(), textWidth(row, column));
    }
  }
}

void TDBGrid::growColumn(const QString& fieldName, int needed)
{
  const int column = model_->columnOf(fieldName);
  if (column < 0 || isColumnHidden(column) || stateOf(fieldName).width > 0 || needed <= header_->sectionSize(column)) {
    return;
  }
  {
    const QScopedValueRollback<bool> guard(arranging_, true);
    header_->resizeSection(column, needed);
  }
  columnsArranged();
}

int TDBGrid::startingWidth(int column) const
{
  const TField* field = model_->fieldAt(column);
  const int caption = header_->captionWidth(model_->headerData(column, Qt::Horizontal).toString());
  const CellEditorKind editor = stateOf(field).editor.kind;
  const bool button = inCellEditing_ && editor != CellEditorKind::ByType && editor != CellEditorKind::CheckBox;
  const int buttonRoom = button ? verticalHeader()->defaultSectionSize() - spacing::tight : 0;
  if (field->DisplayWidth > 0) {
    return qMax(characterPixels(field->DisplayWidth), qMin(caption, widestStart));
  }
  const int records = dataSet() && dataSet()->Active() ? qMin(sampledRecords, model_->rowCount()) : 0;
  if (records == 0) {
    return qMin(widestStart, qMax(caption, characterPixels(charactersByType(field))));
  }
  int widest = isRealType(field->FieldDataType()) ? characterPixels(charactersByType(field)) : 0;
  for (int row = 0; row < records; ++row) {
    widest = qMax(widest, textWidth(row, column));
  }
  return qBound(caption, widest + buttonRoom, qMax(caption, widestStart));
}

void TDBGrid::arrangeColumns()
{
  if (arranging_) {
    return;
  }
  const QScopedValueRollback<bool> guard(arranging_, true);
  const bool sample = !sampled_ && model_->rowCount() > 0;
  for (int column = 0; column < model_->columnCount(); ++column) {
    const TField* field = model_->fieldAt(column);
    if (!field) {
      continue;
    }
    const ColumnState kept = stateOf(field);
    const bool shown = kept.visible.value_or(field->Visible);
    if (header_->isSectionHidden(column) == shown) {
      header_->setSectionHidden(column, !shown);
    }
    if (shown && kept.width > 0) {
      header_->resizeSection(column, kept.width);
    } else if (shown && (sample || !sampled_)) {
      header_->resizeSection(column, startingWidth(column));
    }
  }
  sampled_ = sampled_ || sample;
  int position = 0;
  QStringList wanted = order_;
  for (int column = 0; column < model_->columnCount(); ++column) {
    if (const QString name = model_->fieldAt(column)->FieldName().toLower(); !wanted.contains(name)) {
      wanted.append(name);
    }
  }
  for (const QString& name : std::as_const(wanted)) {
    if (const int column = model_->columnOf(name); column >= 0) {
      header_->moveSection(header_->visualIndex(column), position++);
    }
  }
  header_->viewport()->update();
  columnsArranged();
}

void TDBGrid::rememberOrder()
{
  order_.clear();
  for (int visual = 0; visual < header_->count(); ++visual) {
    if (const TField* field = model_->fieldAt(header_->logicalIndex(visual))) {
      order_.append(field->FieldName().toLower());
    }
  }
}

QList<GridColumn> TDBGrid::columns() const
{
  QList<GridColumn> result;
  for (int visual = 0; visual < header_->count(); ++visual) {
    const int column = header_->logicalIndex(visual);
    const TField* field = model_->fieldAt(column);
    if (!field) {
      continue;
    }
    const ColumnState kept = stateOf(field);
    const bool shown = !header_->isSectionHidden(column);
    result.append({field->FieldName(), shown ? header_->sectionSize(column) : qMax(kept.width, startingWidth(column)),
                   kept.color, shown, kept.alignment, kept.readOnly});
  }
  return result;
}

void TDBGrid::setColumns(const QList<GridColumn>& columns)
{
  if (order_.isEmpty()) {
    rememberOrder();
  }
  QStringList listed;
  for (const GridColumn& column : columns) {
    ColumnState& kept = columnState(column.fieldName);
    kept.width = column.width;
    kept.visible = column.visible;
    kept.color = column.color;
    kept.alignment = column.alignment;
    kept.readOnly = column.readOnly;
    const QString name = column.fieldName.toLower();
    listed.append(name);
    order_.removeAll(name);
  }
  order_ = listed + order_;
  arrangeColumns();
  viewport()->update();
}

void TDBGrid::setColumnVisible(const QString& fieldName, bool on)
{
  columnState(fieldName).visible = on;
  arrangeColumns();
  if (on && stateOf(fieldName).width == 0 && model_->columnOf(fieldName) >= 0) {
    const QScopedValueRollback<bool> guard(arranging_, true);
    header_->resizeSection(model_->columnOf(fieldName), startingWidth(model_->columnOf(fieldName)));
  }
  followCursor();
}

bool TDBGrid::columnVisible(const QString& fieldName) const
{
  const int column = model_->columnOf(fieldName);
  return column >= 0 && !isColumnHidden(column);
}

void TDBGrid::setColumnReadOnly(const QString& fieldName, bool on)
{
  columnState(fieldName).readOnly = on;
}

bool TDBGrid::columnReadOnly(const QString& fieldName) const
{
  return stateOf(fieldName).readOnly;
}

void TDBGrid::setColumnPixels(const QString& fieldName, int width)
{
  columnState(fieldName).width = width;
  arrangeColumns();
}

void TDBGrid::setColumnCharacters(const QString& fieldName, int characters)
{
  setColumnPixels(fieldName, characterPixels(characters));
}

int TDBGrid::columnCharacters(const QString& fieldName) const
{
  const int column = model_->columnOf(fieldName);
  if (column < 0) {
    return 0;
  }
  const int pixels = isColumnHidden(column) ? startingWidth(column) : header_->sectionSize(column);
  return qMax(1, qRound((pixels - characterPixels(0)) / qreal(fontMetrics().horizontalAdvance(u'0'))));
}

void TDBGrid::setColumnColor(const QString& fieldName, const QColor& color)
{
  columnState(fieldName).color = color;
  viewport()->update();
}

void TDBGrid::setColumnAlignment(const QString& fieldName, Qt::Alignment alignment)
{
  columnState(fieldName).alignment = alignment;
  viewport()->update();
}

Qt::Alignment TDBGrid::columnAlignment(int modelColumn) const
{
  const TField* field = model_->fieldAt(modelColumn);
  const ColumnState kept = stateOf(field);
  if (kept.alignment) {
    return kept.alignment;
  }
  return kept.editor.kind == CellEditorKind::CheckBox ? Qt::AlignHCenter : fieldAlignment(field);
}

void TDBGrid::moveColumn(const QString& fieldName, int position)
{
  if (model_->columnOf(fieldName) < 0) {
    return;
  }
  rememberOrder();
  const QString name = fieldName.toLower();
  order_.removeAll(name);
  order_.insert(qBound(0, position, int(order_.size())), name);
  arrangeColumns();
}

void TDBGrid::setColumnEditor(const QString& fieldName, const CellEditor& editor)
{
  columnState(fieldName).editor = editor;
  if (const int column = model_->columnOf(fieldName); column >= 0 && !isColumnHidden(column) &&
      stateOf(fieldName).width == 0) {
    const QScopedValueRollback<bool> guard(arranging_, true);
    header_->resizeSection(column, startingWidth(column));
  }
  viewport()->update();
}

CellEditor TDBGrid::columnEditor(const QString& fieldName) const
{
  return stateOf(fieldName).editor;
}

QList<int> TDBGrid::shownColumns() const
{
  QList<int> result;
  for (int visual = 0; visual < header_->count(); ++visual) {
    const int column = header_->logicalIndex(visual);
    if (!header_->isSectionHidden(column)) {
      result.append(column);
    }
  }
  return result;
}

int TDBGrid::shownColumnCount() const
{
  return int(shownColumns().size());
}

TField* TDBGrid::shownField(int position) const
{
  return model_->fieldAt(shownColumns().value(position, -1));
}

int TDBGrid::selectedColumn() const
{
  const int column = currentIndex().isValid() ? currentIndex().column() : model_->columnOf(currentName_);
  return int(shownColumns().indexOf(column));
}

TField* TDBGrid::selectedField() const
{
  return shownField(selectedColumn());
}

bool TDBGrid::selectColumn(int position)
{
  const int column = shownColumns().value(position, -1);
  if (column < 0 || !commitCell()) {
    return false;
  }
  if (!currentIndex().isValid()) {
    currentName_ = model_->fieldAt(column)->FieldName();  // no record yet: the next one shows it there
    return true;
  }
  setCurrentIndex(model_->index(currentIndex().row(), column));
  return currentIndex().column() == column;
}

bool TDBGrid::selectField(const QString& fieldName)
{
  return selectColumn(int(shownColumns().indexOf(model_->columnOf(fieldName))));
}

bool TDBGrid::selectFrom(int position, int step, const std::function<bool(const TField*)>& wanted)
{
  const QList<int> shown = shownColumns();
  while (position >= 0 && position < shown.size()) {
    if (!wanted || wanted(model_->fieldAt(shown[position]))) {
      return selectColumn(position);
    }
    position += step;
  }
  return false;
}

bool TDBGrid::selectNextColumn(bool skipReadOnly)
{
  return selectFrom(selectedColumn() + 1, 1, columnTest(skipReadOnly));
}

bool TDBGrid::selectPriorColumn(bool skipReadOnly)
{
  return selectFrom(selectedColumn() - 1, -1, columnTest(skipReadOnly));
}

bool TDBGrid::selectFirstColumn(bool skipReadOnly)
{
  return selectFrom(0, 1, columnTest(skipReadOnly));
}

bool TDBGrid::selectLastColumn(bool skipReadOnly)
{
  return selectFrom(shownColumnCount() - 1, -1, columnTest(skipReadOnly));
}

bool TDBGrid::selectFirstWritableColumn()
{
  return selectFrom(0, 1, [this](const TField* field) { return writableColumn(field); }) || selectFirstColumn();
}

bool TDBGrid::selectLastWritableColumn()
{
  return selectFrom(shownColumnCount() - 1, -1, [this](const TField* field) { return writableColumn(field); }) ||
         selectLastColumn();
}

std::function<bool(const TField*)> TDBGrid::columnTest(bool skipReadOnly) const
{
  if (!skipReadOnly) {
    return {};
  }
  return [this](const TField* field) { return canEditField(field); };
}

bool TDBGrid::writableColumn(const TField* field) const
{
  return field && !field->ReadOnly && !stateOf(field).readOnly &&
         (field->FieldKind() == FieldValueKind::Data || field->FieldKind() == FieldValueKind::InternalCalculated);
}

bool TDBGrid::canEditField(const TField* field) const
{
  return !readOnly_ && writableColumn(field);
}

}  // namespace kalvor
