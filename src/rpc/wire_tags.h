// CBOR tags on the wire: registered ones where there are any, else numbers of this protocol.
#pragma once

#include <QtCore/qglobal.h>

namespace kalvor::cbor {

enum WireTag : quint16 {
  TagSint8 = 72,       // RFC 8746, little-endian
  TagUint32 = 70,
  TagSint16 = 77,
  TagSint32 = 78,
  TagSint64 = 79,
  TagFloat64 = 86,
  TagDate = 100,       // RFC 8943: days since 1970-01-01
  TagDateTime = 21010, // milliseconds since 1970-01-01T00:00 on the local clock, no zone
  TagTime = 21011,     // milliseconds since midnight
  TagRecordSet = 21012,
  TagDelta = 21013,
  TagDataPacket = 21014
};

}  // namespace kalvor::cbor
