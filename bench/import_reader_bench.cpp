// A text file cut into import lines, without a server, against a bare loop over its lines; sheets with the same lines
// against the text.
#include <QTemporaryDir>
#include <cstring>
#include <string>

#include "import/table_reader.h"
#include "import/text_reader.h"
#include "platform/spreadsheet_writer.h"
#include "platform/text_encoding.h"
#include "timing.h"

using namespace kalvor;
using namespace kalvor::bench;

namespace {

constexpr int runs = 5;
constexpr int invoiceCount = 100'000;
constexpr int linesOfInvoice = 10;

const char* const wide =
    "[CDSMASTER]1=1|1|DocumentNo|1-11##2=1|0|DocumentDate|11-21##3=1|0|Contragent|21-31[##CDSMASTER]"
    "[CDSDETAIL]4=1|0|Item|31-43##5=1|0|Description|43-81##6=1|0|Quantity|81-91##7=1|0|UnitPrice|91-103[##CDSDETAIL]";
const char* const narrow =
    "[CDSMASTER]1=1|1|DocumentNo[##CDSMASTER][CDSDETAIL]4=1|0|Item##6=1|0|Quantity[##CDSDETAIL]";

QString journal(bool fixedWidth)
{
  QString text;
  for (int invoice = 0; invoice < invoiceCount; ++invoice)
    for (int line = 0; line < linesOfInvoice; ++line) {
      const QStringList values{QString::number(500'000 + invoice), QStringLiteral("31.01.2024"), QString::number(17'850 + invoice % 997),
                               QStringLiteral("A%1").arg(line * 7919 % 100'000), QStringLiteral("БЯЛ ХЛЯБ ДОБРУДЖА %1 Г").arg(line * 50 + 300),
                               QString::number(1 + line % 12), QStringLiteral("%1,%2").arg(line % 90).arg(10 + line % 80)};
      if (!fixedWidth) {
        text += values.join(u';');
      } else {
        constexpr int widths[] = {10, 10, 10, 12, 38, 10, 12};
        for (int i = 0; i < values.size(); ++i)
          text += values[i].leftJustified(widths[i], u' ', true);
      }
      text += QStringLiteral("\r\n");
    }
  return text;
}

qint64 bareLines(const QString& fileName)
{
  std::FILE* file = std::fopen(qPrintable(fileName), "rb");
  std::string buffer(256 << 10, '\0');
  qint64 lines = 0;
  for (size_t size = std::fread(buffer.data(), 1, buffer.size(), file); size > 0;
       size = std::fread(buffer.data(), 1, buffer.size(), file)) {
    const char* at = buffer.data();
    const char* const end = at + size;
    while ((at = static_cast<const char*>(std::memchr(at, '\n', size_t(end - at)))) != nullptr) {
      ++lines;
      if (++at == end)
        break;
    }
  }
  std::fclose(file);
  return lines;
}

template <class Reader>
qint64 cutLines(const QString& fileName, const TImportFilter& filter)
{
  Reader reader(fileName, filter, {});
  qint64 lines = 0;
  TImportLine master;
  TImportSet details;
  QString error;
  while (!reader.isEndOfData() && reader.ReadRecord(master, details, error) == 0)
    lines += details.size();
  return lines;
}

void measure(const char* what, const QString& fileName, const QByteArray& bytes, const char* separator, const char* fields)
{
  TImportFilter filter(1);
  filter.LoadImportParams(QStringLiteral("[OPTIONS]NEW_DOCSEP=1##TXTFILE_SEP=%1[##OPTIONS]%2").arg(separator, fields));
  QFile file(fileName);
  if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
    qFatal("cannot write the journal");
  file.close();
  const qint64 expected = qint64(invoiceCount) * linesOfInvoice;
  if (cutLines<TImportTxt>(fileName, filter) != expected || bareLines(fileName) != expected)
    qFatal("lines are missing");
  const double ours = medianMs(runs, [&] { cutLines<TImportTxt>(fileName, filter); });
  const double bare = medianMs(runs, [&] { bareLines(fileName); });
  const double counting = medianMs(runs, [&] { TImportTxt(fileName, filter, {}).GetRecordCount(); });
  const double megabytes = double(bytes.size()) / 1e6;
  std::printf("%-34s %4.0f MB: cut %5.0f MB/s, count %5.0f MB/s, bare lines %6.0f MB/s, ratio %5.1f, %4.0f ns a line\n", what,
              megabytes, megabytes * 1000 / ours, megabytes * 1000 / counting, megabytes * 1000 / bare, ours / bare,
              ours * 1e6 / double(expected));
}

// The first lines of the journal as cells: numbers and dates typed.
void writeSheet(const QString& fileName, const QStringList& lines)
{
  const auto sheet = SpreadsheetWriter::create(fileName);
  sheet->startSheet(QStringLiteral("S"), QList<SheetColumn>(7));
  sheet->addTitleRow({QStringLiteral("1"), QStringLiteral("2"), QStringLiteral("3"), QStringLiteral("4"), QStringLiteral("5"),
                      QStringLiteral("6"), QStringLiteral("7")}, SheetRowLook::Bold);
  for (const QString& line : lines) {
    const QStringList cells = line.split(u';');
    sheet->beginRow();
    sheet->integer(cells[0].toLongLong());
    sheet->date(QDate::fromString(cells[1], QStringLiteral("dd.MM.yyyy")));
    sheet->integer(cells[2].toLongLong());
    sheet->text(cells[3]);
    sheet->text(cells[4]);
    sheet->integer(cells[5].toLongLong());
    sheet->number(QString(cells[6]).replace(u',', u'.').toDouble());
  }
  sheet->commit();
}

void measureSheets(const QTemporaryDir& folder, const QString& journalText)
{
  constexpr int sheetLines = 100'000;
  const QStringList lines = journalText.split(QStringLiteral("\r\n")).mid(0, sheetLines);
  TImportFilter filter(1);
  filter.LoadImportParams(QStringLiteral("[OPTIONS]NEW_DOCSEP=1##TXTFILE_SEP=SEMICOLON[##OPTIONS]") + wide);
  const QString textName = folder.filePath(QStringLiteral("part.txt"));
  QFile text(textName);
  if (!text.open(QIODevice::WriteOnly) || text.write(toWindows1251(lines.join(QStringLiteral("\r\n")))) < 0)
    qFatal("cannot write the journal");
  text.close();
  const double asText = medianMs(runs, [&] { cutLines<TImportTxt>(textName, filter); });
  for (const char* name : {"part.xls", "part.xlsx"}) {
    const QString fileName = folder.filePath(QLatin1StringView(name));
    writeSheet(fileName, lines);
    if (cutLines<TImportXLS>(fileName, filter) != sheetLines)
      qFatal("lines are missing");
    const double ours = medianMs(runs, [&] { cutLines<TImportXLS>(fileName, filter); });
    std::printf("%-34s %7.0f rows/s of 7 columns, as text %9.0f rows/s, ratio %5.1f\n", name + 4, sheetLines * 1000 / ours,
                sheetLines * 1000 / asText, ours / asText);
  }
}

}  // namespace

int main()
{
  const QTemporaryDir folder;
  const QString fileName = folder.filePath(QStringLiteral("journal.txt"));
  const QString delimited = journal(false);
  const QString fixed = journal(true);
  measure("1251, 7 columns of 7", fileName, toWindows1251(delimited), "SEMICOLON", wide);
  measure("1251, 3 columns of 7", fileName, toWindows1251(delimited), "SEMICOLON", narrow);
  measure("UTF-8, 7 columns of 7", fileName, delimited.toUtf8(), "SEMICOLON", wide);
  measure("1251, fixed width, 7 columns", fileName, toWindows1251(fixed), "FIXEDLEN", wide);
  measure("UTF-8, fixed width, 7 columns", fileName, fixed.toUtf8(), "FIXEDLEN", wide);
  measureSheets(folder, delimited);
  return 0;
}
