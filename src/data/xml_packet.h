// A dataset as a file: its fields, its records in the order of arrival, and what was changed in them.
//
//   <dataset version="1">
//     <fields><field name="Id" type="LargeInt" size="0" required="1" .../>...</fields>
//     <rows>
//       <r><c>12</c><c>text</c><n/></r>                          one c or n (null) for each field
//       <r status="Modified" change="0"><c>..</c><o><c>..</c></o></r>  o: the values before the changes
//     </rows>
//   </dataset>
//
// Numbers with ".", dates yyyyMMdd, times hh:mm:ss.zzz, date-times yyyyMMddThh:mm:ss.zzz; a day or time outside
// of what that can say as "#" and the stored number. A blob, and a text with characters that XML forbids
// (of UTF-16), stand in base64: <c base64="1">.
#pragma once

#include "data/change_log.h"

class QXmlStreamWriter;

namespace kalvor {

struct RecordChange {
  RowId row;
  RowState state;
  qsizetype original;  // row of the originals; -1 where the record itself holds them
};

struct PacketFile {
  RecordSet records;
  RecordSet originals;
  std::vector<RecordChange> changes;  // in the order they were made
};

QByteArray writePacket(const PacketFile& packet);
// DataError, in Bulgarian with the line, for anything but a well-formed packet; document types are refused.
PacketFile readPacket(const QByteArray& data);

struct DataTypeName {
  DataType type;
  const char16_t* name;
};
const std::vector<DataTypeName>& dataTypeNames();
const char16_t* rowStateName(RowState state);

}  // namespace kalvor
