// Saving a form's datasets: what is posted, what is stamped, what is sent, which records ask for a number.
#pragma once

#include <functional>
#include <optional>

#include "data/client_dataset.h"
#include "session/local_data.h"

namespace kalvor {

// One dataset of a form as the save sees it, in index order (0 = master).
struct SaveDataSet {
  TClientDataSet* dataSet = nullptr;
  QString providerName;
  QStringList seriesFields;  // fields numbered by a document series
};

// Posts what is pending, dataset by dataset; each detail that has unapplied changes puts the master into edit
// state, sets those audit columns that it has (C_Businessgroup_Id, C_User_Id, C_Datetime) and posts it. Changes of
// the master alone do not stamp it. Gives the master's "ID" before the details, null when it has no such field.
KALVOR_RULES Variant postAndStamp(const QList<SaveDataSet>& dataSets, const TLocalData& session);

// [provider name, delta] of every open dataset with unapplied changes, in index order; empty: nothing to send.
KALVOR_RULES VariantArray buildSavePacket(const QList<SaveDataSet>& dataSets);

// The numbering requests for inserted and modified records of all open datasets, null when there are none. Each is
// [table, record's Id, field name, series, company when the dataset has it]. absoluteSeries asks the server
// (GetAbsoluteNoSerie_Id) for each record whose "AbsoluteNo" is empty. DataError when a series or what a request
// needs is missing: the save must not go on.
KALVOR_RULES Variant GetOwnerData(const QList<SaveDataSet>& dataSets, const std::function<QString()>& absoluteSeries);

// After the server took the packet: what was sent is no change any more.
KALVOR_RULES void discardChangeLogs(const QList<SaveDataSet>& dataSets);

// Where each dataset stands, by its "Id", so that it can return there after the save has read anew.
struct RecordPosition {
  TClientDataSet* dataSet = nullptr;
  Variant id;
};
KALVOR_RULES QList<RecordPosition> rememberPositions(const QList<SaveDataSet>& dataSets);
KALVOR_RULES void restorePositions(const QList<RecordPosition>& positions);

}  // namespace kalvor
