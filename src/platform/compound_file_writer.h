// An OLE compound file (version 3, sectors of 512 bytes) that holds one stream: the wrapping of an .xls workbook.
#pragma once

#include <QByteArrayList>

class QIODevice;

namespace kalvor {

// Writes the file with the stream of that name (at most 31 characters), made of the parts one after the other and
// filled up with zeros to at least 4096 bytes. False when the device refuses or the stream exceeds 2 GB.
bool writeCompoundFile(QIODevice& device, QStringView streamName, const QByteArrayList& parts);

}  // namespace kalvor
