#include "rpc/cbor_reader.h"

#include <QUtf8StringView>
#include <QtEndian>
#include <bit>
#include <cmath>
#include <limits>

namespace kalvor::cbor {
namespace {

// RFC 8949, appendix D.
double realFromHalf(quint16 bits)
{
  const int exponent = (bits >> 10) & 0x1f;
  const int mantissa = bits & 0x3ff;
  double value;
  if (exponent == 0)
    value = std::ldexp(mantissa, -24);
  else if (exponent != 31)
    value = std::ldexp(mantissa + 1024, exponent - 25);
  else
    value = mantissa == 0 ? std::numeric_limits<double>::infinity() : std::numeric_limits<double>::quiet_NaN();
  return bits & 0x8000 ? -value : value;
}

}  // namespace

bool Reader::fail(const char* reason)
{
  if (!reason_)
    reason_ = reason;
  return false;
}

bool Reader::head(Head& out)
{
  if (!ok())
    return false;
  if (next_ == end_)
    return fail("truncated");
  const quint8 first = quint8(*next_++);
  out.major = Major(first >> 5);
  out.info = first & 0x1f;
  if (out.info < 24) {
    out.value = out.info;
  } else if (out.info > 27) {
    return fail(out.info == 31 ? "indefinite length" : "reserved additional information");
  } else {
    const int size = 1 << (out.info - 24);
    if (left() < size)
      return fail("truncated");
    switch (size) {
      case 1: out.value = quint8(*next_); break;
      case 2: out.value = qFromBigEndian<quint16>(next_); break;
      case 4: out.value = qFromBigEndian<quint32>(next_); break;
      default: out.value = qFromBigEndian<quint64>(next_); break;
    }
    next_ += size;
  }
  if (out.major >= Bytes && out.major <= Map && out.value > quint64(left()))
    return fail("length beyond the frame");
  return true;
}

bool Reader::expect(Major major, quint64& value, const char* what)
{
  Head h;
  if (!head(h))
    return false;
  if (h.major != major)
    return fail(what);
  value = h.value;
  return true;
}

bool Reader::expectCount(Major major, quint64 count, const char* what)
{
  quint64 value;
  return expect(major, value, what) && (value == count || fail(what));
}

bool Reader::expectTag(quint64 number, const char* what)
{
  return expectCount(Tag, number, what);
}

bool Reader::expectKey(const char* ascii)
{
  QByteArrayView key;
  return utf8(key, "map key expected") && (key == QByteArrayView(ascii) || fail("unexpected map key"));
}

QByteArrayView Reader::take(quint64 size)
{
  if (!ok() || size > quint64(left())) {
    fail("truncated");
    return {};
  }
  const QByteArrayView taken(next_, qsizetype(size));
  next_ += size;
  return taken;
}

bool Reader::bytes(QByteArrayView& out, const char* what)
{
  quint64 size;
  if (!expect(Bytes, size, what))
    return false;
  out = take(size);
  return ok();
}

bool Reader::utf8(QByteArrayView& out, const char* what)
{
  quint64 size;
  if (!expect(Text, size, what))
    return false;
  out = take(size);
  return ok() && (QUtf8StringView(out.data(), out.size()).isValidUtf8() || fail("text is not UTF-8"));
}

bool Reader::skip(quint8 simple)
{
  if (!ok() || next_ == end_ || quint8(*next_) != simple)
    return false;
  ++next_;
  return true;
}

double realOf(const Head& head)
{
  switch (head.info) {
    case 25: return realFromHalf(quint16(head.value));
    case 26: return double(std::bit_cast<float>(quint32(head.value)));
    default: return std::bit_cast<double>(head.value);
  }
}

}  // namespace kalvor::cbor
