#include "data/row_order.h"

#include <algorithm>
#include <array>
#include <bit>
#include <limits>
#include <utility>

#include "data/collation.h"
#include "data/data_error.h"

namespace kalvor {

namespace {

quint64 orderedInteger(qint64 value)
{
  return quint64(value) ^ (quint64(1) << 63);
}

quint64 orderedReal(double value)
{
  if (value == 0)
    return quint64(1) << 63;  // both zeros
  const quint64 bits = std::bit_cast<quint64>(value);
  return bits >> 63 ? ~bits : bits | (quint64(1) << 63);
}

template <typename T>
int order(T a, T b)
{
  return a < b ? -1 : a > b ? 1 : 0;
}

// Numbers the different texts of a column: an open hash table over the column's own characters.
class DistinctTexts {
 public:
  explicit DistinctTexts(const Column& column) : column_(column), slots_(1024, noRow) {}

  quint32 numberOf(qsizetype row)
  {
    const QStringView text = column_.textAt(row);
    size_t slot = hashOf(text) & (slots_.size() - 1);
    while (slots_[slot] != noRow) {
      if (column_.textAt(firstRows_[slots_[slot]]) == text)
        return slots_[slot];
      slot = (slot + 1) & (slots_.size() - 1);
    }
    const quint32 number = quint32(firstRows_.size());
    slots_[slot] = number;
    firstRows_.push_back(RowId(row));
    if (firstRows_.size() * 2 > slots_.size())
      grow();
    return number;
  }

  const std::vector<RowId>& firstRows() const { return firstRows_; }

 private:
  static size_t hashOf(QStringView text)
  {
    quint64 hash = 0x9E3779B97F4A7C15ULL + quint64(text.size());
    for (QChar c : text)
      hash = (hash ^ c.unicode()) * 0x100000001B3ULL;
    return size_t(hash ^ hash >> 29);
  }

  void grow()
  {
    slots_.assign(slots_.size() * 4, noRow);
    for (quint32 number = 0; number < firstRows_.size(); ++number) {
      size_t slot = hashOf(column_.textAt(firstRows_[number])) & (slots_.size() - 1);
      while (slots_[slot] != noRow)
        slot = (slot + 1) & (slots_.size() - 1);
      slots_[slot] = number;
    }
  }

  const Column& column_;
  std::vector<quint32> slots_;
  std::vector<RowId> firstRows_;
};

struct KeyedPlace {
  quint64 key;
  quint32 place;
};

// Least significant byte first, so that equal keys stay in their order; bytes that all keys share are skipped.
void radixSort(std::vector<KeyedPlace>& entries)
{
  constexpr size_t bytes = sizeof(quint64);
  std::array<std::array<quint32, 256>, bytes> counts{};
  for (const KeyedPlace& entry : entries)
    for (size_t byte = 0; byte < bytes; ++byte)
      ++counts[byte][entry.key >> (8 * byte) & 0xFF];
  std::vector<KeyedPlace> other(entries.size());
  for (size_t byte = 0; byte < bytes; ++byte) {
    std::array<quint32, 256>& starts = counts[byte];
    if (std::ranges::find(starts, quint32(entries.size())) != starts.end())
      continue;
    quint32 next = 0;
    for (quint32& start : starts)
      next += std::exchange(start, next);
    for (const KeyedPlace& entry : entries)
      other[starts[entry.key >> (8 * byte) & 0xFF]++] = entry;
    entries.swap(other);
  }
}

// The weights of texts, one after the other, so that sorting compares eight of them at a time.
class TextWeights {
 public:
  void append(QStringView text)
  {
    appendWeights(text, weights_);
    if (weights_.size() > std::numeric_limits<quint32>::max())
      throw DataError(QStringLiteral("Твърде много текст за подреждане!"));
    ends_.push_back(quint32(weights_.size()));
  }

  quint32 count() const { return quint32(ends_.size()); }

  // Rank of every text, from 1; texts that are equal in order share a rank.
  std::vector<quint64> ranks()
  {
    entries_.resize(count());
    for (quint32 i = 0; i < count(); ++i)
      entries_[i].place = i;
    differs_.assign(count(), 0);
    runs_.push_back({0, count(), 0});
    while (!runs_.empty()) {
      const Run run = runs_.back();
      runs_.pop_back();
      sortRun(run);
    }
    std::vector<quint64> ranks(count());
    quint64 rank = 1;
    for (size_t i = 0; i < entries_.size(); ++i) {
      rank += differs_[i];
      ranks[entries_[i].place] = rank;
    }
    return ranks;
  }

 private:
  // Texts that are equal in their first depth weights.
  struct Run {
    quint32 first;
    quint32 last;
    quint32 depth;
  };

  void sortRun(Run run)
  {
    const auto first = entries_.begin() + run.first;
    const auto last = entries_.begin() + run.last;
    for (auto entry = first; entry != last; ++entry) {
      const quint32 start = (entry->place == 0 ? 0 : ends_[entry->place - 1]) + run.depth;
      const quint32 end = ends_[entry->place];
      entry->key = start < end ? weightPrefix(weights_.data() + start, end - start) : 0;
    }
    std::sort(first, last, [](const KeyedPlace& a, const KeyedPlace& b) { return a.key < b.key; });
    for (auto from = first; from != last;) {
      const auto to = std::find_if(from, last, [from](const KeyedPlace& e) { return e.key != from->key; });
      differs_[size_t(from - entries_.begin())] |= quint8(from != first);
      // No weight is 0: a key with a 0 at its end is the end of its texts.
      if (to - from > 1 && (from->key & 0xFF) != 0)
        runs_.push_back({quint32(from - entries_.begin()), quint32(to - entries_.begin()), run.depth + 8});
      from = to;
    }
  }

  std::vector<quint8> weights_;
  std::vector<quint32> ends_;
  std::vector<KeyedPlace> entries_;
  std::vector<quint8> differs_;  // from the entry before
  std::vector<Run> runs_;
};

// Texts that hardly ever repeat are not worth looking for.
bool repeatsOften(const Column& column, const std::vector<RowId>& rows)
{
  constexpr size_t sample = 4096;
  if (rows.size() <= sample)
    return false;
  DistinctTexts distinct(column);
  for (size_t i = 0; i < sample; ++i)
    distinct.numberOf(rows[i * (rows.size() / sample)]);
  return distinct.firstRows().size() < sample * 3 / 4;
}

std::vector<quint64> textKeys(const Column& column, const std::vector<RowId>& rows)
{
  TextWeights weights;
  std::vector<quint64> keys;
  keys.reserve(rows.size());
  if (repeatsOften(column, rows)) {
    DistinctTexts distinct(column);
    for (RowId row : rows)
      keys.push_back(column.isNull(row) ? 0 : distinct.numberOf(row) + 1);
    for (RowId row : distinct.firstRows())
      weights.append(column.textAt(row));
  } else {
    for (RowId row : rows) {
      if (!column.isNull(row))
        weights.append(column.textAt(row));
      keys.push_back(column.isNull(row) ? 0 : weights.count());
    }
  }
  const std::vector<quint64> ranks = weights.ranks();
  for (quint64& key : keys)
    key = key == 0 ? 0 : ranks[key - 1];
  return keys;
}

}  // namespace

int compareCells(const Column& a, qsizetype rowA, const Column& b, qsizetype rowB)
{
  const bool nullA = a.isNull(rowA);
  const bool nullB = b.isNull(rowB);
  if (nullA || nullB)
    return int(nullB) - int(nullA);
  switch (a.kind()) {
    case StorageKind::Integer: return order(a.integerAt(rowA), b.integerAt(rowB));
    case StorageKind::Real: return order(orderedReal(a.realAt(rowA)), orderedReal(b.realAt(rowB)));
    case StorageKind::Text: return compareText(a.textAt(rowA), b.textAt(rowB));
    case StorageKind::Blob: return order(a.blobAt(rowA), b.blobAt(rowB));
  }
  return 0;
}

int RowOrder::compare(RecordRef a, RecordRef b, size_t count) const
{
  for (size_t i = 0; i < count; ++i) {
    const size_t column = size_t(fields_[i].column);
    const int result = compareCells(a.records->columns[column], a.row, b.records->columns[column], b.row);
    if (result != 0)
      return fields_[i].descending ? -result : result;
  }
  return 0;
}

std::vector<quint64> sortKeys(const Column& column, const std::vector<RowId>& rows)
{
  if (column.kind() == StorageKind::Text)
    return textKeys(column, rows);
  std::vector<quint64> keys;
  keys.reserve(rows.size());
  for (RowId row : rows) {
    const bool real = column.kind() == StorageKind::Real;
    const quint64 value = real ? orderedReal(column.realAt(row)) : orderedInteger(column.integerAt(row));
    keys.push_back(column.isNull(row) ? 0 : value);
  }
  return keys;
}

void RowOrder::sort(const RecordSet& records, std::vector<RowId>& rows) const
{
  const bool blobs = std::ranges::any_of(fields_, [&](const IndexField& field) {
    return records.columns[size_t(field.column)].kind() == StorageKind::Blob;
  });
  if (blobs) {
    std::ranges::stable_sort(rows, [&](RowId a, RowId b) {
      return compare({&records, qsizetype(a)}, {&records, qsizetype(b)}) < 0;
    });
    return;
  }
  // From the last field to the first: every sort keeps what the ones before it did among its equals.
  std::vector<KeyedPlace> entries(rows.size());
  for (quint32 place = 0; place < rows.size(); ++place)
    entries[place].place = place;
  for (auto field = fields_.crbegin(); field != fields_.crend(); ++field) {
    const std::vector<quint64> keys = sortKeys(records.columns[size_t(field->column)], rows);
    for (KeyedPlace& entry : entries)
      entry.key = field->descending ? ~keys[entry.place] : keys[entry.place];
    radixSort(entries);
  }
  std::vector<RowId> sorted;
  sorted.reserve(rows.size());
  for (const KeyedPlace& entry : entries)
    sorted.push_back(rows[entry.place]);
  rows = std::move(sorted);
}

}  // namespace kalvor
