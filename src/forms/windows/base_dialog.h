// Dialogs with pages, and those with a hint above them.
#pragma once

#include "forms/windows/base_common.h"

class QLabel;
class QTabWidget;
class QVBoxLayout;

namespace kalvor {

// Pages in pconControls. The dialog's own page is there only when the parameters give it a caption, and is the
// active one then.
class BASE_PACKAGE TfBaseDialog : public TfBaseCommon {
  Q_OBJECT
 public:
  explicit TfBaseDialog(QWidget* parent = nullptr);

  QTabWidget* pconControls;
  QWidget* ownPage;
  QAction* acHelp;  // F1

 protected:
  void takeParams(const TDialogParams& params) override;
  QVBoxLayout* column() const { return column_; }

 private:
  QVBoxLayout* column_;
};

// A hint on a coloured strip at the top; keeps the integer value and the value array for its descendants.
class BASE_PACKAGE TfBaseHintDialog : public TfBaseDialog {
  Q_OBJECT
 public:
  explicit TfBaseHintDialog(QWidget* parent = nullptr);

  QWidget* shpHint;
  QLabel* lbHintCaption;
  QLabel* lbHint;

 protected:
  void takeParams(const TDialogParams& params) override;

  int integerValue = 0;
  VariantArray values;
};

}  // namespace kalvor
