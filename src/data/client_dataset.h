// The client dataset: records of one provider (or of a file, or of the program), a cursor over them, a log
// of their changes. Everything that shows, edits, imports, prints or computes reads and writes through it.
#pragma once

#include <QObject>
#include <QSet>
#include <memory>

#include "data/data_broker.h"
#include "data/data_error.h"
#include "data/field.h"

namespace kalvor {

enum class DataSetState : quint8 { Inactive, Browse, Edit, Insert, SetKey, CalcFields, InternalCalc, Filter, NewValue };

enum class DataEvent : quint8 {
  ActiveChange,   // opened or closed
  LayoutChange,   // fields came, went, moved, changed caption or visibility
  DataSetChange,  // any number of records may differ: read everything again
  Scroll,         // another record is current
  RecordChange,   // values of the current record; field = the one that changed, null = any
  StateChange,
  UpdateRecord,   // controls: write pending text into your field now (before post)
  FocusControl    // a control of this field should take the focus
};

// How controls follow a dataset; any number may be linked. Detaches itself on destruction.
class KALVOR_DATA DataLink {
 public:
  DataLink() = default;
  DataLink(const DataLink&) = delete;
  DataLink& operator=(const DataLink&) = delete;
  virtual ~DataLink();
  void setDataSet(TClientDataSet* dataSet);
  TClientDataSet* dataSet() const { return dataSet_; }
  // Must not throw, but for UpdateRecord: a text that the field refuses stops the post.
  virtual void dataEvent(DataEvent event, TField* field) = 0;

 private:
  friend class TClientDataSet;
  TClientDataSet* dataSet_ = nullptr;
};

using DataSetEvent = std::function<void(TClientDataSet*)>;
enum class ErrorAction : quint8 { Fail, Abort, Retry };  // Abort: silently
using DataSetErrorEvent = std::function<void(TClientDataSet*, const DataError&, ErrorAction&)>;
using FilterRecordEvent = std::function<void(TClientDataSet*, bool& accept)>;

struct LocateOptions {
  bool caseInsensitive = false;
  bool partialKey = false;
};

// Names a record of one dataset until that dataset is closed or refreshed; a record that is gone, or is not
// posted yet, has none.
using Bookmark = qint64;
constexpr Bookmark noBookmark = -1;

class KALVOR_DATA TClientDataSet : public QObject {
  Q_OBJECT
 public:
  struct Private;  // of the implementation

  explicit TClientDataSet(QObject* parent = nullptr);
  ~TClientDataSet() override;

  // --- Source -------------------------------------------------------------------------------------------
  void SetRemoteServer(DataBroker* broker);  // not owned; null = local dataset
  DataBroker* RemoteServer() const;
  QString ProviderName;
  int PacketRecords = -1;                    // -1 = all in the first packet
  bool FetchOnDemand = true;                 // moving past the last fetched record asks for the next packet
  QString Key = QStringLiteral("Id");        // packet key fields, ";"-separated

  void Open();                               // from the provider, or the records defined and loaded before
  void Close();
  bool Active() const;
  void SetActive(bool active);
  // Reads everything again from the provider and keeps the current record by key where it still exists (looked for
  // as far as had been read before and one packet more). Needs no pending changes (DataError).
  void Refresh();
  bool GetNextPacket();                      // false: everything is here already
  void FetchAll();                           // the rest in one call
  bool AllFetched() const;
  void CreateDataSet(const QList<FieldDef>& fields);  // an empty local dataset, open
  void SetRecords(RecordSet records);                 // a local dataset with these records, open
  const RecordSet& Records() const;          // the storage, with rows that no view shows; for scans

  // --- State --------------------------------------------------------------------------------------------
  DataSetState State() const;
  bool IsEditing() const;                    // edit, insert, set-key
  bool Modified() const;                     // the current record has values that are not posted
  bool CanModify() const;
  bool ReadOnly = false;                     // edits are refused
  void CheckBrowseMode();                    // posts a pending edit, cancels an untouched one

  // --- Fields -------------------------------------------------------------------------------------------
  int FieldCount() const;
  TField* Field(int index) const;
  TField* FindField(QStringView name) const;    // null when missing; case does not matter
  TField* FieldByName(QStringView name) const;  // DataError when missing
  QList<TField*> Fields() const;
  Variant FieldValues(const QString& names) const;  // "A" the value, "A;B" an array
  TField* AddCalculatedField(const FieldDef& definition, FieldValueKind kind);  // while closed or open
  // SUM, AVG, MIN, MAX, COUNT of a field, COUNT(*), arithmetic in and between them: "SUM(Qty * Price) / COUNT(*)".
  // DataError when the dataset is open and the expression cannot be computed; one that turns out so later is null.
  TField* AddAggregateField(const QString& name, const QString& expression);
  // Drops an aggregate, or, while closed, a calculated field; the object is gone.
  void RemoveField(TField* field);
  bool AggregatesActive = false;             // off: aggregate fields are null, and changes cost nothing for them
  void UpdateLayout();                       // after captions, visibility or order changed: tell the controls

  // A record that is being inserted is part of the view: it counts, it has a number, ValueAt() reads it. It stands
  // before the record that was current (Insert) or at the end (Append). Deleting the last record reaches Eof.
  // --- Cursor -------------------------------------------------------------------------------------------
  void First();
  void Last();                               // fetches all packets first
  void Next();
  void Prior();
  qsizetype MoveBy(qsizetype distance);      // the distance really moved
  bool Bof() const;
  bool Eof() const;
  bool IsEmpty() const;
  qsizetype RecordCount() const;             // of the view, as fetched so far
  qsizetype RecNo() const;                   // from 1; 0 when empty
  void SetRecNo(qsizetype number);
  Bookmark GetBookmark() const;
  bool BookmarkValid(Bookmark bookmark) const;
  bool GotoBookmark(Bookmark bookmark);      // false: that record is not in the view
  qsizetype RowOfBookmark(Bookmark bookmark) const;  // from 0; -1 when not in the view
  Bookmark BookmarkOfRow(qsizetype row) const;
  // Where Records() holds the record that the view shows there; -1 outside the view and while it is being inserted.
  qsizetype StoredRow(qsizetype row) const;
  // Over the view; what is not among the fetched records makes it fetch the rest. Case matters unless an option says
  // otherwise; null finds null. False: nothing moved. DataError when fields and values do not agree in number.
  bool Locate(const QString& fieldNames, const Variant& values, LocateOptions options = {});
  Variant Lookup(const QString& keyFields, const Variant& keyValues, const QString& resultFields);
  void DisableControls();                    // nested; one DataSetChange at the last EnableControls
  void EnableControls();
  bool ControlsDisabled() const;

  // --- Records ------------------------------------------------------------------------------------------
  void Append();
  void Insert();
  void Edit();
  void Post();
  void Cancel();
  void Delete();
  void AppendRecord(const VariantArray& values);

  // --- Changes ------------------------------------------------------------------------------------------
  bool LogChanges = true;
  int ChangeCount() const;                   // records inserted, modified or deleted
  kalvor::UpdateStatus UpdateStatus() const; // of the current record
  kalvor::UpdateStatus UpdateStatusOfRow(qsizetype row) const;
  bool UndoLastChange(bool followChange);
  void RevertRecord();                       // the current record as the server delivered it
  void CancelUpdates();                      // all of them; a pending edit too
  void MergeChangeLog();                     // the server has taken them
  DeltaPtr GetDelta() const;                 // null when nothing changed; only fields with InUpdate are updatable
  QList<Bookmark> DeletedRecords() const;

  // --- Views --------------------------------------------------------------------------------------------
  // Text filter: Field = 'x', <>, <, >, <=, >=, [NOT] LIKE with % and _, [NOT] IN (..), AND, OR, NOT, brackets,
  // = NULL, IS [NOT] NULL, another field, [names with blanks], dates in quotes. A null field passes no comparison.
  // A filter that does not parse throws DataError and leaves the view as it was. A new filter starts at the first
  // record; records that arrive or change are filtered as they come.
  void SetFilter(const QString& text);
  QString Filter() const;
  void SetFiltered(bool on);
  bool Filtered() const;
  bool FilterCaseInsensitive = true;
  // "A;B", "A DESC;B"; empty = order of arrival. Texts in the order of the Bulgarian alphabet without regard to
  // case (collation.h), nulls first. Needs fields with a column (DataError). Ends a range, keeps the record.
  void SetIndexFieldNames(const QString& names);
  QString IndexFieldNames() const;
  void SetGroupingLevel(int levels);         // over the first index fields
  int GroupingLevel() const;
  struct GroupPosition { bool first; bool middle; bool last; };
  GroupPosition GetGroupState(int level) const;   // of the current record; level from 1
  Variant AggregateValue(const QString& expression) const;  // over the view, kept up to date
  void SetRange(const VariantArray& from, const VariantArray& to);  // over the index fields
  void CancelRange();
  // Key search over the index: SetKey, set index fields, go. A key is exact, its letters' case too; GotoNearest goes
  // to the first record that is not before it. Both fetch the rest where the fetched records do not answer.
  void SetKey();
  bool GotoKey();
  void GotoNearest();

  // --- Files --------------------------------------------------------------------------------------------
  QByteArray XMLData() const;                // schema, records, changes
  void SetXMLData(const QByteArray& data);   // refused whole with DataError when malformed
  void SaveToFile(const QString& fileName) const;
  void LoadFromFile(const QString& fileName);

  // --- Single-slot events -------------------------------------------------------------------------------
  DataSetEvent BeforeOpen, AfterOpen, BeforeClose, AfterClose, BeforeInsert, AfterInsert, BeforeEdit, AfterEdit,
      BeforePost, AfterPost, BeforeCancel, AfterCancel, BeforeDelete, AfterDelete, BeforeScroll, AfterScroll,
      BeforeRefresh, AfterRefresh, OnNewRecord, OnCalcFields, OnStateChange;
  DataSetErrorEvent OnPostError, OnEditError, OnDeleteError;
  FilterRecordEvent OnFilterRecord;
  void RefreshFilter();                      // OnFilterRecord decides anew

 private:
  friend class TField;
  friend class DataLink;
  std::unique_ptr<Private> d;
};

// The message that a post raises for an empty required field: Field 'label' must have a value.
KALVOR_DATA QString requiredFieldMessage(const QString& displayLabel);

// No notification reaches the controls while this lives.
class ControlsDisabledScope {
 public:
  explicit ControlsDisabledScope(TClientDataSet* dataSet) : dataSet_(dataSet) { dataSet_->DisableControls(); }
  ~ControlsDisabledScope() { dataSet_->EnableControls(); }
  ControlsDisabledScope(const ControlsDisabledScope&) = delete;
  ControlsDisabledScope& operator=(const ControlsDisabledScope&) = delete;

 private:
  TClientDataSet* dataSet_;
};

}  // namespace kalvor
