// One column: typed values, their nulls, and the arena of its characters.
#include <algorithm>
#include <functional>
#include <limits>

#include "data/data_error.h"
#include "data/record_set.h"

namespace kalvor {

namespace {

constexpr size_t largestArena = std::numeric_limits<quint32>::max();

size_t nullWords(qsizetype rows)
{
  return (size_t(rows) + 63) / 64;
}

void checkArena(size_t used, size_t added)
{
  if (added > largestArena - used)
    throw DataError(QStringLiteral("Твърде много текст в една колона!"));
}

// The bits past the last row stay clear, so that appending needs no cleaning.
void clearBitsFrom(std::vector<quint64>& words, qsizetype rows)
{
  words.resize(nullWords(rows));
  if (rows & 63)
    words.back() &= (quint64(1) << (rows & 63)) - 1;
}

}  // namespace

Column::Column(StorageKind kind) : kind_(kind) {}

void Column::reserve(qsizetype rows, qsizetype characters)
{
  nulls_.reserve(nullWords(rows));
  switch (kind_) {
    case StorageKind::Integer: integers_.reserve(size_t(rows)); break;
    case StorageKind::Real: reals_.reserve(size_t(rows)); break;
    case StorageKind::Blob: blobs_.reserve(size_t(rows)); break;
    case StorageKind::Text:
      spans_.reserve(size_t(rows));
      characters_.reserve(size_t(characters));
      break;
  }
}

void Column::pushNullBit(bool null)
{
  if ((size_ & 63) == 0)
    nulls_.push_back(0);
  if (null)
    nulls_.back() |= quint64(1) << (size_ & 63);
  ++size_;
}

void Column::appendNull()
{
  switch (kind_) {
    case StorageKind::Integer: integers_.push_back(0); break;
    case StorageKind::Real: reals_.push_back(0); break;
    case StorageKind::Text: spans_.push_back({0, 0}); break;
    case StorageKind::Blob: blobs_.emplace_back(); break;
  }
  pushNullBit(true);
}

void Column::appendInteger(qint64 value)
{
  integers_.push_back(value);
  pushNullBit(false);
}

void Column::appendReal(double value)
{
  reals_.push_back(value);
  pushNullBit(false);
}

bool Column::ownsText(QStringView value) const
{
  const std::less<const char16_t*> before;
  return !before(value.utf16(), characters_.data()) &&
         before(value.utf16(), characters_.data() + characters_.size());
}

void Column::appendText(QStringView value)
{
  if (ownsText(value)) {
    appendText(value.toString());
    return;
  }
  checkArena(characters_.size(), size_t(value.size()));
  spans_.push_back({value.isEmpty() ? 0 : quint32(characters_.size()), quint32(value.size())});
  const char16_t* start = value.utf16();
  characters_.insert(characters_.end(), start, start + value.size());
  pushNullBit(false);
}

void Column::appendUtf8(std::string_view value)
{
  appendText(QString::fromUtf8(value.data(), qsizetype(value.size())));
}

void Column::appendBlob(const QByteArray& value)
{
  blobs_.push_back(value);
  pushNullBit(false);
}

void Column::appendFrom(const Column& other, qsizetype row)
{
  if (other.isNull(row)) {
    appendNull();
    return;
  }
  switch (kind_) {
    case StorageKind::Integer: appendInteger(other.integerAt(row)); break;
    case StorageKind::Real: appendReal(other.realAt(row)); break;
    case StorageKind::Text: appendText(other.textAt(row)); break;
    case StorageKind::Blob: appendBlob(other.blobAt(row)); break;
  }
}

void Column::appendAll(const Column& other)
{
  Q_ASSERT(kind_ == other.kind_ && this != &other);
  if (kind_ == StorageKind::Text) {
    checkArena(characters_.size(), other.characters_.size());
    const quint32 base = quint32(characters_.size());
    characters_.insert(characters_.end(), other.characters_.begin(), other.characters_.end());
    const size_t first = spans_.size();
    spans_.insert(spans_.end(), other.spans_.begin(), other.spans_.end());
    for (size_t i = first; i < spans_.size(); ++i)
      spans_[i].start = spans_[i].length ? spans_[i].start + base : 0;
  }
  integers_.insert(integers_.end(), other.integers_.begin(), other.integers_.end());
  reals_.insert(reals_.end(), other.reals_.begin(), other.reals_.end());
  blobs_.insert(blobs_.end(), other.blobs_.begin(), other.blobs_.end());

  const int shift = int(size_ & 63);
  if (shift == 0) {
    nulls_.insert(nulls_.end(), other.nulls_.begin(), other.nulls_.end());
  } else {
    for (quint64 word : other.nulls_) {
      nulls_.back() |= word << shift;
      nulls_.push_back(word >> (64 - shift));
    }
  }
  size_ += other.size_;
  nulls_.resize(nullWords(size_));
}

void Column::setNull(qsizetype row)
{
  switch (kind_) {
    case StorageKind::Integer: integers_[size_t(row)] = 0; break;
    case StorageKind::Real: reals_[size_t(row)] = 0; break;
    case StorageKind::Blob: blobs_[size_t(row)].clear(); break;
    case StorageKind::Text: setText(row, {}); break;
  }
  nulls_[size_t(row) >> 6] |= quint64(1) << (row & 63);
}

void Column::setInteger(qsizetype row, qint64 value)
{
  integers_[size_t(row)] = value;
  nulls_[size_t(row) >> 6] &= ~(quint64(1) << (row & 63));
}

void Column::setReal(qsizetype row, double value)
{
  reals_[size_t(row)] = value;
  nulls_[size_t(row) >> 6] &= ~(quint64(1) << (row & 63));
}

void Column::setText(qsizetype row, QStringView value)
{
  if (ownsText(value)) {
    setText(row, value.toString());
    return;
  }
  TextSpan& span = spans_[size_t(row)];
  if (textAt(row) != value) {
    if (size_ == 1)  // the buffer of a record being edited must not grow with every key
      characters_.clear();
    if (characters_.size() + size_t(value.size()) > largestArena)
      compact();
    checkArena(characters_.size(), size_t(value.size()));
    const char16_t* start = value.utf16();
    span = {value.isEmpty() ? 0 : quint32(characters_.size()), quint32(value.size())};
    characters_.insert(characters_.end(), start, start + value.size());
  }
  nulls_[size_t(row) >> 6] &= ~(quint64(1) << (row & 63));
}

void Column::setBlob(qsizetype row, const QByteArray& value)
{
  blobs_[size_t(row)] = value;
  nulls_[size_t(row) >> 6] &= ~(quint64(1) << (row & 63));
}

void Column::copyRow(qsizetype row, const Column& other, qsizetype otherRow)
{
  if (other.isNull(otherRow)) {
    setNull(row);
    return;
  }
  switch (kind_) {
    case StorageKind::Integer: setInteger(row, other.integerAt(otherRow)); break;
    case StorageKind::Real: setReal(row, other.realAt(otherRow)); break;
    case StorageKind::Text: setText(row, other.textAt(otherRow)); break;
    case StorageKind::Blob: setBlob(row, other.blobAt(otherRow)); break;
  }
}

void Column::truncate(qsizetype rows)
{
  if (rows >= size_)
    return;
  size_ = rows;
  const auto shrink = [rows](auto& values) {
    if (values.size() > size_t(rows))
      values.resize(size_t(rows));
  };
  shrink(integers_);
  shrink(reals_);
  shrink(spans_);
  shrink(blobs_);
  clearBitsFrom(nulls_, rows);
  if (rows == 0)
    characters_.clear();
}

void Column::clear()
{
  *this = Column(kind_);
}

void Column::compact()
{
  if (kind_ != StorageKind::Text)
    return;
  std::vector<char16_t> kept;
  size_t needed = 0;
  for (const TextSpan& span : spans_)
    needed += span.length;
  kept.reserve(std::min(needed, characters_.size()));
  for (TextSpan& span : spans_) {
    checkArena(kept.size(), span.length);
    const quint32 start = span.length ? quint32(kept.size()) : 0;
    kept.insert(kept.end(), characters_.begin() + span.start, characters_.begin() + span.start + span.length);
    span.start = start;
  }
  characters_ = std::move(kept);
}

qsizetype Column::bytes() const
{
  size_t total = integers_.capacity() * sizeof(qint64) + reals_.capacity() * sizeof(double) +
                 spans_.capacity() * sizeof(TextSpan) + characters_.capacity() * sizeof(char16_t) +
                 blobs_.capacity() * sizeof(QByteArray) + nulls_.capacity() * sizeof(quint64);
  for (const QByteArray& blob : blobs_)
    total += size_t(blob.size());
  return qsizetype(total);
}

bool Column::adoptIntegers(std::vector<qint64> values, std::vector<quint64> nulls)
{
  if (kind_ != StorageKind::Integer || nulls.size() != nullWords(qsizetype(values.size())))
    return false;
  integers_ = std::move(values);
  nulls_ = std::move(nulls);
  size_ = qsizetype(integers_.size());
  clearBitsFrom(nulls_, size_);
  for (qsizetype row = 0; row < size_; ++row)
    if (isNull(row))
      integers_[size_t(row)] = 0;
  return true;
}

bool Column::adoptReals(std::vector<double> values, std::vector<quint64> nulls)
{
  if (kind_ != StorageKind::Real || nulls.size() != nullWords(qsizetype(values.size())))
    return false;
  reals_ = std::move(values);
  nulls_ = std::move(nulls);
  size_ = qsizetype(reals_.size());
  clearBitsFrom(nulls_, size_);
  for (qsizetype row = 0; row < size_; ++row)
    if (isNull(row))
      reals_[size_t(row)] = 0;
  return true;
}

bool Column::adoptText(std::vector<char16_t> characters, std::vector<TextSpan> spans, std::vector<quint64> nulls)
{
  if (kind_ != StorageKind::Text || nulls.size() != nullWords(qsizetype(spans.size())) ||
      characters.size() > largestArena)
    return false;
  for (const TextSpan& span : spans)
    if (span.start > characters.size() || span.length > characters.size() - span.start)
      return false;
  characters_ = std::move(characters);
  spans_ = std::move(spans);
  nulls_ = std::move(nulls);
  size_ = qsizetype(spans_.size());
  clearBitsFrom(nulls_, size_);
  for (qsizetype row = 0; row < size_; ++row)
    if (isNull(row))
      spans_[size_t(row)] = {0, 0};
  return true;
}

bool Column::adoptBlobs(std::vector<QByteArray> values, std::vector<quint64> nulls)
{
  if (kind_ != StorageKind::Blob || nulls.size() != nullWords(qsizetype(values.size())))
    return false;
  blobs_ = std::move(values);
  nulls_ = std::move(nulls);
  size_ = qsizetype(blobs_.size());
  clearBitsFrom(nulls_, size_);
  for (qsizetype row = 0; row < size_; ++row)
    if (isNull(row))
      blobs_[size_t(row)].clear();
  return true;
}

}  // namespace kalvor
