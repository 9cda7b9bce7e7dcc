#include "platform/compound_file_writer.h"

#include <QIODevice>
#include <QtEndian>
#include <algorithm>
#include <limits>

namespace kalvor {

namespace {

constexpr qint64 sectorSize = 512;
constexpr qint64 smallestStream = 4096;  // shorter ones belong into sectors of another kind
constexpr qint64 entriesInSector = sectorSize / 4;
constexpr qint64 fatSectorsInHeader = 109;
constexpr quint32 endOfChain = 0xFFFFFFFE;
constexpr quint32 freeSector = 0xFFFFFFFF;
constexpr quint32 fatSector = 0xFFFFFFFD;
constexpr quint32 difatSector = 0xFFFFFFFC;

qint64 sectorsFor(qint64 count, qint64 inOne)
{
  return (count + inOne - 1) / inOne;
}

template <class Number>
void put(QByteArray& to, Number value)
{
  char bytes[sizeof value];
  qToLittleEndian(value, bytes);
  to.append(bytes, sizeof value);
}

// Sectors in the file's order: the stream, the directory, the allocation table, the table's own continuation list.
struct Layout {
  qint64 streamBytes;
  qint64 stream, directory = 1, fat = 0, difat = 0;

  explicit Layout(qint64 bytes) : streamBytes(std::max(bytes, smallestStream)), stream(sectorsFor(streamBytes, sectorSize))
  {
    for (qint64 before = -1; before != fat + difat;) {
      before = fat + difat;
      fat = sectorsFor(stream + directory + fat + difat, entriesInSector);
      difat = fat > fatSectorsInHeader ? sectorsFor(fat - fatSectorsInHeader, entriesInSector - 1) : 0;
    }
  }
  quint32 directoryStart() const { return quint32(stream); }
  quint32 fatStart() const { return quint32(stream + directory); }
  quint32 difatStart() const { return quint32(stream + directory + fat); }
};

QByteArray compoundHeader(const Layout& layout)
{
  QByteArray header = QByteArray::fromHex("d0cf11e0a1b11ae1") + QByteArray(16, '\0');
  for (quint16 value : {0x003E, 0x0003, 0xFFFE, 9, 6})  // version, byte order, sector sizes as powers of two
    put(header, value);
  header.append(10, '\0');
  put(header, quint32(layout.fat));
  put(header, layout.directoryStart());
  put(header, quint32(0));
  put(header, quint32(smallestStream));
  put(header, endOfChain);  // no sectors of the small kind
  put(header, quint32(0));
  put(header, layout.difat > 0 ? layout.difatStart() : endOfChain);
  put(header, quint32(layout.difat));
  for (qint64 i = 0; i < fatSectorsInHeader; ++i)
    put(header, i < layout.fat ? layout.fatStart() + quint32(i) : freeSector);
  return header;
}

void putDirectoryEntry(QByteArray& to, QStringView name, quint8 kind, quint32 child, quint32 start, quint32 size)
{
  QByteArray text;
  for (QChar c : name)
    put(text, c.unicode());
  const quint16 nameBytes = name.isEmpty() ? 0 : quint16(text.size() + 2);
  text.append(64 - text.size(), '\0');
  to.append(text);
  put(to, nameBytes);
  put(to, kind);
  put(to, quint8(1));       // black
  put(to, freeSector);      // no neighbours
  put(to, freeSector);
  put(to, child);
  to.append(36, '\0');      // class, flags, times
  put(to, start);
  put(to, size);
  put(to, quint32(0));
}

QByteArray directorySector(const Layout& layout, QStringView streamName)
{
  constexpr quint8 unused = 0, stream = 2, root = 5;
  QByteArray sector;
  putDirectoryEntry(sector, u"Root Entry", root, 1, endOfChain, 0);
  putDirectoryEntry(sector, streamName, stream, freeSector, 0, quint32(layout.streamBytes));
  putDirectoryEntry(sector, u"", unused, freeSector, 0, 0);
  putDirectoryEntry(sector, u"", unused, freeSector, 0, 0);
  return sector;
}

void putChain(QByteArray& to, quint32 first, qint64 length)
{
  for (qint64 i = 0; i < length; ++i)
    put(to, i + 1 < length ? first + quint32(i) + 1 : endOfChain);
}

QByteArray allocationTable(const Layout& layout)
{
  QByteArray table;
  table.reserve(layout.fat * sectorSize);
  putChain(table, 0, layout.stream);
  putChain(table, layout.directoryStart(), layout.directory);
  for (qint64 i = 0; i < layout.fat; ++i)
    put(table, fatSector);
  for (qint64 i = 0; i < layout.difat; ++i)
    put(table, difatSector);
  while (table.size() < layout.fat * sectorSize)
    put(table, freeSector);
  return table;
}

// Where the allocation table lies, as far as the header has no room for it.
QByteArray continuationList(const Layout& layout)
{
  QByteArray list;
  qint64 next = fatSectorsInHeader;
  for (qint64 sector = 0; sector < layout.difat; ++sector) {
    for (qint64 i = 0; i < entriesInSector - 1; ++i, ++next)
      put(list, next < layout.fat ? layout.fatStart() + quint32(next) : freeSector);
    put(list, sector + 1 < layout.difat ? layout.difatStart() + quint32(sector) + 1 : endOfChain);
  }
  return list;
}

}  // namespace

bool writeCompoundFile(QIODevice& device, QStringView streamName, const QByteArrayList& parts)
{
  qint64 bytes = 0;
  for (const QByteArray& part : parts)
    bytes += part.size();
  if (bytes > std::numeric_limits<qint32>::max() || streamName.size() > 31)
    return false;
  const Layout layout(bytes);
  const auto write = [&device](const QByteArray& block) { return device.write(block) == block.size(); };
  bool written = write(compoundHeader(layout));
  for (const QByteArray& part : parts)
    written = written && write(part);
  written = written && write(QByteArray(layout.stream * sectorSize - bytes, '\0'));
  written = written && write(directorySector(layout, streamName));
  return written && write(allocationTable(layout)) && write(continuationList(layout));
}

}  // namespace kalvor
