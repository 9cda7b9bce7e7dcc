#include "rpc/frame_reader.h"

#include <QtEndian>
#include <cstring>

namespace kalvor {
namespace {

constexpr qsizetype lengthBytes = 4;
constexpr qsizetype keptCapacity = 256 * 1024;  // a buffer that one big frame left behind is given back

}  // namespace

char* FrameReader::writeBuffer(qsizetype size)
{
  if (start_ == filled_) {
    start_ = filled_ = 0;
    if (buffer_.size() > keptCapacity && size <= keptCapacity)
      buffer_ = QByteArray();
  } else if (start_ > 0 && filled_ + size > buffer_.size()) {
    std::memmove(buffer_.data(), buffer_.constData() + start_, size_t(filled_ - start_));
    filled_ -= start_;
    start_ = 0;
  }
  if (filled_ + size > buffer_.size())
    buffer_.resize(qMax(filled_ + size, qMin(buffer_.size() * 2, filled_ + size + (qsizetype(16) << 20))));
  return buffer_.data() + filled_;
}

void FrameReader::append(QByteArrayView bytes)
{
  std::memcpy(writeBuffer(bytes.size()), bytes.data(), size_t(bytes.size()));
  bytesWritten(bytes.size());
}

std::optional<quint32> FrameReader::announced() const
{
  if (buffered() < lengthBytes)
    return std::nullopt;
  return qFromBigEndian<quint32>(buffer_.constData() + start_);
}

qsizetype FrameReader::missing() const
{
  const auto length = announced();
  return length && !broken_ ? qMax(qsizetype(0), qsizetype(*length) + lengthBytes - buffered()) : 0;
}

std::optional<QByteArrayView> FrameReader::next()
{
  if (broken_)
    return std::nullopt;
  const auto length = announced();
  if (!length)
    return std::nullopt;
  if (*length == 0 || qint64(*length) > maxBytes_) {
    broken_ = true;
    return std::nullopt;
  }
  if (buffered() < lengthBytes + qsizetype(*length))
    return std::nullopt;
  const QByteArrayView item(buffer_.constData() + start_ + lengthBytes, qsizetype(*length));
  start_ += lengthBytes + qsizetype(*length);
  return item;
}

}  // namespace kalvor
