#include "forms/record_saving.h"

#include "forms/messages.h"
#include "platform/ports.h"

namespace kalvor {
namespace {

void stampMaster(TClientDataSet& master, const TLocalData& session)
{
  if (!master.IsEditing()) {
    if (master.IsEmpty())
      return;
    master.Edit();
  }
  if (TField* group = master.FindField(u"C_Businessgroup_Id"))
    group->SetValue(session.BGroupId);
  if (TField* user = master.FindField(u"C_User_Id"))
    user->SetValue(session.UserId);
  if (TField* when = master.FindField(u"C_Datetime"))
    when->SetAsDateTime(systemClock().now());
  master.Post();
}

// The changed records of one dataset, read from its delta so that the cursor does not move.
class NumberingRequests {
 public:
  NumberingRequests(const SaveDataSet& source, const Delta& delta, const std::function<QString()>& absoluteSeries)
      : source_(source), records_(delta.records), absoluteSeries_(absoluteSeries)
  {
    if (const TField* id = source.dataSet->FindField(u"ID"))
      table_ = id->Origin.contains(u'.') ? id->Origin.section(u'.', 0, 0) : QString();
  }

  void addFor(qsizetype row, VariantArray& requests) const
  {
    if (isEmpty(row, u"AbsoluteNo")) {
      const QString series = absoluteSeries_();
      if (series.isEmpty())
        throw DataError(_err_UnablaibleToGetAbsNoSerie + QStringLiteral("\n\r") + _err_OperationAborted);
      requests.append(Variant(request(row, QStringLiteral("AbsoluteNo"), series)));
    }
    for (const QString& field : source_.seriesFields)
      if (isEmpty(row, field))
        requests.append(Variant(request(row, field, needed(row, u"Series_Id"))));
  }

 private:
  // The field is there and holds nothing but blanks.
  bool isEmpty(qsizetype row, QStringView fieldName) const
  {
    const int field = records_.indexOf(fieldName);
    return field >= 0 && variantText(records_.value(row, field)).trimmed().isEmpty();
  }

  Variant needed(qsizetype row, QStringView fieldName) const
  {
    const int field = records_.indexOf(fieldName);
    const Variant value = field >= 0 ? records_.value(row, field) : Variant();
    if (variantText(value).isEmpty())
      throw DataError(_err_GetSerieData);
    return value;
  }

  VariantArray request(qsizetype row, const QString& fieldName, const Variant& series) const
  {
    VariantArray items{table_, needed(row, u"Id"), fieldName, series};
    if (const int company = records_.indexOf(u"comp_id"); company >= 0)
      items.append(records_.value(row, company));
    return items;
  }

  const SaveDataSet& source_;
  const RecordSet& records_;
  const std::function<QString()>& absoluteSeries_;
  QString table_;
};

bool hasUnsentChanges(const SaveDataSet& item)
{
  return item.dataSet->Active() && item.dataSet->ChangeCount() > 0;
}

}  // namespace

Variant postAndStamp(const QList<SaveDataSet>& dataSets, const TLocalData& session)
{
  if (dataSets.isEmpty())
    return {};
  TClientDataSet& master = *dataSets.first().dataSet;
  if (master.IsEditing())
    master.Post();
  const TField* idField = master.FindField(u"ID");
  const Variant id = idField ? idField->Value() : Variant();
  for (qsizetype i = 0; i < dataSets.size(); ++i) {
    TClientDataSet& dataSet = *dataSets.at(i).dataSet;
    if (dataSet.IsEditing())
      dataSet.Post();
    if (i > 0 && hasUnsentChanges(dataSets.at(i)))
      stampMaster(master, session);
  }
  return id;
}

VariantArray buildSavePacket(const QList<SaveDataSet>& dataSets)
{
  VariantArray packet;
  for (const SaveDataSet& item : dataSets)
    if (hasUnsentChanges(item))
      if (const DeltaPtr delta = item.dataSet->GetDelta())
        packet.append(Variant(VariantArray{item.providerName, Variant::fromValue(delta)}));
  return packet;
}

Variant GetOwnerData(const QList<SaveDataSet>& dataSets, const std::function<QString()>& absoluteSeries)
{
  VariantArray requests;
  for (const SaveDataSet& item : dataSets) {
    const DeltaPtr delta = hasUnsentChanges(item) ? item.dataSet->GetDelta() : nullptr;
    if (!delta)
      continue;
    const NumberingRequests numbering(item, *delta, absoluteSeries);
    for (qsizetype row = 0; row < delta->records.rows; ++row) {
      const UpdateStatus status = delta->status[size_t(row)];
      if (status == UpdateStatus::Inserted || status == UpdateStatus::Modified)
        numbering.addFor(row, requests);
    }
  }
  return requests.isEmpty() ? Variant() : Variant(requests);
}

void discardChangeLogs(const QList<SaveDataSet>& dataSets)
{
  for (const SaveDataSet& item : dataSets)
    if (hasUnsentChanges(item))
      item.dataSet->MergeChangeLog();
}

QList<RecordPosition> rememberPositions(const QList<SaveDataSet>& dataSets)
{
  QList<RecordPosition> positions;
  for (const SaveDataSet& item : dataSets)
    if (item.dataSet->Active() && !item.dataSet->IsEmpty())
      if (const TField* id = item.dataSet->FindField(u"Id"))
        positions.append({item.dataSet, id->Value()});
  return positions;
}

void restorePositions(const QList<RecordPosition>& positions)
{
  for (const RecordPosition& position : positions)
    if (position.dataSet->Active() && !kalvor::isNull(position.id))
      position.dataSet->Locate(QStringLiteral("Id"), position.id);
}

}  // namespace kalvor
