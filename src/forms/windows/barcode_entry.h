// A small window for a scanned code: it opens when the scanner's first character comes.
#pragma once

#include <QDialog>
#include <functional>

#include "layer_export.h"

class QComboBox;
class QLineEdit;

namespace kalvor {

// Kinds of a code, as cross references keep them.
enum BarcodeKind : int { OwnBarcode = 1, ContragentCode = 2 };

class BASE_PACKAGE BarcodeEntry : public QDialog {
  Q_OBJECT
 public:
  using Scanned = std::function<void(const QString& code, double quantity, int kind)>;
  BarcodeEntry(Scanned scanned, QWidget* parent);
  // Empty and in front, ready for the rest of the code.
  void start();
  void accept() override;

 private:
  Scanned scanned_;
  QLineEdit* code_;
  QLineEdit* quantity_;
  QComboBox* kind_;
};

}  // namespace kalvor
