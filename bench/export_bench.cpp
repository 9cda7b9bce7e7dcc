// Export of 100,000 records of 12 fields to text, .xls and .xlsx, against the barest loops over the same values in the
// same run: fprintf for text, gzprintf of the same rows for sheets. By processor time, the median of several runs: what else
// the machine does, and how fast its disk is, does not count.
//
//   export_bench [records]
#include <QCoreApplication>
#include <QDate>
#include <QTemporaryDir>
#include <cstdio>
#include <ctime>
#include <random>
#include <zlib.h>

#include "common/export_spreadsheet.h"
#include "common/export_text.h"
#include "timing.h"

using namespace kalvor;

namespace {

constexpr int integerFields = 3, realFields = 4, textFields = 4;
constexpr int runs = 3;

struct SourceRow {
  qint64 integers[integerFields];
  double reals[realFields];
  QDate day;
  QByteArray texts[textFields];    // Windows-1251, for the bare loops
  QByteArray utf8[textFields];
};

std::vector<SourceRow> sourceRows(int count)
{
  static const char16_t* const words[] = {u"Захар", u"Брашно", u"Щайга", u"Олио", u"Йогурт", u"Ябълки", u"Цимент"};
  std::mt19937 random(7);
  std::vector<SourceRow> rows;
  rows.resize(size_t(count));
  for (int i = 0; i < count; ++i) {
    SourceRow& row = rows[size_t(i)];
    row.integers[0] = i;
    row.integers[1] = random() % 50;
    row.integers[2] = random() % 2;
    for (double& real : row.reals)
      real = double(random() % 1000000) / 100;
    row.day = QDate(2020, 1, 1).addDays(random() % 2000);
    for (int text = 0; text < textFields; ++text) {
      const QString value = QString::fromUtf16(words[random() % std::size(words)]) + u' ' +
                            QString::number(text == 0 ? i : int(random() % 300));
      row.utf8[text] = value.toUtf8();
      row.texts[text] = QByteArray(value.size(), 'x');
    }
  }
  return rows;
}

void fill(TClientDataSet& dataSet, const std::vector<SourceRow>& rows)
{
  QList<FieldDef> fields;
  const auto add = [&](DataType type, int count) {
    for (int i = 0; i < count; ++i) {
      FieldDef field;
      field.name = QStringLiteral("F%1").arg(fields.size());
      field.type = type;
      field.size = type == DataType::WideString ? 20 : 0;
      fields.append(field);
    }
  };
  add(DataType::LargeInt, integerFields);
  add(DataType::Float, realFields);
  add(DataType::Date, 1);
  add(DataType::WideString, textFields);
  RecordSet records(fields);
  for (const SourceRow& row : rows) {
    size_t column = 0;
    for (qint64 value : row.integers)
      records.columns[column++].appendInteger(value);
    for (double value : row.reals)
      records.columns[column++].appendReal(value);
    records.columns[column++].appendInteger(row.day.toJulianDay());
    for (const QByteArray& value : row.utf8)
      records.columns[column++].appendUtf8(std::string_view(value.constData(), size_t(value.size())));
  }
  records.rows = qsizetype(rows.size());
  dataSet.SetRecords(std::move(records));
}

void bareText(const std::vector<SourceRow>& rows, const QByteArray& path)
{
  std::FILE* file = std::fopen(path.constData(), "wb");
  for (const SourceRow& row : rows) {
    for (qint64 value : row.integers)
      std::fprintf(file, "%lld\t", static_cast<long long>(value));
    for (double value : row.reals)
      std::fprintf(file, "%.2f\t", value);
    int year = 0, month = 0, day = 0;
    row.day.getDate(&year, &month, &day);
    std::fprintf(file, "%02d.%02d.%04d", day, month, year);
    for (const QByteArray& value : row.texts)
      std::fprintf(file, "\t%s", value.constData());
    std::fprintf(file, "\r\n");
  }
  std::fclose(file);
}

// The rows of a sheet as printf writes them, packed at the quickest level.
void bareSheet(const std::vector<SourceRow>& rows, const QByteArray& path)
{
  gzFile file = gzopen(path.constData(), "wb1");
  int number = 0;
  for (const SourceRow& row : rows) {
    ++number;
    char column = 'A';
    gzprintf(file, "<row r=\"%d\">", number);
    for (qint64 value : row.integers)
      gzprintf(file, "<c r=\"%c%d\"><v>%lld</v></c>", column++, number, static_cast<long long>(value));
    for (double value : row.reals)
      gzprintf(file, "<c r=\"%c%d\"><v>%.16g</v></c>", column++, number, value);
    gzprintf(file, "<c r=\"%c%d\" s=\"4\"><v>%lld</v></c>", column++, number,
             static_cast<long long>(QDate(1899, 12, 30).daysTo(row.day)));
    for (const QByteArray& value : row.utf8)
      gzprintf(file, "<c r=\"%c%d\" t=\"inlineStr\"><is><t>%s</t></is></c>", column++, number, value.constData());
    gzputs(file, "</row>");
  }
  gzclose(file);
}

double processorMilliseconds()
{
  timespec now{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return double(now.tv_sec) * 1e3 + double(now.tv_nsec) / 1e6;
}

template <class Body>
double medianProcessorMs(Body body)
{
  std::vector<double> times;
  for (int i = 0; i < runs; ++i) {
    const double before = processorMilliseconds();
    body();
    times.push_back(processorMilliseconds() - before);
  }
  std::sort(times.begin(), times.end());
  return times[times.size() / 2];
}

void rowsPerSecond(const char* what, qsizetype rows, double milliseconds)
{
  std::printf("%-46s %10.0f rows/s\n", what, double(rows) / milliseconds * 1000);
}

}  // namespace

int main(int argc, char** argv)
{
  const QCoreApplication application(argc, argv);
  const std::vector<SourceRow> rows = sourceRows(argc > 1 ? atoi(argv[1]) : 100'000);
  TClientDataSet dataSet;
  fill(dataSet, rows);
  QStringList captions;
  for (const TField* field : dataSet.Fields())
    captions.append(field->DisplayLabel);
  const QString all = captions.join(u',');
  const QTemporaryDir folder;
  const auto path = [&](const char* name) { return folder.filePath(QLatin1String(name)); };

  const auto text = [&](TDelimiter delimiter) {
    return medianProcessorMs([&] {
      CommonExportToTXT(path("a.txt"), &dataSet, nullptr, all, {}, delimiter, {}, 2, true, false);
    });
  };
  const auto sheet = [&](const char* name) {
    return medianProcessorMs([&] { CommonExportToXLS(&dataSet, nullptr, all, {}, path(name), QStringLiteral("S")); });
  };
  const double bareTextMs = medianProcessorMs([&] { bareText(rows, path("b.txt").toUtf8()); });
  const double bareSheetMs = medianProcessorMs([&] { bareSheet(rows, path("b.gz").toUtf8()); });
  const double textMs = text(dtTab), fixedMs = text(dtFixedLen), xlsMs = sheet("a.xls"), xlsxMs = sheet("a.xlsx");
  bench::line("text, separated by tabs", textMs, "fprintf", bareTextMs);
  bench::line("text of fixed width", fixedMs, "fprintf", bareTextMs);
  bench::line(".xls", xlsMs, "gzprintf, .xlsx rows", bareSheetMs);
  bench::line(".xlsx", xlsxMs, "gzprintf", bareSheetMs);
  rowsPerSecond("text, separated by tabs", dataSet.RecordCount(), textMs);
  rowsPerSecond("text of fixed width", dataSet.RecordCount(), fixedMs);
  rowsPerSecond(".xls", dataSet.RecordCount(), xlsMs);
  rowsPerSecond(".xlsx", dataSet.RecordCount(), xlsxMs);
  return 0;
}
