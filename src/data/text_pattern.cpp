#include "data/text_pattern.h"

#include <QVarLengthArray>

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
  if (shape_ == Shape::Contains)
    findProbes();
}

void TextPattern::findProbes()
{
  const auto probeAt = [this](qsizetype offset) {
    const char16_t c = pattern_[offset].unicode();
    const std::vector<char16_t> forms = caseInsensitive_ ? charactersFoldedTo(c) : std::vector<char16_t>{c};
    return forms.size() > 2 ? Probe{} : Probe{offset, forms.front(), forms.back()};
  };
  for (qsizetype i = 0; i < pattern_.size() && probes_[0].offset < 0; ++i)
    probes_[0] = probeAt(i);
  for (qsizetype i = pattern_.size() - 1; i >= 0 && probes_[1].offset < 0; --i)
    probes_[1] = probeAt(i);
}

// Where the pattern stands next in a text as it is written, -1 for nowhere. Needs the probes.
qsizetype TextPattern::nextIn(QStringView text, qsizetype from) const
{
  constexpr qsizetype block = 64;
  const Probe a = probes_[0];
  const Probe b = probes_[1];
  const qsizetype last = text.size() - pattern_.size();
  const auto isHere = [&](qsizetype at) {
    const QStringView here = text.mid(at, pattern_.size());
    return caseInsensitive_ ? equalFolded(here, pattern_) : here == pattern_;
  };
  const char16_t* const characters = text.utf16();
  for (qsizetype start = from; start <= last; start += block) {
    const char16_t* const atA = characters + start + a.offset;
    const char16_t* const atB = characters + start + b.offset;
    quint16 hits[block];
    quint16 any = 0;
    if (start + block - 1 <= last) {
      for (qsizetype i = 0; i < block; ++i) {
        const quint16 hitA = quint16(atA[i] == a.lower) | quint16(atA[i] == a.upper);
        const quint16 hitB = quint16(atB[i] == b.lower) | quint16(atB[i] == b.upper);
        hits[i] = hitA & hitB;
        any |= hits[i];
      }
      if (!any)
        continue;
    }
    for (qsizetype i = 0; i < block && start + i <= last; ++i)
      if ((start + block - 1 > last || hits[i]) && isHere(start + i))
        return start + i;
  }
  return -1;
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

// Texts that stand in the arena one after the other are searched in one go. False: they do not.
bool TextPattern::scanArena(const Column& column, qsizetype first, qsizetype last, quint8* mask) const
{
  const std::vector<Column::TextSpan>& spans = column.spans();
  quint64 begin = ~quint64(0);
  quint64 end = 0;
  quint64 used = 0;
  for (qsizetype row = first; row < last; ++row) {
    const Column::TextSpan span = spans[size_t(row)];
    mask[row - first] = 0;
    if (span.length == 0)
      continue;
    if (span.start < end)
      return false;
    if (used == 0)
      begin = span.start;
    end = quint64(span.start) + span.length;
    used += span.length;
  }
  if (used == 0)
    return true;
  if (end - begin > used * 2)
    return false;

  const char16_t* source = column.characters().data() + begin;
  const qsizetype length = qsizetype(end - begin);
  const bool probed = probes_[0].offset >= 0;
  QVarLengthArray<char16_t, 4096> folded;
  if (!probed && caseInsensitive_) {
    folded.resize(length);
    foldText(source, length, folded.data());
    source = folded.data();
  }
  const QStringView text(source, length);
  const auto find = [&](qsizetype from) { return probed ? nextIn(text, from) : finder_.indexIn(text, from); };
  qsizetype row = first;
  qsizetype at = find(0);
  while (at >= 0) {
    const auto endOf = [&](qsizetype r) {
      return qint64(spans[size_t(r)].start) + spans[size_t(r)].length - qint64(begin);
    };
    while (row < last && (spans[size_t(row)].length == 0 || endOf(row) <= at))
      ++row;
    if (row == last)
      break;
    const qint64 start = qint64(spans[size_t(row)].start) - qint64(begin);
    const bool inside = at >= start && at + pattern_.size() <= endOf(row);
    mask[row - first] |= quint8(inside);
    at = find(inside ? qsizetype(endOf(row)) : at + 1);
  }
  return true;
}

}  // namespace kalvor
