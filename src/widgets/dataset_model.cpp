#include "widgets/dataset_model.h"

#include "widgets/data_control.h"
#include "widgets/field_validator.h"
#include "widgets/theme.h"

namespace kalvor {
namespace {

class SyncScope {
 public:
  explicit SyncScope(int& depth) : depth_(depth) { ++depth_; }
  ~SyncScope() { --depth_; }
  SyncScope(const SyncScope&) = delete;
  SyncScope& operator=(const SyncScope&) = delete;

 private:
  int& depth_;
};

}  // namespace

class DatasetModel::Link : public DataLink {
 public:
  explicit Link(DatasetModel* model) : model_(model) {}
  void dataEvent(DataEvent event, TField* field) override { model_->dataEvent(event, field); }

 private:
  DatasetModel* model_;
};

DatasetModel::DatasetModel(QObject* parent) : QAbstractTableModel(parent), link_(std::make_unique<Link>(this)) {}

DatasetModel::~DatasetModel() = default;

void DatasetModel::setDataSet(TClientDataSet* dataSet)
{
  disconnect(destroyed_);
  link_->setDataSet(dataSet);
  if (dataSet) {
    destroyed_ = connect(dataSet, &QObject::destroyed, this, [this] {
      link_->setDataSet(nullptr);
      readFields();
      syncRows();
    });
  }
  fetchFailed_ = false;
  readFields();
  syncRows();
  emit cursorMoved();
}

TClientDataSet* DatasetModel::dataSet() const
{
  return link_->dataSet();
}

TField* DatasetModel::fieldAt(int column) const
{
  if (!dataSet() || column < 0 || column >= fields_.size()) {
    return nullptr;
  }
  // While the dataset does not report, it may have been closed and its fields replaced.
  return dataSet()->ControlsDisabled() ? dataSet()->FindField(names_[column]) : fields_[column];
}

int DatasetModel::columnOf(QStringView fieldName) const
{
  for (int i = 0; i < names_.size(); ++i) {
    if (fieldName.compare(names_[i], Qt::CaseInsensitive) == 0) {
      return i;
    }
  }
  return -1;
}

int DatasetModel::rowCount(const QModelIndex& parent) const
{
  return parent.isValid() ? 0 : rows_;
}

int DatasetModel::columnCount(const QModelIndex& parent) const
{
  return parent.isValid() ? 0 : int(names_.size());
}

QVariant DatasetModel::data(const QModelIndex& index, int role) const
{
  const TField* field = fieldAt(index.column());
  if (!field || !dataSet()->Active() || index.row() >= dataSet()->RecordCount()) {
    return {};
  }
  switch (role) {
    case Qt::DisplayRole: return field->DisplayTextAt(index.row());
    case Qt::TextAlignmentRole: return int(fieldAlignment(field) | Qt::AlignVCenter);
    case Qt::ForegroundRole:
      return isNegative(field, index.row()) ? QVariant(theme().negative) : QVariant();
    default: return {};
  }
}

bool DatasetModel::isNegative(const TField* field, qsizetype row)
{
  return isNumericType(field->FieldDataType()) && !field->OnGetText && field->ValueAt(row).toDouble() < 0;
}

QVariant DatasetModel::headerData(int section, Qt::Orientation orientation, int role) const
{
  if (orientation == Qt::Vertical) {
    return role == Qt::DisplayRole ? QVariant(section + 1) : QVariant();
  }
  const TField* field = fieldAt(section);
  if (!field) {
    return {};
  }
  switch (role) {
    case Qt::DisplayRole:
    case Qt::ToolTipRole: return field->DisplayLabel.isEmpty() ? field->FieldName() : field->DisplayLabel;
    case Qt::TextAlignmentRole: return int(fieldAlignment(field) | Qt::AlignVCenter);
    default: return {};
  }
}

Qt::ItemFlags DatasetModel::flags(const QModelIndex& index) const
{
  // Whether a cell may be edited is the grid's question; the toolkit asks here first.
  return index.isValid() ? Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsEditable | Qt::ItemNeverHasChildren
                         : Qt::NoItemFlags;
}

bool DatasetModel::canFetchMore(const QModelIndex& parent) const
{
  const TClientDataSet* source = dataSet();
  return !parent.isValid() && !fetchFailed_ && source && source->Active() && source->FetchOnDemand &&
         !source->AllFetched() && !source->ControlsDisabled();
}

void DatasetModel::fetchMore(const QModelIndex& parent)
{
  if (!canFetchMore(parent)) {
    return;
  }
  fetchFailed_ = !attempt(qobject_cast<QWidget*>(QObject::parent()), [this] { dataSet()->GetNextPacket(); });
  syncRows();
}

void DatasetModel::dataEvent(DataEvent event, TField* field)
{
  switch (event) {
    case DataEvent::ActiveChange:
      fetchFailed_ = false;
      readFields();
      syncRows();
      emit recordsChanged();
      emit cursorMoved();
      break;
    case DataEvent::LayoutChange: readFields(); break;
    case DataEvent::DataSetChange:
      readFields();
      syncRows();
      emit recordsChanged();
      emit cursorMoved();
      break;
    case DataEvent::Scroll:
      syncRows();
      emit cursorMoved();
      break;
    case DataEvent::RecordChange:
      syncRows();
      if (const int row = int(dataSet()->RecNo()) - 1; row >= 0 && row < rows_ && !names_.isEmpty()) {
        emit dataChanged(index(row, 0), index(row, columnCount() - 1));  // calculated fields change with it
      }
      break;
    case DataEvent::StateChange:
      syncRows();
      emit recordStateChanged();
      break;
    case DataEvent::FocusControl: emit focusRequested(field); break;
    case DataEvent::UpdateRecord: break;  // the editor in the grid is a control of its own
  }
}

void DatasetModel::readFields()
{
  QList<TField*> fields;
  QStringList names;
  if (dataSet()) {
    for (TField* field : dataSet()->Fields()) {
      if (field->FieldKind() != FieldValueKind::Aggregate) {
        fields.append(field);
        names.append(field->FieldName());
      }
    }
  }
  const SyncScope scope(syncing_);
  if (names != names_) {
    beginResetModel();
    names_ = std::move(names);
    fields_ = std::move(fields);
    rows_ = 0;
    endResetModel();
  } else {
    fields_ = std::move(fields);
  }
  emit fieldsChanged();
}

void DatasetModel::syncRows()
{
  const SyncScope scope(syncing_);
  const TClientDataSet* source = dataSet();
  const int now = source && source->Active() ? int(source->RecordCount()) : 0;
  if (now > rows_) {
    beginInsertRows({}, rows_, now - 1);
    rows_ = now;
    endInsertRows();
  } else if (now < rows_) {
    beginRemoveRows({}, now, rows_ - 1);
    rows_ = now;
    endRemoveRows();
  }
}

Qt::Alignment fieldAlignment(const TField* field)
{
  const TypedKind kind = typedKind(field);
  if (kind == TypedKind::Integer || kind == TypedKind::Real) {
    return Qt::AlignRight;
  }
  return field && field->FieldDataType() == DataType::Boolean ? Qt::AlignHCenter : Qt::AlignLeft;
}

}  // namespace kalvor
