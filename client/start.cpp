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

namespace kalvor {

namespace {

// Every module that lies next to the program; a name is allowed by occurring in this text.
const QString allowedModules = QStringLiteral("administration,nomenclatures,sales");

void keepServer(const QString& server)
{
  QStringList lines;
  GetSectionFromIni(QStringLiteral("Server"), lines);
  lines.removeIf([](const QString& line) {
    return line.startsWith(QLatin1String("ServerAddress=")) || line.startsWith(QLatin1String("ServerPort="));
  });
  const QString port = server.section(u':', 1);
  lines.prepend(QStringLiteral("ServerPort=%1").arg(port.isEmpty() ? QStringLiteral("2030") : port));
  lines.prepend(QStringLiteral("ServerAddress=%1").arg(server.section(u':', 0, 0)));
  SaveSectionToIni(QStringLiteral("Server"), lines);
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

ClientArguments clientArguments(int argc, char** argv)
{
  ClientArguments arguments;
  for (int i = 1; i < argc; ++i) {
    const QString argument = QString::fromLocal8Bit(argv[i]);
    if (argument == QLatin1String("--server") && i + 1 < argc)
      arguments.server = QString::fromLocal8Bit(argv[++i]);
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
  MessagePrompt prompt;
  installUserPrompt(&prompt);
  InitLog();

  int code = 0;
  {
    ClientHost host(arguments.rest);
    host.ShowSplash(true);
    TDM session(host);
    if (!arguments.server.isEmpty())
      keepServer(arguments.server);
    session.DataModuleCreate();
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
