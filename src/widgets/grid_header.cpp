#include "widgets/grid_header.h"

#include <QMouseEvent>
#include <QPainter>
#include <algorithm>

#include "widgets/dataset_model.h"
#include "widgets/theme.h"
#include "widgets/theme_painting.h"

namespace kalvor {
namespace {

constexpr int sortMarkRoom = 14;

void drawSortMark(QPainter* painter, const QRect& rect, Qt::SortOrder order)
{
  const QPointF middle(rect.right() - spacing::cellPadding - 3, rect.center().y() + 0.5);
  const qreal up = order == Qt::AscendingOrder ? -1 : 1;
  drawPolygon(painter, {middle + QPointF(-4, -2.5 * up), middle + QPointF(4, -2.5 * up), middle + QPointF(0, 2.5 * up)},
               theme().accent);
}

}  // namespace

GridHeader::GridHeader(QWidget* parent) : QHeaderView(Qt::Horizontal, parent)
{
  setSectionsMovable(true);
  setSectionsClickable(true);
  setHighlightSections(false);
  setMinimumSectionSize(24);
  setTextElideMode(Qt::ElideRight);
  connect(this, &QHeaderView::sectionResized, this, [this] { changed_ = true; });
  connect(this, &QHeaderView::sectionMoved, this, [this] { changed_ = true; });
}

void GridHeader::setTitleColor(const QColor& color)
{
  titleColor_ = color;
  viewport()->update();
}

void GridHeader::setSortMarks(const QList<SortMark>& marks)
{
  if (marks != sortMarks_) {
    sortMarks_ = marks;
    viewport()->update();
  }
}

int GridHeader::captionWidth(const QString& caption) const
{
  return fontMetrics().horizontalAdvance(caption) + 2 * spacing::cellPadding + sortMarkRoom;
}

void GridHeader::paintSection(QPainter* painter, const QRect& rect, int section) const
{
  const QColor fill = titleColor_.isValid() ? titleColor_ : theme().title;
  painter->fillRect(rect, fill);
  painter->setPen(theme().line);
  painter->drawLine(rect.bottomLeft(), rect.bottomRight());
  painter->setPen(blend(theme().line, fill, 0.6));
  painter->drawLine(rect.right(), rect.top() + spacing::tight, rect.right(), rect.bottom() - spacing::tight);

  const auto mark = std::find_if(sortMarks_.begin(), sortMarks_.end(),
                                 [section](const SortMark& known) { return known.section == section; });
  QRect textRect = rect.adjusted(spacing::cellPadding, 0, -spacing::cellPadding - 1, -1);
  if (mark != sortMarks_.end()) {
    drawSortMark(painter, textRect.adjusted(0, 0, spacing::cellPadding, 0), mark->order);
    textRect.setRight(textRect.right() - sortMarkRoom);
    if (sortMarks_.size() > 1) {
      const QString number = QString::number(mark - sortMarks_.begin() + 1);
      painter->setPen(theme().accent);
      painter->drawText(textRect, Qt::AlignRight | Qt::AlignVCenter, number);
      textRect.setRight(textRect.right() - fontMetrics().horizontalAdvance(number) - 2);
    }
  }
  const QString caption = model()->headerData(section, Qt::Horizontal, Qt::DisplayRole).toString();
  const int alignment = int((alignmentOf ? alignmentOf(section) : Qt::AlignLeft) | Qt::AlignVCenter);
  painter->setPen(palette().color(QPalette::WindowText));
  painter->drawText(textRect, alignment, fontMetrics().elidedText(caption, Qt::ElideRight, textRect.width()));
}

void GridHeader::paintEvent(QPaintEvent* event)
{
  QHeaderView::paintEvent(event);
  // Behind the last column.
  QPainter painter(viewport());
  const QRect rest(length() - offset(), 0, qMax(0, viewport()->width() - length() + offset()), viewport()->height());
  painter.fillRect(rest, titleColor_.isValid() ? titleColor_ : theme().title);
  painter.setPen(theme().line);
  painter.drawLine(rest.bottomLeft(), rest.bottomRight());
  if (fixedWidth() > 0) {
    for (const int section : std::as_const(fixedSections_)) {
      paintSection(&painter, QRect(leftOf(section), 0, sectionSize(section), viewport()->height()), section);
    }
    painter.fillRect(fixedWidth() - 1, 0, 1, viewport()->height(), theme().line);
  }
}

void GridHeader::setFixedSections(const QList<int>& sections)
{
  if (fixedSections_ != sections) {
    fixedSections_ = sections;
    viewport()->update();
  }
}

int GridHeader::fixedWidth() const
{
  int width = 0;
  if (offset() > 0) {
    for (const int section : fixedSections_) {
      width += sectionSize(section);
    }
  }
  return width;
}

int GridHeader::leftOf(int section) const
{
  // Fixed sections are the first ones: their places without scrolling are where they stay.
  return isFixed(section) ? sectionPosition(section) : sectionViewportPosition(section);
}

int GridHeader::fixedSectionAt(int x) const
{
  return x < fixedWidth() ? logicalIndexAt(x - offset()) : -1;
}

QSize GridHeader::sectionSizeFromContents(int section) const
{
  const QString caption = model()->headerData(section, Qt::Horizontal, Qt::DisplayRole).toString();
  return QSize(captionWidth(caption), textLineHeight(fontMetrics()) + 2);
}

// Every title is one line high: no caption has to be measured for it, which the table asks for at each layout.
QSize GridHeader::sizeHint() const
{
  return QSize(defaultSectionSize(), textLineHeight(fontMetrics()) + 2);
}

void GridHeader::mousePressEvent(QMouseEvent* event)
{
  pressedFixed_ = event->button() == Qt::LeftButton ? fixedSectionAt(event->position().toPoint().x()) : -1;
  if (pressedFixed_ < 0) {
    QHeaderView::mousePressEvent(event);
  }
}

void GridHeader::mouseReleaseEvent(QMouseEvent* event)
{
  if (const int pressed = std::exchange(pressedFixed_, -1); pressed >= 0) {
    if (sectionsClickable() && fixedSectionAt(event->position().toPoint().x()) == pressed) {
      emit sectionClicked(pressed);
    }
    return;
  }
  QHeaderView::mouseReleaseEvent(event);
  if (std::exchange(changed_, false)) {
    emit layoutChangedByUser();
  }
}

RowHeader::RowHeader(DatasetModel* source, QWidget* parent) : QHeaderView(Qt::Vertical, parent), source_(source)
{
  setSectionResizeMode(QHeaderView::Fixed);
  setSectionsClickable(true);
  setHighlightSections(false);
  setMinimumWidth(width);
  setMaximumWidth(width);
}

void RowHeader::paintSection(QPainter* painter, const QRect& rect, int section) const
{
  painter->fillRect(rect, theme().title);
  painter->setPen(theme().quietLine);
  painter->drawLine(rect.topRight(), rect.bottomRight());
  const TClientDataSet* source = source_->dataSet();
  if (!source || !source->Active() || section >= source->RecordCount()) {
    return;
  }
  const UpdateStatus status = source->UpdateStatusOfRow(section);
  if (status == UpdateStatus::Modified || status == UpdateStatus::Inserted) {
    const QColor mark = status == UpdateStatus::Modified ? QColor(0xd9a300) : QColor(0x3f9b46);
    painter->fillRect(QRect(rect.left(), rect.top() + 2, 3, rect.height() - 4), mark);
  }
  if (section != source->RecNo() - 1) {
    return;
  }
  const QPointF middle = QRectF(rect).center() + QPointF(1, 0.5);
  const QColor color = theme().accent;
  if (source->State() == DataSetState::Insert) {
    QFont bold = font();
    bold.setBold(true);
    painter->setFont(bold);
    painter->setPen(color);
    painter->drawText(rect.adjusted(2, 3, 0, 3), Qt::AlignCenter, QStringLiteral("*"));
  } else if (source->State() == DataSetState::Edit) {
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(QPen(color, 2.5, Qt::SolidLine, Qt::FlatCap));
    painter->drawLine(middle + QPointF(-2.5, 2.5), middle + QPointF(4, -4));
    painter->restore();
    drawPolygon(painter, {middle + QPointF(-4.5, 4.5), middle + QPointF(-3.6, 1.2), middle + QPointF(-1.2, 3.6)}, color);
  } else {
    drawPolygon(painter, {middle + QPointF(-3, -4.5), middle + QPointF(3, 0), middle + QPointF(-3, 4.5)}, color);
  }
}

}  // namespace kalvor
