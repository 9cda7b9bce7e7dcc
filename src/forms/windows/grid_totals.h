// Aggregates of a dataset in the footer of its grid: the total of a column stands under that column.
#pragma once

#include <QObject>

#include "data/client_dataset.h"

namespace kalvor {

class TDBGridEx;

// Follows the grid's dataset; owned by the grid. Without aggregates over shown columns the footer stays hidden.
class GridTotals : public QObject, private DataLink {
 public:
  explicit GridTotals(TDBGridEx* grid);
  void refresh();

 private:
  void dataEvent(DataEvent event, TField* field) override;
  TDBGridEx* grid_;
};

// The field that an aggregate's expression is about ("SUM(TotalVAT)"), empty when it is about none or several.
QString aggregatedField(const QString& expression);

}  // namespace kalvor
