// Drawing short single-line texts fast: glyph by glyph, without shaping.
#pragma once

#include <QFont>
#include <QHash>
#include <QPainter>
#include <QRawFont>

namespace kalvor {

// For the texts of grid cells: each character stands for one glyph of the font, as in Cyrillic and Latin. A text with
// other characters is drawn by the toolkit.
class PlainTextPainter {
 public:
  void setFont(const QFont& font);
  qreal width(const QString& text);
  // Inside rect by the horizontal alignment, in the middle of its height; cut with "…" where it is too long. The
  // painter has the font and pen set.
  void draw(QPainter* painter, const QRect& rect, Qt::Alignment alignment, const QString& text);

 private:
  struct Glyph {
    quint32 index = 0;  // 0: the font has none
    qreal advance = 0;
  };
  const Glyph& glyph(QChar character);
  QString elided(const QString& text, qreal width);

  QFont font_;
  QRawFont raw_;
  qreal ascent_ = 0;
  qreal height_ = 0;
  QHash<char16_t, Glyph> glyphs_;
  QList<quint32> indexes_;
  QList<QPointF> places_;
};

}  // namespace kalvor
