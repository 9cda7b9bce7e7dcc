#include "import/windows/import_run.h"

#include <QApplication>
#include <QFileInfo>

#include "forms/windows/base_edit.h"
#include "forms/windows/cds_options.h"
#include "import/messages.h"
#include "import/windows/import_progress.h"
#include "session/dm.h"
#include "session/import_log.h"
#include "session/remembered_reads.h"
#include "widgets/db_grid.h"

namespace kalvor {

namespace {

enum LogKind : int { RecordHandled, RecordSkipped, OtherOperation };

void logRecord(LogKind kind, const QString& text, bool failed) { ImportInfoLog(text, kind, failed ? 1 : 0); }

constexpr int readError = -1;
constexpr int finishError = -2;
constexpr int otherError = -10;

TClientDataSet* firstDetail(const TfBase& form)
{
  return form.dataSetCount() > 1 ? form.cdsOptions(1).DataSet : nullptr;
}

// The blanks that fill a column of fixed width are none of the text's.
Variant withoutPadding(const Variant& value)
{
  QString text = value.typeId() == QMetaType::QString ? value.toString() : QString();
  if (!text.endsWith(u' ')) {
    return value;
  }
  while (text.endsWith(u' ')) {
    text.chop(1);
  }
  return text;
}

}  // namespace

ImportRun::ImportRun(TfBase& form, const TImportFilter& filter, QString keyField, QString keyValue,
                     ImportAttended attended)
    : form_(form), edit_(qobject_cast<TfBaseEdit*>(&form)), master_(*form.GetCdsMaster()), detail_(firstDetail(form)),
      filter_(filter), keyField_(std::move(keyField)), keyValue_(std::move(keyValue)), attended_(attended)
{
  SetFormatSetting(filter_, settings_);
  finishDocuments_ = filter_.option(QStringLiteral("FINISH_DOCUMENT")).trimmed().toInt() == 1;
}

ImportRun::~ImportRun() = default;

ImportServices ImportRun::serverServices()
{
  ImportServices services;
  services.RequestValue = [](int query, const QString& source, const QString& columns, const FilterArray& filter,
                             Variant& value, RowsWanted rows) {
    return requestValue(*DM->ConBroker, query, source, columns, filter, value, rows);
  };
  return services;
}

void ImportRun::run(const QString& fileName)
{
  if (attended_ == ImportAttended::Yes) {
    progress_ = std::make_unique<TfImportProgress>(ProgressOf::Import, QApplication::activeWindow());
    progress_->show();
  }
  {
    const ImportPrompt prompt(attended_, [this](const QString& text) { told(text); });
    RememberedReadsScope reads(*DM);
    reads_ = &reads;
    const auto forget = qScopeGuard([this] { reads_ = nullptr; });
    if (!form_.isVisible()) {
      // Nobody looks at the grids: they need not follow.
      for (TDBGrid* grid : form_.findChildren<TDBGrid*>()) {
        grid->setDataSet(nullptr);
      }
    }
    ImportServices services = serverServices();
    services.AddMessage = [this](const QString& text) {
      if (progress_) {
        progress_->AddMessage(text);
      }
    };
    reader_ = createImportReader(fileName, filter_, services);
    const int count = reader_->GetRecordCount();
    if (progress_) {
      progress_->InitProgressBar(count, QFileInfo(fileName).fileName());
    }
    if (form_.CheckState()) {
      save();
    }
    while (!reader_->isEndOfData() && importNext() == Next::Document) {
    }
  }
  report();
}

// --- One document ----------------------------------------------------------------------------------------------

ImportRun::Next ImportRun::importNext()
{
  if (cancelled()) {
    return Next::End;
  }
  if (progress_) {
    progress_->UpdateProgressBar();
    progress_->breathe();
  }
  line_.clear();
  lines_.clear();
  QString error;
  readStatus_ = reader_->ReadRecord(line_, lines_, error);
  if (readStatus_ == readError) {
    return readFailed(error);
  }
  try {
    return importDocument();
  } catch (const std::exception& failure) {
    const QString text = importRowNumber + QString::number(reader_->rowCounter() - 1) + QStringLiteral("\r\n") + errorText(failure);
    logRecord(RecordHandled, recordInfo(), true);
    const TImportException logged(text, QStringLiteral("TfBase.ImportData"));
    failed_ = true;
    dropDocument();
    return ask(otherError, text);
  }
}

bool ImportRun::cancelled()
{
  if (!progress_ || !progress_->cancelRequested()) {
    return false;
  }
  if (userPrompt().message(PromptKind::Confirmation, _que_CancelImport, {PromptButton::Yes, PromptButton::No}) ==
      PromptButton::Yes) {
    logRecord(OtherOperation, _inf_CancelImport, false);
    return true;
  }
  progress_->clearCancelRequest();
  return false;
}

ImportRun::Next ImportRun::readFailed(const QString& error)
{
  failed_ = true;
  logRecord(RecordHandled, recordInfo(), true);
  // Without a text nothing is in the file.
  return attended_ == ImportAttended::No ? Next::End : ask(readError, error.isEmpty() ? _err_EndOfFile : error);
}

ImportRun::Next ImportRun::importDocument()
{
  if (!putDocument()) {
    logRecord(RecordSkipped, recordInfo(), false);
    return Next::Document;
  }
  if (linesOnly()) {
    keepLines();
  } else if (!save()) {
    return saveFailed();
  }
  if (finishDocuments_ && finishFailed()) {
    failed_ = true;
    logRecord(RecordHandled, recordInfo(), true);
    return ask(finishError, _err_FinishDoc);
  }
  logRecord(RecordHandled, recordInfo(), false);
  return Next::Document;
}

// Whoever looks at the document sees it whole, not every cell on its way.
bool ImportRun::putDocument()
{
  const ControlsDisabledScope quietMaster(&master_);
  std::optional<ControlsDisabledScope> quietLines;
  if (detail_) {
    quietLines.emplace(detail_);
  }
  if (!line_.isEmpty() && !putMaster()) {
    return false;
  }
  if (line_.isEmpty() && reader_->importAction() != LinesOnly) {
    reloadDocument();
  }
  if (detail_ && !lines_.isEmpty()) {
    putLines();
  }
  form_.documentPut();
  return true;
}

bool ImportRun::putMaster()
{
  // A document of which only the lines were kept is not lost to the one after it.
  if (reader_->importAction() == LinesOnly && form_.hasChanges()) {
    save();
  }
  QString error;
  switch (form_.PrepareImportCDS(reader_->importAction(), line_, settings_, error)) {
    case PrepareFailed: throw DataError(error);
    case PrepareSkip: return false;
    default: break;
  }
  putCells(master_, line_);
  return true;
}

void ImportRun::reloadDocument()
{
  if (trying_) {
    return form_.acInsertRecordExecute();  // in the place of the document that somebody has open
  }
  // The lines of an earlier document of the file are still unsaved: the document is there.
  if (form_.hasChanges()) {
    return;
  }
  const FilterArray document{{keyField_, QStringLiteral("="), sqlLiteral(keyValue_), QString(), QString()}};
  if (!form_.RequestDataSet(0, document, QString())) {
    throw DataError(_err_SaveImportData);
  }
  master_.Close();
  master_.Open();
}

void ImportRun::putCells(TClientDataSet& dataSet, const TImportLine& line)
{
  for (const TImportCell& cell : line) {
    TField* field = dataSet.FindField(cell.FieldName);
    if (!field) {
      continue;
    }
    try {
      setFieldAnyway(field, ParseAsFieldType(withoutPadding(cell.Value), field->FieldDataType(), settings_));
    } catch (const std::exception& failure) {
      if (!trying_) {
        throw;
      }
      noteFailure(field->DisplayLabel, cell.Value.toString(), failure);
    }
  }
}

// --- Lines -----------------------------------------------------------------------------------------------------

void ImportRun::putLines()
{
  form_.linesComing(lines_, settings_);
  for (qsizetype index = 0; index < lines_.size(); ++index) {
    if (detail_->IsEditing()) {
      detail_->Post();
    }
    if (trying_) {
      tryLine(index);
    } else if (placeLine(lines_[index])) {
      putCells(*detail_, lines_[index]);
    }
  }
  if (detail_->IsEditing()) {
    detail_->Post();
  }
}

bool ImportRun::placeLine(const TImportLine& line)
{
  const int action = reader_->importAction();
  bool found = false;
  if (action == UpdateOnly || action == UpdateOrInsert || action == InsertOnly) {
    QStringList names;
    VariantArray values;
    for (const TImportCell& cell : line) {
      const TField* field = cell.IsKey ? detail_->FindField(cell.FieldName) : nullptr;
      if (field) {
        names.append(cell.FieldName);
        values.append(ParseAsFieldType(cell.Value, field->FieldDataType(), settings_));
      }
    }
    // Without a key a line is like no other.
    found = !names.isEmpty() && detail_->Locate(names.join(u';'), names.size() == 1 ? values.first() : Variant(values));
  }
  if ((action == UpdateOnly && !found) || (action == InsertOnly && found)) {
    return false;
  }
  if (found) {
    detail_->Edit();
  } else {
    detail_->Append();
  }
  return true;
}

bool ImportRun::linesOnly() const { return reader_->importAction() == LinesOnly || line_.isEmpty(); }

void ImportRun::keepLines()
{
  for (int index = form_.dataSetCount() - 1; index >= 0; --index) {
    TClientDataSet* dataSet = form_.cdsOptions(index).DataSet;
    if (dataSet->Active() && dataSet->IsEditing()) {
      dataSet->Post();
    }
  }
}

// --- Saving ----------------------------------------------------------------------------------------------------

bool ImportRun::save()
{
  if (trying_) {
    return false;
  }
  const bool ran = form_.runGuarded(QStringLiteral("TfBase.acSaveExecute"), [this] { form_.acSaveExecute(); });
  reads_->forgetMisses();
  const bool editing = master_.IsEditing() || (detail_ && detail_->Active() && detail_->IsEditing());
  return ran && !editing && (!edit_ || edit_->lastSaveSucceeded());
}

ImportRun::Next ImportRun::saveFailed()
{
  failed_ = true;
  logRecord(RecordHandled, recordInfo(), true);
  dropDocument();
  return ask(readStatus_, _err_SaveImportData);
}

// What could not be saved must not be saved with the next document. The user's own document keeps what it holds.
void ImportRun::dropDocument()
{
  if (linesOnly()) {
    if (detail_ && detail_->Active() && detail_->IsEditing()) {
      detail_->Cancel();
    }
    return;
  }
  form_.runGuarded(QStringLiteral("TfBase.acCancelExecute"), [this] { form_.acCancelExecute(); });
}

bool ImportRun::finishFailed()
{
  if (progress_) {
    progress_->clearServerError();
  }
  form_.execute(QStringLiteral("acPostDocument"));
  const bool failed = progress_ && progress_->serverError();
  if (failed) {
    progress_->clearServerError();
  }
  return failed;
}

// --- Telling ---------------------------------------------------------------------------------------------------

ImportRun::Next ImportRun::ask(int code, const QString& text)
{
  if (!progress_) {
    return Next::Document;
  }
  return progress_->ErrMsgAnswer(code, text) == PromptButton::No ? Next::End : Next::Document;
}

QString ImportRun::recordInfo() const { return GetImportRecInfo(line_, QStringLiteral(" ")); }

void ImportRun::told(const QString& text)
{
  const TImportException logged(text, QStringLiteral("TfBase.ImportData"));
  if (progress_) {
    progress_->AddMessage(text);
  }
}

void ImportRun::report()
{
  if (!progress_) {
    return;
  }
  const bool saved = !edit_ || edit_->lastSaveSucceeded();
  progress_->stopTimer();
  if (!failed_ && saved) {
    userPrompt().message(PromptKind::Confirmation, _inf_OperationSuccess, {PromptButton::Ok});
  } else {
    progress_->show();
    userPrompt().message(PromptKind::Error, _inf_OperationError, {PromptButton::Ok});
    progress_.release()->stayForReading();
  }
}

}  // namespace kalvor
