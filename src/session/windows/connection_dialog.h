// Where the application server is: address and port of the local settings file.
#pragma once

#include <QDialog>

#include "session/host_application.h"

class QLineEdit;
class QSpinBox;

namespace kalvor {

class BASE_PACKAGE ConnectionDialog : public QDialog {
  Q_OBJECT
 public:
  explicit ConnectionDialog(const ServerPlace& current, QWidget* parent = nullptr);

  ServerPlace place() const;
  // Whether a server answers there.
  static bool TestConnection(quint16 port, const QString& address);

 protected:
  void accept() override;  // writes the section "Server"

 private:
  QLineEdit* address_;
  QSpinBox* port_;
};

// Shows it; the address and port that were accepted, else the current ones.
BASE_PACKAGE ServerPlace editConnection(const ServerPlace& current, QWidget* parent = nullptr);

}  // namespace kalvor
