#include "widgets/plain_text.h"

#include <QFontMetricsF>
#include <QGlyphRun>

namespace kalvor {
namespace {

// One glyph a character, left to right: blanks, punctuation, Latin and Cyrillic without combining marks.
bool isPlain(QChar character)
{
  const char16_t c = character.unicode();
  return (c >= 0x20 && c < 0x0300) || (c >= 0x0400 && c < 0x0483) || (c >= 0x048A && c < 0x0530) ||
         (c >= 0x2010 && c < 0x2027) || c == 0x2030 || c == 0x20AC || c == 0x2116;
}

constexpr QChar cutMark = u'…';

}  // namespace

void PlainTextPainter::setFont(const QFont& font)
{
  if (raw_.isValid() && font == font_) {
    return;
  }
  font_ = font;
  raw_ = QRawFont::fromFont(font, QFontDatabase::Cyrillic);
  const QFontMetricsF metrics(font);
  ascent_ = metrics.ascent();
  height_ = metrics.height();
  glyphs_.clear();
}

const PlainTextPainter::Glyph& PlainTextPainter::glyph(QChar character)
{
  auto known = glyphs_.find(character.unicode());
  if (known == glyphs_.end()) {
    Glyph fresh;
    const QList<quint32> found = isPlain(character) ? raw_.glyphIndexesForString(QString(character)) : QList<quint32>();
    fresh.index = found.size() == 1 ? found.first() : 0;
    fresh.advance = QFontMetricsF(font_).horizontalAdvance(character);
    known = glyphs_.insert(character.unicode(), fresh);
  }
  return *known;
}

qreal PlainTextPainter::width(const QString& text)
{
  qreal sum = 0;
  for (const QChar character : text) {
    sum += glyph(character).advance;
  }
  return sum;
}

QString PlainTextPainter::elided(const QString& text, qreal width)
{
  qreal left = width - glyph(cutMark).advance;
  qsizetype taken = 0;
  while (taken < text.size() && (left -= glyph(text[taken]).advance) >= 0) {
    ++taken;
  }
  return text.left(taken) + cutMark;
}

void PlainTextPainter::draw(QPainter* painter, const QRect& rect, Qt::Alignment alignment, const QString& text)
{
  if (text.isEmpty()) {
    return;
  }
  qreal needed = width(text);
  const bool cut = needed > rect.width();
  const QString shown = cut ? elided(text, rect.width()) : text;
  needed = cut ? rect.width() : needed;
  indexes_.clear();
  places_.clear();
  qreal at = 0;
  for (const QChar character : shown) {
    const Glyph& one = glyph(character);
    if (one.index == 0) {
      painter->drawText(rect, int(alignment | Qt::AlignVCenter) | Qt::TextSingleLine,
                        painter->fontMetrics().elidedText(text, Qt::ElideRight, rect.width()));
      return;
    }
    if (character != u' ') {
      indexes_.append(one.index);
      places_.append(QPointF(at, 0));
    }
    at += one.advance;
  }
  const qreal spare = rect.width() - needed;
  const qreal left = rect.left() + (alignment & Qt::AlignRight ? spare : alignment & Qt::AlignHCenter ? spare / 2 : 0);
  const qreal baseline = rect.top() + (rect.height() - height_) / 2 + ascent_;
  QGlyphRun run;
  run.setRawFont(raw_);
  run.setRawData(indexes_.constData(), places_.constData(), int(indexes_.size()));
  painter->drawGlyphRun(QPointF(qRound(left), qRound(baseline)), run);
}

}  // namespace kalvor
