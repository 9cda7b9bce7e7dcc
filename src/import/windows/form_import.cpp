// The import of a form: the run's beginning and end, and the record that each document goes into.
#include <QScopedValueRollback>

#include "forms/form_filters.h"
#include "forms/messages.h"
#include "forms/record_rules.h"
#include "forms/windows/base_edit.h"
#include "forms/windows/base_form_private.h"
#include "forms/windows/form_server.h"
#include "import/import_filter.h"
#include "import/windows/import_choice.h"
#include "import/windows/import_run.h"
#include "import/windows/request_import.h"
#include "platform/ports.h"
#include "registry/form_descriptions.h"
#include "session/dm.h"
#include "session/import_log.h"

namespace kalvor {

namespace {

// Flow fields and the detail's aggregates rest while this lives.
class QuietFigures {
 public:
  explicit QuietFigures(TfBase& form)
  {
    QStringList names;
    for (int index = 0; index < form.dataSetCount(); ++index) {
      names.append(form.cdsOptions(index).ProviderName);
    }
    providers_ = names.join(u';');
    disableFlowFields(providers_);
    if (form.dataSetCount() > 1) {
      detail_ = form.cdsOptions(1).DataSet;
      aggregates_ = detail_->AggregatesActive;
      detail_->AggregatesActive = false;
    }
  }
  ~QuietFigures()
  {
    if (detail_) {
      detail_->AggregatesActive = aggregates_;
    }
    loggingErrors(QStringLiteral("TfBase.ImportData"), [this] { enableFlowFields(providers_); });
  }
  QuietFigures(const QuietFigures&) = delete;
  QuietFigures& operator=(const QuietFigures&) = delete;

 private:
  QString providers_;
  QPointer<TClientDataSet> detail_;
  bool aggregates_ = false;
};

Variant conditionValue(const Variant& value, const TField& field, const TFormatSettings& settings)
{
  const Variant typed = ParseAsFieldType(value, field.FieldDataType(), settings);
  const QDate day = typed.toDate();
  const bool isDate = typed.typeId() == QMetaType::QDateTime || typed.typeId() == QMetaType::QDate;
  return isDate ? Variant(day.toString(QStringLiteral("yyyyMMdd"))) : typed;
}

}  // namespace

bool TfBase::isImporting() const { return d->importing; }

bool TfBase::ImportData(int formId, const TImportFilter& filter, const QString& fileName, const QString& keyField,
                        const QString& keyValue, QString& error, ShowOption options, bool unattended)
{
  try {
    const WaitCursorScope wait;
    FormCreate();
    const QuietFigures quiet(*this);
    const auto actions = qScopeGuard([this] { UpdateActionState(); });
    const QScopedValueRollback<bool> importing(d->importing, true);
    d->formId = formId;
    if (!options.testFlag(so_DoNotShow)) {
      d->options = options;  // the caption goes to no window
    }
    SetFormRights(formId, false);
    const TFormData* description = GetFromDataObject(QString::number(formId), 0);
    SetFormCaption(QStringLiteral("Импорт") + (description ? description->Caption : QString()), QString());
    if (!options.testFlag(so_DoNotShow)) {
      TSelectionList none;
      DoShowForm(formId, options, noRowFilter(), {}, none, {}, {});
    }
    ImportRun(*this, filter, keyField, keyValue, unattended ? ImportAttended::No : ImportAttended::Yes).run(fileName);
    return true;
  } catch (const std::exception& failure) {
    error = errorText(failure);
    LogError(error, QStringLiteral("TfBase.ImportData"));
    if (!unattended) {
      showError(error);
    }
  }
  return false;
}

void ImportRun::tryInto(TfBase& form, int formId, const TImportFilter& filter, const QString& fileName,
                        int mostDocuments, ImportTrial& trial)
{
  const WaitCursorScope wait;
  form.FormCreate();
  const QuietFigures quiet(form);
  const QScopedValueRollback<bool> importing(form.d->importing, true);
  form.d->formId = formId;
  form.SetFormRights(formId, false);
  form.requireInsertRight();
  TSelectionList none;
  form.DoShowForm(formId, so_ImportData, noRowFilter(), {}, none, {}, {});
  ImportRun(form, filter, QString(), QString(), ImportAttended::No).tryDocuments(fileName, mostDocuments, trial);
}

int TfBase::PrepareImportCDS(int importAction, const TImportLine& line, const TFormatSettings& settings, QString& error)
{
  try {
    if (importAction != UpdateOnly && importAction != UpdateOrInsert && importAction != InsertOnly) {
      acInsertRecordExecute();
      return PrepareGoOn;
    }
    TClientDataSet* master = GetCdsMaster();
    FilterArray key;
    for (const TImportCell& cell : line) {
      const TField* field = cell.IsKey ? master->FindField(cell.FieldName) : nullptr;
      if (field) {
        key.append({field->Origin.isEmpty() ? field->FieldName() : field->Origin, QStringLiteral("="),
                    conditionValue(cell.Value, *field, settings), QString(), QString()});
      }
    }
    if (key.isEmpty()) {
      throw DataError(QStringLiteral("Импортният филтър не определя ключово поле."));
    }
    if (!RequestDataSet(0, key, QString())) {
      throw DataError(_err_NoSQL_Found);
    }
    master->Close();
    master->Open();
    const int found = int(master->RecordCount());
    if (found == 0 ? importAction == UpdateOnly : importAction == InsertOnly || (importAction == UpdateOnly && found > 1)) {
      return PrepareSkip;
    }
    if (found == 1) {
      acEditRecordExecute();
    } else {
      acInsertRecordExecute();
    }
    return PrepareGoOn;
  } catch (const std::exception& failure) {
    error = errorText(failure);
    return PrepareFailed;
  }
}

// --- The action ------------------------------------------------------------------------------------------------

void TfBase::acImportExecute()
{
  requireInsertRight();
}

void TfBaseEdit::acImportExecute()
{
  TfBase::acImportExecute();
  loggingErrors(QStringLiteral("TfBaseEdit.acImportExecute"), [this] {
    TImportFilter filter(formId());
    ImportInitLog();
    const auto closeLogs = qScopeGuard([] { ImportCloseLog(); });
    if (!SelectImportFilter(&filter)) {
      return;
    }
    const QString fileName = SelectDataFile();
    if (fileName.isEmpty()) {
      return;
    }
    const QScopedValueRollback<bool> running(DM->ImportRunning, true);
    const TField* id = cdsMaster_->FindField(u"Id");
    const QString keyField = !id ? QString() : id->Origin.isEmpty() ? id->FieldName() : id->Origin;
    QString error;
    if (RequestImport(formId(), filter, fileName, keyField, id && !cdsMaster_->IsEmpty() ? id->AsString() : QString(),
                      error, so_ImportData, false, this)) {
      execute(QStringLiteral("acRefresh"));
    }
  });
}

}  // namespace kalvor
