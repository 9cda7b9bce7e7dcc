#include "widgets/theme_painting.h"

#include <QPainter>

#include "widgets/theme.h"

namespace kalvor {

void drawCheckBox(QPainter* painter, const QRectF& around, CheckLook look, bool enabled, bool focused)
{
  const QPointF corner(qRound(around.center().x() - checkBoxSide / 2.0), qRound(around.center().y() - checkBoxSide / 2.0));
  const QRectF box(corner + QPointF(0.5, 0.5), QSizeF(checkBoxSide - 1, checkBoxSide - 1));
  const bool filled = look != CheckLook::Unchecked;
  const QColor strong = enabled ? theme().accent : theme().quietText;
  painter->save();
  painter->setRenderHint(QPainter::Antialiasing);
  painter->setPen(QPen(filled || focused ? strong : blend(theme().quietText, theme().line, enabled ? 0.5 : 0.1), 1));
  painter->setBrush(filled ? QBrush(strong) : QBrush(Qt::NoBrush));
  painter->drawRoundedRect(box, 2.5, 2.5);
  painter->setPen(QPen(theme().accentText, 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  if (look == CheckLook::Checked) {
    painter->drawPolyline(QPolygonF{corner + QPointF(4, 8.3), corner + QPointF(6.9, 11.2), corner + QPointF(12, 4.9)});
  } else if (look == CheckLook::Mixed) {
    painter->drawLine(corner + QPointF(4, 8), corner + QPointF(12, 8));
  }
  painter->restore();
}

void drawCellMark(QPainter* painter, const QRect& rect, CellMark mark, const QColor& color)
{
  painter->save();
  painter->setRenderHint(QPainter::Antialiasing);
  painter->setPen(Qt::NoPen);
  painter->setBrush(color);
  const QPointF middle = QRectF(rect).center();
  if (mark == CellMark::Ellipsis) {
    for (const qreal x : {-4.0, 0.0, 4.0}) {
      painter->drawEllipse(middle + QPointF(x, 2), 1.1, 1.1);
    }
  } else {
    painter->drawPolygon(QPolygonF{middle + QPointF(-4, -2), middle + QPointF(4, -2), middle + QPointF(0, 2.5)});
  }
  painter->restore();
}

void drawPolygon(QPainter* painter, const QPolygonF& shape, const QColor& color)
{
  painter->save();
  painter->setRenderHint(QPainter::Antialiasing);
  painter->setPen(Qt::NoPen);
  painter->setBrush(color);
  painter->drawPolygon(shape);
  painter->restore();
}

}  // namespace kalvor
