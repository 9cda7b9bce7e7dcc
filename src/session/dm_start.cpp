// Start of the session: connection, log-in by dialog or from the command line.
#include "forms/messages.h"
#include "platform/ports.h"
#include "platform/system.h"
#include "session/dm.h"
#include "session/error_log.h"
#include "session/local_settings_file.h"
#include "session/password_digest.h"

namespace kalvor {
namespace {

const QString errConnecting = QStringLiteral("Грешка при свързване със сървъра.");
const QString errNoConnection = QStringLiteral("Не е остановена връзка към сървъра");
const QString errNoObject = QStringLiteral("Не е  избран обект !");
const QString queEditConnection = QStringLiteral("Желаете ли да редактирате настройките за връзка?");

constexpr int quitCode = -1;

// What the server answers to LogIn, and what the user is told; other results fail without a message.
struct LoginRefusal {
  int result;
  QStringView text;
};
const LoginRefusal loginRefusals[] = {
    {-1, u"Не валидна парола"},
    {-4, _err_NoCorectLoginData},
    {-5, u"Потребителя не е активен!\n\rМоля, обърнете се към системния администратор за отстраняване на проблема!"}};

void showRefusal(int result)
{
  for (const LoginRefusal& refusal : loginRefusals)
    if (refusal.result == result)
      return showError(refusal.text.toString());
}

constexpr QStringView systemsWithPlainControls[] = {u"Microsoft Windows XP", u"Microsoft Windows 2003"};

QStringList settingsSection(const QString& section)
{
  QStringList lines;
  GetSectionFromIni(section, lines);
  return lines;
}

struct CommandLineLogin {
  QString password;
};

// Switches and their values in pairs; a last switch without a value is left out.
CommandLineLogin readCommandLine(const QStringList& parameters)
{
  const QString separator = directorySeparator();
  CommandLineLogin login;
  for (qsizetype i = 0; i + 1 < parameters.size(); i += 2) {
    const QString name = parameters[i].toLower();
    const QString& value = parameters[i + 1];
    if (name == QLatin1String("-a"))
      AutoLoginData.Action = value;
    else if (name == QLatin1String("-u"))
      AutoLoginData.User = value;
    else if (name == QLatin1String("-p"))
      login.password = value;
    else if (name == QLatin1String("-c"))
      AutoLoginData.Company = value;
    else if (name == QLatin1String("-b"))
      AutoLoginData.BGroup = value;
    else if (name == QLatin1String("-f"))
      AutoLoginData.TransferFile = hostProgramFolder() + value + separator + QStringLiteral("Info_") + value +
                                   QStringLiteral(".xml");
  }
  return login;
}

void rememberLogin(const QString& user, const QString& businessGroup, const QString& company)
{
  const bool saved = SaveSectionToIni(QStringLiteral("User"), {QStringLiteral("User=") + user,
                                                               QStringLiteral("Object=") + businessGroup,
                                                               QStringLiteral("Company=") + company});
  if (!saved)
    LogError(QStringLiteral("Не може да бъде записан изборът за вход."), QStringLiteral("TDM.ManualServerLogin"));
}

}  // namespace

ServerPlace configuredPlace(const HostApplication& host)
{
  const QStringList server = settingsSection(QStringLiteral("Server"));
  const QString port = valueOfLine(server, QStringLiteral("ServerPort"));
  const QString address = valueOfLine(server, QStringLiteral("ServerAddress"));
  const QString folder = host.systemSettingsFolder();
  // Nobody has named a server yet: the one on this machine.
  const auto orThisMachine = [](const QString& named) { return named.isEmpty() ? QStringLiteral("127.0.0.1") : named; };
  if ((!port.isEmpty() && !address.isEmpty()) || folder.isEmpty())
    return {orThisMachine(address), serverPort(port)};
  const QString serviceFile = folder + QStringLiteral("KalvorWebService.ini");
  LogError(serviceFile, QStringLiteral("TDM.SetUpRemoteCon"));
  QStringList connection;
  GetSectionFromIni(serviceFile, QStringLiteral("Connection"), connection, true);
  return {orThisMachine(valueOfLine(connection, QStringLiteral("Address"))),
          serverPort(valueOfLine(connection, QStringLiteral("Port")))};
}

void TDM::showSplash(bool show)
{
  if (ISplashIntf* splash = host_.activeSplash())
    splash->ShowSplash(show);
}

void TDM::DataModuleCreate()
{
  KalvorClientINIFileName = hostProgramName() + QStringLiteral(".ini");
  doExit = false;
  try {
    {
      const WaitCursorScope waiting;
      if (!SetUpRemoteCon()) {
        host_.postQuit(quitCode);
        throw SilentAbort();
      }
    }
    const bool loggedIn = host_.parameters().isEmpty() ? ManualServerLogin() : AutoServerLogin();
    if (!loggedIn) {
      ConBroker->Disconnect();
      host_.postQuit(quitCode);
    }
    readSurroundings();
  } catch (const std::exception&) {
    userPrompt().processMessages();
    showError(errConnecting);
    host_.postQuit(quitCode);
  }
}

// The look of the system, and the devices at this workplace.
void TDM::readSurroundings()
{
  const QString system = systemProductName();
  ReadOnlyColor = 0;
  if (std::find(std::begin(systemsWithPlainControls), std::end(systemsWithPlainControls), system) ==
      std::end(systemsWithPlainControls))
    ReadOnlyColor = host_.buttonFaceColor();
  const QStringList devices = settingsSection(QStringLiteral("Devices"));
  const QString barcode = valueOfLine(devices, QStringLiteral("BarckodeStart"));
  BarcodeStart = barcode.isEmpty() ? QChar(u'^') : barcode[0];
  MeasureBarcode = valueOfLine(devices, QStringLiteral("MesureBarcode"));
  LocalData.prn = valueOfLine(devices, QStringLiteral("prn"));
  LocalData.NewQty = 0;
  FormList = std::make_unique<RegisteredForms>();
}

bool TDM::SetUpRemoteCon()
{
  try {
    ConBroker->Disconnect();
    const ServerPlace place = configuredPlace(host_);
    SocketCon.Port = place.port;
    SocketCon.Address = place.address;
    ConBroker->Connect();
    return ConBroker->Connected();
  } catch (const std::exception& error) {
    showSplash(false);
    const QString text = errConnecting + QStringLiteral("\r\n") + errorText(error) + QStringLiteral("\r\n\r\n") +
                         queEditConnection;
    if (userPrompt().message(PromptKind::Error, text, {PromptButton::Yes, PromptButton::No}) == PromptButton::Yes)
      host_.editSettings(SettingsPages::All, {SocketCon.Address, SocketCon.Port});
    return false;
  }
}

bool TDM::logIn(QString& user, const QString& password, QString& businessGroup, QString& company, int& result)
{
  VariantArray arguments{user, passwordDigest(password), businessGroup, company, LocalData.ServerText};
  try {
    const Variant answer = ConBroker->Call(QStringLiteral("LogIn"), arguments);
    result = isNull(answer) ? quitCode - 1 : answer.toInt();
  } catch (const std::exception& error) {
    LogError(errorText(error), QStringLiteral("TDM.logIn"));
    return false;
  }
  user = variantText(arguments[0]);
  businessGroup = variantText(arguments[2]);
  company = variantText(arguments[3]);
  LocalData.ServerText = variantText(arguments[4]);
  if (result == 0)
    ConBroker->setSession(LocalData.ServerText);
  return true;
}

bool TDM::ManualServerLogin()
{
  while (true) {
    const std::unique_ptr<LoginDialog> dialog = host_.createLoginDialog(*ConBroker, SocketCon);
    dialog->place = {SocketCon.Address, SocketCon.Port};
    showSplash(false);
    const bool accepted = dialog->runModal();
    dialog->place = {SocketCon.Address, SocketCon.Port};
    if (!accepted) {
      doExit = true;
      return false;
    }
    const LoginChoice choice = dialog->choice();
    QString user = choice.user.value_or(choice.userText);
    if (!choice.businessGroup && user != administratorCode)
      throw DataError(errNoObject);
    QString businessGroup = choice.businessGroup.value_or(QString());
    QString company = choice.company.value_or(QString());
    int result = 0;
    if (!logIn(user, choice.password, businessGroup, company, result)) {
      showError(errNoConnection);
      return false;
    }
    if (result == 0) {
      showSplash(true);
      rememberLogin(user, businessGroup, company);
      LoadLocalData(choice.userText, choice.businessGroupText, choice.companyText, user, businessGroup, company);
      return true;
    }
    showRefusal(result);
  }
}

bool TDM::AutoServerLogin()
{
  const CommandLineLogin login = readCommandLine(host_.parameters());
  int result = 0;
  if (!logIn(AutoLoginData.User, login.password, AutoLoginData.BGroup, AutoLoginData.Company, result)) {
    userPrompt().message(PromptKind::Plain, errNoConnection, {PromptButton::Ok});
    return false;
  }
  if (result != 0)
    return false;
  LoadLocalData(AutoLoginData.User, QString(), QString(), AutoLoginData.User, AutoLoginData.BGroup,
                AutoLoginData.Company);
  return true;
}

}  // namespace kalvor
