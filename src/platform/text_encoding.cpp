#include "platform/text_encoding.h"

#include <QStringConverter>
#include <array>
#include <cstring>

namespace kalvor {
namespace {

struct CodePage1251 {
  std::array<char16_t, 256> character{};
  std::array<quint8, 0x10000> byte{};  // 0 = the character is missing

  CodePage1251()
  {
    QByteArray all(256, '\0');
    for (int i = 0; i < 256; ++i)
      all[i] = char(i);
    QStringDecoder decoder("windows-1251");
    Q_ASSERT_X(decoder.isValid(), "CodePage1251", "the toolkit lacks windows-1251");
    const QString text = decoder(all);
    for (int i = 0; i < 256 && i < text.size(); ++i) {
      character[size_t(i)] = text.at(i).unicode();
      byte[text.at(i).unicode()] = quint8(i);
    }
  }
};

const CodePage1251& codePage1251()
{
  static const CodePage1251 page;
  return page;
}

const char* behindAscii(const char* at, const char* end)
{
  constexpr quint64 topBits = 0x8080808080808080;
  quint64 block = 0;
  while (end - at >= qsizetype(sizeof block)) {
    std::memcpy(&block, at, sizeof block);
    if (block & topBits)
      break;
    at += sizeof block;
  }
  while (at != end && static_cast<unsigned char>(*at) < 0x80)
    ++at;
  return at;
}

// Behind the two-byte characters that begin at "at", of which Cyrillic text is made, with the ASCII between them.
const char* behindShortCharacters(const char* at, const char* end)
{
  while (end - at >= 2) {
    const auto first = static_cast<unsigned char>(at[0]);
    const auto second = static_cast<unsigned char>(at[1]);
    if (first < 0x80)
      ++at;
    else if (first >= 0xC2 && first <= 0xDF && (second & 0xC0) == 0x80)
      at += 2;
    else
      break;
  }
  return at;
}

// What a first byte promises (RFC 3629): neither overlong forms nor surrogates, nothing above U+10FFFF.
struct LeadByte {
  int continuations = 0;  // none: it begins no character
  unsigned char lowest = 0x80, highest = 0xBF;
};

LeadByte leadByte(unsigned char byte)
{
  if (byte >= 0xC2 && byte <= 0xDF)
    return {1};
  if (byte >= 0xE0 && byte <= 0xEF)
    return {2, static_cast<unsigned char>(byte == 0xE0 ? 0xA0 : 0x80), static_cast<unsigned char>(byte == 0xED ? 0x9F : 0xBF)};
  if (byte >= 0xF0 && byte <= 0xF4)
    return {3, static_cast<unsigned char>(byte == 0xF0 ? 0x90 : 0x80), static_cast<unsigned char>(byte == 0xF4 ? 0x8F : 0xBF)};
  return {};
}

}  // namespace

QByteArray toWindows1251(QStringView text)
{
  const CodePage1251& page = codePage1251();
  QByteArray result;
  result.reserve(text.size());
  for (const QChar c : text) {
    const quint8 byte = page.byte[c.unicode()];
    if (byte != 0 || c.unicode() == 0)
      result.append(char(byte));
    else if (!c.isLowSurrogate())
      result.append('?');
  }
  return result;
}

QString fromWindows1251(QByteArrayView bytes)
{
  const CodePage1251& page = codePage1251();
  QString result(bytes.size(), Qt::Uninitialized);
  QChar* target = result.data();
  for (const char byte : bytes)
    *target++ = QChar(page.character[quint8(byte)]);
  return result;
}

bool Utf8Detector::feed(QByteArrayView bytes)
{
  const char* at = bytes.begin();
  while (valid_ && at != bytes.end()) {
    if (expected_ == 0) {
      const char* const characters = behindAscii(at, bytes.end());
      at = behindShortCharacters(characters, bytes.end());
      hasOtherThanAscii_ = hasOtherThanAscii_ || at != characters;
      if (at != characters)
        continue;
    }
    if (at == bytes.end())
      break;
    const auto byte = static_cast<unsigned char>(*at++);
    hasOtherThanAscii_ = true;
    if (expected_ == 0) {
      const LeadByte lead = leadByte(byte);
      expected_ = lead.continuations;
      lowest_ = lead.lowest;
      highest_ = lead.highest;
      valid_ = expected_ > 0;
    } else {
      valid_ = byte >= lowest_ && byte <= highest_;
      --expected_;
      lowest_ = LeadByte().lowest;
      highest_ = LeadByte().highest;
    }
  }
  return valid_;
}

TextEncoding Utf8Detector::encoding() const
{
  return valid_ && hasOtherThanAscii_ && expected_ == 0 ? TextEncoding::Utf8 : TextEncoding::Windows1251;
}

QString decodeTextFile(QByteArrayView bytes)
{
  QStringDecoder utf8(QStringDecoder::Utf8);
  const QString text = utf8(bytes);
  if (!utf8.hasError())
    return text;
  return fromWindows1251(bytes);
}

}  // namespace kalvor
