#include "data/row_order.h"

#include <algorithm>
#include <bit>
#include <numeric>

#include "data/collation.h"

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

// Rank of every different text, from 1; texts that are equal in order share a rank.
std::vector<quint64> ranksOf(const Column& column, const std::vector<RowId>& texts)
{
  struct Entry {
    quint64 prefix;
    quint32 number;
  };
  std::vector<Entry> entries;
  entries.reserve(texts.size());
  for (quint32 i = 0; i < texts.size(); ++i)
    entries.push_back({collationPrefix(column.textAt(texts[i])), i});
  const auto compare = [&](const Entry& a, const Entry& b) {
    if (a.prefix != b.prefix)
      return a.prefix < b.prefix ? -1 : 1;
    return compareText(column.textAt(texts[a.number]), column.textAt(texts[b.number]));
  };
  std::ranges::sort(entries, [&](const Entry& a, const Entry& b) { return compare(a, b) < 0; });
  std::vector<quint64> ranks(texts.size());
  quint64 rank = 0;
  for (size_t i = 0; i < entries.size(); ++i) {
    if (i == 0 || compare(entries[i - 1], entries[i]) != 0)
      ++rank;
    ranks[entries[i].number] = rank;
  }
  return ranks;
}

std::vector<quint64> textKeys(const Column& column, const std::vector<RowId>& rows)
{
  DistinctTexts distinct(column);
  std::vector<quint64> keys;
  keys.reserve(rows.size());
  for (RowId row : rows)
    keys.push_back(column.isNull(row) ? 0 : distinct.numberOf(row) + 1);
  const std::vector<quint64> ranks = ranksOf(column, distinct.firstRows());
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
  struct Entry {
    quint64 key;
    quint32 place;
  };
  std::vector<std::vector<quint64>> further;
  std::vector<Entry> entries(rows.size());
  for (size_t i = 0; i < fields_.size(); ++i) {
    std::vector<quint64> keys = sortKeys(records.columns[size_t(fields_[i].column)], rows);
    if (fields_[i].descending)
      for (quint64& key : keys)
        key = ~key;
    if (i > 0)
      further.push_back(std::move(keys));
    else
      for (quint32 place = 0; place < rows.size(); ++place)
        entries[place] = {keys[place], place};
  }
  std::ranges::sort(entries, [&](const Entry& a, const Entry& b) {
    if (a.key != b.key)
      return a.key < b.key;
    for (const std::vector<quint64>& keys : further)
      if (keys[a.place] != keys[b.place])
        return keys[a.place] < keys[b.place];
    return a.place < b.place;
  });
  std::vector<RowId> sorted;
  sorted.reserve(rows.size());
  for (const Entry& entry : entries)
    sorted.push_back(rows[entry.place]);
  rows = std::move(sorted);
}

}  // namespace kalvor
