// The small parts of an Office Open XML workbook: what its sheets are called, and how its cells look.
#pragma once

#include <QStringList>

namespace kalvor {

class ZipWriter;

// The styles that every workbook has, by their numbers in cells: those of SheetRowLook first, then three for dates;
// behind them one for each number picture.
enum XlsxStyle : int { xlsxDateStyle = 4, xlsxDateTimeStyle, xlsxTimeStyle, xlsxFirstPictureStyle };

// The part of the sheet with that number, from 1.
QByteArray xlsxSheetPart(qsizetype number);

// All parts but the sheets. False as with ZipWriter.
bool writeXlsxParts(ZipWriter& archive, const QStringList& sheetNames, const QStringList& numberPictures);

}  // namespace kalvor
