// Records of a BIFF8 workbook stream, little-endian, as .xls files hold them.
#pragma once

#include <QByteArray>
#include <QStringList>

namespace kalvor::biff {

// Appends fixed-size numbers to a record's body and the record, with its length, to a stream.
class Record {
 public:
  explicit Record(quint16 kind) : kind_(kind) {}
  Record& u8(quint8 value);
  Record& u16(quint16 value);
  Record& u32(quint32 value);
  Record& real(double value);
  Record& raw(const QByteArray& bytes);
  // Characters with their width flag before them; one byte each where all are Latin-1. The length stands in front as
  // 8 or 16 bits.
  Record& text8(QStringView text);
  Record& text16(QStringView text);
  void appendTo(QByteArray& stream) const;

 private:
  void characters(QStringView text);

  quint16 kind_;
  QByteArray body_;
};

// The table of the workbook's distinct texts, broken into records where they are full. uses: cells that refer to it.
QByteArray sharedTexts(const QStringList& texts, quint32 uses);

bool isLatin1(QStringView text);

}  // namespace kalvor::biff
