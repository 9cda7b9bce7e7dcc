#include "platform/xlsx_writer.h"

#include <QFile>
#include <QHash>
#include <QStringEncoder>
#include <algorithm>
#include <xlsxwriter.h>
#include <zip.h>

#include "data/data_error.h"
#include "platform/file_replacement.h"

namespace kalvor {

namespace {

constexpr int xlsxRows = 1'048'576;
constexpr int xlsxColumns = 16'384;

// XML has no place for these, escaped or not.
bool fitsXml(QStringView text)
{
  return std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() != 0 && c.unicode() < 0xFFFE; });
}

QString xmlText(QStringView text)
{
  QString fitting = text.toString();
  fitting.removeIf([](QChar c) { return !fitsXml(QStringView(&c, 1)); });
  return fitting;
}

// What the last bytes of a part's text must be; the end of a part that was cut off is missing.
bool endsWithRootTag(zip_t* archive, zip_int64_t index, bool sheet)
{
  zip_file_t* part = zip_fopen_index(archive, zip_uint64_t(index), 0);
  if (!part)
    return false;
  QByteArray tail;
  std::vector<char> block(1 << 18);
  zip_int64_t got = 0;
  while ((got = zip_fread(part, block.data(), block.size())) > 0) {
    const qsizetype kept = std::min<qsizetype>(got, 64);
    tail = tail.right(64 - kept) + QByteArray(block.data() + got - kept, kept);
  }
  const bool sound = zip_fclose(part) == 0 && got == 0;
  const QByteArray text = tail.trimmed();
  return sound && (sheet ? text.endsWith("</worksheet>") : text.endsWith('>'));
}

}  // namespace

XlsxWriter::XlsxWriter(const QString& fileName) : SpreadsheetWriter({xlsxRows, xlsxColumns})
{
  target_ = replacementTarget(fileName);
  file_.setFileTemplate(target_ + QStringLiteral(".XXXXXX"));
  if (!file_.open())
    fail(file_.errorString());
  path_ = QFile::encodeName(file_.fileName());
  file_.close();
  lxw_workbook_options options{};
  options.constant_memory = LXW_TRUE;
  workbook_ = workbook_new_opt(path_.constData(), &options);
  if (!workbook_)
    fail(QStringLiteral("недостатъчна памет"));
  static constexpr lxw_color_t colors[] = {0, 0, 0x0000FF, 0x008000};
  for (size_t look = 1; look < looks_.size(); ++look) {
    looks_[look] = workbook_add_format(workbook_);
    format_set_bold(looks_[look]);
    if (colors[look])
      format_set_font_color(looks_[look], colors[look]);
  }
  static constexpr const char* pictures[] = {"dd.mm.yyyy", "dd.mm.yyyy hh:mm:ss", "hh:mm:ss"};
  for (size_t i = 0; i < dates_.size(); ++i)
    dates_[i] = numberFormat(QLatin1String(pictures[i]));
}

// The library frees a workbook only by writing it; the unfinished file goes with file_.
XlsxWriter::~XlsxWriter()
{
  if (workbook_)
    lxw_workbook_free(workbook_);
}

void XlsxWriter::fail(const QString& reason) const
{
  throw DataError(QStringLiteral("Файлът '%1' не може да бъде записан: %2").arg(target_, reason));
}

void XlsxWriter::check(int error) const
{
  if (error != LXW_NO_ERROR)
    fail(QString::fromUtf8(lxw_strerror(lxw_error(error))));
}

lxw_format* XlsxWriter::numberFormat(const QString& picture)
{
  lxw_format* format = workbook_add_format(workbook_);
  format_set_num_format(format, picture.toUtf8().constData());
  return format;
}

void XlsxWriter::writeSheet(const QString& name, const QList<SheetColumn>& columns)
{
  checkRowsWritten();
  sheet_ = workbook_add_worksheet(workbook_, name.toUtf8().constData());
  if (!sheet_)
    fail(QStringLiteral("листът '%1' не може да бъде добавен").arg(name));
  sheets_.push_back(sheet_);
  QHash<QString, lxw_format*> known;
  columnFormats_.assign(size_t(columns.size()), nullptr);
  for (int i = 0; i < columns.size(); ++i) {
    const QString& picture = columns[i].numberFormat;
    if (!picture.isEmpty()) {
      if (!known.contains(picture))
        known.insert(picture, numberFormat(picture));
      columnFormats_[size_t(i)] = known.value(picture);
    }
    if (columns[i].width > 0)
      check(worksheet_set_column(sheet_, lxw_col_t(i), lxw_col_t(i), columns[i].width, nullptr));
  }
}

lxw_format* XlsxWriter::formatOf(int column, CellFormat format, SheetRowLook look) const
{
  switch (format) {
    case CellFormat::Column: return columnFormats_[size_t(column)] ? columnFormats_[size_t(column)] : looks_[size_t(look)];
    case CellFormat::Date: return dates_[0];
    case CellFormat::DateTime: return dates_[1];
    case CellFormat::Time: return dates_[2];
    default: return looks_[size_t(look)];
  }
}

void XlsxWriter::writeText(int row, int column, QStringView value, SheetRowLook look)
{
  if (!fitsXml(value)) {
    const QString fitting = xmlText(value);
    return writeText(row, column, fitting, look);
  }
  QStringEncoder encoder(QStringEncoder::Utf8, QStringEncoder::Flag::Stateless);
  utf8_.resize(size_t(encoder.requiredSpace(value.size())));
  utf8_.resize(size_t(encoder.appendToBuffer(utf8_.data(), value) - utf8_.data()));
  check(worksheet_write_string(sheet_, lxw_row_t(row), lxw_col_t(column), utf8_.c_str(), looks_[size_t(look)]));
}

void XlsxWriter::writeNumber(int row, int column, double value, CellFormat format, SheetRowLook look)
{
  check(worksheet_write_number(sheet_, lxw_row_t(row), lxw_col_t(column), value, formatOf(column, format, look)));
}

void XlsxWriter::writeBoolean(int row, int column, bool value, SheetRowLook look)
{
  check(worksheet_write_boolean(sheet_, lxw_row_t(row), lxw_col_t(column), value, looks_[size_t(look)]));
}

// The library does not look at what its temporary file answers.
void XlsxWriter::checkRowsWritten() const
{
  for (lxw_worksheet* sheet : sheets_) {
    std::FILE* rows = sheet->optimize_tmpfile;
    if (rows && (std::fflush(rows) != 0 || std::ferror(rows)))
      fail(QStringLiteral("няма място за временните файлове"));
  }
}

void XlsxWriter::checkComplete() const
{
  int error = 0;
  zip_t* archive = zip_open(path_.constData(), ZIP_RDONLY | ZIP_CHECKCONS, &error);
  bool sound = archive != nullptr;
  const zip_int64_t parts = sound ? zip_get_num_entries(archive, 0) : 0;
  for (zip_int64_t i = 0; sound && i < parts; ++i) {
    const QByteArray name(zip_get_name(archive, zip_uint64_t(i), 0));
    sound = endsWithRootTag(archive, i, name.startsWith("xl/worksheets/sheet"));
  }
  if (archive)
    zip_discard(archive);
  if (!sound || parts == 0)
    fail(QStringLiteral("няма място за временните файлове"));
}

void XlsxWriter::finish()
{
  checkRowsWritten();
  check(workbook_close(std::exchange(workbook_, nullptr)));
  checkComplete();
  QString reason;
  if (!replaceFile(file_, target_, reason))
    fail(reason);
}

}  // namespace kalvor
