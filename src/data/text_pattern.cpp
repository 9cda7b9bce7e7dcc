#include "data/text_pattern.h"

#include <QVarLengthArray>
#include <cstring>

#include "data/collation.h"

namespace kalvor {

namespace {

constexpr qsizetype blockRows = 2048;

}  // namespace

TextPattern::TextPattern(const QString& pattern, bool caseInsensitive)
  : caseInsensitive_(caseInsensitive), pattern_(caseInsensitive ? foldedText(pattern) : pattern)
{
  qsizetype start = 0;
  qsizetype end = pattern_.size();
  while (start < end && pattern_[start] == u'%')
    ++start;
  while (end > start && pattern_[end - 1] == u'%')
    --end;
  const bool openStart = start > 0;
  const bool openEnd = end < pattern_.size();
  const QString core = pattern_.mid(start, end - start);
  if (core.contains(u'%') || core.contains(u'_'))
    return;
  if (core.isEmpty())
    shape_ = pattern_.isEmpty() ? Shape::Equals : Shape::Everything;
  else if (openStart && openEnd)
    shape_ = Shape::Contains;
  else
    shape_ = openStart ? Shape::EndsWith : openEnd ? Shape::StartsWith : Shape::Equals;
  pattern_ = core;
  finder_.setPattern(core);
}

bool TextPattern::matches(QStringView text) const
{
  if (!caseInsensitive_)
    return matchesFolded(text);
  QVarLengthArray<char16_t, 256> folded(text.size());
  foldText(text.utf16(), text.size(), folded.data());
  return matchesFolded(QStringView(folded.data(), folded.size()));
}

bool TextPattern::matchesFolded(QStringView text) const
{
  switch (shape_) {
    case Shape::Everything: return true;
    case Shape::Equals: return text == pattern_;
    case Shape::StartsWith: return text.startsWith(pattern_);
    case Shape::EndsWith: return text.endsWith(pattern_);
    case Shape::Contains: return finder_.indexIn(text) >= 0;
    case Shape::General: return matchesGeneral(text);
  }
  return false;
}

// On a mismatch the last % takes one character more; no further look back is ever needed.
bool TextPattern::matchesGeneral(QStringView text) const
{
  qsizetype at = 0;
  qsizetype in = 0;
  qsizetype retryPattern = -1;
  qsizetype retryText = 0;
  while (at < text.size()) {
    if (in < pattern_.size() && pattern_[in] == u'%') {
      retryPattern = ++in;
      retryText = at;
    } else if (in < pattern_.size() && (pattern_[in] == u'_' || pattern_[in] == text[at])) {
      ++in;
      ++at;
    } else if (retryPattern >= 0) {
      in = retryPattern;
      at = ++retryText;
    } else {
      return false;
    }
  }
  while (in < pattern_.size() && pattern_[in] == u'%')
    ++in;
  return in == pattern_.size();
}

void TextPattern::matchColumn(const Column& column, qsizetype first, qsizetype last, quint8* mask) const
{
  for (qsizetype from = first; from < last; from += blockRows) {
    const qsizetype to = qMin(last, from + blockRows);
    quint8* const block = mask + (from - first);
    if (shape_ == Shape::Contains && scanArena(column, from, to, block))
      continue;
    for (qsizetype row = from; row < to; ++row)
      block[row - from] = !column.isNull(row) && matches(column.textAt(row));
  }
}

// Texts that stand in the arena one after the other are folded and searched in one go. False: they do not.
bool TextPattern::scanArena(const Column& column, qsizetype first, qsizetype last, quint8* mask) const
{
  const std::vector<Column::TextSpan>& spans = column.spans();
  quint64 begin = ~quint64(0);
  quint64 end = 0;
  quint64 used = 0;
  for (qsizetype row = first; row < last; ++row) {
    const Column::TextSpan span = spans[size_t(row)];
    if (span.length == 0)
      continue;
    if (span.start < end)
      return false;
    if (used == 0)
      begin = span.start;
    end = quint64(span.start) + span.length;
    used += span.length;
  }
  std::memset(mask, 0, size_t(last - first));
  if (used == 0)
    return true;
  if (end - begin > used * 2)
    return false;

  const char16_t* source = column.characters().data() + begin;
  const qsizetype length = qsizetype(end - begin);
  QVarLengthArray<char16_t, 65536> folded;
  if (caseInsensitive_) {
    folded.resize(length);
    foldText(source, length, folded.data());
    source = folded.data();
  }
  const QStringView text(source, length);
  qsizetype row = first;
  qsizetype at = finder_.indexIn(text);
  while (at >= 0) {
    const auto endOf = [&](qsizetype r) { return qint64(spans[size_t(r)].start) + spans[size_t(r)].length - qint64(begin); };
    while (row < last && (spans[size_t(row)].length == 0 || endOf(row) <= at))
      ++row;
    if (row == last)
      break;
    const qint64 start = qint64(spans[size_t(row)].start) - qint64(begin);
    const bool inside = at >= start && at + pattern_.size() <= endOf(row);
    mask[row - first] |= quint8(inside);
    at = finder_.indexIn(text, inside ? qsizetype(endOf(row)) : at + 1);
  }
  return true;
}

}  // namespace kalvor
