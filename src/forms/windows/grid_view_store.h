// Keeping the columns of a grid: in an ini file, and in the user's settings document.
//
// The ini routines log their errors under their own names and leave the grid with what was applied; those of the
// settings document raise TELException.
#pragma once

#include <QColor>
#include <QDomDocument>

#include "forms/grid_view.h"

namespace kalvor {

class TDBGrid;
class TDBGridEx;
class TStringGrid;

// The columns of a string grid, as its view is stored. Positions count from 0, left to right; the titles' row holds
// the descriptors.
class BASE_PACKAGE StringGridColumns {
 public:
  virtual ~StringGridColumns();
  virtual QString gridName() const = 0;
  virtual int columnCount() const = 0;
  virtual bool hasDescriptor(int column) const = 0;
  virtual StringGridViewColumn column(int column) const = 0;  // four texts
  virtual void setColumn(int column, const StringGridViewColumn& view) = 0;
};

// --- Ini file: the given file's name with the extension ".ini" -------------------------------------------------------

BASE_PACKAGE void SaveGridViewEx(const QString& fileName, int formId, const QString& tag, TDBGrid* grid);
BASE_PACKAGE void LoadGridViewEx(const QString& fileName, int formId, const QString& tag, TDBGrid* grid);
// Empties the grid's section while its dataset is active.
BASE_PACKAGE void ResetGridView(const QString& fileName, int formId, int tag, TDBGrid* grid);

BASE_PACKAGE void SaveGridView(const QString& fileName, int formId, int tag, TDBGrid* grid);
BASE_PACKAGE void LoadGridView(const QString& fileName, int formId, int tag, TDBGrid* grid);
// With the number of fixed columns, in a section of its own kind.
BASE_PACKAGE void SaveGridView(const QString& fileName, int formId, int tag, TDBGridEx* grid);
BASE_PACKAGE void LoadGridView(const QString& fileName, int formId, int tag, TDBGridEx* grid);

BASE_PACKAGE void SaveStringGridView(const QString& fileName, int formId, const StringGridColumns& grid);
BASE_PACKAGE void LoadStringGridView(const QString& fileName, int formId, StringGridColumns& grid);
// By the grid's object name; columns without a descriptor keep what they have.
BASE_PACKAGE void SaveStringGridView(const QString& fileName, int formId, TStringGrid* grid);
BASE_PACKAGE void LoadStringGridView(const QString& fileName, int formId, TStringGrid* grid);

// --- Settings document -------------------------------------------------------------------------------------------------

// The shown fields with their widths in characters, in column order; the fixed columns of an enhanced grid in the
// form's own group. Colours that a column was given stand in a group beside the grid's.
BASE_PACKAGE void SaveGridView(QDomDocument& document, int formId, int tag, TDBGrid* grid);
// True when a view was stored: the listed fields are shown in that order, the others as showUnlisted says.
BASE_PACKAGE bool LoadGridView(const QDomDocument& document, int formId, int tag, TDBGrid* grid,
                               bool showUnlisted = false);

// The grid's number within its form: what it was given (property "tag"), else 0.
BASE_PACKAGE int gridTag(const TDBGrid* grid);

// Colours of columns: invalid is the grid's own, which is written as the window's.
BASE_PACKAGE ColorValue columnColorValue(const QColor& color);
BASE_PACKAGE QColor columnColor(ColorValue value);

}  // namespace kalvor
