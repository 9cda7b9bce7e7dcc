#include "platform/line_reader.h"

#include <QFileInfo>
#include <algorithm>
#include <array>
#include <cstring>

#include "data/data_error.h"

namespace kalvor {
namespace {

constexpr qsizetype lineChunk = 256 << 10;
constexpr QByteArrayView utf8Mark("\xEF\xBB\xBF");

bool isBlankByte(char byte) { return byte == ' ' || (byte >= '\t' && byte <= '\r'); }

}  // namespace

bool LineReader::open(const QString& fileName)
{
  // A pipe or a device has no beginning to go back to.
  if (!QFileInfo(fileName).isFile())
    return false;
  file_.setFileName(fileName);
  if (!file_.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
    return false;
  buffer_.resize(lineChunk);
  findEncoding();
  rewind();
  return !ended_;
}

void LineReader::findEncoding()
{
  const auto readNext = [this] { return file_.read(buffer_.data(), buffer_.size()); };
  file_.seek(0);
  qint64 size = readNext();
  if (size >= utf8Mark.size() && QByteArrayView(buffer_).first(utf8Mark.size()) == utf8Mark) {
    firstByte_ = utf8Mark.size();
    encoding_ = TextEncoding::Utf8;
    return;
  }
  Utf8Detector detector;
  while (size > 0 && detector.feed(QByteArrayView(buffer_).first(size)))
    size = readNext();
  encoding_ = detector.encoding();
}

void LineReader::rewind()
{
  bufferStart_ = firstByte_;
  filled_ = position_ = 0;
  scannedTo_ = -1;
  ended_ = !file_.seek(firstByte_);
}

// More of the file behind what is in the buffer. False at the file's end.
bool LineReader::fill()
{
  if (ended_)
    return false;
  if (position_ > 0) {
    std::memmove(buffer_.data(), buffer_.constData() + position_, size_t(filled_ - position_));
    bufferStart_ += position_;
    filled_ -= position_;
    position_ = 0;
  }
  if (filled_ == buffer_.size())
    buffer_.resize(buffer_.size() * 2);
  const qint64 size = file_.read(buffer_.data() + filled_, buffer_.size() - filled_);
  ended_ = size <= 0;
  if (size < 0)
    throw DataError(QStringLiteral("Грешка при четене на файл: ") + file_.errorString());
  filled_ += std::max<qint64>(size, 0);
  return size > 0;
}

LineReader::Result LineReader::read(QByteArrayView& line)
{
  qsizetype scanned = 0;
  const char* end = nullptr;
  for (;;) {
    const char* start = buffer_.constData() + position_;
    const qsizetype available = filled_ - position_;
    end = static_cast<const char*>(std::memchr(start + scanned, '\n', size_t(available - scanned)));
    if (end)
      break;
    scanned = available;
    if (scanned > longestLine) {
      passOverLine();
      return Result::TooLong;
    }
    if (!fill())
      break;
  }
  const char* start = buffer_.constData() + position_;
  if (!end && filled_ == position_)
    return Result::End;
  qsizetype length = end ? end - start : filled_ - position_;
  position_ += end ? length + 1 : length;
  if (length > 0 && start[length - 1] == '\r')
    --length;
  line = QByteArrayView(start, length);
  return length > longestLine ? Result::TooLong : Result::Line;
}

void LineReader::passOverLine()
{
  for (;;) {
    const char* start = buffer_.constData() + position_;
    const auto* end = static_cast<const char*>(std::memchr(start, '\n', size_t(filled_ - position_)));
    if (end) {
      position_ += end - start + 1;
      return;
    }
    position_ = filled_;
    if (!fill())
      return;
  }
}

qint64 LineReader::readAt(qint64 offset, char* target, qint64 size)
{
  const qint64 behindBuffer = bufferStart_ + filled_;
  const bool moved = file_.seek(offset);
  const qint64 got = moved ? file_.read(target, size) : -1;
  file_.seek(behindBuffer);
  if (got >= 0)
    return got;
  ended_ = true;
  position_ = filled_;
  throw DataError(QStringLiteral("Грешка при четене на файл: ") + file_.errorString());
}

bool LineReader::onlyBlanksLeft()
{
  if (position_ < filled_ && !isBlankByte(buffer_.constData()[position_]))
    return false;
  if (scannedTo_ < position())
    scanBlanks();
  return blankToEnd_;
}

void LineReader::scanBlanks()
{
  const char* const bufferEnd = buffer_.constData() + filled_;
  const char* const visible = std::find_if_not(buffer_.constData() + position_, bufferEnd, isBlankByte);
  scannedTo_ = position() + (visible - (buffer_.constData() + position_));
  blankToEnd_ = visible == bufferEnd && ended_;
  // What is not in the buffer yet is looked at without taking it in, however much it is.
  std::array<char, 4096> piece;
  for (bool goOn = visible == bufferEnd && !ended_; goOn;) {
    const qint64 size = readAt(scannedTo_, piece.data(), qint64(piece.size()));
    const qint64 blanks = std::find_if_not(piece.begin(), piece.begin() + size, isBlankByte) - piece.begin();
    scannedTo_ += blanks;
    blankToEnd_ = size == 0;
    goOn = size > 0 && blanks == size;
  }
}

}  // namespace kalvor
