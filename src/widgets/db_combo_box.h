// Drop-down lists bound to a field.
#pragma once

#include <QComboBox>

#include "widgets/data_control.h"

namespace kalvor {

// What the plain and the flat drop-down share. The chosen item's text goes to the field through its text
// handlers, so that an option field keeps the position; an integer field without handlers takes the position
// itself. A value that is no item shows as text with nothing selected. The mouse wheel changes nothing.
class KALVOR_WIDGETS DataComboBox : public QComboBox, public DataControl {
  Q_OBJECT
  Q_PROPERTY(QString dataSetName READ dataSetName WRITE setDataSetName)
  Q_PROPERTY(QString dataField READ dataField WRITE setDataField)
  Q_PROPERTY(bool readOnly READ readOnly WRITE setReadOnly)
 public:
  explicit DataComboBox(QWidget* parent = nullptr);

  void setItems(const QStringList& items);
  QStringList items() const;

  void showPopup() override;

 protected:
  void showField() override;
  void storeField() override;
  void updateAccess() override;
  void keyPressEvent(QKeyEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;

 private:
  bool keepsPosition() const;
};

class KALVOR_WIDGETS TDBComboBox : public DataComboBox {
  Q_OBJECT
 public:
  using DataComboBox::DataComboBox;
};

class KALVOR_WIDGETS TDBFlatComboBox : public DataComboBox {
  Q_OBJECT
 public:
  explicit TDBFlatComboBox(QWidget* parent = nullptr);

 protected:
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace kalvor
