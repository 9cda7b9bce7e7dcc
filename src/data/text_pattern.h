// LIKE patterns: % any characters, _ one character.
#pragma once

#include <QStringMatcher>

#include "data/record_set.h"

namespace kalvor {

class TextPattern {
 public:
  TextPattern(const QString& pattern, bool caseInsensitive);

  bool matches(QStringView text) const;
  // For the records [first, last) of a text column; null matches nothing.
  void matchColumn(const Column& column, qsizetype first, qsizetype last, quint8* mask) const;

 private:
  enum class Shape : quint8 { Everything, Equals, StartsWith, EndsWith, Contains, General };

  bool matchesFolded(QStringView text) const;
  bool matchesGeneral(QStringView text) const;
  bool scanArena(const Column& column, qsizetype first, qsizetype last, quint8* mask) const;
  void findProbes();
  qsizetype nextIn(QStringView text, qsizetype from) const;

  // Two places of the pattern that each can be only one of two characters: where both stand, it is worth looking.
  struct Probe {
    qsizetype offset = -1;
    char16_t lower = 0;
    char16_t upper = 0;
  };

  Shape shape_ = Shape::General;
  bool caseInsensitive_;
  QString pattern_;   // folded when case does not matter; without the % of a simple shape
  QStringMatcher finder_;
  Probe probes_[2];
};

}  // namespace kalvor
