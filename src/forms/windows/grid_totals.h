// Aggregates of a dataset in the footer of its grid: the total of a column stands under that column.
#pragma once

#include <QObject>
#include <QTimer>

#include "data/client_dataset.h"

namespace kalvor {

class TDBGridEx;

// Follows the grid's dataset and its marked rows; owned by the grid. Several marked rows are counted, and the current
// column summed over them, in a line of the footer. Without totals and marks the footer stays hidden.
class GridTotals : public QObject, private DataLink {
 public:
  explicit GridTotals(TDBGridEx* grid);
  void refresh();
  void refreshSelection();

 private:
  void showFooter();

  void dataEvent(DataEvent event, TField* field) override;
  TDBGridEx* grid_;
  QTimer selectionTimer_;
  bool anyTotal_ = false;
};

// The field that an aggregate's expression is about ("SUM(TotalVAT)"), empty when it is about none or several.
QString aggregatedField(const QString& expression);

}  // namespace kalvor
