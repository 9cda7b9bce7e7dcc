#include "rpc/utf8_text.h"

#include <cstring>

namespace kalvor::utf8 {
namespace {

// Eight bytes or four units at a time, lowest address in the lowest bits.
static_assert(Q_BYTE_ORDER == Q_LITTLE_ENDIAN, "words are taken apart from the low end");

quint64 loadWord(const void* from)
{
  quint64 word;
  std::memcpy(&word, from, sizeof word);
  return word;
}

void storeWord(quint64 word, void* to)
{
  std::memcpy(to, &word, sizeof word);
}

constexpr quint64 lanes(quint16 value)
{
  return quint64(value) * 0x0001000100010001ull;
}

// Every unit of four below 0x800 is 0x80 or above.
constexpr bool needsTwoBytes(quint64 units)
{
  return (((units & lanes(0x0780)) + lanes(0x7f80)) & lanes(0x8000)) == lanes(0x8000);
}

constexpr bool isContinuation(char byte) { return (quint8(byte) & 0xc0) == 0x80; }
constexpr bool isHighSurrogate(char32_t unit) { return (unit & 0xfc00) == 0xd800; }
constexpr bool isLowSurrogate(char32_t unit) { return (unit & 0xfc00) == 0xdc00; }

char* writeWide(char32_t c, char* out)
{
  if (c >= 0x10000) {
    *out++ = char(0xf0 | (c >> 18));
    *out++ = char(0x80 | ((c >> 12) & 0x3f));
  } else {
    *out++ = char(0xe0 | (c >> 12));
  }
  *out++ = char(0x80 | ((c >> 6) & 0x3f));
  *out++ = char(0x80 | (c & 0x3f));
  return out;
}

// A sequence of three or four bytes; 0 = invalid.
int readWide(const char* p, const char* end, char32_t& c)
{
  const quint8 lead = quint8(*p);
  if (lead >= 0xe0 && lead < 0xf0) {
    if (end - p < 3 || !isContinuation(p[1]) || !isContinuation(p[2]))
      return 0;
    c = char32_t(lead & 0x0f) << 12 | char32_t(p[1] & 0x3f) << 6 | char32_t(p[2] & 0x3f);
    return c >= 0x800 && (c < 0xd800 || c > 0xdfff) ? 3 : 0;
  }
  if (lead >= 0xf0 && lead < 0xf5) {
    if (end - p < 4 || !isContinuation(p[1]) || !isContinuation(p[2]) || !isContinuation(p[3]))
      return 0;
    c = char32_t(lead & 0x07) << 18 | char32_t(p[1] & 0x3f) << 12 | char32_t(p[2] & 0x3f) << 6 |
        char32_t(p[3] & 0x3f);
    return c >= 0x10000 && c <= 0x10ffff ? 4 : 0;
  }
  return 0;
}

}  // namespace

char* fromUtf16(const char16_t* text, qsizetype count, char* out)
{
  const char16_t* const end = text + count;
  while (text < end) {
    while (end - text >= 4) {
      const quint64 word = loadWord(text);
      if ((word & lanes(0xff80)) == 0) {
        const quint64 pairs = word | word >> 8;
        const quint32 bytes = quint32(pairs & 0xffff) | quint32((pairs >> 32) & 0xffff) << 16;
        std::memcpy(out, &bytes, 4);
        out += 4;
      } else if ((word & lanes(0xf800)) == 0 && needsTwoBytes(word)) {
        const quint64 leads = ((word >> 6) & lanes(0x001f)) | lanes(0x00c0);
        storeWord(leads | (word & lanes(0x003f)) << 8 | lanes(0x8000), out);
        out += 8;
      } else {
        break;
      }
      text += 4;
    }
    for (int i = 0; i < 4 && text < end; ++i) {
      const char32_t unit = *text++;
      if (unit < 0x80) {
        *out++ = char(unit);
      } else if (unit < 0x800) {
        *out++ = char(0xc0 | (unit >> 6));
        *out++ = char(0x80 | (unit & 0x3f));
      } else if (isHighSurrogate(unit) && text < end && isLowSurrogate(*text)) {
        out = writeWide(0x10000 + ((unit - 0xd800) << 10) + (char32_t(*text++) - 0xdc00), out);
      } else {
        out = writeWide(isHighSurrogate(unit) || isLowSurrogate(unit) ? 0xfffd : unit, out);
      }
    }
  }
  return out;
}

qsizetype utf16Units(const char* bytes, qsizetype size)
{
  qsizetype units = 0;
  for (qsizetype i = 0; i < size; ++i)
    units += qsizetype(!isContinuation(bytes[i])) + qsizetype(quint8(bytes[i]) >= 0xf0);
  return units;
}

bool toUtf16(const char* bytes, qsizetype size, char16_t*& place, const char16_t* limit)
{
  char16_t* out = place;  // writing through the reference would read it anew after each character
  const char* const end = bytes + size;
  while (bytes < end) {
    while (end - bytes >= 8) {
      const quint64 word = loadWord(bytes);
      if ((word & 0x8080808080808080ull) == 0) {
        if (limit - out < 8)
          return false;
        for (int i = 0; i < 8; ++i)
          out[i] = char16_t(quint8(bytes[i]));
        out += 8;
      } else if ((word & lanes(0xc0e0)) == lanes(0x80c0)) {
        const quint64 units = (word & lanes(0x001f)) << 6 | ((word >> 8) & lanes(0x003f));
        if (!needsTwoBytes(units) || limit - out < 4)
          return false;
        storeWord(units, out);
        out += 4;
      } else {
        break;
      }
      bytes += 8;
    }
    for (int i = 0; i < 8 && bytes < end; ++i) {
      const quint8 lead = quint8(*bytes);
      char32_t c;
      if (lead < 0x80) {
        c = lead;
        ++bytes;
      } else if (lead >= 0xc2 && lead < 0xe0 && end - bytes >= 2 && isContinuation(bytes[1])) {
        c = char32_t(lead & 0x1f) << 6 | char32_t(bytes[1] & 0x3f);
        bytes += 2;
      } else {
        const int used = readWide(bytes, end, c);
        if (used == 0)
          return false;
        bytes += used;
      }
      if (limit - out < (c >= 0x10000 ? 2 : 1))
        return false;
      if (c >= 0x10000) {
        *out++ = char16_t(0xd800 + ((c - 0x10000) >> 10));
        *out++ = char16_t(0xdc00 + ((c - 0x10000) & 0x3ff));
      } else {
        *out++ = char16_t(c);
      }
    }
  }
  place = out;
  return true;
}

}  // namespace kalvor::utf8
