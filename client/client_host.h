// What the session sees of the client: its command line, its splash, its log-in dialog, its end.
#pragma once

#include "session/host_application.h"
#include "splash.h"

namespace kalvor {

class ClientHost : public HostApplication, public ISplashIntf {
 public:
  explicit ClientHost(QStringList parameters);

  QStringList parameters() const override { return parameters_; }
  void postQuit(int exitCode) override;
  void terminate() override;
  ISplashIntf* activeSplash() override { return this; }
  std::unique_ptr<LoginDialog> createLoginDialog(RemoteCalls& calls, SocketConnection& connection) override;
  ServerPlace editSettings(SettingsPages pages, const ServerPlace& current) override;
  quint32 buttonFaceColor() const override;

  void ShowSplash(bool show) override;
  // Set once somebody has asked for the end before the main window came.
  std::optional<int> quitCode() const { return quitCode_; }

 private:
  QStringList parameters_;
  Splash splash_;
  std::optional<int> quitCode_;
};

}  // namespace kalvor
