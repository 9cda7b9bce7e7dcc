// A client dataset's view as the toolkit's table model; nothing is copied.
#pragma once

#include <QAbstractTableModel>

#include "data/client_dataset.h"
#include "layer_export.h"

namespace kalvor {

// One column per field that stands behind a record (aggregates do not), hidden ones too; one row per record
// of the view, as fetched so far. Follows the dataset by what changed: a changed record repaints its row, more
// records are appended rows, and only another set of fields resets the model. Reads a cell when it is asked
// for it, never before.
class KALVOR_WIDGETS DatasetModel : public QAbstractTableModel {
  Q_OBJECT
 public:
  static bool isNegative(const TField* field, qsizetype row);  // an amount below zero, shown as such
  explicit DatasetModel(QObject* parent = nullptr);
  ~DatasetModel() override;

  void setDataSet(TClientDataSet* dataSet);
  TClientDataSet* dataSet() const;
  TField* fieldAt(int column) const;         // null when out of range, or when the field is gone
  int columnOf(QStringView fieldName) const;  // -1 when missing
  // While rows and columns are brought up to date: what views do meanwhile is not the user's doing.
  bool isSyncing() const { return syncing_ > 0; }

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;
  bool canFetchMore(const QModelIndex& parent) const override;
  void fetchMore(const QModelIndex& parent) override;

 signals:
  void cursorMoved();              // another record is current
  void recordsChanged();           // any number of records may differ
  void recordStateChanged();       // edit, insert, browse
  void fieldsChanged();            // captions, visibility or order; the columns are up to date
  void focusRequested(kalvor::TField* field);

 private:
  class Link;

  void dataEvent(DataEvent event, TField* field);
  void readFields();
  void syncRows();

  std::unique_ptr<Link> link_;
  QMetaObject::Connection destroyed_;
  QStringList names_;          // of the columns
  QList<TField*> fields_;      // the same, valid while the controls are not disabled
  int rows_ = 0;               // as the views know it
  int syncing_ = 0;
  bool fetchFailed_ = false;   // do not ask a dead server with every scroll
};

// Numbers right, yes/no in the middle, everything else left.
KALVOR_WIDGETS Qt::Alignment fieldAlignment(const TField* field);

}  // namespace kalvor
