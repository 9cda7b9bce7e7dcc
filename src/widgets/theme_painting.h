// Small shapes that the style and the grid draw alike.
#pragma once

#include <QPolygonF>

class QPainter;
class QColor;
class QRect;
class QRectF;

namespace kalvor {

enum class CheckLook : quint8 { Unchecked, Checked, Mixed };

constexpr int checkBoxSide = 16;

void drawCheckBox(QPainter* painter, const QRectF& around, CheckLook look, bool enabled, bool focused);
// What the current cell of a grid offers at its right edge.
enum class CellMark : quint8 { DropDown, Ellipsis };
void drawCellMark(QPainter* painter, const QRect& rect, CellMark mark, const QColor& color);
void drawPolygon(QPainter* painter, const QPolygonF& shape, const QColor& color);

}  // namespace kalvor
