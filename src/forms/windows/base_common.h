// The root of the plain dialogs: no data, but rights, a caption from the form's description, and the one way in.
#pragma once

#include <QDialog>

#include "forms/form_rights.h"
#include "registry/form_interfaces.h"

namespace kalvor {

class BASE_PACKAGE TfBaseCommon : public QDialog, public IBaseCommonIntf {
  Q_OBJECT
 public:
  explicit TfBaseCommon(QWidget* parent = nullptr);
  ~TfBaseCommon() override;

  void SetFormRights(int formId, bool defaultRight) override;
  bool CheckFormID(const QString& id) const override;
  // Shows the dialog and waits; gives its modal result (1 accepted, 2 left). DataError with the form's identifier
  // without the right to read.
  int DoShowForm(int formId, ShowOption options) override;
  int DoShowForm(int formId, ShowOption options, const TDialogParams& params) override;

  int formId() const { return formId_; }
  ShowOption showOptions() const { return options_; }
  const QString& uniqueId() const { return uniqueId_; }  // of this window, towards the main window
  const TFormRights& rights() const { return rights_; }  // never the right to annul

  void done(int result) override;

 protected:
  void requireReadRight(int formId) const;
  // Takes the identifier, the frame and the caption of the form's description.
  void prepare(int formId, ShowOption options, int borderStyle);
  virtual void takeParams(const TDialogParams& params);
  int runModal();
  void keyPressEvent(QKeyEvent* event) override;

 private:
  int formId_ = 0;
  ShowOption options_;
  QString uniqueId_;
  TFormRights rights_;
};

}  // namespace kalvor
