// Lists of column captions as one text, "Код,Наименование". An item with a comma, a semicolon, a quote or a line
// break stands in quotes, inner ones doubled.
#pragma once

#include <QStringList>

#include "layer_export.h"

namespace kalvor {

KALVOR_RULES QString captionListText(const QStringList& captions);
KALVOR_RULES QStringList captionsOfList(const QString& list);  // the empty text is the empty list

// The line of a field-choice file: the two lists with a semicolon between.
struct CaptionLists {
  QString master;
  QString detail;
};
KALVOR_RULES CaptionLists splitCaptionLists(const QString& line);

}  // namespace kalvor
