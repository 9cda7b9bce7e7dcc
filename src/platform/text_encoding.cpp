#include "platform/text_encoding.h"

#include <QStringConverter>
#include <array>

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
  for (qsizetype i = 0; i < bytes.size(); ++i)
    result[i] = QChar(page.character[quint8(bytes[i])]);
  return result;
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
