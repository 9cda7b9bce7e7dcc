#include "client_host.h"

#include <QApplication>
#include <QScreen>

#include "session/windows/connection_dialog.h"
#include "session/windows/login_dialog.h"
#include "widgets/theme.h"

namespace kalvor {

ClientHost::ClientHost(QStringList parameters) : parameters_(std::move(parameters))
{
  splash_.move(splash_.screen()->availableGeometry().center() - splash_.rect().center());
  splash_.setStage(QStringLiteral("Свързване със сървъра…"));
}

void ClientHost::postQuit(int exitCode)
{
  quitCode_ = exitCode;
  QCoreApplication::exit(exitCode);
}

void ClientHost::terminate()
{
  if (!quitCode_)
    quitCode_ = 0;
  QCoreApplication::quit();
}

std::unique_ptr<LoginDialog> ClientHost::createLoginDialog(RemoteCalls& calls, SocketConnection& connection)
{
  return std::make_unique<TfLogin>(*this, calls, connection);
}

ServerPlace ClientHost::editSettings(SettingsPages, const ServerPlace& current)
{
  return editConnection(current, QApplication::activeWindow());
}

quint32 ClientHost::buttonFaceColor() const
{
  return theme().readOnly.rgba();
}

void ClientHost::ShowSplash(bool show)
{
  splash_.setVisible(show);
  if (show)
    QApplication::processEvents();
}

}  // namespace kalvor
