#include "platform/biff_records.h"

#include <QtEndian>
#include <algorithm>

namespace kalvor::biff {

namespace {

constexpr qsizetype longestBody = 8224;
constexpr quint16 sharedTextTable = 0x00FC;
constexpr quint16 continuation = 0x003C;
constexpr qsizetype textHeader = 3;

template <class Number>
void appendNumber(QByteArray& to, Number value)
{
  char bytes[sizeof value];
  qToLittleEndian(value, bytes);
  to.append(bytes, sizeof value);
}

void appendCharacters(QByteArray& to, QStringView text, bool wide)
{
  for (QChar c : text) {
    if (wide)
      appendNumber(to, quint16(c.unicode()));
    else
      to.append(char(c.unicode()));
  }
}

// A body that goes on in further records. Lengths stay whole, and where a text is broken between two characters its
// width flag comes again.
class BrokenBody {
 public:
  explicit BrokenBody(quint16 kind) : kind_(kind) {}

  void number(quint32 value) { appendNumber(body_, value); }

  void text(QStringView text)
  {
    const bool wide = !isLatin1(text);
    if (longestBody - body_.size() < textHeader + (text.isEmpty() ? 0 : 2))
      endRecord();
    appendNumber(body_, quint16(text.size()));
    body_.append(wide ? '\1' : '\0');
    const qsizetype width = wide ? 2 : 1;
    while (!text.isEmpty()) {
      const qsizetype fits = std::min(text.size(), (longestBody - body_.size()) / width);
      appendCharacters(body_, text.first(fits), wide);
      text = text.sliced(fits);
      if (!text.isEmpty()) {
        endRecord();
        body_.append(wide ? '\1' : '\0');
      }
    }
  }

  QByteArray take()
  {
    endRecord();
    return std::move(stream_);
  }

 private:
  void endRecord()
  {
    appendNumber(stream_, kind_);
    appendNumber(stream_, quint16(body_.size()));
    stream_.append(body_);
    body_.clear();
    kind_ = continuation;
  }

  quint16 kind_;
  QByteArray body_, stream_;
};

}  // namespace

bool isLatin1(QStringView text)
{
  return std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() <= 0xFF; });
}

Record& Record::u8(quint8 value)
{
  appendNumber(body_, value);
  return *this;
}

Record& Record::u16(quint16 value)
{
  appendNumber(body_, value);
  return *this;
}

Record& Record::u32(quint32 value)
{
  appendNumber(body_, value);
  return *this;
}

Record& Record::real(double value)
{
  appendNumber(body_, value);
  return *this;
}

Record& Record::raw(const QByteArray& bytes)
{
  body_.append(bytes);
  return *this;
}

void Record::characters(QStringView text)
{
  const bool wide = !isLatin1(text);
  u8(wide);
  appendCharacters(body_, text, wide);
}

Record& Record::text8(QStringView text)
{
  u8(quint8(text.size()));
  characters(text);
  return *this;
}

Record& Record::text16(QStringView text)
{
  u16(quint16(text.size()));
  characters(text);
  return *this;
}

void Record::appendTo(QByteArray& stream) const
{
  appendNumber(stream, kind_);
  appendNumber(stream, quint16(body_.size()));
  stream.append(body_);
}

QByteArray sharedTexts(const QStringList& texts, quint32 uses)
{
  BrokenBody table(sharedTextTable);
  table.number(uses);
  table.number(quint32(texts.size()));
  for (const QString& text : texts)
    table.text(text);
  return table.take();
}

}  // namespace kalvor::biff
