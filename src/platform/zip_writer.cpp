#include "platform/zip_writer.h"

#include <zlib.h>

#include <QIODevice>
#include <QtEndian>

namespace kalvor {

namespace {

constexpr size_t packedBlock = 1 << 16;
constexpr quint16 deflateVersion = 20;  // 2.0 of the format
constexpr quint16 deflated = 8;
constexpr quint16 midnight = 0;
constexpr quint16 firstDay = 0x0021;  // 1980-01-01: equal contents give equal files
constexpr qint64 factsPlace = 14;     // of checksum and sizes in the head of a part
constexpr size_t mostZipParts = 0xFFFF;

template <class... Numbers>
void putNumbers(QByteArray& bytes, Numbers... numbers)
{
  const auto put = [&bytes](auto number) {
    const auto stored = qToLittleEndian(number);
    bytes.append(reinterpret_cast<const char*>(&stored), sizeof stored);
  };
  (put(numbers), ...);
}

}  // namespace

ZipWriter::ZipWriter(QIODevice& device) : device_(device), stream_(std::make_unique<z_stream>()), packed_(packedBlock)
{
  constexpr int rawWindow = -MAX_WBITS, mostMemory = MAX_MEM_LEVEL;
  if (deflateInit2(stream_.get(), Z_BEST_SPEED, Z_DEFLATED, rawWindow, mostMemory, Z_DEFAULT_STRATEGY) != Z_OK)
    fail(QStringLiteral("недостатъчна памет"));
}

ZipWriter::~ZipWriter() { deflateEnd(stream_.get()); }

bool ZipWriter::fail(const QString& reason)
{
  if (failure_.isEmpty())
    failure_ = reason;
  return false;
}

bool ZipWriter::put(const char* data, qsizetype size)
{
  if (!failure_.isEmpty())
    return false;
  if (device_.write(data, size) != size)
    return fail(device_.errorString());
  offset_ += quint64(size);
  return offset_ <= mostBytes || fail(QStringLiteral("размерът му надхвърля 4 GB"));
}

// Checksum, packed size, size: zeros while the part is written.
QByteArray ZipWriter::facts(const Part& part)
{
  QByteArray bytes;
  putNumbers(bytes, part.checksum, quint32(part.packedSize), quint32(part.size));
  return bytes;
}

bool ZipWriter::beginPart(const QByteArray& name)
{
  Part part;
  part.name = name;
  part.offset = offset_;
  QByteArray head("PK\x03\x04");
  putNumbers(head, deflateVersion, quint16(0), deflated, midnight, firstDay);
  head += facts(part);
  putNumbers(head, quint16(name.size()), quint16(0));
  parts_.push_back(std::move(part));
  deflateReset(stream_.get());
  return put(head + name);
}

bool ZipWriter::deflateInput(int flush)
{
  do {
    stream_->next_out = reinterpret_cast<Bytef*>(packed_.data());
    stream_->avail_out = uInt(packed_.size());
    deflate(stream_.get(), flush);
    const qsizetype got = qsizetype(packed_.size() - stream_->avail_out);
    parts_.back().packedSize += quint64(got);
    if (!put(packed_.data(), got))
      return false;
  } while (stream_->avail_out == 0);
  return true;
}

bool ZipWriter::write(const char* data, qsizetype size)
{
  Part& part = parts_.back();
  part.size += quint64(size);
  if (part.size > mostBytes)
    return fail(QStringLiteral("размерът му надхвърля 4 GB"));
  part.checksum = quint32(crc32_z(part.checksum, reinterpret_cast<const Bytef*>(data), size_t(size)));
  constexpr qsizetype mostAtOnce = 1 << 30;
  for (qsizetype done = 0; done < size;) {
    const qsizetype now = std::min(size - done, mostAtOnce);
    stream_->next_in = reinterpret_cast<Bytef*>(const_cast<char*>(data + done));
    stream_->avail_in = uInt(now);
    if (!deflateInput(Z_NO_FLUSH))
      return false;
    done += now;
  }
  return failure_.isEmpty();
}

bool ZipWriter::endPart()
{
  stream_->avail_in = 0;
  if (!deflateInput(Z_FINISH))
    return false;
  const QByteArray bytes = facts(parts_.back());
  const bool patched = device_.seek(qint64(parts_.back().offset) + factsPlace) &&
                       device_.write(bytes) == bytes.size() && device_.seek(qint64(offset_));
  return patched || fail(device_.errorString());
}

bool ZipWriter::addPart(const QByteArray& name, const QByteArray& content)
{
  return beginPart(name) && write(content.constData(), content.size()) && endPart();
}

bool ZipWriter::finish()
{
  if (parts_.size() > mostZipParts)
    return fail(QStringLiteral("частите му са твърде много"));
  const quint64 start = offset_;
  for (const Part& part : parts_) {
    QByteArray entry("PK\x01\x02");
    putNumbers(entry, deflateVersion, deflateVersion, quint16(0), deflated, midnight, firstDay);
    entry += facts(part);
    putNumbers(entry, quint16(part.name.size()), quint16(0), quint16(0), quint16(0), quint16(0), quint32(0),
               quint32(part.offset));
    if (!put(entry + part.name))
      return false;
  }
  const auto count = quint16(parts_.size());
  QByteArray end("PK\x05\x06");
  putNumbers(end, quint16(0), quint16(0), count, count, quint32(offset_ - start), quint32(start), quint16(0));
  return put(end);
}

}  // namespace kalvor
