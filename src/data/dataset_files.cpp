// A client dataset as an XML data packet, in memory and in files.
#include <QFile>
#include <QSaveFile>

#include "data/client_dataset_p.h"
#include "data/messages.h"
#include "data/xml_packet.h"

namespace kalvor {

PacketFile TClientDataSet::Private::packetFile() const
{
  PacketFile packet;
  packet.records = RecordSet(store.fields.first(dataColumns));
  packet.originals = RecordSet(packet.records.fields);
  const auto copy = [](RecordSet& to, const RecordSet& from, qsizetype row) {
    for (size_t i = 0; i < to.columns.size(); ++i)
      to.columns[i].appendFrom(from.columns[i], row);
    return to.rows++;
  };
  std::vector<RowId> places(states.size(), noRow);
  for (RowId row : arrivals())
    if (states[row] != RowState::Gone)
      places[row] = RowId(copy(packet.records, store, row));
  for (RowId row : log.changedRows(states)) {
    const qsizetype original = states[row] == RowState::Inserted ? -1 : log.originalOf(row);
    const qsizetype place = original < 0 ? -1 : copy(packet.originals, log.images(), original);
    packet.changes.push_back({places[row], states[row], place});
  }
  return packet;
}

QByteArray TClientDataSet::XMLData() const
{
  d->checkActive();
  return writePacket(d->packetFile());
}

void TClientDataSet::SetXMLData(const QByteArray& data)
{
  PacketFile packet = readPacket(data);
  Close();
  d->call(BeforeOpen);
  d->localFields = packet.records.fields;
  d->continuation = {};
  RecordSet records = std::move(packet.records);
  d->activate(std::move(records), &packet);
}

void TClientDataSet::Private::restoreChanges(const PacketFile& packet)
{
  RecordSet originals = packet.originals;  // with the internally calculated columns that the log keeps too
  for (qsizetype i = originals.fields.size(); i < store.fields.size(); ++i) {
    originals.fields.append(store.fields[i]);
    Column& column = originals.columns.emplace_back(storageOf(store.fields[i].type));
    for (qsizetype row = 0; row < originals.rows; ++row)
      column.appendNull();
  }
  for (const RecordChange& change : packet.changes)
    log.restore(change.row, change.state, originals, change.original, states);
}

void TClientDataSet::SaveToFile(const QString& fileName) const
{
  const QByteArray data = XMLData();
  QSaveFile file(fileName);
  if (!file.open(QIODevice::WriteOnly) || file.write(data) != data.size() || !file.commit())
    throw DataError(dataMessage(errFileNotWritten).arg(fileName, file.errorString()));
}

void TClientDataSet::LoadFromFile(const QString& fileName)
{
  QFile file(fileName);
  if (!file.open(QIODevice::ReadOnly))
    throw DataError(dataMessage(errFileNotRead).arg(fileName, file.errorString()));
  const QByteArray data = file.readAll();
  if (file.error() != QFileDevice::NoError)
    throw DataError(dataMessage(errFileNotRead).arg(fileName, file.errorString()));
  SetXMLData(data);
}

}  // namespace kalvor
