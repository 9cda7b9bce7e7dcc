// Cuts the columns out of one line of a text file, in the file's own bytes.
#pragma once

#include <QByteArray>
#include <vector>

#include "common/delimiter.h"
#include "platform/text_encoding.h"

namespace kalvor {

class TextColumns {
 public:
  // Characters from "from" (counted from 1) up to the one before "to".
  struct Range {
    int from = 0;
    int to = 0;
  };

  // The separator counts for dtChar only. dtFixedLen cuts by ranges.
  void setDelimiter(TDelimiter kind, const QString& separator, TextEncoding encoding);
  // By position; one that is not there is empty.
  void setRanges(std::vector<Range> ranges) { ranges_ = std::move(ranges); }

  // The line must stay where it is as long as its columns are asked for.
  void setRow(QByteArrayView row);
  // Position from 1. Empty where the line has no such column.
  QByteArrayView column(int position);
  QString text(int position);

 private:
  QByteArrayView separated(int position);
  QByteArrayView ranged(int position);
  qsizetype byteOfCharacter(qsizetype character);
  qsizetype separatorFrom(qsizetype offset) const;

  TextEncoding encoding_ = TextEncoding::Windows1251;
  bool fixedWidth_ = false;
  QByteArray separator_;
  std::vector<Range> ranges_;
  QByteArrayView row_;
  std::vector<qsizetype> starts_;  // of the columns found so far; the last may be behind the line's end
  qsizetype knownCharacter_ = 0;   // a character of the line and the byte where it begins
  qsizetype knownByte_ = 0;
};

}  // namespace kalvor
