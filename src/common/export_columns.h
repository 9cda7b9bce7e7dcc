// The fields of an export, chosen by their captions, and their cells record by record.
#pragma once

#include <vector>

#include "data/client_dataset.h"

namespace kalvor {

enum class ExportOrder : quint8 {
  OfFields,   // as the dataset has them
  OfCaptions  // as the list names them
};

// The names of the fields whose display label is one of the captions, exactly. Several fields of one label are all
// chosen; in the captions' order each takes a place of its own as far as the list names the label again.
KALVOR_RULES QStringList chosenFields(const TClientDataSet* dataSet, const QStringList& captions, ExportOrder order);

// A chosen field with its column where its values can be read without making the record current.
struct ExportColumn {
  const TField* field = nullptr;
  const Column* column = nullptr;  // null: through the field
};

// The chosen columns of one dataset. A dataset that was opened anew must be bound again.
class ExportColumns {
 public:
  ExportColumns(const TClientDataSet* dataSet, QStringList fields);
  void bind();
  qsizetype count() const { return fields_.size(); }
  const ExportColumn& operator[](qsizetype index) const { return columns_[size_t(index)]; }
  const TClientDataSet* dataSet() const { return dataSet_; }

 private:
  const TClientDataSet* dataSet_;
  QStringList fields_;
  std::vector<ExportColumn> columns_;
};

// One record of a view.
struct ExportRow {
  qsizetype row = -1;     // of the view
  qsizetype stored = -1;  // of Records()
};

}  // namespace kalvor
