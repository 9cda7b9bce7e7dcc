#include "import/text_columns.h"

#include <algorithm>
#include <cstring>

namespace kalvor {
namespace {

bool continuesCharacter(char byte)
{
  constexpr unsigned topBits = 0xC0, continuation = 0x80;
  return (static_cast<unsigned char>(byte) & topBits) == continuation;
}

QString separatorOf(TDelimiter kind, const QString& separator)
{
  switch (kind) {
    case dtTab: return QStringLiteral("\t");
    case dtComma: return QStringLiteral(",");
    case dtSemiColon: return QStringLiteral(";");
    case dtChar: return separator;
    case dtFixedLen: break;
  }
  return {};
}

}  // namespace

void TextColumns::setDelimiter(TDelimiter kind, const QString& separator, TextEncoding encoding)
{
  const QString text = separatorOf(kind, separator);
  fixedWidth_ = kind == dtFixedLen;
  encoding_ = encoding;
  separator_ = encoding == TextEncoding::Utf8 ? text.toUtf8() : toWindows1251(text);
}

void TextColumns::setRow(QByteArrayView row)
{
  row_ = row;
  starts_.clear();
  starts_.push_back(0);
  knownCharacter_ = knownByte_ = 0;
}

QByteArrayView TextColumns::column(int position)
{
  if (fixedWidth_)
    return ranged(position);
  return position < 1 ? QByteArrayView() : separated(position);
}

QString TextColumns::text(int position)
{
  const QByteArrayView bytes = column(position);
  return encoding_ == TextEncoding::Utf8 ? QString::fromUtf8(bytes) : fromWindows1251(bytes);
}

// The line's end where no separator follows. Columns are short, so a plain loop finds their ends soonest.
qsizetype TextColumns::separatorFrom(qsizetype offset) const
{
  if (separator_.size() == 1) {
    const char wanted = separator_.front();
    const char* const bytes = row_.data();
    while (offset < row_.size() && bytes[offset] != wanted)
      ++offset;
    return std::min(offset, row_.size());
  }
  const qsizetype found = row_.indexOf(separator_, offset);
  return found < 0 ? row_.size() : found;
}

QByteArrayView TextColumns::separated(int position)
{
  const auto index = static_cast<size_t>(position);
  if (separator_.isEmpty())
    return position == 1 ? row_ : QByteArrayView();
  while (starts_.size() <= index && starts_.back() <= row_.size())
    starts_.push_back(separatorFrom(starts_.back()) + separator_.size());
  if (starts_.size() <= index)
    return {};
  const qsizetype start = starts_[index - 1];
  return QByteArrayView(row_.data() + start, starts_[index] - separator_.size() - start);
}

QByteArrayView TextColumns::ranged(int position)
{
  if (position < 0 || size_t(position) >= ranges_.size())
    return {};
  const Range range = ranges_[size_t(position)];
  const qsizetype length = qsizetype(range.to) - range.from;
  if (length <= 0)
    return {};
  const qsizetype from = std::max<qsizetype>(range.from, 1) - 1;
  const qsizetype start = byteOfCharacter(from);
  return QByteArrayView(row_.data() + start, byteOfCharacter(from + length) - start);
}

qsizetype TextColumns::byteOfCharacter(qsizetype character)
{
  constexpr quint64 topBits = 0x8080808080808080;
  constexpr qsizetype block = sizeof(quint64);
  if (encoding_ != TextEncoding::Utf8)
    return std::min(character, row_.size());
  if (character < knownCharacter_)
    knownCharacter_ = knownByte_ = 0;
  while (knownCharacter_ < character && knownByte_ < row_.size()) {
    quint64 bytes = topBits;
    if (character - knownCharacter_ >= block && row_.size() - knownByte_ >= block)
      std::memcpy(&bytes, row_.data() + knownByte_, sizeof bytes);
    if ((bytes & topBits) == 0) {
      knownByte_ += block;
      knownCharacter_ += block;
      continue;
    }
    ++knownByte_;
    while (knownByte_ < row_.size() && continuesCharacter(row_[knownByte_]))
      ++knownByte_;
    ++knownCharacter_;
  }
  return knownByte_;
}

}  // namespace kalvor
