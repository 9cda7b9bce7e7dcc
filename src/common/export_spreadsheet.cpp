#include "common/export_spreadsheet.h"

#include <QRegularExpression>
#include <algorithm>
#include <optional>

#include "common/caption_list.h"
#include "common/export_ending.h"
#include "common/export_run.h"
#include "forms/grid_view.h"
#include "platform/spreadsheet_writer.h"
#include "session/error_log.h"

namespace kalvor {

namespace {

const QString sheetContext = QStringLiteral("CommonUtils.ExportToXLS");
const QString sheetOpenContext =
    QStringLiteral("CommomUtils.ExportToXLS - unable to establish connecion to Excel");
constexpr int narrowestColumn = 8;
constexpr int widestColumn = 60;

// How the two routines name the columns of a sheet.
struct ColumnNaming {
  ExportOrder order;
  bool detailByPrefix;  // every detail column gets the prefix; else those that share a field name with the master
  QString prefix;
  bool replaceDots;
};

ColumnNaming commonNaming() { return {ExportOrder::OfFields, false, QStringLiteral("Детайли_"), false}; }
ColumnNaming formNaming() { return {ExportOrder::OfCaptions, true, QStringLiteral("_"), true}; }

struct SheetExport {
  TClientDataSet* master;
  TClientDataSet* detail;
  QStringList masterFields, detailFields;
  QString fileName, sheetName;
  ColumnNaming naming;
  std::function<void()> beforeRecord;
};

QStringList columnNames(const SheetExport& task)
{
  QStringList names;
  for (const QString& field : task.masterFields)
    names.append(task.master->FieldByName(field)->DisplayLabel.trimmed());
  for (const QString& field : task.detailFields) {
    const QString label = task.detail->FieldByName(field)->DisplayLabel.trimmed();
    const bool prefixed = task.naming.detailByPrefix || task.masterFields.contains(field, Qt::CaseInsensitive);
    names.append(prefixed ? task.naming.prefix + label : label);
  }
  if (task.naming.replaceDots)
    names.replaceInStrings(QStringLiteral("."), QStringLiteral("_"));
  return names;
}

// A field's number picture where a spreadsheet reads it the same way.
QString numberFormatOf(const TField* field)
{
  static const QRegularExpression plain(QStringLiteral("^[#,]*0?[#0,]*(\\.[0#]+)?$"));
  if (!isRealType(field->FieldDataType()))
    return {};
  if (!field->DisplayFormat.isEmpty() && plain.match(field->DisplayFormat).hasMatch())
    return field->DisplayFormat;
  return field->FieldDataType() == DataType::Currency ? QStringLiteral("#,##0.00") : QString();
}

QList<SheetColumn> sheetColumns(const SheetExport& task, const QStringList& names)
{
  QList<SheetColumn> columns;
  const auto add = [&](const TClientDataSet* dataSet, const QStringList& fields) {
    for (const QString& name : fields) {
      const TField* field = dataSet->FieldByName(name);
      const int width = std::max(GetColSize(field), int(names[columns.size()].size()));
      columns.append({double(std::clamp(width, narrowestColumn, widestColumn)), numberFormatOf(field)});
    }
  };
  add(task.master, task.masterFields);
  if (task.detail)
    add(task.detail, task.detailFields);
  return columns;
}

void putVariant(SpreadsheetWriter& sheet, const TField* field, qsizetype row)
{
  const Variant value = field->ValueAt(row);
  if (isNull(value))
    return sheet.empty();
  switch (value.typeId()) {
    case QMetaType::Bool: return sheet.boolean(value.toBool());
    case QMetaType::Int:
    case QMetaType::LongLong: return sheet.integer(value.toLongLong());
    case QMetaType::Double: return sheet.number(value.toDouble());
    case QMetaType::QDate: return sheet.date(value.toDate());
    case QMetaType::QTime: return sheet.time(value.toTime());
    case QMetaType::QDateTime: return sheet.dateTime(value.toDateTime());
    default: return sheet.text(field->AsStringAt(row));
  }
}

void putCell(SpreadsheetWriter& sheet, const ExportColumn& source, ExportRow row)
{
  if (!source.column || row.stored < 0)
    return putVariant(sheet, source.field, row.row);
  const Column& column = *source.column;
  const DataType type = source.field->FieldDataType();
  if (column.isNull(row.stored))
    return sheet.empty();
  if (isTextType(type))
    return sheet.text(column.textAt(row.stored));
  if (isRealType(type))
    return sheet.number(column.realAt(row.stored));
  if (isIntegerType(type))
    return sheet.integer(column.integerAt(row.stored));
  if (type == DataType::Date)
    return sheet.date(QDate::fromJulianDay(column.integerAt(row.stored)));
  putVariant(sheet, source.field, row.row);
}

void putCells(SpreadsheetWriter& sheet, const ExportColumns& columns, ExportRow row)
{
  for (qsizetype i = 0; i < columns.count(); ++i)
    putCell(sheet, columns[i], row);
}

bool writeRecords(SpreadsheetWriter& sheet, const SheetExport& task, RunProgress* progress)
{
  ExportColumns master(task.master, task.masterFields);
  std::optional<ExportColumns> detail;
  if (task.detail)
    detail.emplace(task.detail, task.detailFields);
  ExportWalk walk;
  walk.master = task.master;
  walk.detail = task.detail;
  walk.handlers = ScrollHandlers::Detached;
  walk.beforeRecord = task.beforeRecord;
  walk.progress = progress;
  walk.fileName = task.fileName;
  const auto rebind = [&] {
    master.bind();
    if (detail)
      detail->bind();
  };
  const auto addRow = [&](ExportRow masterRow, ExportRow detailRow) {
    sheet.beginRow();
    putCells(sheet, master, masterRow);
    if (detail)
      putCells(sheet, *detail, detailRow);
  };
  if (!walkExport(walk, rebind, addRow))
    return false;
  sheet.commit();
  return true;
}

// Null: it is in the log.
std::unique_ptr<SpreadsheetWriter> openSheet(const SheetExport& task)
{
  std::unique_ptr<SpreadsheetWriter> sheet;
  const bool opened = loggingErrors(sheetOpenContext, [&] {
    sheet = SpreadsheetWriter::create(task.fileName);
    const QStringList names = columnNames(task);
    sheet->startSheet(task.sheetName, sheetColumns(task, names));
    sheet->addTitleRow(names, SheetRowLook::Bold);
  });
  return opened ? std::move(sheet) : nullptr;
}

ExportEnding runSheetExport(const SheetExport& task, RunProgress* progress)
{
  if (!task.master || !task.master->Active()) {
    LogError(QStringLiteral("Няма отворени данни за експорт"), sheetContext);
    return ExportEnding::Failed;
  }
  const std::unique_ptr<SpreadsheetWriter> sheet = openSheet(task);
  return sheet ? endingOf(sheetContext, [&] { return writeRecords(*sheet, task, progress); }) : ExportEnding::Failed;
}

SheetExport sheetExport(TClientDataSet* master, TClientDataSet* detail, const QString& masterCaptions,
                        const QString& detailCaptions, const ColumnNaming& naming)
{
  SheetExport task{};
  task.master = master;
  task.detail = detail;
  task.masterFields = chosenFields(master, captionsOfList(masterCaptions), naming.order);
  task.detailFields = chosenFields(detail, captionsOfList(detailCaptions), naming.order);
  task.naming = naming;
  return task;
}

}  // namespace

void CommonExportToXLS(TClientDataSet* master, TClientDataSet* detail, const QString& masterCaptions,
                       const QString& detailCaptions, const QString& fileName, const QString& sheetName,
                       const std::function<void()>& beforeRecord)
{
  SheetExport task = sheetExport(master, detail, masterCaptions, detailCaptions, commonNaming());
  task.fileName = fileName;
  task.sheetName = sheetName;
  task.beforeRecord = beforeRecord;
  runSheetExport(task, nullptr);
}

void ExportToXLS(TClientDataSet* master, TClientDataSet* detail, const QString& masterCaptions,
                 const QString& detailCaptions, const QString& fileName, const QString& sheetName,
                 const std::function<void()>& beforeRecord)
{
  SheetExport task = sheetExport(master, detail, masterCaptions, detailCaptions, formNaming());
  task.fileName = fileName;
  task.sheetName = sheetName;
  task.beforeRecord = beforeRecord;
  std::unique_ptr<RunProgress> progress = exportProgress();
  const ExportEnding ending = runSheetExport(task, progress.get());
  progress.reset();
  tellEnding(ending);
}

}  // namespace kalvor
