#include "session/host_application.h"

#include <QDir>

#include "platform/system.h"

namespace kalvor {

ISplashIntf::~ISplashIntf() = default;
LoginDialog::~LoginDialog() = default;
HostApplication::~HostApplication() = default;

QString HostApplication::systemSettingsFolder() const
{
  const QString folder = kalvor::systemSettingsFolder();
  return QDir(folder).exists() ? folder : QString();
}

quint16 serverPort(const QString& text)
{
  bool isNumber = false;
  const int port = text.trimmed().toInt(&isNumber);
  return isNumber && port > 0 && port <= 65535 ? quint16(port) : quint16(2030);
}

}  // namespace kalvor
