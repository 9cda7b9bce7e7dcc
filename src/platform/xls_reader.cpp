#include "platform/xls_reader.h"

#include <QFile>
#include <QHash>
#include <QStringConverter>
#include <algorithm>
#include <bit>

#include "data/data_error.h"
#include "platform/biff_record_reader.h"
#include "platform/compound_file_reader.h"
#include "platform/continued_sheets.h"

namespace kalvor {
namespace {

constexpr qint64 mostXlsBytes = 256 << 20;
constexpr quint32 rowsOfXlsSheet = 65'536;

enum BiffType : quint16 {
  biffFormula = 0x0006, biffEof = 0x000A, biffDateMode = 0x0022, biffFilePass = 0x002F, biffCodePage = 0x0042,
  biffBoundSheet = 0x0085, biffMulRk = 0x00BD, biffRString = 0x00D6, biffXf = 0x00E0, biffSst = 0x00FC,
  biffLabelSst = 0x00FD, biffDimension = 0x0200, biffNumber = 0x0203, biffLabel = 0x0204, biffBoolErr = 0x0205, biffString = 0x0207,
  biffRk = 0x027E, biffFormat = 0x041E, biffBof = 0x0809
};

[[noreturn]] void refuseXls() { throw DataError(QStringLiteral("Таблицата на MS Excel е повредена.")); }
[[noreturn]] void refuseSize() { throw DataError(QStringLiteral("Таблицата е твърде голяма.")); }

// A number in 30 bits: whole, or the upper bits of a real; hundredths when the lowest bit is set.
double rkNumber(quint32 rk)
{
  constexpr quint32 isHundredths = 1, isWhole = 2, flags = 3;
  const double value = rk & isWhole ? double(qint32(rk) >> 2) : std::bit_cast<double>(quint64(rk & ~flags) << 32);
  return rk & isHundredths ? value / 100 : value;
}

class XlsWorkbook {
 public:
  XlsWorkbook(const QByteArray& stream, const CellTextFormat& format) : stream_(stream), format_(format) {}

  TextTable read()
  {
    readGlobals();
    if (sheets_.empty())
      throw DataError(QStringLiteral("Файлът не съдържа лист с данни."));
    ContinuedSheets table;
    size_t sheet = 0;
    do {
      readSheet(sheets_[sheet].offset);
      takeCells(table);
      ++sheet;
    } while (sheet < sheets_.size() && rows_ == rowsOfXlsSheet &&
             table.goesOn(rowsOfXlsSheet, sheets_.front().name, sheets_[sheet].name));
    return table.take();
  }

 private:
  struct Sheet {
    qint64 offset;
    QString name;
  };
  struct Cell {
    quint32 place;  // the row and the column
    quint32 start, length;
  };

  void readGlobals()
  {
    BiffStream records(stream_);
    BiffRecord record;
    if (!records.next(record) || record.type != biffBof)
      refuseXls();
    const quint16 version = record.word();
    constexpr quint16 biff5 = 0x0500, biff8 = 0x0600;
    if (version != biff5 && version != biff8)
      refuseXls();
    unicode_ = version == biff8;
    while (records.next(record) && record.type != biffEof)
      readGlobal(record);
  }

  void readGlobal(BiffRecord& record)
  {
    switch (record.type) {
      case biffFilePass: throw DataError(QStringLiteral("Таблицата на MS Excel е защитена с парола."));
      case biffDateMode: epoch_ = record.word() == 1 ? CellEpoch::Year1904 : CellEpoch::Year1900; break;
      case biffCodePage: codePage_ = record.word(); break;
      case biffBoundSheet: takeSheet(record); break;
      case biffSst: readSharedTexts(record); break;
      case biffXf: record.skip(2); styles_.push_back(record.word()); break;
      case biffFormat: {
        const quint16 number = record.word();
        formats_.insert(number, cellNumberKind(unicode_ ? record.unicodeText(2) : text5(record, 1)));
        break;
      }
      default: break;
    }
  }

  void takeSheet(BiffRecord& record)
  {
    constexpr quint8 worksheet = 0;  // no chart, no macros
    const quint32 offset = record.doubleWord();
    record.skip(1);
    if (record.byte() == worksheet && record.isWhole())
      sheets_.push_back({offset, unicode_ ? record.unicodeText(1) : text5(record, 1)});
  }

  void readSharedTexts(BiffRecord& record)
  {
    record.skip(4);
    const quint32 count = record.doubleWord();
    qsizetype characters = 0;
    for (quint32 i = 0; i < count && record.hasMore(); ++i) {
      sharedTexts_.push_back(record.unicodeText(2));
      characters += sharedTexts_.back().size();
      if (characters > TextTable::mostCharacters || qsizetype(sharedTexts_.size()) > TextTable::mostCells)
        refuseSize();
    }
  }

  QString text5(BiffRecord& record, int lengthBytes) const
  {
    constexpr int cyrillicPage = 1251;
    const QByteArray bytes = record.bytesText(lengthBytes);
    if (codePage_ == cyrillicPage)
      return fromWindows1251(bytes);
    QStringDecoder decoder(("windows-" + QByteArray::number(codePage_)).constData());
    return decoder.isValid() ? QString(decoder(bytes)) : fromWindows1251(bytes);
  }

  void readSheet(qint64 offset)
  {
    BiffStream records(stream_, offset);
    BiffRecord record;
    if (!records.next(record) || record.type != biffBof)
      refuseXls();
    rows_ = 0;
    // Charts that lie on the sheet are parts of their own inside it.
    for (int depth = 1; depth > 0;) {
      if (!records.next(record))
        refuseXls();
      if (record.type == biffBof)
        ++depth;
      else if (record.type == biffEof)
        --depth;
      else if (depth == 1)
        readCells(record);
    }
  }

  void readCells(BiffRecord& record)
  {
    if (record.type == biffString) {
      if (formulaPlace_ >= 0)
        add(quint32(formulaPlace_), unicode_ ? record.unicodeText(2) : text5(record, 2));
      formulaPlace_ = -1;
      return;
    }
    if (record.type == biffDimension && unicode_) {
      record.skip(4);
      rows_ = std::max(rows_, record.doubleWord());
      return;
    }
    switch (record.type) {
      case biffNumber: case biffRk: case biffMulRk: case biffLabel: case biffRString: case biffLabelSst:
      case biffBoolErr: case biffFormula: break;
      default: return;
    }
    const quint32 row = record.word();
    const quint32 place = row << 16 | record.word();
    if (record.type == biffMulRk) {
      readRkCells(record, place);
      return;
    }
    const quint16 style = record.word();
    switch (record.type) {
      case biffNumber: add(place, numberText(record.real(), style)); break;
      case biffRk: add(place, numberText(rkNumber(record.doubleWord()), style)); break;
      case biffLabelSst: add(place, sharedText(record.doubleWord())); break;
      case biffBoolErr: readFlag(record, place); break;
      case biffFormula: readFormula(record, place, style); break;
      default: add(place, unicode_ ? record.unicodeText(2) : text5(record, 2)); break;
    }
    if (!record.isWhole())
      refuseXls();
  }

  void readRkCells(BiffRecord& record, quint32 place)
  {
    // Behind the numbers stands the last column, two bytes.
    for (;; ++place) {
      const quint16 style = record.word();
      if (!record.hasMore())
        break;
      add(place, numberText(rkNumber(record.doubleWord()), style));
      if (!record.isWhole())
        refuseXls();
    }
  }

  void readFlag(BiffRecord& record, quint32 place)
  {
    const quint8 value = record.byte();
    if (record.byte() == 0)
      add(place, QString::number(value));
  }

  void readFormula(BiffRecord& record, quint32 place, quint16 style)
  {
    constexpr quint64 noNumber = 0xFFFF;
    enum ResultKind : quint8 { resultText, resultFlag };
    const double number = record.real();
    const auto bits = std::bit_cast<quint64>(number);
    formulaPlace_ = -1;
    if (bits >> 48 != noNumber)
      add(place, numberText(number, style));
    else if ((bits & 0xFF) == resultFlag)
      add(place, QString::number(bits >> 16 & 0xFF));
    else if ((bits & 0xFF) == resultText)
      formulaPlace_ = place;  // the text follows in a record of its own
  }

  QString numberText(double number, quint16 style) const
  {
    const int numberFormat = style < styles_.size() ? styles_[style] : 0;
    const auto own = formats_.constFind(numberFormat);
    const CellNumberKind kind = own == formats_.constEnd() ? cellNumberKind(numberFormat) : *own;
    return cellSerialText(number, kind, epoch_, format_);
  }

  QString sharedText(quint32 index) const
  {
    if (index >= sharedTexts_.size())
      refuseXls();
    return sharedTexts_[index];
  }

  void add(quint32 place, QStringView text)
  {
    if (text.isEmpty())
      return;
    if (qsizetype(cells_.size()) >= TextTable::mostCells ||
        characters_.size() + text.size() > TextTable::mostCharacters)
      refuseSize();
    rows_ = std::max(rows_, (place >> 16) + 1);
    cells_.push_back({place, quint32(characters_.size()), quint32(text.size())});
    characters_ += text;
  }

  // Rows come in blocks of any order; of two cells in one place the later one counts.
  void takeCells(ContinuedSheets& table)
  {
    const auto before = [](const Cell& a, const Cell& b) { return a.place < b.place; };
    if (!std::is_sorted(cells_.begin(), cells_.end(), before))
      std::stable_sort(cells_.begin(), cells_.end(), before);
    for (size_t i = 0; i < cells_.size(); ++i)
      if (const Cell& cell = cells_[i]; i + 1 == cells_.size() || cells_[i + 1].place != cell.place)
        table.append(int(cell.place >> 16), int(cell.place & 0xFFFF),
                     QStringView(characters_).sliced(cell.start, cell.length));
    cells_.clear();
    characters_.clear();
  }

  QByteArrayView stream_;
  const CellTextFormat& format_;
  bool unicode_ = true;
  int codePage_ = 1251;
  CellEpoch epoch_ = CellEpoch::Year1900;
  std::vector<Sheet> sheets_;
  std::vector<quint16> styles_;  // number formats by style
  QHash<int, CellNumberKind> formats_;
  std::vector<QString> sharedTexts_;
  std::vector<Cell> cells_;  // of the current sheet
  QString characters_;
  quint32 rows_ = 0;
  qint64 formulaPlace_ = -1;  // of a formula whose text has not come yet
};

}  // namespace

TextTable readXls(const QString& fileName, const CellTextFormat& format)
{
  QFile file(fileName);
  if (!file.open(QIODevice::ReadOnly))
    throw DataError(QStringLiteral("Файлът не може да бъде отворен: ") + fileName);
  if (file.size() > mostXlsBytes)
    refuseSize();
  const QByteArray stream = compoundFileStream(file.readAll(), {QStringLiteral("Workbook"), QStringLiteral("Book")});
  return XlsWorkbook(stream, format).read();
}

}  // namespace kalvor
