// The window around a form that is shown modally.
#pragma once

#include <QDialog>

namespace kalvor {

class TfBase;

class ModalFormDialog : public QDialog {
  Q_OBJECT
 public:
  // The form is given back (without a parent) when the dialog is destroyed.
  ModalFormDialog(TfBase* form, QWidget* parent);
  ~ModalFormDialog() override;
  void reject() override;  // Escape and the close button ask the form

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  TfBase* form_;
};

}  // namespace kalvor
