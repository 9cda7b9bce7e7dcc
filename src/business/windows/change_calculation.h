// The cash dialog: what is due, what was received, the change.
#pragma once

#include <QDialog>

#include "layer_export.h"

class QLineEdit;
class QPushButton;

namespace kalvor {

// Amounts are texts with two decimals and a point; a comma is read as well. Enter in the cash field computes the change
// and goes to "Ok", which accepts only cash that covers the total.
class BASE_PACKAGE TfChangeCalculation : public QDialog {
  Q_OBJECT
 public:
  explicit TfChangeCalculation(QWidget* parent = nullptr);
  void setTotal(double amount);
  double cash() const;  // as accepted

  QLineEdit* const edTotal;
  QLineEdit* const edCash;
  QLineEdit* const edChange;

  void accept() override;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  bool calculate();  // false: a field holds no amount, the user has been told

  QPushButton* ok_;
};

}  // namespace kalvor
