#include "start.h"

#include "client_host.h"
#include "main_window.h"
#include "message_prompt.h"
#include "import/windows/import_filters_form.h"
#include "import/windows/xml_transfer.h"
#include "registry/windows/form_registry.h"
#include "session/dm.h"
#include "session/error_log.h"
#include "session/ini_options.h"
#include "session/local_settings_file.h"
#include "session/settings_document.h"
#include "session/windows/change_password.h"
#include "session/windows/settings_form.h"
#include "splash.h"
#include "unattended_prompt.h"

namespace kalvor {

namespace {

constexpr int refusedArguments = 2;

// Every module that lies next to the program; a name is allowed by occurring in this text.
const QString allowedModules = QStringLiteral("administration,nomenclatures,sales");

// HOST, HOST:PORT, [ADDRESS]:PORT; an address of IPv6 without brackets has no port.
ServerPlace placeOf(const QString& server)
{
  const qsizetype bracket = server.lastIndexOf(u']');
  const qsizetype colon = server.lastIndexOf(u':');
  const bool hasPort = colon > bracket && (bracket >= 0 || server.count(u':') == 1);
  QString address = hasPort ? server.left(colon) : server;
  if (address.startsWith(u'[') && address.endsWith(u']'))
    address = address.mid(1).chopped(1);
  return {address, serverPort(hasPort ? server.mid(colon + 1) : QString())};
}

void keepServer(const ServerPlace& place)
{
  QStringList lines;
  GetSectionFromIni(QStringLiteral("Server"), lines);
  lines.removeIf([](const QString& line) {
    return line.startsWith(QLatin1String("ServerAddress=")) || line.startsWith(QLatin1String("ServerPort="));
  });
  lines.prepend(QStringLiteral("ServerPort=%1").arg(place.port));
  lines.prepend(QStringLiteral("ServerAddress=%1").arg(place.address));
  SaveSectionToIni(QStringLiteral("Server"), lines);
}

// What the command line says of the server and of its certificate. False, and the user is told, when it makes no sense.
bool readServerArguments(const ClientArguments& arguments, TDM& session)
{
  session.Servers.setUnattended(isUnattended(arguments));
  if (!arguments.fingerprint.isEmpty()) {
    const QByteArray fingerprint = fingerprintOf(arguments.fingerprint);
    if (fingerprint.isEmpty()) {
      showError(QStringLiteral("Стойността на --fingerprint не е отпечатък SHA-256: 64 шестнайсетични цифри, по двойки "
                               "разделени с „:“."));
      return false;
    }
    session.Servers.setGivenFingerprint(fingerprint);
  }
  if (!arguments.server.isEmpty()) {
    const ServerPlace place = placeOf(arguments.server);
    keepServer(place);
    keepEncryption(place, arguments.encryption);
  } else if (arguments.encryption != Encryption::ByAddress) {
    keepEncryption(configuredPlace(session.host()), arguments.encryption);
  }
  return true;
}

// Which stored settings the forms use is the user's choice; without one, none.
void loadIniOptions(const TDM& session)
{
  QStringList lines;
  if (const QDomDocument* document = session.userSettingsDocument())
    GetNodeFromXml(*document, QStringLiteral("IniOptions"), lines);
  IniOptions = iniOptionsFromLines(lines);
}

}  // namespace

bool isUnattended(const ClientArguments& arguments)
{
  // Switches and their values in pairs.
  for (qsizetype i = 0; i + 1 < arguments.rest.size(); i += 2)
    if (arguments.rest[i].compare(QLatin1String("-a"), Qt::CaseInsensitive) == 0 && !arguments.rest[i + 1].isEmpty())
      return true;
  return false;
}

ClientArguments clientArguments(int argc, char** argv)
{
  ClientArguments arguments;
  for (int i = 1; i < argc; ++i) {
    const QString argument = QString::fromLocal8Bit(argv[i]);
    if (argument == QLatin1String("--server") && i + 1 < argc)
      arguments.server = QString::fromLocal8Bit(argv[++i]);
    else if (argument == QLatin1String("--fingerprint"))
      arguments.fingerprint = i + 1 < argc ? QString::fromLocal8Bit(argv[++i]) : QStringLiteral("?");
    else if (argument == QLatin1String("--tls"))
      arguments.encryption = Encryption::Always;
    else if (argument == QLatin1String("--plaintext"))
      arguments.encryption = Encryption::Never;
    else if (argument == QLatin1String("--dark"))
      arguments.theme = ThemeMode::Dark;
    else if (argument == QLatin1String("--light"))
      arguments.theme = ThemeMode::Light;
    else
      arguments.rest.append(argument);
  }
  return arguments;
}

int runClient(QApplication& application, const ClientArguments& arguments)
{
  QApplication::setApplicationName(QStringLiteral("kalvor"));
  QApplication::setApplicationVersion(QStringLiteral(KALVOR_VERSION));
  QApplication::setWindowIcon(QIcon(programMark(64, 1)));
  QApplication::setQuitOnLastWindowClosed(false);
  applyTheme(application, arguments.theme);
  MessagePrompt window;
  UnattendedPrompt nobody;
  installUserPrompt(isUnattended(arguments) ? static_cast<UserPrompt*>(&nobody) : &window);
  InitLog();

  int code = 0;
  {
    ClientHost host(arguments.rest);
    host.ShowSplash(true);
    TDM session(host);
    if (readServerArguments(arguments, session))
      session.DataModuleCreate();
    else
      host.postQuit(refusedArguments);
    if (host.quitCode()) {
      code = *host.quitCode();
    } else {
      session.LoadLogInData({});
      loadIniOptions(session);
      RegisterFormClass(formClass<TfSettings>());
      RegisterFormClass(formClass<TfChangePass>());
      RegisterFormClass(formClass<TfEdImportFilters>());
      MainWindow window;
      BuildDynamicFormMenu(window.menuBar(), allowedModules);
      window.fillFormMenu();
      window.showSession();
      host.ShowSplash(false);
      if (AutoLoginData.Action.isEmpty()) {
        window.show();
        QObject::connect(&window, &MainWindow::closed, &application, [] { QCoreApplication::quit(); });
        code = QApplication::exec();
      } else {
        session.XmlTransfer = importXmlTransfer;
        code = session.ProccessAplicationParams();
      }
      session.UserLogOff();
    }
  }
  CloseLog();
  installUserPrompt(nullptr);
  return code;
}

}  // namespace kalvor
