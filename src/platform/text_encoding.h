// The client's 8-bit code page, and how it is told from UTF-8.
#pragma once

#include <QByteArray>
#include <QString>

#include "layer_export.h"

namespace kalvor {

// Characters that Windows-1251 lacks become "?".
KALVOR_PLATFORM QByteArray toWindows1251(QStringView text);
KALVOR_PLATFORM QString fromWindows1251(QByteArrayView bytes);
// A text file's bytes: UTF-8 (with or without its mark) when they are that, else Windows-1251.
KALVOR_PLATFORM QString decodeTextFile(QByteArrayView bytes);


enum class TextEncoding : quint8 { Windows1251, Utf8 };

// What decodeTextFile would take a text for, when it is fed in pieces.
class KALVOR_PLATFORM Utf8Detector {
 public:
  // False: it is not UTF-8, whatever follows.
  bool feed(QByteArrayView bytes);
  // Pure ASCII counts as Windows-1251, which reads it the same.
  TextEncoding encoding() const;

 private:
  bool valid_ = true;
  bool hasOtherThanAscii_ = false;
  int expected_ = 0;              // continuation bytes still to come
  unsigned char lowest_ = 0x80;   // limits of the next one
  unsigned char highest_ = 0xBF;
};

}  // namespace kalvor
