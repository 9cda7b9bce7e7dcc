// The log-in dialog: company, object, user, password.
#pragma once

#include <QDialog>

#include "session/host_application.h"
#include "session/login_lists.h"

class QComboBox;
class QLineEdit;
class QPushButton;

namespace kalvor {

class BASE_PACKAGE TfLogin : public QDialog, public LoginDialog {
  Q_OBJECT
 public:
  // All three outlive the dialog.
  TfLogin(HostApplication& host, RemoteCalls& calls, SocketConnection& connection, QWidget* parent = nullptr);
  ~TfLogin() override;

  bool runModal() override { return exec() == Accepted; }
  LoginChoice choice() const override;

  QComboBox* cbCompany;
  QComboBox* cbObject;
  QComboBox* cbUser;       // editable
  QLineEdit* ebPassword;   // masked
  QPushButton* btnOk;
  QPushButton* btnCancel;
  QPushButton* btnConnection;

  // Fills the lists and selects what was chosen the last time; an error is shown.
  void LoadCombosFromIni();

 protected:
  void showEvent(QShowEvent* event) override;
  void reject() override;

 private:
  void build();
  void connectControls();
  void companyChanged();
  void objectChanged();
  void editConnection();
  void showLists();
  template <typename Action>
  void tellingErrors(Action action);

  HostApplication& host_;
  RemoteCalls& calls_;
  SocketConnection& connection_;
  LoginLists lists_;
  bool filling_ = false;  // the controls change, not the user
};

}  // namespace kalvor
