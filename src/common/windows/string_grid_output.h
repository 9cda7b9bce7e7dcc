// The contents of a string grid, to files and to paper. Header lines are name=value lines; none = an empty list.
#pragma once

#include <QPageLayout>
#include <QStringList>

#include "layer_export.h"

class QPagedPaintDevice;
class QWidget;

namespace kalvor {

class TStringGrid;

// Both ask for a file and tell how it went; nothing is raised.
BASE_PACKAGE void ExportStrGridToExcel(QWidget* owner, const TStringGrid& grid, int titleRows,
                                       const QStringList& headerLines = {});
BASE_PACKAGE void ExportStrGridToTXT(QWidget* owner, const TStringGrid& grid, const QStringList& headerLines = {});

// To the default printer; a refusal is shown.
BASE_PACKAGE void PrintStringGrid(const TStringGrid& grid, const QString& title, QPageLayout::Orientation orientation,
                                  const QStringList& headerLines = {});

// How many pages the grid takes on paper of that printable height, in tenths of a millimetre.
BASE_PACKAGE int stringGridPages(int rows, int pageHeight);
// The pages themselves, on a device that has its page size set. False: the device refused.
BASE_PACKAGE bool paintStringGrid(QPagedPaintDevice& device, const TStringGrid& grid, const QString& title,
                                  const QStringList& headerLines);

}  // namespace kalvor
