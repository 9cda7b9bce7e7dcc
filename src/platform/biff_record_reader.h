// Records of a binary workbook's stream ([MS-XLS]): each with the records that continue it.
#pragma once

#include <QString>
#include <vector>

#include "platform/text_encoding.h"

namespace kalvor {

// Goes through the data of one record. What is behind its end reads as 0 and sets atEnd().
class BiffRecord {
 public:
  quint16 type = 0;

  void addPiece(QByteArrayView bytes) { pieces_.push_back(bytes); }
  // Nothing was read that is not there.
  bool isWhole() const { return whole_; }
  bool hasMore();

  quint8 byte();
  quint16 word() { const quint16 low = byte(); return quint16(low | byte() << 8); }
  quint32 doubleWord() { const quint32 low = word(); return low | quint32(word()) << 16; }
  double real();
  void skip(qsizetype bytes);
  // A text with its length (in a byte or a word), flags, and what its flags announce behind it (BIFF8).
  QString unicodeText(int lengthBytes);
  // A text of one byte a character (BIFF5).
  QByteArray bytesText(int lengthBytes);

 private:
  QString characters(qsizetype count, bool wide);

  std::vector<QByteArrayView> pieces_;
  size_t piece_ = 0;
  qsizetype offset_ = 0;
  bool whole_ = true;
};

class BiffStream {
 public:
  explicit BiffStream(QByteArrayView stream, qsizetype offset = 0) : stream_(stream), offset_(offset) {}
  // The next record; false at the end of the stream, also where a record is cut off.
  bool next(BiffRecord& record);

 private:
  bool header(quint16& type, QByteArrayView& data) const;

  QByteArrayView stream_;
  qsizetype offset_;
};

}  // namespace kalvor
