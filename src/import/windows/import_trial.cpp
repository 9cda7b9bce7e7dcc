#include "import/windows/import_trial.h"

#include <QScopedValueRollback>

#include "forms/windows/base_edit.h"
#include "forms/windows/cds_options.h"
#include "import/messages.h"
#include "import/windows/import_run.h"
#include "registry/windows/form_registry.h"
#include "session/dm.h"
#include "session/error_log.h"
#include "session/remembered_reads.h"
#include "widgets/db_grid.h"

namespace kalvor {

namespace {

constexpr qsizetype mostTrialLines = 200;

// Texts of one record, by the dataset's fields.
QStringList recordTexts(const TClientDataSet& dataSet, qsizetype row)
{
  QStringList texts;
  for (const TField* field : dataSet.Fields()) {
    texts.append(field->Visible ? row < 0 ? field->DisplayText() : field->DisplayTextAt(row) : QString());
  }
  return texts;
}

// Leaves only the columns that somebody has a value in, and gives their captions.
QStringList usedColumns(const TClientDataSet& dataSet, const QList<QStringList*>& records)
{
  QStringList captions;
  QList<qsizetype> used;
  const auto& fields = dataSet.Fields();
  for (qsizetype column = 0; column < qsizetype(fields.size()); ++column) {
    const auto hasText = [column](const QStringList* record) { return !record->value(column).isEmpty(); };
    if (std::any_of(records.begin(), records.end(), hasText)) {
      used.append(column);
      captions.append(fields[column]->DisplayLabel);
    }
  }
  for (QStringList* record : records) {
    QStringList kept;
    for (const qsizetype column : used) {
      kept.append(record->value(column));
    }
    *record = kept;
  }
  return captions;
}

// The fields that a lookup fills, first the one that takes what was looked for.
QStringList knownTargets(const ImportLookup& lookup)
{
  QStringList targets = lookup.targetFields;
  const QString asked = lookup.conditions.value(0).field.section(u'.', -1);
  const QStringList sources = lookup.sourceFields.split(u',');
  for (qsizetype i = 0; i < std::min(sources.size(), targets.size()); ++i) {
    if (sources[i].trimmed().compare(asked, Qt::CaseInsensitive) == 0) {
      targets.prepend(targets[i]);
      break;
    }
  }
  return targets;
}

// The field of a lookup that a person knows.
QString lookedUpCaption(const TClientDataSet* dataSet, const QStringList& targets)
{
  for (const QString& name : targets) {
    const TField* field = dataSet ? dataSet->FindField(name) : nullptr;
    if (field && field->Visible) {
      return field->DisplayLabel;
    }
  }
  return targets.value(0);
}

}  // namespace

// What is known of the document that is being tried.
struct ImportRun::Trying {
  ImportTrialDocument document;
  QList<int> rows;             // of the master, then of each detail line with cells
  QList<int> placedRows;       // of the lines that are in the dataset
  qsizetype line = -1;         // the detail line that is being put; -1: the master
  bool masterFailed = false;
  struct Missed {
    QStringList targets;
    ImportTrialFailure failure;
  };
  QList<Missed> missed;        // lookups of the row that is being read

  int row() const { return rows.value(line + 1, rows.value(0)); }
  bool isFailed(int row) const
  {
    return std::any_of(document.failures.begin(), document.failures.end(),
                       [row](const ImportTrialFailure& failure) { return failure.fatal && failure.row == row; });
  }
};

QString importOutcomeText(ImportTrialDocument::Outcome outcome)
{
  switch (outcome) {
    case ImportTrialDocument::Outcome::Inserted: return QStringLiteral("Ще се добави");
    case ImportTrialDocument::Outcome::Updated: return QStringLiteral("Ще се промени");
    case ImportTrialDocument::Outcome::LinesAdded: return QStringLiteral("Ще се добавят редове");
    case ImportTrialDocument::Outcome::Skipped: return QStringLiteral("Ще се пропусне");
    case ImportTrialDocument::Outcome::Failed: break;
  }
  return QStringLiteral("Няма да се внесе");
}

// --- One document ----------------------------------------------------------------------------------------------

void ImportRun::noteFailure(const QString& field, const QString& value, const std::exception& failure)
{
  QList<ImportTrialFailure>& failures = trying_->document.failures;
  trying_->masterFailed = trying_->masterFailed || trying_->line < 0;
  // Its text was told before it was thrown.
  if (dynamic_cast<const SilentAbort*>(&failure)) {
    if (!failures.isEmpty() && failures.last().row == trying_->row()) {
      failures.last().fatal = true;
      return;
    }
  }
  failures.append({trying_->row(), field, value, errorText(failure), trying_->line >= 0, true});
}

void ImportRun::noteTold(const QString& text)
{
  trying_->document.failures.append({trying_->row(), QString(), QString(), QString(text).remove(u'\r'), trying_->line >= 0, false});
}

// A line that fails is no reason not to look at the next one.
void ImportRun::tryLine(qsizetype index)
{
  trying_->line = index;
  const int row = trying_->row();
  try {
    if (placeLine(lines_[index])) {
      putCells(*detail_, lines_[index]);
      detail_->Post();
      trying_->placedRows.append(row);
    }
  } catch (const std::exception& failure) {
    if (!trying_->isFailed(row)) {
      noteFailure(QString(), QString(), failure);
    }
    if (detail_->IsEditing()) {
      detail_->Cancel();
    }
  }
}

void ImportRun::watch(ImportServices& services)
{
  const bool skips = filter_.option(QStringLiteral("SKIP_INVALID_ROWS")) == u"1";
  services.AddMessage = {};
  services.LookupFailed = [this, skips](const ImportLookup& lookup, const QString& reason, const QString& conditions) {
    const QString told = skips ? reason + QStringLiteral(" Редът се пропуска.") : reason;
    const QString asked = QString(conditions).replace(QStringLiteral("\r\n"), QStringLiteral(", "));
    trying_->missed.append({knownTargets(lookup), {0, QString(), asked, told, false, !skips}});
  };
  services.LineRead = [this](const TImportLine& line, int rowNumber) {
    const bool isMaster = trying_->rows.isEmpty();
    if (isMaster || !line.isEmpty()) {
      trying_->rows.append(rowNumber);
    }
    for (Trying::Missed& missed : trying_->missed) {
      missed.failure.row = rowNumber;
      missed.failure.inLine = !isMaster;
      missed.failure.field = lookedUpCaption(isMaster ? &master_ : detail_, missed.targets);
      trying_->document.failures.append(missed.failure);
      trying_->masterFailed = trying_->masterFailed || (isMaster && missed.failure.fatal);
    }
    trying_->missed.clear();
  };
}

void ImportRun::tryDocument(bool failedToRead, const QString& readingError)
{
  using Outcome = ImportTrialDocument::Outcome;
  ImportTrialDocument& document = trying_->document;
  document.row = trying_->rows.value(0, std::max(0, reader_->rowCounter() - 1));
  if (failedToRead) {
    document.failures.append({document.row, QString(), QString(), readingError.section(u'\n', 1).trimmed(), false, true});
    return;
  }
  document.moreLines = lines_.size() > mostTrialLines;
  if (document.moreLines) {
    lines_.resize(mostTrialLines);
  }
  Outcome outcome = Outcome::Skipped;
  try {
    if (putDocument()) {
      trying_->line = -1;
      outcome = linesOnly() ? Outcome::LinesAdded : master_.State() == DataSetState::Insert ? Outcome::Inserted : Outcome::Updated;
      document.head = recordTexts(master_, -1);
      for (qsizetype row = 0; detail_ && detail_->Active() && row < detail_->RecordCount(); ++row) {
        document.lines.append(recordTexts(*detail_, row));
      }
      if (master_.IsEditing() && !trying_->masterFailed) {
        master_.Post();
      }
    }
  } catch (const std::exception& failure) {
    trying_->line = -1;
    noteFailure(QString(), QString(), failure);
  }
  // New lines stand in the order of the file, behind those of a document that was there.
  while (document.lineRows.size() + trying_->placedRows.size() < document.lines.size()) {
    document.lineRows.append(0);
  }
  document.lineRows += trying_->placedRows;
  document.lineRows.resize(document.lines.size());
  const bool fatal = std::any_of(document.failures.begin(), document.failures.end(),
                                 [](const ImportTrialFailure& failure) { return failure.fatal; });
  document.outcome = fatal ? Outcome::Failed : outcome;
}

// --- The trial -------------------------------------------------------------------------------------------------

void ImportRun::tryDocuments(const QString& fileName, int mostDocuments, ImportTrial& trial)
{
  Trying trying;
  trying_ = &trying;
  const auto forget = qScopeGuard([this] { trying_ = nullptr; });
  const ImportPrompt prompt(ImportAttended::No, [this](const QString& text) { noteTold(text); });
  RememberedReadsScope reads(*DM);
  for (TDBGrid* grid : form_.findChildren<TDBGrid*>()) {
    grid->setDataSet(nullptr);
  }
  ImportServices services = serverServices();
  watch(services);
  reader_ = createImportReader(fileName, filter_, services);
  if (!reader_->isOpened()) {
    throw DataError(_err_OpenFile);
  }
  reader_->GetRecordCount();
  while (!reader_->isEndOfData() && trial.documents.size() < mostDocuments) {
    trying = Trying();
    line_.clear();
    lines_.clear();
    QString error;
    const int status = reader_->ReadRecord(line_, lines_, error);
    if (status != 0 && error.isEmpty()) {
      break;
    }
    tryDocument(status != 0, error);
    form_.runGuarded(QStringLiteral("TfBase.acCancelExecute"), [this] { form_.acCancelExecute(); });
    trial.documents.append(trying.document);
  }
  trial.moreDocuments = !reader_->isEndOfData();
  if (trial.documents.isEmpty()) {
    throw DataError(_err_EndOfFile);
  }
  QList<QStringList*> heads, lines;
  for (ImportTrialDocument& document : trial.documents) {
    heads.append(&document.head);
    for (QStringList& line : document.lines) {
      lines.append(&line);
    }
  }
  trial.headCaptions = usedColumns(master_, heads);
  if (detail_) {
    trial.lineCaptions = usedColumns(*detail_, lines);
  }
}

ImportTrial tryImport(int formId, const TImportFilter& filter, const QString& fileName, int mostDocuments)
{
  ImportTrial trial;
  try {
    const TFormData* description = GetFromDataObject(QString::number(formId), 0);
    const FormClass* formClass = description ? GetRegisterFormClass(description->ClassName) : nullptr;
    const std::unique_ptr<QWidget> created(formClass && formClass->create ? formClass->create(nullptr) : nullptr);
    auto* form = qobject_cast<TfBaseEdit*>(created.get());
    if (!form) {
      trial.error = QStringLiteral("Във форма с код %1 не може да се внася.").arg(formId);
      return trial;
    }
    const QScopedValueRollback<bool> running(DM->ImportRunning, true);
    ImportRun::tryInto(*form, formId, filter, fileName, mostDocuments, trial);
  } catch (const std::exception& failure) {
    trial.error = errorText(failure);
  }
  return trial;
}

}  // namespace kalvor
