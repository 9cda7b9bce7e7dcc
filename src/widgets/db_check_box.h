// Check box bound to a yes/no field.
#pragma once

#include <QCheckBox>

#include "widgets/data_control.h"

namespace kalvor {

// Stores "1" when checked and "0" when not (both can be changed); any other value, and null, shows unchecked.
class KALVOR_WIDGETS TDBCheckBox : public QCheckBox, public DataControl {
  Q_OBJECT
  Q_PROPERTY(QString dataSetName READ dataSetName WRITE setDataSetName)
  Q_PROPERTY(QString dataField READ dataField WRITE setDataField)
  Q_PROPERTY(bool readOnly READ readOnly WRITE setReadOnly)
  Q_PROPERTY(QString valueChecked READ valueChecked WRITE setValueChecked)
  Q_PROPERTY(QString valueUnchecked READ valueUnchecked WRITE setValueUnchecked)
 public:
  explicit TDBCheckBox(QWidget* parent = nullptr);

  QString valueChecked() const { return checked_; }
  QString valueUnchecked() const { return unchecked_; }
  void setValueChecked(const QString& value);
  void setValueUnchecked(const QString& value);

 protected:
  void showField() override;
  void storeField() override;
  void updateAccess() override;
  void nextCheckState() override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  QString checked_ = QStringLiteral("1");
  QString unchecked_ = QStringLiteral("0");
};

}  // namespace kalvor
