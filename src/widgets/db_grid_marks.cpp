#include "widgets/db_grid.h"

namespace kalvor {

bool TDBGrid::isMarked(qsizetype row) const
{
  return hasMarks() && dataSet() && marks_.contains(dataSet()->BookmarkOfRow(row)) != allMarked_;
}

bool TDBGrid::hasMarks() const
{
  return allMarked_ || !marks_.isEmpty();
}

void TDBGrid::setMarked(qsizetype row, bool on)
{
  if (!multiSelect_ || !dataSet() || row < 0 || row >= dataSet()->RecordCount()) {
    return;
  }
  const Bookmark record = dataSet()->BookmarkOfRow(row);
  if (on != allMarked_) {
    marks_.insert(record);
  } else {
    marks_.remove(record);
  }
  updateRow(int(row));
  emit marksChanged();
}

void TDBGrid::markAll()
{
  if (multiSelect_) {
    allMarked_ = true;
    marks_.clear();
    viewport()->update();
    emit marksChanged();
  }
}

void TDBGrid::clearMarks()
{
  anchor_ = noBookmark;
  if (hasMarks()) {
    allMarked_ = false;
    marks_.clear();
    viewport()->update();
    emit marksChanged();
  }
}

QList<Bookmark> TDBGrid::markedRecords() const
{
  QList<Bookmark> result;
  if (!hasMarks() || !dataSet()) {
    return result;
  }
  const qsizetype count = dataSet()->RecordCount();
  for (qsizetype row = 0; row < count; ++row) {
    if (const Bookmark record = dataSet()->BookmarkOfRow(row); marks_.contains(record) != allMarked_) {
      result.append(record);
    }
  }
  return result;
}

void TDBGrid::markRange(qsizetype from, qsizetype to)
{
  allMarked_ = false;
  marks_.clear();
  for (qsizetype row = qMin(from, to); row <= qMax(from, to); ++row) {
    marks_.insert(dataSet()->BookmarkOfRow(row));
  }
  viewport()->update();
  emit marksChanged();
}

void TDBGrid::extendMarks(Bookmark from)
{
  if (anchor_ == noBookmark) {
    anchor_ = from;
  }
  const qsizetype start = dataSet()->RowOfBookmark(anchor_);
  if (start >= 0 && dataSet()->RecNo() > 0) {
    markRange(start, dataSet()->RecNo() - 1);
  }
}

bool TDBGrid::markByMouse(int row, Qt::KeyboardModifiers modifiers, Bookmark before)
{
  if (multiSelect_ && modifiers.testFlag(Qt::ControlModifier)) {
    setMarked(row, !isMarked(row));
    anchor_ = dataSet()->GetBookmark();
    return true;
  }
  if (multiSelect_ && modifiers.testFlag(Qt::ShiftModifier)) {
    extendMarks(before);
    return true;
  }
  clearMarks();
  return false;
}

QString TDBGrid::copyText(bool withHeaders) const
{
  const QList<int> shown = shownColumns();
  QStringList lines;
  const auto addLine = [&](const std::function<QString(int)>& textOf) {
    QStringList cells;
    for (const int column : shown) {
      cells.append(textOf(column).replace(u'\t', u' ').replace(u'\r', u' ').replace(u'\n', u' '));
    }
    lines.append(cells.join(u'\t'));
  };
  if (withHeaders) {
    addLine([this](int column) { return model_->headerData(column, Qt::Horizontal).toString(); });
  }
  const int rows = model_->rowCount();
  for (int row = 0; row < rows; ++row) {
    if (hasMarks() ? isMarked(row) : row == currentIndex().row()) {
      addLine([this, row](int column) { return cellText(model_->index(row, column)); });
    }
  }
  return lines.join(u'\n');
}

}  // namespace kalvor
