#include "import/table_reader.h"

#include <algorithm>

#include "common/delimited_list.h"
#include "data/data_error.h"
#include "import/messages.h"
#include "platform/spreadsheet_reader.h"
#include "platform/xml_table.h"
#include "session/import_log.h"

namespace kalvor {

TImportDS::TImportDS(const QString& fileName, const TImportFilter& filter, const ImportServices& services)
    : TImportBase(fileName, filter, services)
{
  constexpr int defaultItem = 4;
  for (const ImportEntries* list : {&filter.CdsMaster, &filter.CdsDetail})
    for (int i = 0; i < list->count(); ++i)
      missing_.insert(list->name(i).trimmed().toInt(), GetItemAtPos(list->value(i), QStringLiteral("|"), defaultItem));
}

TImportDS::~TImportDS() = default;

void TImportDS::openTable(TextTable&& table, int firstRow)
{
  table_ = std::move(table);
  firstRow_ = firstRow;
  rowCount_ = std::max(0, table_.rowCount() - firstRow);
  rowCounter_ = 1;
  opened_ = true;
  endOfData_ = rowCount_ == 0;
}

int TImportDS::GetRecordCount() { return rowCount_; }

QString TImportDS::textAt(int position) const
{
  const auto missing = missing_.constFind(position);
  if (missing == missing_.constEnd() || position < 1)
    return {};
  return position > table_.columnCount() ? *missing
                                         : table_.text(firstRow_ + currentRow_, position - 1).trimmed().toString();
}

bool TImportDS::IsNewMasterLine()
{
  bool starts = false;
  for (DocumentBreak& documentBreak : breaks_) {
    if (documentBreak.position < 1)
      break;
    const QByteArray value = textAt(documentBreak.position).toUtf8();
    starts = starts || documentBreak.lastValue.isEmpty() || (!value.isEmpty() && value != documentBreak.lastValue);
    if (!value.isEmpty())
      documentBreak.lastValue = value;
  }
  return starts;
}

int TImportDS::FillImportLine(const ImportEntries& fields, TImportLine& line)
{
  return fillLine(fieldsOf(fields), nextRow_ + 1, line);
}

void TImportDS::advance()
{
  ++nextRow_;
  ++rowCounter_;
  endOfData_ = nextRow_ >= rowCount_;
}

// False: a lookup of the row failed. A row without cells is no detail line.
bool TImportDS::appendDetail(TImportSet& details)
{
  TImportLine detail;
  const bool filled = fillLine(detailFields_, nextRow_ + 1, detail) == 0;
  if (!detail.isEmpty())
    details.append(std::move(detail));
  return filled;
}

bool TImportDS::readDocument(TImportLine& master, TImportSet& details)
{
  currentRow_ = nextRow_;
  advance();
  bool filled = fillLine(masterFields_, nextRow_ + 1, master) == 0;
  IsNewMasterLine();
  if (filter_.CdsDetail.isEmpty())
    return filled;
  filled = filled && appendDetail(details);
  while (nextRow_ < rowCount_ && !details.isEmpty()) {
    currentRow_ = nextRow_;
    if (IsNewMasterLine())
      break;
    filled = filled && appendDetail(details);
    advance();
  }
  return filled;
}

int TImportDS::ReadRecord(TImportLine& master, TImportSet& details, QString& error)
{
  try {
    if (!opened_)
      throw DataError(_err_FileNotOpened);
    if (nextRow_ >= rowCount_) {
      endOfData_ = true;
      return -1;
    }
    master.clear();
    details.clear();
    if (!readDocument(master, details))
      throw DataError(_err_FillImportLine);
    return 0;
  } catch (const DataError& failure) {
    // A run that goes on after an error must find an end.
    endOfData_ = nextRow_ >= rowCount_;
    return failRecord(failure.message(), nextRow_ + 1, QStringLiteral("TImportDS.ReadRecord"), error);
  }
}

TImportXLS::TImportXLS(const QString& fileName, const TImportFilter& filter, const ImportServices& services)
    : TImportDS(fileName, filter, services)
{
  constexpr int behindHeadings = 1;
  TFormatSettings settings;
  SetFormatSetting(filter, settings);
  try {
    openTable(readSpreadsheet(fileName, {settings.DecimalSeparator, settings.DateSeparator, settings.ShortDateFormat}),
              behindHeadings);
  } catch (const DataError& failure) {
    ImportLogError(_err_ExcelConnection + QStringLiteral("\r\n") + failure.message(),
                   QStringLiteral("TImportXLS.Create"));
  }
}

TImportXML::TImportXML(const QString& fileName, const TImportFilter& filter, const ImportServices& services)
    : TImportDS(fileName, filter, services)
{
  try {
    openTable(readXmlFile(fileName, filter.DPSchema.toUtf8()), 0);
  } catch (const DataError& failure) {
    ImportLogError(_err_OpenFile + QStringLiteral("\r\n") + failure.message(), QStringLiteral("TImportXML.Create"));
  }
}

}  // namespace kalvor
