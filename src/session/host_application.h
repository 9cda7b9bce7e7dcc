// What the session needs of the program it lives in: its windows, its end, its command line. The client installs
// the real one; tests script it.
#pragma once

#include <QString>
#include <QStringList>
#include <memory>
#include <optional>

#include "layer_export.h"
#include "rpc/connection.h"

namespace kalvor {

// Offered by the host's active window while it starts.
class KALVOR_RULES ISplashIntf {
 public:
  virtual ~ISplashIntf();
  virtual void ShowSplash(bool show) = 0;
};

struct ServerPlace {
  QString address;
  quint16 port = 2030;

  bool operator==(const ServerPlace&) const = default;
};

// What the user chose and typed in the log-in dialog. An identifier is missing when no item of the list is
// chosen.
struct LoginChoice {
  std::optional<QString> user, businessGroup, company;
  QString userText, businessGroupText, companyText;
  QString password;
};

class KALVOR_RULES LoginDialog {
 public:
  virtual ~LoginDialog();
  virtual bool runModal() = 0;  // true = Ok, false = cancelled
  virtual LoginChoice choice() const = 0;

  ServerPlace place;  // the server that the dialog's lists came from
};

enum class SettingsPages : quint8 { All, ConnectionOnly };

class KALVOR_RULES HostApplication {
 public:
  virtual ~HostApplication();

  virtual QStringList parameters() const = 0;       // of the command line, without the program and host switches
  virtual void postQuit(int exitCode) = 0;          // ends the event loop when it comes to it
  virtual void terminate() = 0;                     // the user gave up at the log-in
  virtual ISplashIntf* activeSplash() = 0;          // null when the active window offers none
  virtual std::unique_ptr<LoginDialog> createLoginDialog(RemoteCalls& calls, SocketConnection& connection) = 0;
  // Shows the settings form modally. Gives the address and port that were accepted there, else the current ones.
  virtual ServerPlace editSettings(SettingsPages pages, const ServerPlace& current) = 0;
  virtual quint32 buttonFaceColor() const = 0;      // 0xAARRGGBB
  virtual QString systemSettingsFolder() const;     // with the separator at its end; empty = there is none
};

// Where the settings of this workplace, or else of the machine, say that the server is; else the loopback.
KALVOR_RULES ServerPlace configuredPlace(const HostApplication& host);

// The port when the text is no number between 1 and 65535: 2030.
KALVOR_RULES quint16 serverPort(const QString& text);

}  // namespace kalvor
