// How the columns of a grid are written down: the lines of an ini file and of the settings document. Texts only; the
// grids' side is in windows/grid_view_store.h.
#pragma once

#include <QStringList>

#include "common/color_names.h"
#include "data/field.h"

namespace kalvor {

// --- Ini file: a section per grid, "dbgMain;3=Name;120;clWindow;-1;0;" ------------------------------------------

// The given file's name with its extension changed to ".ini".
KALVOR_RULES QString gridViewFile(const QString& fileName);
KALVOR_RULES QString gridViewSection(int formId, const QString& tag);            // "120;1"
KALVOR_RULES QString enhancedGridViewSection(int formId, const QString& tag);    // "120|1"
KALVOR_RULES QString stringGridViewSection(int formId);                          // "120"
KALVOR_RULES QString gridViewKey(const QString& gridName, int position);         // "dbgMain;3"

enum class ColumnAlignment : quint8 { Left = 0, Right = 1, Center = 2 };

struct GridViewColumn {
  QString fieldName;
  int width = 0;  // pixels
  ColorValue color = clWindow;
  bool visible = true;
  ColumnAlignment alignment = ColumnAlignment::Left;
};
KALVOR_RULES QString gridViewValue(const GridViewColumn& column);

// A column of a string grid: the four texts of its descriptor.
struct StringGridViewColumn {
  QStringList texts;
  int width = 0;
  ColorValue color = clWindow;
};
KALVOR_RULES QString stringGridViewValue(const StringGridViewColumn& column);

// One stored line. Its parts are read one by one, as they are applied: each of them raises DataError when its text
// is no value of its kind.
class KALVOR_RULES GridViewLine {
 public:
  explicit GridViewLine(const QString& line);
  const QString& gridName() const { return gridName_; }
  int position() const;
  QString text(int part) const;
  int number(int part) const;
  ColorValue color(int part) const;
  bool flag(int part) const;

 private:
  QString gridName_, position_, value_;
};

// --- Settings document: a group per grid, "Name=20" in column order ----------------------------------------------

KALVOR_RULES QString gridSettingsGroup(int formId, int tag);  // "Form_Id120Tag_Id1"
inline const QString fixedColumnsKey = QStringLiteral("FixedColls");

// --- Starting width ------------------------------------------------------------------------------------------------

// Characters that a field's column begins with: room for its caption, and for a whole moment where it holds one.
// Numbers keep their display width.
KALVOR_RULES int GetColSize(const TField* field);

}  // namespace kalvor
