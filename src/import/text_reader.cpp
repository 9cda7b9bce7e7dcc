#include "import/text_reader.h"

#include <algorithm>
#include <array>
#include <cctype>

#include "common/delimited_list.h"
#include "data/data_error.h"
#include "import/messages.h"
#include "session/import_log.h"

namespace kalvor {
namespace {

struct SeparatorOption {
  const char16_t* value;
  TDelimiter kind;
};
constexpr std::array separatorOptions{SeparatorOption{u"TAB", dtTab}, SeparatorOption{u"SEMICOLON", dtSemiColon},
                                      SeparatorOption{u"FIXEDLEN", dtFixedLen}, SeparatorOption{u"COMMA", dtComma}};

TDelimiter separatorOption(const TImportFilter& filter)
{
  const QString value = filter.option(QStringLiteral("TXTFILE_SEP")).toUpper();
  const auto option = std::find_if(separatorOptions.begin(), separatorOptions.end(),
                                   [&](const SeparatorOption& known) { return value == known.value; });
  return option == separatorOptions.end() ? dtChar : option->kind;
}

bool isBlankTextLine(const QByteArray& line)
{
  return std::all_of(line.begin(), line.end(), [](char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; });
}

// Into the memory that the target has already.
void keepBytes(QByteArrayView bytes, QByteArray& target)
{
  target.resize(bytes.size());
  std::copy(bytes.begin(), bytes.end(), target.data());
}

}  // namespace

TImportTxt::TImportTxt(const QString& fileName, const TImportFilter& filter, const ImportServices& services)
    : TImportBase(fileName, filter, services)
{
  if (!lines_.open(fileName))
    throw TImportException(_err_OpenFile, QStringLiteral("TImportTxt.Create"));
  opened_ = true;
  firstRow_ = std::max(1, filter.option(QStringLiteral("FIRST_ROW")).trimmed().toInt());
  rowCounter_ = firstRow_;
  setFixedRanges();
  SetDelimiter(separatorOption(filter));
  goToFirstRow();
}

TImportTxt::~TImportTxt() = default;

void TImportTxt::SetDelimiter(TDelimiter kind, const QString& separator)
{
  delimiter_ = kind;
  columns_.setDelimiter(kind, separator, lines_.encoding());
}

void TImportTxt::setFixedRanges()
{
  constexpr int rangeItem = 3, mostPositions = 100'000;
  std::vector<TextColumns::Range> ranges;
  std::vector<bool> known;
  for (const ImportEntries* list : {&filter_.CdsMaster, &filter_.CdsDetail})
    for (int i = 0; i < list->count(); ++i) {
      const int position = list->name(i).trimmed().toInt();
      if (position < 0 || position >= mostPositions)
        continue;
      const auto index = size_t(position);
      if (index >= ranges.size()) {
        ranges.resize(index + 1);
        known.resize(index + 1);
      }
      const QString range = GetItemAtPos(list->value(i), QStringLiteral("|"), rangeItem);
      if (!known[index])
        ranges[index] = {range.section(u'-', 0, 0).trimmed().toInt(), range.section(u'-', 1, 1).trimmed().toInt()};
      known[index] = true;
    }
  columns_.setRanges(std::move(ranges));
}

QString TImportTxt::textAt(int position) const { return columns_.text(position); }

QString TImportTxt::GetValueAtPos(QByteArrayView row, int position)
{
  columns_.setRow(row);
  return columns_.text(position);
}

bool TImportTxt::IsNewMasterLine(QByteArrayView row)
{
  columns_.setRow(row);
  return startsDocument();
}

int TImportTxt::FillImportLine(QByteArrayView row, const ImportEntries& fields, TImportLine& line)
{
  columns_.setRow(row);
  return fillLine(fieldsOf(fields), rowCounter_, line);
}

bool TImportTxt::startsDocument()
{
  bool starts = false;
  for (DocumentBreak& documentBreak : breaks_) {
    const QByteArrayView value = columns_.column(documentBreak.position);
    if (value == QByteArrayView(documentBreak.lastValue)) {
      starts = starts || value.isEmpty();
      continue;
    }
    starts = starts || documentBreak.lastValue.isEmpty() || !value.isEmpty();
    keepBytes(value, documentBreak.lastValue);
  }
  return starts;
}

void TImportTxt::goToFirstRow()
{
  lines_.rewind();
  QByteArrayView skipped;
  for (int row = 1; row < firstRow_ && lines_.read(skipped) != LineReader::Result::End; ++row) {
  }
}

int TImportTxt::GetRecordCount()
{
  if (!opened_)
    return 0;
  goToFirstRow();
  int count = 0;
  if (!breaks_.isEmpty()) {
    QByteArrayView line;
    for (auto result = lines_.read(line); result != LineReader::Result::End; result = lines_.read(line))
      count += result == LineReader::Result::Line && IsNewMasterLine(line) ? 1 : 0;
  }
  goToFirstRow();
  return count;
}

bool TImportTxt::takeNextLine()
{
  const LineReader::Result result = lines_.read(current_);
  if (result == LineReader::Result::End)
    throw DataError(_err_EndOfFile);
  ++rowCounter_;
  if (result == LineReader::Result::TooLong)
    throw DataError(_err_LineTooLong);
  columns_.setRow(current_);
  return !current_.isEmpty();
}

// False: only blanks and line ends are left.
bool TImportTxt::takeFirstLine()
{
  if (isAtEnd())
    return false;
  if (!pending_.isEmpty()) {
    firstLine_.swap(pending_);
    pending_.resize(0);
    current_ = firstLine_;
    columns_.setRow(current_);
    return true;
  }
  while (!lines_.onlyBlanksLeft())
    if (takeNextLine())
      return true;
  return false;
}

bool TImportTxt::isAtEnd() { return lines_.onlyBlanksLeft() && isBlankTextLine(pending_); }

// False: a lookup of the line failed. A line without cells is no detail line.
bool TImportTxt::appendDetail(TImportSet& details)
{
  TImportLine detail;
  const bool filled = fillLine(detailFields_, rowCounter_, detail) == 0;
  if (!detail.isEmpty())
    details.append(std::move(detail));
  return filled;
}

bool TImportTxt::readDocument(TImportLine& master, TImportSet& details)
{
  bool filled = fillLine(masterFields_, rowCounter_, master) == 0;
  startsDocument();
  if (filter_.CdsDetail.isEmpty())
    return filled;
  filled = filled && appendDetail(details);
  while (!lines_.onlyBlanksLeft()) {
    takeNextLine();
    if (startsDocument() || details.isEmpty()) {
      keepBytes(current_, pending_);
      break;
    }
    filled = filled && appendDetail(details);
  }
  return filled;
}

int TImportTxt::ReadRecord(TImportLine& master, TImportSet& details, QString& error)
{
  try {
    if (!opened_)
      throw DataError(_err_FileNotOpened);
    if (!takeFirstLine()) {
      endOfData_ = true;
      return -1;
    }
    master.clear();
    details.clear();
    const bool filled = readDocument(master, details);
    endOfData_ = isAtEnd();
    if (!filled)
      throw DataError(_err_FillImportLine);
    return 0;
  } catch (const DataError& failure) {
    endOfData_ = failure.message() == _err_EndOfFile || !opened_ || isAtEnd();
    return failRecord(failure.message(), rowCounter_, QStringLiteral("TImportTxt.ReadRecord"), error);
  }
}

}  // namespace kalvor
