// Start of the session: where the server is, who logs in, and every way in which that ends.
#include <QDir>

#include "platform/system.h"
#include "scratch_documents.h"
#include "scripted_ports.h"
#include "scripted_session.h"
#include "session/error_log.h"
#include "session/password_digest.h"
#include "several_tests.h"

using namespace kalvor;
using namespace kalvor::testing;

namespace {

const QString connectionFailed = QStringLiteral("Грешка при свързване със сървъра.");
const QString noConnection = QStringLiteral("Не е остановена връзка към сървъра");
const QString emptyDigest = QStringLiteral("d41d8cd98f00b204e9800998ecf8427e");

LoginChoice choiceOf(const std::optional<QString>& user, const QString& typed, const std::optional<QString>& object)
{
  LoginChoice choice;
  choice.user = user;
  choice.userText = typed;
  choice.businessGroup = object;
  choice.businessGroupText = QStringLiteral("Обект");
  choice.company = QStringLiteral("5");
  choice.companyText = QStringLiteral("Фирма");
  return choice;
}

DialogScript accepted(const LoginChoice& choice) { return {true, choice}; }

}  // namespace

class SessionStartTest : public QObject {
  Q_OBJECT

 private slots:
  void serverComesFromTheSettings_data()
  {
    QTest::addColumn<QByteArray>("local");
    QTest::addColumn<QByteArray>("service");
    QTest::addColumn<QString>("address");
    QTest::addColumn<int>("port");
    QTest::addColumn<bool>("logged");
    const QByteArray service = "[Connection]\nPort=4000\nAddress=10.9.9.9\n";
    QTest::newRow("both keys") << QByteArray("[Server]\nServerPort=3000\nServerAddress=10.0.0.1\n") << service << "10.0.0.1" << 3000 << false;
    QTest::newRow("port no number") << QByteArray("[Server]\nServerPort=abc\nServerAddress=10.0.0.1\n") << service << "10.0.0.1" << 2030 << false;
    QTest::newRow("port beyond") << QByteArray("[Server]\nServerPort=70000\nServerAddress=10.0.0.1\n") << service << "10.0.0.1" << 2030 << false;
    QTest::newRow("no port") << QByteArray("[Server]\nServerAddress=10.0.0.1\n") << service << "10.9.9.9" << 4000 << true;
    QTest::newRow("no address") << QByteArray("[Server]\nServerPort=3000\n") << service << "10.9.9.9" << 4000 << true;
    QTest::newRow("neither") << QByteArray() << service << "10.9.9.9" << 4000 << true;
    QTest::newRow("service port no number") << QByteArray() << QByteArray("[Connection]\nPort=x\nAddress=10.9.9.9\n") << "10.9.9.9" << 2030 << true;
    QTest::newRow("nothing anywhere") << QByteArray() << QByteArray() << "127.0.0.1" << 2030 << true;
  }
  void serverComesFromTheSettings()
  {
    QFETCH(QByteArray, local);
    QFETCH(QByteArray, service);
    QFETCH(QString, address);
    QFETCH(int, port);
    QFETCH(bool, logged);
    ScratchDocuments documents;
    QDir().mkpath(documents.path(QStringLiteral("Kalvor")));
    QDir().mkpath(documents.path(QStringLiteral("system")));
    documents.write(QStringLiteral("Kalvor/client.ini"), local);
    documents.write(QStringLiteral("system/KalvorWebService.ini"), service);
    KalvorClientINIFileName = QStringLiteral("client.ini");
    InitLog();
    ScriptedSession session;
    session.host.systemFolder = documents.path(QStringLiteral("system/"));
    QVERIFY(session.dm->SetUpRemoteCon());
    QCOMPARE(session.dm->SocketCon.Address, address);
    QCOMPARE(int(session.dm->SocketCon.Port), port);
    QCOMPARE(session.server->log, QStringList({QStringLiteral("Disconnect"), QStringLiteral("Connect")}));
    QStringList log;
    LoadErrorLog(log);
    QCOMPARE(log.contains(QStringLiteral("[Процедура]: TDM.SetUpRemoteCon")), logged);
    QCOMPARE(log.contains(QStringLiteral("[Грешка]: ") + documents.path(QStringLiteral("system/KalvorWebService.ini"))), logged);
    CloseLog();
  }

  void failedConnectionOffersTheSettings_data()
  {
    QTest::addColumn<bool>("yes");
    QTest::newRow("yes") << true;
    QTest::newRow("no") << false;
  }
  void failedConnectionOffersTheSettings()
  {
    QFETCH(bool, yes);
    ScratchDocuments documents;
    ScriptedPrompt prompt;
    prompt.answers = {yes ? PromptButton::Yes : PromptButton::No};
    ScriptedSession session;
    session.server->connectError = QStringLiteral("Няма връзка със сървъра 127.0.0.1:2030.");
    session.dm->DataModuleCreate();
    QCOMPARE(prompt.messages, QStringList({connectionFailed + QStringLiteral("\r\nНяма връзка със сървъра 127.0.0.1:2030.\r\n\r\n"
                                                                              "Желаете ли да редактирате настройките за връзка?"),
                                           connectionFailed}));
    QCOMPARE(prompt.kinds, QList<PromptKind>({PromptKind::Error, PromptKind::Error}));
    QCOMPARE(session.host.settingsShown.size(), yes ? 1 : 0);
    QCOMPARE(session.host.splash, QList<bool>({false}));
    QCOMPARE(session.host.quits, QList<int>({-1, -1}));
    QCOMPARE(session.host.dialogsShown, 0);
    QCOMPARE(prompt.waiting, 0);
  }

  void logInResults_data()
  {
    QTest::addColumn<int>("result");
    QTest::addColumn<QStringList>("messages");
    QTest::newRow("wrong password") << -1 << QStringList{QStringLiteral("Не валидна парола")};
    QTest::newRow("no data") << -4 << QStringList{QStringLiteral("Грешка при извличане на данни!\r\nМоля, проверете коректността на въведените данни!")};
    QTest::newRow("inactive") << -5 << QStringList{QStringLiteral("Потребителя не е активен!\n\rМоля, обърнете се към системния администратор за отстраняване на проблема!")};
    QTest::newRow("other") << -2 << QStringList();
    QTest::newRow("positive") << 1 << QStringList();
  }
  // The dialog comes again after a refusal, until it is cancelled.
  void logInResults()
  {
    QFETCH(int, result);
    QFETCH(QStringList, messages);
    ScratchDocuments documents;
    ScriptedPrompt prompt;
    ScriptedSession session;
    session.server->answer(QStringLiteral("LogIn"), result);
    session.host.dialogs = {accepted(choiceOf(QStringLiteral("AB"), QStringLiteral("AB"), QStringLiteral("7"))), {}};
    doExit = false;
    QVERIFY(!session.dm->ManualServerLogin());
    QCOMPARE(prompt.messages, messages);
    QCOMPARE(session.host.dialogsShown, 2);
    QVERIFY(doExit);
    QVERIFY(!documents.has(QStringLiteral("Kalvor/client.ini")));
  }

  void cancelledLogInQuits()
  {
    ScratchDocuments documents;
    ScriptedPrompt prompt;
    ScriptedSession session;
    session.dm->DataModuleCreate();
    QCOMPARE(prompt.messages, QStringList());
    QCOMPARE(session.host.quits, QList<int>({-1}));
    QVERIFY(doExit);
    QVERIFY(!session.server->connected);
    QVERIFY(session.dm->FormList);
  }

  void brokenLogInIsNotTriedAgain()
  {
    ScratchDocuments documents;
    ScriptedPrompt prompt;
    ScriptedSession session;
    session.server->handlers.remove(QStringLiteral("LogIn"));
    session.host.dialogs = {accepted(choiceOf(QStringLiteral("AB"), QStringLiteral("AB"), QStringLiteral("7")))};
    session.dm->DataModuleCreate();
    QCOMPARE(prompt.messages, QStringList{noConnection});
    QCOMPARE(prompt.kinds, QList<PromptKind>{PromptKind::Error});
    QCOMPARE(session.host.dialogsShown, 1);
    QCOMPARE(session.host.quits, QList<int>({-1}));
    QVERIFY(!doExit);
  }

  void objectIsNeededButByTheAdministrator_data()
  {
    QTest::addColumn<QString>("user");
    QTest::addColumn<bool>("enters");
    QTest::newRow("administrator") << "SUPERVSR" << true;
    QTest::newRow("administrator in small letters") << "supervsr" << false;
    QTest::newRow("user") << "AB" << false;
  }
  void objectIsNeededButByTheAdministrator()
  {
    QFETCH(QString, user);
    QFETCH(bool, enters);
    ScratchDocuments documents;
    ScriptedPrompt prompt;
    ScriptedSession session;
    session.host.dialogs = {accepted(choiceOf({}, user, {}))};
    session.dm->DataModuleCreate();
    QCOMPARE(prompt.messages, enters ? QStringList() : QStringList{connectionFailed});
    QCOMPARE(session.host.quits, enters ? QList<int>() : QList<int>({-1}));
    QCOMPARE(session.server->log.contains(QStringLiteral("LogIn")), enters);
    if (enters)
      QCOMPARE(session.server->sentOnce(QStringLiteral("LogIn")),
               (VariantArray{user, emptyDigest, QString(), QStringLiteral("5"), QString()}));
  }

  void successfulLogInIsRemembered()
  {
    ScratchDocuments documents;
    ScriptedPrompt prompt;
    ScriptedSession session;
    LoginChoice choice = choiceOf({}, QStringLiteral("Иван"), QStringLiteral("7"));
    choice.password = QStringLiteral("тайна1");
    session.host.dialogs = {accepted(choice)};
    session.dm->DataModuleCreate();
    QCOMPARE(prompt.messages, QStringList());
    QCOMPARE(session.host.splash, QList<bool>({false, true}));
    QCOMPARE(session.server->session, QStringLiteral("session-1"));
    QCOMPARE(session.server->sentOnce(QStringLiteral("LogIn")).value(1), QVariant(passwordDigest(QStringLiteral("тайна1"))));
    QCOMPARE(LocalData.ServerText, QStringLiteral("session-1"));
    QCOMPARE(LocalData.UserId, QStringLiteral("Иван"));
    QCOMPARE(LocalData.BGroupName, QStringLiteral("Обект"));
    QCOMPARE(LocalData.CompanyName, QStringLiteral("Фирма"));
    QCOMPARE(KalvorClientINIFileName, hostProgramName() + QStringLiteral(".ini"));
    QCOMPARE(documents.read(QStringLiteral("Kalvor/") + KalvorClientINIFileName),
             QByteArray("[User]\nUser=Иван\nObject=7\nCompany=5\n"));
    QCOMPARE(session.host.quits, QList<int>());
  }

  void digestIsOfTheCodePage_data()
  {
    QTest::addColumn<QString>("password");
    QTest::addColumn<QString>("digest");
    QTest::newRow("empty") << QString() << emptyDigest;
    QTest::newRow("ascii") << "abc" << "900150983cd24fb0d6963f7d28e17f72";
    // printf 'парола' | iconv -t cp1251 | md5sum
    QTest::newRow("cyrillic") << QStringLiteral("парола") << "aec3ad1ec604334531800728317f6326";
  }
  void digestIsOfTheCodePage()
  {
    QFETCH(QString, password);
    QFETCH(QString, digest);
    QCOMPARE(passwordDigest(password), digest);
  }

  void devicesAreRead_data()
  {
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QString>("start");
    QTest::addColumn<QString>("measure");
    QTest::addColumn<QString>("printer");
    QTest::newRow("set") << QByteArray("[Devices]\nBarckodeStart=%x\nMesureBarcode=13\nprn=LPT1\n") << "%" << "13" << "LPT1";
    QTest::newRow("empty") << QByteArray("[Devices]\nBarckodeStart=\n") << "^" << "" << "";
    QTest::newRow("missing") << QByteArray() << "^" << "" << "";
  }
  void devicesAreRead()
  {
    QFETCH(QByteArray, file);
    QFETCH(QString, start);
    QFETCH(QString, measure);
    QFETCH(QString, printer);
    ScratchDocuments documents;
    QDir().mkpath(documents.path(QStringLiteral("Kalvor")));
    documents.write(QStringLiteral("Kalvor/") + hostProgramName() + QStringLiteral(".ini"), file);
    ScriptedSession session;
    session.host.commandLine = {QStringLiteral("-u"), QStringLiteral("AB")};
    LocalData.NewQty = 3;
    session.dm->DataModuleCreate();
    QCOMPARE(QString(session.dm->BarcodeStart), start);
    QCOMPARE(session.dm->MeasureBarcode, measure);
    QCOMPARE(LocalData.prn, printer);
    QCOMPARE(LocalData.NewQty, 0.0);
    QCOMPARE(session.dm->ReadOnlyColor, 0xffefefefu);
  }

  void commandLine_data()
  {
    QTest::addColumn<QStringList>("parameters");
    QTest::addColumn<QStringList>("sent");  // user, password, object, company
    QTest::addColumn<QStringList>("kept");  // action, transfer file
    const QString file = hostProgramFolder() + QStringLiteral("abc/Info_abc.xml");
    QTest::newRow("all") << QStringList{"-a", "xmlTransfer", "-u", "AB", "-p", "abc", "-c", "5", "-b", "7", "-f", "abc"}
                         << QStringList{"AB", "abc", "7", "5"} << QStringList{"xmlTransfer", file};
    QTest::newRow("any case") << QStringList{"-U", "AB", "-P", "x", "-C", "5", "-B", "7"} << QStringList{"AB", "x", "7", "5"}
                              << QStringList{"", ""};
    QTest::newRow("last without value") << QStringList{"-u", "AB", "-c"} << QStringList{"AB", "", "", ""} << QStringList{"", ""};
    QTest::newRow("pairs are fixed") << QStringList{"x", "-u", "AB", "-c"} << QStringList{"", "", "", ""} << QStringList{"", ""};
    QTest::newRow("one word") << QStringList{"-u"} << QStringList{"", "", "", ""} << QStringList{"", ""};
  }
  void commandLine()
  {
    QFETCH(QStringList, parameters);
    QFETCH(QStringList, sent);
    QFETCH(QStringList, kept);
    ScratchDocuments documents;
    ScriptedPrompt prompt;
    ScriptedSession session;
    session.host.commandLine = parameters;
    session.dm->DataModuleCreate();
    QCOMPARE(session.server->sentOnce(QStringLiteral("LogIn")),
             (VariantArray{sent[0], passwordDigest(sent[1]), sent[2], sent[3], QString()}));
    QCOMPARE(QStringList({AutoLoginData.Action, AutoLoginData.TransferFile}), kept);
    QCOMPARE(LocalData.UserName, sent[0]);
    QCOMPARE(LocalData.CompanyId, sent[3]);
    QCOMPARE(session.host.dialogsShown, 0);
    QCOMPARE(session.host.quits, QList<int>());
    QCOMPARE(session.host.splash, QList<bool>());
  }

  void refusedCommandLineIsSilent()
  {
    ScratchDocuments documents;
    ScriptedPrompt prompt;
    ScriptedSession session;
    session.host.commandLine = {QStringLiteral("-u"), QStringLiteral("AB")};
    session.server->answer(QStringLiteral("LogIn"), -1);
    session.dm->DataModuleCreate();
    QCOMPARE(prompt.messages, QStringList());
    QCOMPARE(session.host.quits, QList<int>({-1}));
    session.server->handlers.remove(QStringLiteral("LogIn"));
    QVERIFY(!session.dm->AutoServerLogin());
    QCOMPARE(prompt.messages, QStringList{noConnection});
    QCOMPARE(prompt.kinds, QList<PromptKind>{PromptKind::Plain});
  }

  void xmlTransferRunsOnItsExactName_data()
  {
    QTest::addColumn<QString>("action");
    QTest::addColumn<QStringList>("files");
    QTest::newRow("exact") << "xmlTransfer" << QStringList{"from the command line"};
    QTest::newRow("other case") << "XMLTRANSFER" << QStringList();
    QTest::newRow("none") << "" << QStringList();
  }
  void xmlTransferRunsOnItsExactName()
  {
    QFETCH(QString, action);
    QFETCH(QStringList, files);
    ScriptedSession session;
    AutoLoginData.Action = action;
    AutoLoginData.TransferFile = QStringLiteral("from the command line");
    QStringList imported;
    session.dm->XmlTransfer = [&](const QString& file) { imported << file; };
    QCOMPARE(session.dm->ProccessAplicationParams(), 0);
    QCOMPARE(imported, files);
    QCOMPARE(session.dm->DoXmlTransfer(QStringLiteral("named")), 0);
    QCOMPARE(imported.last(), QStringLiteral("named"));
    QCOMPARE(AutoLoginData.TransferFile, QStringLiteral("named"));
  }
};

namespace {
const RegisterTest<SessionStartTest> registered;
}
#include "session_start_test.moc"
