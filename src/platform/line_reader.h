// Lines of a text file of any size, a piece of it in memory at a time.
#pragma once

#include <QFile>

#include "platform/text_encoding.h"

namespace kalvor {

// Lines end at a line feed, with or without a carriage return; other bytes are taken as they are, a UTF-8 mark at the
// beginning is no data. A file that fails while it is read raises DataError and is at its end from then on.
class KALVOR_PLATFORM LineReader {
 public:
  enum class Result : quint8 { Line, TooLong, End };
  static constexpr qsizetype longestLine = 16 << 20;  // bytes

  // False when there is no such regular file, or it may not be read. Goes through the file once for its encoding.
  bool open(const QString& fileName);
  TextEncoding encoding() const { return encoding_; }

  // The next line, without its end; it stays valid until the next call of anything here. A line that is too long is
  // passed over.
  Result read(QByteArrayView& line);
  bool onlyBlanksLeft();
  void rewind();

 private:
  void findEncoding();
  bool fill();
  void passOverLine();
  void scanBlanks();
  qint64 readAt(qint64 offset, char* target, qint64 size);
  qint64 position() const { return bufferStart_ + position_; }

  QFile file_;
  TextEncoding encoding_ = TextEncoding::Windows1251;
  qint64 firstByte_ = 0;    // behind the mark
  QByteArray buffer_;
  qint64 bufferStart_ = 0;  // in the file
  qsizetype filled_ = 0;
  qsizetype position_ = 0;  // in the buffer
  qint64 scannedTo_ = -1;   // only blanks lie before it; at it the file ends, or something else stands there
  bool blankToEnd_ = false;
  bool ended_ = false;
};

}  // namespace kalvor
