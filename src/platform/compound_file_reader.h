// Streams of an OLE compound file ([MS-CFB]), the container of binary workbooks.
#pragma once

#include <QByteArray>
#include <QStringList>

namespace kalvor {

// The first stream that has one of the names, whatever storage it is in; nothing when there is none. DataError when the
// file is damaged.
QByteArray compoundFileStream(QByteArrayView file, const QStringList& names);

}  // namespace kalvor
