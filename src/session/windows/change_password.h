// Changing a user's password.
#pragma once

#include "forms/windows/base_common.h"

class QLabel;
class QLineEdit;
class QPushButton;

namespace kalvor {

// With dialog parameters it is modal, and their first value, unless null, is the user whose password changes; the
// plain DoShowForm shows it beside the other windows for the logged-in user.
class BASE_PACKAGE TfChangePass : public TfBaseCommon {
  Q_OBJECT
 public:
  explicit TfChangePass(QWidget* parent = nullptr);

  int DoShowForm(int formId, ShowOption options) override;  // 0 at once
  int DoShowForm(int formId, ShowOption options, const TDialogParams& params) override;

  // Sends the digest of the password as it is; true when the server took it. Raises what the call raises.
  bool ChangeUserPassword(const QString& newPassword);
  void btnOkClick();

  const QString& userCode() const { return userCode_; }
  const QString& newPassword() const { return newPassword_; }  // trimmed, once it was changed

  QLabel* lbOldPass;
  QLineEdit* ebxOldPass;
  QLineEdit* ebxNewPass;
  QLineEdit* ebxConfirmPass;
  QPushButton* btnOk;
  QPushButton* btnCancel;

 protected:
  void takeParams(const TDialogParams& params) override;
  void showEvent(QShowEvent* event) override;

 private:
  void build();

  QString userCode_;
  QString newPassword_;
};

}  // namespace kalvor
