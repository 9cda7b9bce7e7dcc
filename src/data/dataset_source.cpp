// Where the records of a client dataset come from: opening, closing, packets, refreshing.
#include <QScopeGuard>
#include <algorithm>

#include "data/client_dataset_p.h"
#include "data/messages.h"

namespace kalvor {

namespace {

// Packets come from outside: every column must hold what the fields and the number of rows say.
void checkShape(const RecordSet& records)
{
  bool fits = records.columns.size() == size_t(records.fields.size());
  for (qsizetype i = 0; fits && i < records.fields.size(); ++i) {
    const Column& column = records.columns[size_t(i)];
    fits = column.size() == records.rows && column.kind() == storageOf(records.fields[i].type);
  }
  if (!fits)
    throw DataError(dataMessage(errPacketFields));
}

}  // namespace

TClientDataSet::TClientDataSet(QObject* parent) : QObject(parent), d(std::make_unique<Private>(this)) {}

TClientDataSet::~TClientDataSet()
{
  d->disabled = 0;
  if (Active()) {
    d->drop();
    d->state = DataSetState::Inactive;
    d->sendToLinks(DataEvent::ActiveChange, nullptr);
  }
  for (DataLink* link : std::vector<DataLink*>(d->links))
    link->setDataSet(nullptr);
}

void TClientDataSet::SetRemoteServer(DataBroker* broker)
{
  d->broker = broker;
}

DataBroker* TClientDataSet::RemoteServer() const
{
  return d->broker;
}

bool TClientDataSet::Active() const
{
  return d->state != DataSetState::Inactive;
}

void TClientDataSet::SetActive(bool active)
{
  active ? Open() : Close();
}

void TClientDataSet::Open()
{
  if (Active())
    return;
  d->call(BeforeOpen);
  if (d->hasProvider()) {
    const DataPacketPtr packet = d->broker->openProvider(ProviderName, PacketRecords);
    if (!packet)
      throw DataError(dataMessage(errNoProvider));
    d->continuation = packet->continuation;
    d->activate(packet->records);
  } else {
    if (d->localFields.isEmpty())
      throw DataError(dataMessage(ProviderName.isEmpty() ? errNoFields : errNoProvider));
    d->continuation = {};
    d->activate(RecordSet(d->localFields));
  }
}

// Nothing of the dataset changes before everything that can fail has succeeded.
void TClientDataSet::Private::activate(RecordSet records, const PacketFile* changes)
{
  checkShape(records);
  auto undo = qScopeGuard([this] {
    drop();
    state = DataSetState::Inactive;
  });
  bindFields(records.fields);
  dataColumns = int(records.fields.size());
  store = std::move(records);
  states.assign(size_t(store.rows), RowState::Unmodified);
  log.reset(store.fields);
  calculated = RecordSet(QList<FieldDef>());
  calculated.rows = 1;
  calculatedColumns.clear();
  state = DataSetState::Browse;
  for (const auto& field : fields) {
    if (field->kind_ == FieldValueKind::InternalCalculated)
      addInternalColumn(field.get());
    else if (field->kind_ != FieldValueKind::Data && field->kind_ != FieldValueKind::Aggregate)
      addCalculatedColumn(field.get());
  }
  allFetched = kalvor::isNull(continuation);
  if (changes)
    restoreChanges(*changes);
  ++epoch;
  prepareView();
  rebuildView();
  fillEmptyView();
  toFirst();
  undo.dismiss();
  notify(DataEvent::ActiveChange);
  notify(DataEvent::StateChange);
  call(q->OnStateChange);
  call(q->AfterOpen);
  if (state != DataSetState::Inactive && !q->IsEmpty())
    call(q->AfterScroll);
}

void TClientDataSet::Close()
{
  if (!Active())
    return;
  d->call(BeforeClose);
  d->drop();
  d->setState(DataSetState::Inactive);
  d->notify(DataEvent::ActiveChange);
  d->call(AfterClose);
}

void TClientDataSet::Private::drop()
{
  store = RecordSet();
  states = {};
  order = {};
  log.reset({});
  pending = PendingRecord::None;
  modified = false;
  buffer = RecordSet();
  keyBuffer = RecordSet();
  calculated = RecordSet();
  calculatedColumns.clear();
  invalidateCalculated();
  continuation = {};
  allFetched = true;
  dataColumns = 0;
  view = {};
  viewChanged();
  setCursor(-1);
  bof = eof = true;
  for (const auto& field : fields)
    field->column_ = -1;
  dropViewState();
}

void TClientDataSet::CreateDataSet(const QList<FieldDef>& fields)
{
  if (fields.isEmpty())
    throw DataError(dataMessage(errNoFields));
  SetRecords(RecordSet(fields));
}

void TClientDataSet::SetRecords(RecordSet records)
{
  Close();
  d->call(BeforeOpen);
  d->localFields = records.fields;
  d->continuation = {};
  d->activate(std::move(records));
}

const RecordSet& TClientDataSet::Records() const
{
  return d->store;
}

void TClientDataSet::Private::checkActive() const
{
  if (state == DataSetState::Inactive)
    throw DataError(dataMessage(errDataSetClosed));
}

bool TClientDataSet::AllFetched() const
{
  return d->allFetched;
}

bool TClientDataSet::Private::fetchPacket(qsizetype count)
{
  if (allFetched || !hasProvider())
    return false;
  const DataPacketPtr packet = broker->fetchRecords(q->ProviderName, continuation, count);
  if (!packet)
    throw DataError(dataMessage(errNoProvider));
  checkShape(packet->records);
  addPacket(packet->records);
  // An empty packet ends the records even where the server offers to go on: nothing may loop for ever.
  continuation = packet->records.rows > 0 ? packet->continuation : Variant();
  allFetched = kalvor::isNull(continuation);
  return packet->records.rows > 0;
}

void TClientDataSet::Private::addPacket(const RecordSet& packet)
{
  std::vector<int> source(size_t(dataColumns), -1);
  for (int i = 0; i < dataColumns; ++i) {
    const bool inPlace = i < packet.fields.size() && packet.fields[i].name == store.fields[i].name;
    source[size_t(i)] = inPlace ? i : packet.indexOf(store.fields[i].name);
    if (source[size_t(i)] < 0 || packet.fields[source[size_t(i)]].type != store.fields[i].type)
      throw DataError(dataMessage(errPacketFields));
  }
  const RowId first = RowId(store.rows);
  for (int i = 0; i < dataColumns; ++i)
    store.columns[size_t(i)].appendAll(packet.columns[size_t(source[size_t(i)])]);
  for (size_t i = size_t(dataColumns); i < store.columns.size(); ++i)
    for (qsizetype row = 0; row < packet.rows; ++row)
      store.columns[i].appendNull();
  store.rows += packet.rows;
  states.resize(size_t(store.rows), RowState::Unmodified);
  if (!order.empty())
    for (RowId row = first; row < RowId(store.rows); ++row)
      order.push_back(row);
  calculateInternal(first, RowId(store.rows));
  addRowsToView(first, RowId(store.rows));
}

bool TClientDataSet::GetNextPacket()
{
  d->checkActive();
  const bool more = d->fetchPacket(PacketRecords);
  if (more)
    d->notify(DataEvent::DataSetChange);
  return more;
}

void TClientDataSet::FetchAll()
{
  d->checkActive();
  bool any = false;
  while (d->fetchPacket(-1))
    any = true;
  if (any)
    d->notify(DataEvent::DataSetChange);
}

bool TClientDataSet::Private::fetchOnDemand()
{
  return q->FetchOnDemand && q->GetNextPacket();
}

void TClientDataSet::Refresh()
{
  d->checkActive();
  CheckBrowseMode();
  if (ChangeCount() > 0)
    throw DataError(dataMessage(errPendingChanges));
  if (!d->hasProvider())
    throw DataError(dataMessage(errNoProvider));
  d->call(BeforeRefresh);
  const DataPacketPtr packet = d->broker->openProvider(ProviderName, PacketRecords);
  if (!packet)
    throw DataError(dataMessage(errNoProvider));
  checkShape(packet->records);
  const VariantArray key = d->keyOfCurrent();
  const qsizetype fetchedBefore = d->store.rows;
  d->replaceRecords(*packet);
  d->toFirst();
  try {
    d->findAgain(key, fetchedBefore);
  } catch (...) {
    d->notify(DataEvent::DataSetChange);
    throw;
  }
  d->notify(DataEvent::DataSetChange);
  d->call(AfterRefresh);
  if (!IsEmpty())
    d->call(AfterScroll);
}

// As far as had been read before, and one packet more: a record that is gone must not fetch a whole table.
void TClientDataSet::Private::findAgain(const VariantArray& key, qsizetype fetchedBefore)
{
  fillEmptyView();
  qsizetype position = findKey(key, 0);
  while (position < 0 && !key.isEmpty() && store.rows <= fetchedBefore) {
    const qsizetype searched = rowOrder.isEmpty() ? qsizetype(view.size()) : 0;
    if (!fetchPacket(q->PacketRecords))
      break;
    position = findKey(key, searched);
  }
  toFirst();
  if (position < 0)
    return;
  setCursor(position);
  bof = position == 0;
}

void TClientDataSet::Private::replaceRecords(const DataPacket& packet)
{
  for (int i = 0; i < dataColumns; ++i) {
    const int source = packet.records.indexOf(store.fields[i].name);
    if (source < 0 || packet.records.fields[source].type != store.fields[i].type)
      throw DataError(dataMessage(errPacketFields));
  }
  const QList<FieldDef> layout = store.fields;
  store = RecordSet(layout);
  states.clear();
  order.clear();
  log.reset(layout);
  view.clear();
  viewChanged();
  invalidateCalculated();
  setCursor(-1);
  ++epoch;
  rebuildView();
  addPacket(packet.records);
  continuation = packet.continuation;
  allFetched = kalvor::isNull(continuation);
}

}  // namespace kalvor
