// An XML file as a table of texts, by an XSLT document that says what its rows and columns are.
#pragma once

#include "platform/text_table.h"

namespace kalvor {

// The stylesheet (XSLT 1.0 with EXSLT) must give <table><row><c>text</c>...</row>...</table>; the columns are the c
// elements of a row in their order. Neither document may have a DOCTYPE, and the stylesheet reaches no file and no
// network. DataError, in Bulgarian, when a document is refused, the transformation fails or does not end, or its result
// is no table.
KALVOR_PLATFORM TextTable readXmlTable(const QByteArray& xml, const QByteArray& stylesheet);
// The same of a file; also when it cannot be read or is larger than 128 MB.
KALVOR_PLATFORM TextTable readXmlFile(const QString& fileName, const QByteArray& stylesheet);

}  // namespace kalvor
