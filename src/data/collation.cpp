#include "data/collation.h"

#include <QChar>
#include <QString>
#include <QtEndian>
#include <array>

namespace kalvor {

namespace {

constexpr int tableSize = 0x530;      // Latin, Greek and Cyrillic
constexpr quint8 ignoredWeight = 0;   // combining marks, control characters
constexpr quint8 otherWeight = 255;   // whatever has no weight of its own: by its code

const char16_t weightOrder[] =
    u" _-,;:!?.'\"()[]{}§¶@*/\\&#%`´^¨°+±<=>|¦~¤$¢£¥«»©®¬¯·¸×÷"
    u"0123456789"
    u"абвгґдђеєжзѕиійјклљмнњопрстћуфхцчџшщъыьэюя"
    u"abcdefghijklmnopqrstuvwxyz";

struct CollationTables {
  std::array<quint8, tableSize> weight{};
  std::array<char16_t, tableSize> folded{};
};

char16_t withoutAccent(char16_t c)
{
  if (c == u'й')
    return c;
  const QString parts = QChar(c).decomposition();
  const bool canonical = !parts.isEmpty() && QChar(c).decompositionTag() == QChar::Canonical;
  return canonical ? parts[0].unicode() : c;
}

CollationTables makeTables()
{
  CollationTables tables;
  std::array<quint8, tableSize> ownWeight{};
  quint8 next = 1;
  for (const char16_t* c = weightOrder; *c; ++c)
    ownWeight[*c] = next++;
  for (char16_t c = 0; c < tableSize; ++c) {
    tables.folded[c] = QChar::toCaseFolded(char32_t(c)) < 0x10000 ? char16_t(QChar::toCaseFolded(char32_t(c))) : c;
    char16_t base = withoutAccent(tables.folded[c]);
    if (c == 0xA0 || (c >= 9 && c <= 13))
      base = u' ';
    const bool ignored = (c < 0x20 && base != u' ') || c == 0xAD || (c >= 0x300 && c < 0x370);
    const quint8 weight = base < tableSize ? ownWeight[base] : 0;
    tables.weight[c] = ignored ? ignoredWeight : weight ? weight : otherWeight;
  }
  return tables;
}

const CollationTables& tables()
{
  static const CollationTables made = makeTables();
  return made;
}

// Weight and, for the others, code: in order as numbers; 0 = ignored.
quint32 primaryWeight(const CollationTables& t, char16_t c)
{
  if (c < tableSize) {
    const quint8 weight = t.weight[c];
    return weight == otherWeight ? quint32(weight) << 16 | t.folded[c] : quint32(weight) << 16;
  }
  switch (c) {  // typographic forms of what stands in the table
    case 0x2010: case 0x2011: case 0x2012: case 0x2013: case 0x2014: return quint32(t.weight[u'-']) << 16;
    case 0x2018: case 0x2019: case 0x201A: return quint32(t.weight[u'\'']) << 16;
    case 0x201C: case 0x201D: case 0x201E: return quint32(t.weight[u'"']) << 16;
    case 0x2026: return quint32(t.weight[u'.']) << 16;
    case 0x20AC: return quint32(t.weight[u'$']) << 16;
    case 0x2116: return quint32(t.weight[u'#']) << 16;
    case 0x2002: case 0x2003: case 0x2009: case 0x202F: return quint32(t.weight[u' ']) << 16;
    case 0x200B: case 0x200C: case 0x200D: case 0xFEFF: return 0;
    default: return quint32(otherWeight) << 16 | foldedCharacter(c);
  }
}

}  // namespace

int compareText(QStringView a, QStringView b)
{
  const CollationTables& t = tables();
  const char16_t* pa = a.utf16();
  const char16_t* pb = b.utf16();
  const char16_t* const endA = pa + a.size();
  const char16_t* const endB = pb + b.size();
  for (;;) {
    quint32 wa = 0;
    quint32 wb = 0;
    while (pa != endA && (wa = primaryWeight(t, *pa++)) == 0) {
    }
    while (pb != endB && (wb = primaryWeight(t, *pb++)) == 0) {
    }
    if (wa != wb)
      return wa < wb ? -1 : 1;
    if (wa == 0)
      return 0;
  }
}

void appendWeights(QStringView text, std::vector<quint8>& weights)
{
  const CollationTables& t = tables();
  for (QChar c : text) {
    const quint32 weight = primaryWeight(t, c.unicode());
    if (weight == 0)
      continue;
    weights.push_back(quint8(weight >> 16));
    if (weight >> 16 != otherWeight)
      continue;
    const quint32 code = weight & 0xFFFF;
    for (const quint32 part : {code / (254 * 254), code / 254 % 254, code % 254})
      weights.push_back(quint8(part + 1));
  }
}

quint64 weightPrefix(const quint8* weights, size_t count)
{
  if (count >= 8)
    return qFromBigEndian<quint64>(weights);
  quint64 prefix = 0;
  for (size_t i = 0; i < count; ++i)
    prefix |= quint64(weights[i]) << (56 - 8 * i);
  return prefix;
}

char16_t foldedCharacter(char16_t c)
{
  if (c < tableSize)
    return tables().folded[c];
  // Signs that only look like letters of the table (the kelvin sign) stay what they are.
  const char32_t folded = QChar::toCaseFolded(char32_t(c));
  return folded >= tableSize && folded < 0x10000 && !QChar::isSurrogate(c) ? char16_t(folded) : c;
}

namespace {

// ASCII and the modern Cyrillic letters by arithmetic alone, which the compiler turns into vector instructions.
// False: something else is among them, and the result is not to be used.
bool foldPlain(const char16_t* from, qsizetype length, char16_t* to)
{
  quint16 strange = 0;
  for (qsizetype i = 0; i < length; ++i) {
    const quint16 c = from[i];
    const quint16 latin = quint16(c - u'A') < 26 ? 0x20 : 0;
    const quint16 basic = quint16(c - 0x410) < 0x20 ? 0x20 : 0;
    const quint16 further = quint16(c - 0x400) < 0x10 ? 0x50 : 0;
    const quint16 known = quint16(c - 0x400) < 0x60 || c < 0x80 ? 0 : 1;
    strange |= known;
    to[i] = char16_t(c + latin + basic + further);
  }
  return strange == 0;
}

}  // namespace

void foldText(const char16_t* from, qsizetype length, char16_t* to)
{
  constexpr qsizetype chunk = 128;
  const CollationTables& t = tables();
  for (qsizetype start = 0; start < length; start += chunk) {
    const qsizetype end = qMin(length, start + chunk);
    if (foldPlain(from + start, end - start, to + start))
      continue;
    for (qsizetype i = start; i < end; ++i)
      to[i] = from[i] < tableSize ? t.folded[from[i]] : foldedCharacter(from[i]);
  }
}

std::vector<char16_t> charactersFoldedTo(char16_t folded)
{
  std::vector<char16_t> found;
  if (folded < tableSize) {
    for (char16_t c = 0; c < tableSize; ++c)
      if (tables().folded[c] == folded)
        found.push_back(c);
  } else {
    for (char32_t c = tableSize; c < 0x10000; ++c)
      if (foldedCharacter(char16_t(c)) == folded)
        found.push_back(char16_t(c));
  }
  return found;
}

QString foldedText(QStringView text)
{
  QString folded(text.size(), Qt::Uninitialized);
  foldText(text.utf16(), text.size(), reinterpret_cast<char16_t*>(folded.data()));
  return folded;
}

bool equalFolded(QStringView a, QStringView b)
{
  if (a.size() != b.size())
    return false;
  const CollationTables& t = tables();
  const char16_t* pa = a.utf16();
  const char16_t* pb = b.utf16();
  for (qsizetype i = 0; i < a.size(); ++i) {
    const char16_t ca = pa[i] < tableSize ? t.folded[pa[i]] : foldedCharacter(pa[i]);
    const char16_t cb = pb[i] < tableSize ? t.folded[pb[i]] : foldedCharacter(pb[i]);
    if (ca != cb)
      return false;
  }
  return true;
}

}  // namespace kalvor
