#include "client_host.h"

#include <QApplication>
#include <QScreen>

#include "session/windows/login_dialog.h"
#include "session/windows/settings_form.h"
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

ServerPlace ClientHost::editSettings(SettingsPages pages, const ServerPlace& current)
{
  TfSettings settings;
  settings.Set_OnlyConnectionSettings(pages == SettingsPages::ConnectionOnly);
  // Nothing is kept at this workplace yet: what is in use is offered.
  if (settings.place().address.isEmpty())
    settings.setPlace(current);
  return settings.ShowModal(QApplication::activeWindow()) ? settings.place() : current;
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
