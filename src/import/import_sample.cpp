#include "import/import_sample.h"

#include <QFileInfo>
#include <QMap>
#include <algorithm>
#include <array>

#include "data/data_error.h"
#include "import/messages.h"
#include "platform/line_reader.h"
#include "platform/spreadsheet_reader.h"
#include "platform/xml_table.h"

namespace kalvor {
namespace {

constexpr int mostSampleColumns = 200;
constexpr qsizetype longestSampleLine = 4000;  // characters shown of a line

struct SampleDelimiter {
  const char16_t* option;
  char16_t sign;
};
constexpr std::array sampleDelimiters{SampleDelimiter{u"SEMICOLON", u';'}, SampleDelimiter{u"TAB", u'\t'},
                                      SampleDelimiter{u"COMMA", u','}};

QString fileText(QByteArrayView bytes, TextEncoding encoding)
{
  return encoding == TextEncoding::Utf8 ? QString::fromUtf8(bytes) : fromWindows1251(bytes);
}

// The ranges that the entries give, by their position; the first of one counts.
QMap<int, std::pair<int, int>> fixedRanges(const TImportFilter& filter)
{
  constexpr int rangeItem = 3;
  QMap<int, std::pair<int, int>> ranges;
  for (const ImportEntries* list : {&filter.CdsMaster, &filter.CdsDetail})
    for (int i = 0; i < list->count(); ++i) {
      const int position = list->name(i).trimmed().toInt();
      const QString range = list->value(i).split(u'|').value(rangeItem);
      const int from = range.section(u'-', 0, 0).trimmed().toInt(), to = range.section(u'-', 1, 1).trimmed().toInt();
      if (position > 0 && position <= mostSampleColumns && from > 0 && to > from && !ranges.contains(position))
        ranges.insert(position, {from, to});
    }
  return ranges;
}

QStringList cutFixed(const QString& line, const QMap<int, std::pair<int, int>>& ranges)
{
  QStringList columns;
  for (auto range = ranges.cbegin(); range != ranges.cend(); ++range) {
    while (columns.size() < range.key())
      columns.append(QString());
    columns[range.key() - 1] = line.mid(range->first - 1, range->second - range->first);
  }
  columns.append(line);
  return columns;
}

QString optionDelimiter(const TImportFilter& filter)
{
  const QString value = filter.option(QStringLiteral("TXTFILE_SEP")).toUpper();
  const bool known = value == u"FIXEDLEN" || std::any_of(sampleDelimiters.begin(), sampleDelimiters.end(), [&](const auto& delimiter) {
                       return value == delimiter.option;
                     });
  return known ? value : QString();
}

void readTextSample(const QString& fileName, const TImportFilter& filter, int mostRows, ImportSample& sample)
{
  LineReader reader;
  if (!reader.open(fileName))
    throw DataError(_err_OpenFile);
  sample.encoding = reader.encoding() == TextEncoding::Utf8 ? QStringLiteral("UTF-8") : QStringLiteral("Windows-1251");
  QStringList lines;
  QByteArrayView bytes;
  LineReader::Result result = reader.read(bytes);
  for (; result != LineReader::Result::End && lines.size() < mostRows; result = reader.read(bytes))
    lines.append(result == LineReader::Result::TooLong ? _err_LineTooLong
                                                       : fileText(bytes, reader.encoding()).left(longestSampleLine));
  sample.moreRows = result != LineReader::Result::End;
  sample.delimiter = optionDelimiter(filter);
  if (sample.delimiter.isEmpty()) {
    sample.delimiter = likelyDelimiter(lines);
    sample.delimiterFound = !sample.delimiter.isEmpty();
  }
  const QMap<int, std::pair<int, int>> ranges = fixedRanges(filter);
  const auto* sign = std::find_if(sampleDelimiters.begin(), sampleDelimiters.end(),
                                  [&](const auto& delimiter) { return sample.delimiter == delimiter.option; });
  for (const QString& line : lines)
    sample.rows.append(sample.delimiter == u"FIXEDLEN" ? cutFixed(line, ranges)
                       : sign == sampleDelimiters.end() ? QStringList{line}
                                                        : line.split(QChar(sign->sign)));
}

void takeTable(const TextTable& table, int firstRow, int mostRows, ImportSample& sample)
{
  const int columns = std::min(table.columnCount(), mostSampleColumns);
  const auto row = [&](int index) {
    QStringList texts;
    for (int column = 0; column < columns; ++column)
      texts.append(table.text(index, column).trimmed().toString());
    return texts;
  };
  if (firstRow > 0 && table.rowCount() > 0)
    sample.headings = row(0);
  for (int index = firstRow; index < table.rowCount() && sample.rows.size() < mostRows; ++index)
    sample.rows.append(row(index));
  sample.moreRows = table.rowCount() > firstRow + mostRows;
}

}  // namespace

QString likelyDelimiter(const QStringList& lines)
{
  QString best;
  qsizetype most = 0;
  for (const SampleDelimiter& delimiter : sampleDelimiters) {
    qsizetype fewest = -1;
    for (const QString& line : lines)
      if (!line.trimmed().isEmpty()) {
        const qsizetype count = line.count(QChar(delimiter.sign));
        fewest = fewest < 0 ? count : std::min(fewest, count);
      }
    if (fewest > most) {
      most = fewest;
      best = QString::fromUtf16(delimiter.option);
    }
  }
  return best;
}

ImportSample readImportSample(const QString& fileName, const TImportFilter& filter, int mostRows)
{
  ImportSample sample;
  try {
    const QString extension = QFileInfo(fileName).suffix().toUpper();
    if (extension == u"XLS" || extension == u"XLSX") {
      TFormatSettings settings;
      SetFormatSetting(filter, settings);
      sample.source = ImportSample::Source::Sheet;
      takeTable(readSpreadsheet(fileName, {settings.DecimalSeparator, settings.DateSeparator, settings.ShortDateFormat}),
                1, mostRows, sample);
    } else if (extension == u"XML") {
      sample.source = ImportSample::Source::Xml;
      takeTable(readXmlFile(fileName, filter.DPSchema.toUtf8()), 0, mostRows, sample);
    } else {
      readTextSample(fileName, filter, mostRows, sample);
    }
  } catch (const DataError& error) {
    sample.rows.clear();
    sample.headings.clear();
    sample.error = error.message();
  }
  sample.columnCount = int(sample.headings.size());
  for (QStringList& row : sample.rows) {
    sample.columnCount = std::max(sample.columnCount, int(std::min<qsizetype>(row.size(), mostSampleColumns)));
    row = row.first(std::min<qsizetype>(row.size(), mostSampleColumns));
  }
  return sample;
}

}  // namespace kalvor
