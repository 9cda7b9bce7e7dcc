#include "rpc/cbor_writer.h"

#include <QString>
#include <QtEndian>
#include <cstring>

namespace kalvor::cbor {

void Writer::head(Major major, quint64 value)
{
  const quint8 type = quint8(major << 5);
  char buffer[9];
  qsizetype size;
  if (value < 24) {
    put(quint8(type | value));
    return;
  }
  if (value <= 0xff) {
    buffer[0] = char(type | 24);
    buffer[1] = char(value);
    size = 2;
  } else if (value <= 0xffff) {
    buffer[0] = char(type | 25);
    qToBigEndian(quint16(value), buffer + 1);
    size = 3;
  } else if (value <= 0xffffffff) {
    buffer[0] = char(type | 26);
    qToBigEndian(quint32(value), buffer + 1);
    size = 5;
  } else {
    buffer[0] = char(type | 27);
    qToBigEndian(value, buffer + 1);
    size = 9;
  }
  out_.append(buffer, size);
}

void Writer::integer(qint64 value)
{
  if (value >= 0)
    head(Unsigned, quint64(value));
  else
    head(Negative, quint64(-1 - value));
}

void Writer::real(double value)
{
  quint64 bits;
  std::memcpy(&bits, &value, sizeof bits);
  char buffer[9];
  buffer[0] = char(0xfb);
  qToBigEndian(bits, buffer + 1);
  out_.append(buffer, sizeof buffer);
}

void Writer::text(QStringView value)
{
  const QByteArray utf8 = value.toUtf8();
  head(Text, quint64(utf8.size()));
  out_.append(utf8);
}

void Writer::key(const char* ascii)
{
  const qsizetype size = qsizetype(std::strlen(ascii));
  head(Text, quint64(size));
  out_.append(ascii, size);
}

void Writer::bytes(QByteArrayView value)
{
  head(Bytes, quint64(value.size()));
  out_.append(value);
}

qsizetype Writer::room(qsizetype size)
{
  const qsizetype position = out_.size();
  out_.resize(position + size);
  return position;
}

qsizetype Writer::beginBytes(qsizetype atMost)
{
  const qsizetype position = room(5 + atMost) + 5;
  return position;
}

void Writer::endBytes(qsizetype position, qsizetype size)
{
  char* head = out_.data() + position - 5;
  head[0] = char((Bytes << 5) | 26);
  qToBigEndian(quint32(size), head + 1);
  out_.resize(position + size);
}

}  // namespace kalvor::cbor
