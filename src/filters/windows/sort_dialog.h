// Choosing the order of a dataset's records: fields from the left list, with their direction, in the right grid.
#pragma once

#include <QDialog>
#include <QStringList>

#include "data/client_dataset.h"
#include "layer_export.h"

class QAction;
class QListWidget;

namespace kalvor {

class TStringGrid;

class BASE_PACKAGE TfSort : public QDialog {
  Q_OBJECT
 public:
  explicit TfSort(QWidget* parent = nullptr);

  // Waits for the user: 1 = chosen, order is the new one ("Name ASC, DocDate DESC"); 2 = order stays.
  int ShowSortForm(TClientDataSet* dataSet, QString& order);
  void FillGridFromOrder(const QString& order);
  void AddSortedItems();               // takes the fields of the grid out of the left list
  QString orderText() const;           // of the rows of the grid

  QListWidget* fieldList() const { return fields_; }
  TStringGrid* StringGrid() const { return grid_; }
  QAction* action(const QString& name) const;  // "acTransfToSort", "acRemoveFromSort", "acMoveUp", "acMoveDown"

  void acTransfToSortExecute();
  void acRemoveFromSortExecute();
  void moveRow(int by);                // of the current row of the grid

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  struct SortField {
    QString label;                     // display label; with the name behind it when two fields share it
    QString name;                      // as the order writes it
    QString origin;
    bool visible;
  };
  void setDataSet(TClientDataSet* dataSet);
  void fillList();
  // Of a field by its name or its origin, which the order then keeps; the name itself when there is no such field.
  QString labelOf(const QString& fieldName);
  QString nameOf(const QString& label) const;
  int lastRow() const;                 // 0: no row holds a field
  bool gridKey(QKeyEvent* event);
  void buildWindow();

  QList<SortField> known_;
  QListWidget* fields_;
  TStringGrid* grid_;
};

}  // namespace kalvor
