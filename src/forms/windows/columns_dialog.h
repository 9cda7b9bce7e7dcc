// Which columns a grid shows, how wide, in which colour, and how many of them stay in place.
#pragma once

#include <QColor>
#include <QDialog>
#include <QList>

#include "layer_export.h"

class QComboBox;
class QListWidget;
class QPushButton;
class QSpinBox;
class QTabWidget;

namespace kalvor {

class TDBGrid;

// The columns of the shown fields, sorted by caption; checked ones are visible.
class BASE_PACKAGE TfColumnsProps : public QDialog {
  Q_OBJECT
 public:
  // The grid outlives the dialog.
  TfColumnsProps(int formId, TDBGrid* grid, QWidget* parent = nullptr);

  int DoShowColumns();  // waits; 1 when the grid was changed, else 2
  // Gives the grid what the dialog says.
  void DoShowGrig();
  void btnOkClick();

  QTabWidget* pcColumns;
  QListWidget* clbColumns;
  QSpinBox* speSize;       // characters; below 1 = as a column begins
  QComboBox* cbxColor;
  QSpinBox* speFixed;
  QPushButton* btnOk;
  QPushButton* btnCancel;

 private:
  struct Column {
    QString fieldName;
    int size = 0;
    int startSize = 0;
    QColor color;
  };
  void build();
  void fill();
  Column* selected();
  bool isChecked(const Column& column) const;
  bool anyChecked() const;
  void showSelected();
  void sizeChanged(int size);
  void colorChosen(int index);
  void showColor(const QColor& color);

  int formId_;
  TDBGrid* grid_;
  QList<Column> columns_;
  int startFixed_ = 0;
};

}  // namespace kalvor
