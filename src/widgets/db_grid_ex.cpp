#include "widgets/db_grid_ex.h"

#include <QHeaderView>
#include <QScopedValueRollback>
#include <QScrollBar>

#include "widgets/grid_footer.h"

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

void TDBGridEx::setFixedColumns(int count)
{
  fixedColumns_ = qMax(0, count);
}

void TDBGridEx::updateGeometries()
{
  if (placing_) {
    return;  // the margin set below resizes the viewport, which comes here again
  }
  const QScopedValueRollback<bool> guard(placing_, true);
  TDBGrid::updateGeometries();
  if (!footerVisible()) {
    return;
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
  // The toolkit counted the rows that fit without the footer.
  const int fitting = qMax(1, view.height() / qMax(1, verticalHeader()->defaultSectionSize()));
  verticalScrollBar()->setRange(0, qMax(0, model()->rowCount() - fitting));
  verticalScrollBar()->setPageStep(fitting);
}

void TDBGridEx::scrollContentsBy(int dx, int dy)
{
  TDBGrid::scrollContentsBy(dx, dy);
  if (dx != 0) {
    footer_->update();
  }
}

void TDBGridEx::columnsArranged()
{
  footer_->update();
}

}  // namespace kalvor
