#include "platform/compound_file_reader.h"

#include <QtEndian>
#include <vector>

#include "data/data_error.h"

namespace kalvor {
namespace {

[[noreturn]] void refuseCompoundFile() { throw DataError(QStringLiteral("Таблицата на MS Excel е повредена.")); }

class CompoundFile {
 public:
  explicit CompoundFile(QByteArrayView file) : file_(file)
  {
    constexpr qsizetype headerBytes = 512;
    if (file.size() < headerBytes)
      refuseCompoundFile();
    sectorBytes_ = sizeOf(readAt<quint16>(0x1E), 7, 12);
    miniSectorBytes_ = sizeOf(readAt<quint16>(0x20), 4, 12);
    smallStream_ = readAt<quint32>(0x38);
    if (smallStream_ > mostSmallStream)
      refuseCompoundFile();
    readSectorTable();
    directory_ = chain(readAt<quint32>(0x30));
    miniTable_ = numbersOf(chain(readAt<quint32>(0x3C)));
  }

  QByteArray stream(const QStringList& names) const
  {
    for (qsizetype entry = 0; entry + entryBytes <= directory_.size(); entry += entryBytes)
      if (directory_[entry + 0x42] == streamEntry && names.contains(entryName(entry), Qt::CaseInsensitive))
        return content(entry);
    return {};
  }

 private:
  static constexpr qsizetype entryBytes = 128;
  static constexpr char streamEntry = 2;
  static constexpr quint32 mostSmallStream = 65'536;
  static constexpr quint32 firstSpecial = 0xFFFFFFFA;  // no sector's number, the chain's end among them

  static qsizetype sizeOf(quint16 shift, quint16 least, quint16 most)
  {
    if (shift < least || shift > most)
      refuseCompoundFile();
    return qsizetype(1) << shift;
  }

  template <class T>
  T readAt(qsizetype offset) const { return qFromLittleEndian<T>(file_.data() + offset); }

  qsizetype sectorCount() const { return (file_.size() - 1) / sectorBytes_; }

  // The last sector of a file may be cut short.
  QByteArrayView sector(quint32 number) const
  {
    const qsizetype start = (qsizetype(number) + 1) * sectorBytes_;
    if (number >= firstSpecial || start >= file_.size())
      refuseCompoundFile();
    return file_.sliced(start, std::min(sectorBytes_, file_.size() - start));
  }

  static std::vector<quint32> numbersOf(QByteArrayView bytes)
  {
    std::vector<quint32> numbers(size_t(bytes.size()) / sizeof(quint32));
    for (size_t i = 0; i < numbers.size(); ++i)
      numbers[i] = qFromLittleEndian<quint32>(bytes.data() + i * sizeof(quint32));
    return numbers;
  }

  void addTableSector(quint32 number)
  {
    if (number >= firstSpecial)
      return;
    const std::vector<quint32> numbers = numbersOf(sector(number));
    table_.insert(table_.end(), numbers.begin(), numbers.end());
    if (qsizetype(table_.size()) > sectorCount() + 2 * sectorBytes_)
      refuseCompoundFile();
  }

  // The table's own sectors: 109 in the header, the rest in a chain whose sectors end with the number of the next.
  void readSectorTable()
  {
    constexpr qsizetype listInHeader = 0x4C, numbersInHeader = 109;
    for (qsizetype i = 0; i < numbersInHeader; ++i)
      addTableSector(readAt<quint32>(listInHeader + i * qsizetype(sizeof(quint32))));
    quint32 next = readAt<quint32>(0x44);
    for (qsizetype left = sectorCount(); next < firstSpecial; --left) {
      const std::vector<quint32> numbers = numbersOf(sector(next));
      if (left <= 0 || numbers.empty())
        refuseCompoundFile();
      for (size_t i = 0; i + 1 < numbers.size(); ++i)
        addTableSector(numbers[i]);
      next = numbers.back();
    }
  }

  QByteArray chain(quint32 first) const
  {
    QByteArray bytes;
    qsizetype left = sectorCount();
    for (quint32 next = first; next < firstSpecial; next = table_[next]) {
      if (left-- <= 0 || next >= table_.size())
        refuseCompoundFile();
      bytes += sector(next);
    }
    return bytes;
  }

  QByteArray miniChain(quint32 first, quint32 size) const
  {
    const QByteArray small = chain(qFromLittleEndian<quint32>(directory_.constData() + 0x74));  // of the root entry
    QByteArray bytes;
    size_t left = miniTable_.size();
    for (quint32 next = first; next < firstSpecial && bytes.size() < size; next = miniTable_[next]) {
      if (left-- == 0 || next >= miniTable_.size() || qsizetype(next) * miniSectorBytes_ >= small.size())
        refuseCompoundFile();
      bytes += small.mid(qsizetype(next) * miniSectorBytes_, miniSectorBytes_);
    }
    return bytes;
  }

  QString entryName(qsizetype entry) const
  {
    const quint16 bytes = qFromLittleEndian<quint16>(directory_.constData() + entry + 0x40);
    QString name;
    for (qsizetype i = 0; i + 2 < bytes && i < 0x40; i += 2)
      name += QChar(qFromLittleEndian<quint16>(directory_.constData() + entry + i));
    return name;
  }

  QByteArray content(qsizetype entry) const
  {
    const quint32 first = qFromLittleEndian<quint32>(directory_.constData() + entry + 0x74);
    const quint32 size = qFromLittleEndian<quint32>(directory_.constData() + entry + 0x78);
    const QByteArray bytes = size < smallStream_ ? miniChain(first, size) : chain(first);
    return bytes.left(size);
  }

  QByteArrayView file_;
  qsizetype sectorBytes_ = 0, miniSectorBytes_ = 0;
  quint32 smallStream_ = 0;  // shorter streams are in the mini stream
  std::vector<quint32> table_, miniTable_;
  QByteArray directory_;
};

}  // namespace

QByteArray compoundFileStream(QByteArrayView file, const QStringList& names)
{
  return CompoundFile(file).stream(names);
}

}  // namespace kalvor
