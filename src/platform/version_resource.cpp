#include "platform/version_resource.h"

#include <QtEndian>

namespace kalvor {
namespace {

constexpr quint32 fixedBlockSignature = 0xFEEF04BD;
constexpr quint32 versionResourceType = 16;
constexpr quint32 subdirectoryFlag = 0x80000000;
constexpr int deepestBlock = 4;

// Little-endian numbers anywhere in some bytes; outside of them everything is 0.
class ByteWindow {
 public:
  explicit ByteWindow(QByteArrayView bytes) : bytes_(bytes) {}

  qsizetype size() const { return bytes_.size(); }
  bool holds(qint64 offset, qint64 count) const { return offset >= 0 && count >= 0 && offset <= size() - count; }
  quint16 word(qint64 offset) const { return number<quint16>(offset); }
  quint32 dword(qint64 offset) const { return number<quint32>(offset); }
  QByteArrayView part(qint64 offset, qint64 count) const
  {
    return holds(offset, count) ? bytes_.sliced(offset, count) : QByteArrayView();
  }

 private:
  template <class Number>
  Number number(qint64 offset) const
  {
    return holds(offset, sizeof(Number)) ? qFromLittleEndian<Number>(bytes_.data() + offset) : Number(0);
  }

  QByteArrayView bytes_;
};

// Where the sections of a PE file lie, and its resource directory.
class PortableExecutable {
 public:
  explicit PortableExecutable(QByteArrayView bytes) : bytes_(bytes)
  {
    const qint64 header = bytes_.dword(0x3C);
    if (bytes_.word(0) != 0x5A4D || bytes_.dword(header) != 0x00004550)
      return;
    const qint64 optional = header + 24;
    const qint64 directories = optional + (bytes_.word(optional) == 0x20B ? 112 : 96);
    sections_ = optional + bytes_.word(header + 20);
    sectionCount_ = bytes_.word(header + 6);
    resources_ = offsetOf(bytes_.dword(directories + 16));
  }

  QByteArrayView versionBlock() const
  {
    if (resources_ < 0)
      return {};
    const qint64 type = entryOf(resources_, versionResourceType);
    const qint64 language = type < 0 ? -1 : firstEntry(resources_ + (type & ~subdirectoryFlag));
    const qint64 data = language < 0 ? -1 : firstEntry(resources_ + (language & ~subdirectoryFlag));
    if (data < 0 || (data & subdirectoryFlag))
      return {};
    return bytes_.part(offsetOf(bytes_.dword(resources_ + data)), bytes_.dword(resources_ + data + 4));
  }

 private:
  // In the file, of an address in the loaded program; -1 when no section holds it.
  qint64 offsetOf(quint32 address) const
  {
    for (int i = 0; address != 0 && i < sectionCount_; ++i) {
      const qint64 section = sections_ + qint64(i) * 40;
      const quint32 start = bytes_.dword(section + 12);
      if (address >= start && address - start < bytes_.dword(section + 16))
        return qint64(bytes_.dword(section + 20)) + (address - start);
    }
    return -1;
  }

  // The entry's own offset or subdirectory, relative to the resources; -1 when there is none.
  qint64 entryOf(qint64 directory, quint32 id) const
  {
    const int count = bytes_.word(directory + 12) + bytes_.word(directory + 14);
    for (int i = 0; i < count && bytes_.holds(directory + 16 + i * 8, 8); ++i)
      if (bytes_.dword(directory + 16 + i * 8) == id)
        return bytes_.dword(directory + 20 + i * 8);
    return -1;
  }

  qint64 firstEntry(qint64 directory) const
  {
    const bool some = bytes_.word(directory + 12) + bytes_.word(directory + 14) > 0;
    return some && bytes_.holds(directory + 16, 8) ? qint64(bytes_.dword(directory + 20)) : -1;
  }

  ByteWindow bytes_;
  qint64 sections_ = 0;
  int sectionCount_ = 0;
  qint64 resources_ = -1;
};

qint64 roundedUpTo4(qint64 offset) { return (offset + 3) & ~qint64(3); }

// One node of the version data: a name, a value and further nodes, all within its own length.
struct VersionBlock {
  QString name;
  QByteArrayView value;
  QList<VersionBlock> children;

  const VersionBlock* child(const QString& wanted) const
  {
    for (const VersionBlock& block : children)
      if (block.name.compare(wanted, Qt::CaseInsensitive) == 0)
        return &block;
    return nullptr;
  }
};

QString zeroEndedText(QByteArrayView bytes)
{
  QString text;
  for (qsizetype i = 0; i + 1 < bytes.size(); i += 2) {
    const char16_t c = qFromLittleEndian<char16_t>(bytes.data() + i);
    if (c == 0)
      break;
    text += QChar(c);
  }
  return text;
}

VersionBlock readVersionBlock(QByteArrayView bytes, int depth)
{
  const ByteWindow window(bytes);
  VersionBlock block;
  block.name = zeroEndedText(window.part(6, window.size() - 6));
  const qint64 valueStart = roundedUpTo4(6 + (block.name.size() + 1) * 2);
  // The value of a text counts characters, other values count bytes; some writers count bytes always.
  const qint64 unit = window.word(4) == 1 ? 2 : 1;
  const qint64 left = qMax<qint64>(0, window.size() - valueStart);
  const qint64 valueSize = qMin(left, window.word(2) * unit);
  block.value = window.part(valueStart, valueSize);
  if (depth >= deepestBlock)
    return block;
  for (qint64 at = roundedUpTo4(valueStart + valueSize); window.holds(at, 6);) {
    const qint64 size = qMin<qint64>(window.word(at), window.size() - at);
    if (size < 6)
      break;
    block.children.append(readVersionBlock(window.part(at, size), depth + 1));
    at = roundedUpTo4(at + size);
  }
  return block;
}

QHash<QString, QString> firstTexts(const VersionBlock& root)
{
  QHash<QString, QString> texts;
  const VersionBlock* names = root.child(QStringLiteral("VarFileInfo"));
  const VersionBlock* translation = names ? names->child(QStringLiteral("Translation")) : nullptr;
  const VersionBlock* tables = root.child(QStringLiteral("StringFileInfo"));
  if (!translation || translation->value.size() < 4 || !tables)
    return texts;
  const ByteWindow pair(translation->value);
  const VersionBlock* table = tables->child(
      QStringLiteral("%1%2").arg(pair.word(0), 4, 16, QLatin1Char('0')).arg(pair.word(2), 4, 16, QLatin1Char('0')));
  if (table)
    for (const VersionBlock& text : table->children)
      texts.insert(text.name, zeroEndedText(text.value));
  return texts;
}

}  // namespace

std::optional<VersionResource> readVersionResource(const QByteArray& file)
{
  const QByteArrayView bytes = PortableExecutable(file).versionBlock();
  const VersionBlock root = readVersionBlock(bytes.first(qMin<qsizetype>(bytes.size(), ByteWindow(bytes).word(0))), 0);
  const ByteWindow fixed(root.value);
  if (root.name != QLatin1String("VS_VERSION_INFO") || fixed.dword(0) != fixedBlockSignature)
    return std::nullopt;
  return VersionResource{fixed.dword(8), fixed.dword(12), firstTexts(root)};
}

}  // namespace kalvor
