#include "platform/biff_record_reader.h"

#include <QtEndian>
#include <algorithm>
#include <bit>

namespace kalvor {
namespace {

constexpr quint16 continueRecord = 0x003C;
constexpr qsizetype recordHeaderBytes = 4;

enum TextFlag : quint8 { wideText = 0x01, textWithPhonetics = 0x04, textWithRuns = 0x08 };

}  // namespace

bool BiffRecord::hasMore()
{
  while (piece_ < pieces_.size() && offset_ == pieces_[piece_].size()) {
    ++piece_;
    offset_ = 0;
  }
  return piece_ < pieces_.size();
}

quint8 BiffRecord::byte()
{
  if (!hasMore()) {
    whole_ = false;
    return 0;
  }
  return quint8(pieces_[piece_][offset_++]);
}

double BiffRecord::real()
{
  const quint64 low = doubleWord();
  return std::bit_cast<double>(low | quint64(doubleWord()) << 32);
}

void BiffRecord::skip(qsizetype bytes)
{
  while (bytes > 0 && hasMore()) {
    const qsizetype step = std::min(bytes, pieces_[piece_].size() - offset_);
    offset_ += step;
    bytes -= step;
  }
  whole_ = whole_ && bytes == 0;
}

QString BiffRecord::characters(qsizetype count, bool wide)
{
  QString text;
  while (count > 0) {
    if (piece_ < pieces_.size() && offset_ == pieces_[piece_].size()) {
      // A record that continues a text says again how wide its characters are.
      if (!hasMore())
        break;
      wide = byte() & wideText;
    }
    if (piece_ >= pieces_.size())
      break;
    const QByteArrayView rest = pieces_[piece_].sliced(offset_);
    const qsizetype width = wide ? 2 : 1;
    const qsizetype step = std::min(count, rest.size() / width);
    for (qsizetype i = 0; i < step; ++i)
      text += wide ? QChar(qFromLittleEndian<quint16>(rest.data() + 2 * i)) : QChar(quint8(rest[i]));
    offset_ += step * width;
    count -= step;
    if (step == 0 && offset_ < pieces_[piece_].size())
      offset_ = pieces_[piece_].size();  // half a character
  }
  whole_ = whole_ && count == 0;
  return text;
}

QString BiffRecord::unicodeText(int lengthBytes)
{
  constexpr qsizetype runBytes = 4;
  const qsizetype count = lengthBytes == 1 ? byte() : word();
  const quint8 flags = byte();
  const qsizetype runs = flags & textWithRuns ? word() : 0;
  const qsizetype phonetics = flags & textWithPhonetics ? doubleWord() : 0;
  const QString text = characters(count, flags & wideText);
  skip(runs * runBytes + phonetics);
  return text;
}

QByteArray BiffRecord::bytesText(int lengthBytes)
{
  const qsizetype count = lengthBytes == 1 ? byte() : word();
  QByteArray text;
  for (qsizetype i = 0; i < count && hasMore(); ++i)
    text += char(byte());
  whole_ = whole_ && text.size() == count;
  return text;
}

bool BiffStream::header(quint16& type, QByteArrayView& data) const
{
  if (offset_ < 0 || offset_ > stream_.size() - recordHeaderBytes)
    return false;
  type = qFromLittleEndian<quint16>(stream_.data() + offset_);
  const qsizetype size = qFromLittleEndian<quint16>(stream_.data() + offset_ + 2);
  if (size > stream_.size() - offset_ - recordHeaderBytes)
    return false;
  data = stream_.sliced(offset_ + recordHeaderBytes, size);
  return true;
}

bool BiffStream::next(BiffRecord& record)
{
  record = BiffRecord();
  quint16 type = 0;
  QByteArrayView data;
  if (!header(record.type, data))
    return false;
  do {
    record.addPiece(data);
    offset_ += recordHeaderBytes + data.size();
  } while (header(type, data) && type == continueRecord);
  return true;
}

}  // namespace kalvor
