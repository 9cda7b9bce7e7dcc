// The one look of the program: colours from the palette with one accent, icons, spacing, Bulgarian texts.
#pragma once

#include <QColor>
#include <QIcon>
#include <QPalette>

#include "layer_export.h"

class QApplication;

namespace kalvor {

enum class ThemeMode : quint8 { FollowSystem, Light, Dark };

// Distances in device-independent pixels; everything stands on a rhythm of four.
namespace spacing {
constexpr int tight = 4;
constexpr int normal = 8;
constexpr int wide = 16;
constexpr int cellPadding = 6;  // left and right of the text in a grid cell
}  // namespace spacing

// Colours that the toolkit's palette has no role for.
struct Theme {
  bool dark = false;
  QColor accent;            // current cell, focus, default button
  QColor accentText;        // on the accent
  QColor line;              // frames and separators
  QColor quietLine;         // between cells
  QColor quietText;         // captions, marks that must not shout
  QColor negative;          // negative amounts
  QColor readOnly;          // background of what cannot be typed into
  QColor invalid;           // background of a text that the field refused
  QColor invalidLine;
  QColor changedRecord;     // background of a record with changes that are not saved
  QColor insertedRecord;
  QColor requiredMark;      // the star behind a caption, the mark of a new record
  QColor title;             // grid titles and footer
};

// Installs style, palette, font, icons and Bulgarian texts. Calling it again switches the mode.
KALVOR_WIDGETS void applyTheme(QApplication& application, ThemeMode mode = ThemeMode::FollowSystem);

// The colours in force; before applyTheme() the light ones.
KALVOR_WIDGETS const Theme& theme();

// By its freedesktop name ("document-save"); an empty icon when no theme has it.
KALVOR_WIDGETS QIcon icon(const QString& name);

// Colour over another one, strength 0 to 1.
KALVOR_WIDGETS QColor blend(const QColor& over, const QColor& under, qreal strength);

// Row height of a grid and height of a single-line control that the font asks for.
KALVOR_WIDGETS int textLineHeight(const QFontMetrics& metrics);

}  // namespace kalvor
