// The form's datasets: hooking, requests, metadata at opening, scrolling.
#include "forms/field_metadata.h"
#include "forms/form_filters.h"
#include "forms/messages.h"
#include "forms/record_rules.h"
#include "forms/windows/base_form_private.h"
#include "forms/windows/form_server.h"
#include "platform/ports.h"
#include "registry/form_descriptions.h"
#include "session/error_log.h"
#include "session/server_calls.h"

namespace kalvor {

namespace {

constexpr int masterPacketRecords = 32;
constexpr int allRecordsInOnePacket = 2147483647;

// The first field that must have a value and has none: the one that the dataset complains of.
TField* requiredFieldIn(const TClientDataSet* dataSet)
{
  for (TField* field : dataSet->Fields()) {
    if (field->Required && field->FieldKind() == FieldValueKind::Data && field->IsNull()) {
      return field;
    }
  }
  return nullptr;
}

void callDisplaced(const DataSetEvent& handler, TClientDataSet* dataSet)
{
  if (handler) {
    handler(dataSet);
  }
}

}  // namespace

void TfBase::hookDataSet(TClientDataSet* dataSet)
{
  auto options = std::make_unique<TCDSOptions>();
  TCDSOptions* entry = options.get();
  d->dataSets.push_back(std::move(options));
  entry->DataSet = dataSet;
  entry->ProviderName = createDynamicProvider(sessionCalls());
  dataSet->SetRemoteServer(&sessionCalls());
  dataSet->ProviderName = entry->ProviderName;
  dataSet->Key = QStringLiteral("Id");
  dataSet->PacketRecords =
      dataSet->objectName() == QLatin1String("cdsMaster") ? masterPacketRecords : allRecordsInOnePacket;

  const auto hook = [this](DataSetEvent& slot, DataSetEvent& kept, void (TfBase::*handler)(TClientDataSet*)) {
    kept = std::exchange(slot, [this, handler](TClientDataSet* source) { (this->*handler)(source); });
  };
  hook(dataSet->AfterOpen, entry->AfterOpen, &TfBase::CDS_AfterOpen);
  hook(dataSet->AfterClose, entry->AfterClose, &TfBase::CDS_AfterClose);
  hook(dataSet->BeforeClose, entry->BeforeClose, &TfBase::CDS_BeforeClose);
  hook(dataSet->AfterScroll, entry->AfterScroll, &TfBase::CDS_AfterScroll);
  hook(dataSet->OnNewRecord, entry->OnNewRecord, &TfBase::CDS_OnNewRecord);
  hook(dataSet->BeforeEdit, entry->BeforeEdit, &TfBase::CDS_BeforeEdit);
  hook(dataSet->BeforeInsert, entry->BeforeInsert, &TfBase::CDS_BeforeInsert);
  if (d->dataSets.size() == 1) {
    hook(dataSet->OnStateChange, entry->OnStateChange, &TfBase::CDS_OnStateChange);
  }
  entry->OnPostError = std::exchange(
      dataSet->OnPostError, [this](TClientDataSet* source, const DataError& error, ErrorAction& action) {
        CDS_OnPostError(source, error, action);
      });
  entry->OnEditError = dataSet->OnEditError;
  dataSet->OnEditError = dataSet->OnPostError;
}

// --- Requests --------------------------------------------------------------------------------------------------

bool TfBase::RequestDataSet(int dsIndex, const FilterArray& filter, const QString& order)
{
  TCDSOptions& entry = cdsOptions(dsIndex);
  VariantArray descriptions;
  const ParameterArray parameters = dsIndex == 0 ? d->sqlParameters : ParameterArray();
  const int form = dsIndex == 0 && d->queryFormId != 0 ? d->queryFormId : d->formId;
  if (requestData(sessionCalls(), form, dsIndex, entry.ProviderName, filter, order, parameters, &descriptions) != 0) {
    return false;
  }
  entry.FieldDescriptions = descriptions;
  return true;
}

void TfBase::reopenMaster()
{
  TClientDataSet* master = GetCdsMaster();
  {
    const ControlsDisabledScope quiet(master);
    master->CancelUpdates();
    master->Close();
    cdsOptions(0).MetadataApplied = false;
    master->Open();
  }
  UpdateActionState();
}

QString TfBase::detailKeyField(int dsIndex) const
{
  const TFormData* description = GetFromDataObject(QString::number(d->formId), dsIndex);
  return (description ? description->BaseTable : QString()) + QStringLiteral(".Master_ID");
}

void TfBase::acGetDetailsExecute()
{
  TClientDataSet* master = GetCdsMaster();
  const TField* id = master->FindField(u"ID");
  // A record that is only being entered has no lines yet: a year's file need not ask a thousand times.
  const bool entersImport = isImporting() && master->State() == DataSetState::Insert;
  for (int index = 1; index < dataSetCount(); ++index) {
    const FilterArray filter{{detailKeyField(index), QStringLiteral("="), id ? id->AsString() : QString(), QString(),
                              QString()}};
    TClientDataSet* detail = cdsOptions(index).DataSet;
    const ControlsDisabledScope quiet(detail);
    if (entersImport && detail->Active()) {
      detail->SetRecords(RecordSet(detail->Records().fields));
    } else if (RequestDataSet(index, filter, QString())) {
      detail->Close();
      detail->Open();
    }
  }
}

// --- Events ----------------------------------------------------------------------------------------------------

void TfBase::CDS_AfterOpen(TClientDataSet* dataSet)
{
  const auto open = [this, dataSet] {
    AttachDynamicEvents(dataSet);
    TCDSOptions& entry = *GetCdsOpts(dataSet);
    if (!entry.MetadataApplied && !entry.FieldDescriptions.isEmpty()) {
      applyFieldDescriptions(*dataSet, entry.FieldDescriptions);
      hookFields(entry);
      entry.MetadataApplied = true;
      dataSet->UpdateLayout();
    }
    callDisplaced(entry.AfterOpen, dataSet);
    d->selectors.dataSetOpened(dataSet);
    if (d->stage == Private::Stage::Shown) {
      makeFieldSelectors(dataSet);
    }
    AttachDynamicAggregateEvents(dataSet);
  };
  raisingLogged(QStringLiteral("TfBase.CDS_AfterOpen"), open);
}

// Fields outlive closing, and a filter applies the metadata again: each is hooked once. One that another query had not,
// and that is back, is a new object without a handler.
void TfBase::hookFields(TCDSOptions& entry)
{
  for (TField* field : entry.DataSet->Fields()) {
    if (entry.HookedFields.contains(field->FieldName()) && field->OnValidate) {
      continue;
    }
    entry.HookedFields.insert(field->FieldName());
    field->OnValidate = [this, own = field->OnValidate](TField* changed) {
      FieldOnValidate(changed);
      if (own) {
        own(changed);
      }
    };
  }
}

void TfBase::CDS_AfterClose(TClientDataSet* dataSet)
{
  callDisplaced(GetCdsOpts(dataSet)->AfterClose, dataSet);
}

void TfBase::CDS_BeforeClose(TClientDataSet* dataSet)
{
  d->selectors.dataSetClosing(dataSet);
  callDisplaced(GetCdsOpts(dataSet)->BeforeClose, dataSet);
}

void TfBase::CDS_AfterScroll(TClientDataSet* dataSet)
{
  d->selectors.dataSetScrolled(dataSet);
  callDisplaced(GetCdsOpts(dataSet)->AfterScroll, dataSet);
  if (dataSet == GetCdsMaster()) {
    refreshCaption();
  }
  UpdateActionState();
}

void TfBase::CDS_OnNewRecord(TClientDataSet* dataSet)
{
  CDS_ParseDefaultValues(dataSet);
  const TField* id = dataSet->FindField(u"Id");
  if (id && id->IsNull()) {
    GenerateID(dataSet);
  }
}

void TfBase::CDS_OnStateChange(TClientDataSet* dataSet)
{
  callDisplaced(GetCdsOpts(dataSet)->OnStateChange, dataSet);
  dsMasterStateChange(dataSet);
}

void TfBase::CDS_OnPostError(TClientDataSet* dataSet, const DataError& error, ErrorAction& action)
{
  translateRecordError(error, action);
  if (action == ErrorAction::Abort) {
    focusField(requiredFieldIn(dataSet));
  } else if (const auto& kept = GetCdsOpts(dataSet)->OnPostError) {
    kept(dataSet, error, action);
  }
}

// --- State -----------------------------------------------------------------------------------------------------

bool TfBase::CheckState() const
{
  const TClientDataSet* master = GetCdsMaster();
  return master && master->State() >= DataSetState::Edit;
}

bool TfBase::hasChanges() const
{
  for (const auto& entry : d->dataSets) {
    if (entry->DataSet->Active() && entry->DataSet->ChangeCount() > 0) {
      return true;
    }
  }
  return false;
}

bool TfBase::QueryToSaveBeforeToDo()
{
  for (const auto& entry : d->dataSets) {
    TClientDataSet* dataSet = entry->DataSet;
    if (dataSet->Active() && (dataSet->ChangeCount() > 0 || dataSet->Modified())) {
      return confirm(_que_unSaveRecords);
    }
  }
  return true;
}

FilterArray TfBase::requestFilter() const
{
  return buildRequestFilter(d->callerFilter, d->formFilter);
}

void TfBase::cancelAllUpdates()
{
  for (const auto& entry : d->dataSets) {
    if (entry->DataSet->Active()) {
      entry->DataSet->CancelUpdates();
    }
  }
}

}  // namespace kalvor
