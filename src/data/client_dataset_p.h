// What stands behind a client dataset. Its functions are grouped by idea, one file each.
#pragma once

#include <QHash>
#include <limits>
#include <vector>

#include "data/aggregate.h"
#include "data/change_log.h"
#include "data/client_dataset.h"
#include "data/field_names.h"
#include "data/filter_program.h"
#include "data/record_ref.h"
#include "data/row_order.h"
#include "data/xml_packet.h"

namespace kalvor {

enum class PendingRecord : quint8 { None, Edit, Insert };

struct TClientDataSet::Private {
  explicit Private(TClientDataSet* owner) : q(owner) {}

  TClientDataSet* q;

  // --- Source (dataset_source.cpp) ----------------------------------------------------------------------
  DataBroker* broker = nullptr;
  QList<FieldDef> localFields;   // what an empty local dataset is opened with
  Variant continuation;
  bool allFetched = true;
  bool hasProvider() const { return broker && !q->ProviderName.isEmpty(); }
  void activate(RecordSet records, const PacketFile* changes = nullptr);
  PacketFile packetFile() const;
  void restoreChanges(const PacketFile& packet);
  void drop();                   // all records, changes, buffers
  bool fetchPacket(qsizetype count);
  void addPacket(const RecordSet& packet);
  void checkActive() const;
  bool fetchOnDemand();          // false: nothing more
  void replaceRecords(const DataPacket& packet);
  void findAgain(const VariantArray& key, qsizetype fetchedBefore);
  void fillEmptyView();          // fetches on while a filter lets nothing through

  // --- Fields (dataset_fields.cpp) ----------------------------------------------------------------------
  std::vector<std::unique_ptr<TField>> fields;
  FieldNames fieldsByName;
  TField* fieldNamed(QStringView name) const
  {
    const auto found = fieldsByName.find(name);
    return found == fieldsByName.end() ? nullptr : found->second;
  }
  int dataColumns = 0;           // of the storage; the internally calculated columns follow
  void bindFields(const QList<FieldDef>& definitions);
  TField* addField(const FieldDef& definition, FieldValueKind kind);
  void removeField(TField* field);
  void addInternalColumn(TField* field);
  QStringList splitNames(const QString& names) const;
  QList<TField*> fieldsOf(const QString& names) const;  // DataError when one is missing

  // --- Storage ------------------------------------------------------------------------------------------
  RecordSet store;               // a row's number names the record until the dataset is closed
  std::vector<RowState> states;  // one per row
  std::vector<RowId> order;      // order of arrival where it differs from the rows' own; else empty
  ChangeLog log;
  quint32 epoch = 0;             // of bookmarks: counts openings
  bool isLive(RowId row) const { return states[row] < RowState::Deleted; }
  RowId appendToStore(const RecordSet& source, qsizetype row);
  void insertIntoOrder(RowId row, RowId next);  // next = noRow: at the end
  int editsSinceCompact = 0;
  void compactWhenWasteful();

  // --- Current record -----------------------------------------------------------------------------------
  DataSetState state = DataSetState::Inactive;
  PendingRecord pending = PendingRecord::None;
  bool modified = false;
  RecordSet buffer;              // one row: the record being edited or inserted
  RecordSet keyBuffer;           // one row, in set-key state
  QSet<int> keyColumns;          // assigned since SetKey
  RecordRef foreign;             // set while a handler looks at another record than the current one
  qsizetype foreignRow = -1;     // its row in the view; -1 when it has none or none is known
  TField* validating = nullptr;  // while OnValidate runs the field shows the value to come
  Variant validatingValue;
  RecordRef storedRecord(RowId row) const { return {&store, qsizetype(row)}; }
  RecordRef recordOfViewRow(qsizetype row) const;
  RecordRef currentRecord() const;
  RowId currentRow() const;      // noRow when empty or being inserted
  void beginBuffer();
  void setState(DataSetState newState);
  void storeFieldValue(TField* field, const Variant& converted);
  void checkRequiredFields();
  void guarded(const DataSetErrorEvent& handler, const std::function<void()>& operation);
  void startInsert(bool append);
  void beginInsert(qsizetype position);
  void leaveInsert();            // the pending row out of the view
  void postEdit();
  void postInsert();
  void deleteCurrent();
  void afterViewLoss(qsizetype position);  // the record at the position left the view

  // --- View (dataset_view.cpp) --------------------------------------------------------------------------
  std::vector<RowId> view;       // noRow stands for the record being inserted
  qsizetype cursor = -1;         // position in the view, -1 when empty
  bool bof = true;
  bool eof = true;
  mutable std::vector<RowId> inverse;  // position by row, built when asked for
  mutable bool inverseValid = false;
  void viewChanged();
  std::vector<RowId> arrivals() const;   // all rows in the order of arrival
  std::vector<RowId> acceptedRows(const std::vector<RowId>& candidates, RowId first, RowId last);
  bool accepts(RowId row);
  void rebuildView();                    // keeps the current record where it still is, else its place
  void addRowsToView(RowId first, RowId last);
  void placeCurrent(RowId row);          // after its values changed
  qsizetype placeOf(RowId row) const;    // where the order puts it
  void insertIntoView(qsizetype position, RowId row);
  void removeFromView(qsizetype position);
  qsizetype positionOf(RowId row) const;
  void prepareView();                    // DataError when filter or order do not fit the fields
  void dropViewState();
  void showNewView(bool fromFirst);

  // --- Cursor (dataset_cursor.cpp) ----------------------------------------------------------------------
  void setCursor(qsizetype position);
  void toFirst();
  void goToRow(RowId row, qsizetype otherwise);
  void moveTo(qsizetype position);       // with the scroll events
  Bookmark bookmarkOf(RowId row) const;
  RowId rowOf(Bookmark bookmark) const;  // noRow when that record is gone

  // --- Finding (dataset_locate.cpp, dataset_keys.cpp) ---------------------------------------------------
  qsizetype findInView(const QList<TField*>& keyFields, const VariantArray& wanted, LocateOptions options,
                       qsizetype from) const;
  qsizetype findFetching(const QList<TField*>& keyFields, const VariantArray& wanted, LocateOptions options);
  QList<TField*> keyFields() const;
  VariantArray keyOfCurrent() const;
  qsizetype findKey(const VariantArray& key, qsizetype from) const;
  size_t keyFieldCount() const;          // leading index fields that the key buffer has values for
  qsizetype lowerBoundOfKey() const;
  qsizetype findKeyBuffer() const;
  void showAfterUndo(RowId follow);

  // --- Filter and order (dataset_filter.cpp, dataset_index.cpp) -----------------------------------------
  QString filterText;
  bool filtered = false;
  FilterProgramPtr filter;               // of the view as it stands; null = everything passes
  QString indexNames;
  RowOrder rowOrder;
  int groupingLevel = 0;
  RecordSet rangeFrom;                   // one row each while a range is set
  RecordSet rangeTo;
  size_t rangeFromCount = 0;
  size_t rangeToCount = 0;
  FilterField columnOf(const QString& fieldName) const;  // DataError when there is none
  FilterProgramPtr compileFilterText(const QString& text) const;
  bool passesFilterEvent(RowId row);
  bool inRange(RowId row) const;
  bool hasRowTests() const { return rangeFromCount + rangeToCount > 0 || (filtered && q->OnFilterRecord); }
  RowOrder orderOf(const QString& names) const;
  RecordSet rangeBound(const VariantArray& values) const;

  // --- Calculated fields (dataset_calculated.cpp) -------------------------------------------------------
  RecordSet calculated;          // one row: the calculated fields of one record
  QHash<const TField*, int> calculatedColumns;
  RecordRef calculatedFor;
  bool calculating = false;
  bool hasInternal() const { return int(store.fields.size()) > dataColumns; }
  void invalidateCalculated() { calculatedFor = {}; }
  RecordSet* internalTarget = nullptr;  // where the handler's values go in internal calculation
  qsizetype internalRow = 0;
  void ensureCalculated();
  void calculateInternalAt(RecordRef record, RecordSet* target);
  void calculateInternal(RowId first, RowId last);  // rows [first, last) of the storage
  void calculateInternalOfBuffer();
  void addCalculatedColumn(TField* field);

  // --- Aggregates (dataset_aggregates.cpp) --------------------------------------------------------------
  QHash<QString, std::shared_ptr<Aggregate>> aggregates;  // by expression
  void leavesAggregates(RowId row);      // before its values change or it leaves the view
  void entersAggregates(RowId row);
  void invalidateAggregates();
  Variant aggregateValue(const QString& expression);

  // --- Notifications (dataset_events.cpp) ---------------------------------------------------------------
  std::vector<DataLink*> links;
  int disabled = 0;
  bool missedActive = false;
  bool missedLayout = false;
  bool missedState = false;
  bool missedData = false;
  void notify(DataEvent event, TField* field = nullptr);
  void sendToLinks(DataEvent event, TField* field);
  void call(const DataSetEvent& handler) const
  {
    if (handler) {
      const DataSetEvent kept = handler;  // a handler may replace itself
      kept(q);
    }
  }
};

// Another record takes the place of the current one for the life of this.
class ForeignRecord {
 public:
  // viewRow: where the record stands in the view, for the group state; -1 = the cursor's row counts.
  ForeignRecord(TClientDataSet::Private* d, RecordRef record, qsizetype viewRow = -1);
  ~ForeignRecord();
  ForeignRecord(const ForeignRecord&) = delete;
  ForeignRecord& operator=(const ForeignRecord&) = delete;

 private:
  TClientDataSet::Private* d_;
  RecordRef before_;
  qsizetype rowBefore_;
};

}  // namespace kalvor
