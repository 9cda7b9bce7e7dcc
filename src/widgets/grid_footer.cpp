#include "widgets/grid_footer.h"

#include "widgets/db_grid_ex.h"
#include "widgets/grid_header.h"
#include "widgets/theme.h"

namespace kalvor {

TGridFooter::TGridFooter(TDBGridEx* grid) : QWidget(grid), grid_(grid) {}

void TGridFooter::setText(const QString& fieldName, const QString& text)
{
  if (text == this->text(fieldName)) {
    return;
  }
  if (text.isEmpty()) {
    texts_.remove(fieldName.toLower());
  } else {
    texts_.insert(fieldName.toLower(), text);
  }
  update();
}

void TGridFooter::clear()
{
  texts_.clear();
  update();
}

int TGridFooter::textWidth(const QString& text) const
{
  QFont bold = font();
  bold.setBold(true);
  return QFontMetrics(bold).horizontalAdvance(text) + 2 * spacing::cellPadding + spacing::tight;
}

QSize TGridFooter::sizeHint() const
{
  const int lines = (hasTexts() || status_.isEmpty() ? 1 : 0) + (status_.isEmpty() ? 0 : 1);
  return QSize(0, lines * textLineHeight(fontMetrics()) + 2);
}

void TGridFooter::setStatus(const QString& text)
{
  if (text != status_) {
    status_ = text;
    update();
  }
}

void TGridFooter::paintEvent(QPaintEvent*)
{
  QPainter painter(this);
  painter.fillRect(rect(), theme().title);
  painter.setPen(theme().line);
  painter.drawLine(rect().topLeft(), rect().topRight());
  QRect line = rect();
  if (!status_.isEmpty()) {
    QRect last = rect();
    last.setTop(last.bottom() - textLineHeight(fontMetrics()));
    line.setBottom(last.top());
    painter.setPen(theme().quietText);
    painter.drawText(last.adjusted(grid_->viewport()->x() - x() + spacing::cellPadding, 0, -spacing::cellPadding, 0),
                     Qt::AlignLeft | Qt::AlignVCenter, status_);
  }
  if (hasTexts()) {
    paintTotals(painter, line);
  }
}

void TGridFooter::paintTotals(QPainter& painter, const QRect& line)
{
  QFont bold = font();
  bold.setBold(true);
  painter.setFont(bold);
  const QFontMetrics metrics(bold);
  const GridHeader* header = grid_->header();
  const int left = grid_->viewport()->x() - x();
  const int fixed = header->fixedWidth();
  const QRect whole(left, line.top(), grid_->viewport()->width(), line.height());
  for (int column = 0; column < header->count(); ++column) {
    const TField* field = grid_->datasetModel()->fieldAt(column);
    const QString shown = field ? text(field->FieldName()) : QString();
    if (shown.isEmpty() || header->isSectionHidden(column)) {
      continue;
    }
    painter.setClipRect(header->isFixed(column) ? whole : whole.adjusted(fixed, 0, 0, 0));
    const QRect cell(left + header->leftOf(column), line.top(), header->sectionSize(column), line.height());
    const QRect inside = cell.adjusted(spacing::cellPadding, 1, -spacing::cellPadding - 1, 0);
    painter.setPen(shown.startsWith(u'-') ? theme().negative : palette().color(QPalette::WindowText));
    painter.drawText(inside, int(grid_->columnAlignment(column) | Qt::AlignVCenter),
                     metrics.elidedText(shown, Qt::ElideRight, inside.width()));
  }
}

}  // namespace kalvor
