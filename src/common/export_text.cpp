#include "common/export_text.h"

#include <QSaveFile>
#include <optional>

#include "common/caption_list.h"
#include "common/export_ending.h"
#include "common/export_run.h"
#include "common/export_text_cells.h"

namespace kalvor {

namespace {

constexpr qsizetype writtenAtOnce = 1 << 20;

struct TextExport {
  QString fileName;
  TClientDataSet* master;
  TClientDataSet* detail;
  QStringList masterFields, detailFields;
  ExportTextFormat format;
  bool captions;
};

class TextFile {
 public:
  explicit TextFile(const QString& fileName) : file_(fileName)
  {
    if (!file_.open(QIODevice::WriteOnly))
      fail();
  }
  void write(QByteArray& bytes)
  {
    if (file_.write(bytes) != bytes.size())
      fail();
    bytes.resize(0);
  }
  void commit()
  {
    if (!file_.commit())
      fail();
  }

 private:
  [[noreturn]] void fail() const
  {
    throw DataError(QStringLiteral("Файлът '%1' не може да бъде записан: %2").arg(file_.fileName(), file_.errorString()));
  }
  QSaveFile file_;
};

void addCaptions(ExportTextLines& lines, const ExportColumns& columns)
{
  for (qsizetype i = 0; i < columns.count(); ++i)
    lines.addCaption(columns[i]);
}

void addValues(ExportTextLines& lines, const ExportColumns& columns, ExportRow row)
{
  for (qsizetype i = 0; i < columns.count(); ++i)
    lines.addValue(columns, i, row);
}

// False: the user stopped it.
bool writeText(const TextExport& task, RunProgress* progress)
{
  TextFile file(task.fileName);
  ExportTextLines lines(task.format);
  ExportColumns master(task.master, task.masterFields);
  std::optional<ExportColumns> detail;
  if (task.detail)
    detail.emplace(task.detail, task.detailFields);
  if (task.captions) {
    lines.beginLine();
    addCaptions(lines, master);
    if (detail)
      addCaptions(lines, *detail);
    lines.endLine();
    if (detail)
      lines.endLine();
  }
  ExportWalk walk;
  walk.master = task.master;
  walk.detail = task.detail;
  walk.progress = progress;
  walk.fileName = task.fileName;
  const auto addLine = [&](ExportRow masterRow, ExportRow detailRow) {
    lines.beginLine();
    addValues(lines, master, masterRow);
    if (detail)
      addValues(lines, *detail, detailRow);
    lines.endLine();
    if (lines.bytes().size() > writtenAtOnce)
      file.write(lines.bytes());
  };
  const auto rebind = [&] {
    master.bind();
    if (detail)
      detail->bind();
  };
  if (!walkExport(walk, rebind, addLine))
    return false;
  file.write(lines.bytes());
  file.commit();
  return true;
}

TextExport textExport(const QString& fileName, TClientDataSet* master, TClientDataSet* detail,
                      const QString& masterCaptions, const QString& detailCaptions, ExportOrder order)
{
  TextExport task{};
  task.fileName = fileName;
  task.master = master;
  task.detail = detail;
  task.masterFields = chosenFields(master, captionsOfList(masterCaptions), order);
  task.detailFields = chosenFields(detail, captionsOfList(detailCaptions), order);
  return task;
}

ExportEnding runTextExport(const TextExport& task, RunProgress* progress)
{
  return endingOf(QStringLiteral("CommonUtils.ExportToTXT"), [&] { return writeText(task, progress); });
}

bool hasRecords(const TClientDataSet* dataSet)
{
  return dataSet && dataSet->Active() && !dataSet->IsEmpty();
}

}  // namespace

bool CommonExportToTXT(const QString& fileName, TClientDataSet* master, TClientDataSet* detail,
                       const QString& masterCaptions, const QString& detailCaptions, TDelimiter delimiter,
                       const QString& symbol, int decimals, bool captions, bool dos)
{
  if (!hasRecords(master))
    return false;
  TextExport task = textExport(fileName, master, detail, masterCaptions, detailCaptions, ExportOrder::OfFields);
  task.format = {delimiter, symbol, decimals, dos};
  task.captions = captions;
  return runTextExport(task, nullptr) == ExportEnding::Done;
}

bool ExportToTXT(const QString& fileName, TClientDataSet* master, TClientDataSet* detail,
                 const QString& masterCaptions, const QString& detailCaptions, TDelimiter delimiter,
                 const QString& symbol, int decimals, bool captions, bool dos)
{
  if (!hasRecords(master))
    return false;
  TextExport task = textExport(fileName, master, detail, masterCaptions, detailCaptions, ExportOrder::OfCaptions);
  task.format = {delimiter, symbol, decimals, dos};
  task.captions = captions;
  std::unique_ptr<RunProgress> progress = exportProgress();
  const ExportEnding ending = runTextExport(task, progress.get());
  progress.reset();
  tellEnding(ending);
  return ending == ExportEnding::Done;
}

QByteArray BDSTrans(const QByteArray& text, bool convert)
{
  if (!convert)
    return text;
  static constexpr char printerCodes[] = {12, 15, 18, 27};  // of the bytes 180 to 183
  QByteArray result = text;
  for (char& character : result) {
    const int code = uchar(character);
    if (code >= 192)
      character = char(code - 64);
    else if (code >= 180 && code <= 183)
      character = printerCodes[code - 180];
    else if (code >= 128)
      character = char(code + 64);
  }
  return result;
}

QString FillWithChar(const QString& text, QChar character, int width, bool rightAlign)
{
  return rightAlign ? text.rightJustified(width, character) : text.leftJustified(width, character);
}

}  // namespace kalvor
