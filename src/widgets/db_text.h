// A field's text on a form, not to be edited.
#pragma once

#include <QLabel>

#include "widgets/data_control.h"

namespace kalvor {

// Shows the display text of its field; numbers stand right. Negative amounts take the theme's colour.
class KALVOR_WIDGETS TDBText : public QLabel, public DataControl {
  Q_OBJECT
  Q_PROPERTY(QString dataSetName READ dataSetName WRITE setDataSetName)
  Q_PROPERTY(QString dataField READ dataField WRITE setDataField)
 public:
  explicit TDBText(QWidget* parent = nullptr);

 protected:
  void showField() override;
  void storeField() override {}
  void updateAccess() override {}
};

}  // namespace kalvor
