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

  Shape shape_ = Shape::General;
  bool caseInsensitive_;
  QString pattern_;   // folded when case does not matter; without the % of a simple shape
  QStringMatcher finder_;
};

}  // namespace kalvor
