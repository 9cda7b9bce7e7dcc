#include "widgets/db_grid_ex.h"

#include <QHeaderView>
#include <QPaintEvent>
#include <QPainter>
#include <QScopedValueRollback>
#include <QSignalBlocker>
#include <QScrollBar>

#include "widgets/grid_footer.h"
#include "widgets/grid_header.h"
#include "widgets/theme.h"

namespace kalvor {

TDBGridEx::TDBGridEx(QWidget* parent) : TDBGrid(parent), footer_(new TGridFooter(this))
{
  footer_->hide();
}

void TDBGridEx::setFooterVisible(bool on)
{
  footer_->setVisible(on);
  updateGeometries();
}

bool TDBGridEx::footerVisible() const
{
  return !footer_->isHidden();
}

void TDBGridEx::setFooterText(const QString& fieldName, const QString& text)
{
  footer_->setText(fieldName, text);
  growColumn(fieldName, footer_->textWidth(text));
}

void TDBGridEx::setFooterStatus(const QString& text)
{
  if (text == footer_->status()) {
    return;
  }
  footer_->setStatus(text);
  updateGeometries();
  if (currentIndex().isValid()) {
    scrollTo(currentIndex());  // the line may have come over it
  }
}

void TDBGridEx::setFixedColumns(int count)
{
  fixedColumns_ = qMax(0, count);
  columnsArranged();
  viewport()->update();
}

QRect TDBGridEx::visualRect(const QModelIndex& index) const
{
  QRect result = TDBGrid::visualRect(index);
  if (result.isValid() && header()->isFixed(index.column())) {
    result.moveLeft(header()->leftOf(index.column()));
  }
  return result;
}

QModelIndex TDBGridEx::indexAt(const QPoint& point) const
{
  const int column = header()->fixedSectionAt(point.x());
  return column < 0 ? TDBGrid::indexAt(point) : model()->index(rowAt(point.y()), column);
}

void TDBGridEx::scrollTo(const QModelIndex& index, ScrollHint hint)
{
  if (header()->isFixed(index.column())) {
    // Only up and down: the column is in sight already.
    const int sideways = horizontalScrollBar()->value();
    TDBGrid::scrollTo(index, hint);
    horizontalScrollBar()->setValue(sideways);
    return;
  }
  TDBGrid::scrollTo(index, hint);
  const int covered = header()->fixedWidth() - header()->leftOf(index.column());
  if (covered > 0) {
    horizontalScrollBar()->setValue(horizontalScrollBar()->value() - covered);
  }
}

void TDBGridEx::paintEvent(QPaintEvent* event)
{
  TDBGrid::paintEvent(event);
  const int width = header()->fixedWidth();
  if (width == 0 || event->rect().left() >= width) {
    return;
  }
  QPainter painter(viewport());
  QStyleOptionViewItem option;
  initViewItemOption(&option);
  const int last = rowAt(event->rect().bottom());
  for (int row = rowAt(event->rect().top()); row >= 0 && row <= (last < 0 ? model()->rowCount() - 1 : last); ++row) {
    for (const int column : shownColumns().first(qMin(fixedColumns_, shownColumnCount()))) {
      const QModelIndex index = model()->index(row, column);
      option.rect = visualRect(index);
      itemDelegate()->paint(&painter, option, index);
    }
  }
  painter.fillRect(width - 1, 0, 1, viewport()->height(), theme().line);
}

void TDBGridEx::updateGeometries()
{
  if (placing_) {
    return;  // the margin set below resizes the viewport, which comes here again
  }
  const QScopedValueRollback<bool> guard(placing_, true);
  if (!footerVisible()) {
    TDBGrid::updateGeometries();
    if (QMargins margins = viewportMargins(); margins.bottom() > 0) {
      margins.setBottom(0);
      setViewportMargins(margins);
    }
    return;
  }
  // The toolkit counts the rows that fit without the footer. Its count must not show and hide the scroll bar, which
  // would resize the viewport and bring us here again, for ever where the last row just fits.
  QScrollBar* bar = verticalScrollBar();
  const int before = bar->maximum();
  const int value = bar->value();
  {
    const QSignalBlocker quiet(bar);
    TDBGrid::updateGeometries();
    bar->setRange(0, before);
    bar->setValue(value);
  }
  const int height = footer_->sizeHint().height();
  QMargins margins = viewportMargins();
  margins.setBottom(height);
  setViewportMargins(margins);
  const QRect view = viewport()->geometry();
  footer_->setGeometry(view.left() - margins.left(), view.bottom() + 1, view.width() + margins.left(), height);
  QRect rowHeader = verticalHeader()->geometry();
  rowHeader.setHeight(view.height());
  verticalHeader()->setGeometry(rowHeader);
  const int fitting = qMax(1, view.height() / qMax(1, verticalHeader()->defaultSectionSize()));
  bar->setRange(0, qMax(0, model()->rowCount() - fitting));
  bar->setPageStep(fitting);
}

void TDBGridEx::scrollContentsBy(int dx, int dy)
{
  TDBGrid::scrollContentsBy(dx, dy);
  if (dx != 0) {
    footer_->update();
    if (fixedColumns_ > 0) {
      viewport()->update();  // the toolkit moved the fixed columns' pixels too
      updateEditorGeometries();
    }
  }
}

void TDBGridEx::columnsArranged()
{
  header()->setFixedSections(shownColumns().first(qMin(fixedColumns_, shownColumnCount())));
  footer_->update();
}

}  // namespace kalvor
