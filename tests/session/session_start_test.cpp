// Start of the session: where the server is, who logs in, and every way in which that ends.
#include <QDir>

#include "platform/system.h"
#include "scratch_documents.h"
#include "scripted_ports.h"
#include "scripted_session.h"
#include "session/error_log.h"
#include "session/password_digest.h"
#include "several_tests.h"

using namespace Qt::StringLiterals;
using namespace kalvor;
using namespace kalvor::testing;

namespace {

const QString connectionFailed = u"Грешка при свързване със сървъра."_s;
const QString noConnection = u"Не е остановена връзка към сървъра"_s;
const QString emptyDigest = u"d41d8cd98f00b204e9800998ecf8427e"_s;

LoginChoice choiceOf(const std::optional<QString>& user, const QString& typed, const std::optional<QString>& object)
{
  LoginChoice choice;
  choice.user = user;
  choice.userText = typed;
  choice.businessGroup = object;
  choice.businessGroupText = u"Обект"_s;
  choice.company = u"5"_s;
  choice.companyText = u"Фирма"_s;
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
    QTest::newRow("both keys") << QByteArray("[Server]\nServerPort=3000\nServerAddress=10.0.0.1\n") << service
                               << "10.0.0.1" << 3000 << false;
    QTest::newRow("port no number") << QByteArray("[Server]\nServerPort=abc\nServerAddress=10.0.0.1\n") << service
                                    << "10.0.0.1" << 2030 << false;
    QTest::newRow("port beyond") << QByteArray("[Server]\nServerPort=70000\nServerAddress=10.0.0.1\n") << service
                                 << "10.0.0.1" << 2030 << false;
    QTest::newRow("no port") << QByteArray("[Server]\nServerAddress=10.0.0.1\n") << service << "10.9.9.9" << 4000
                             << true;
    QTest::newRow("no address") << QByteArray("[Server]\nServerPort=3000\n") << service << "10.9.9.9" << 4000 << true;
    QTest::newRow("neither") << QByteArray() << service << "10.9.9.9" << 4000 << true;
    QTest::newRow("service port no number")
        << QByteArray() << QByteArray("[Connection]\nPort=x\nAddress=10.9.9.9\n") << "10.9.9.9" << 2030 << true;
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
    QDir().mkpath(documents.path(u"Kalvor"_s));
    QDir().mkpath(documents.path(u"system"_s));
    documents.write(u"Kalvor/client.ini"_s, local);
    documents.write(u"system/KalvorWebService.ini"_s, service);
    KalvorClientINIFileName = u"client.ini"_s;
    InitLog();
    ScriptedSession session;
    session.host.systemFolder = documents.path(u"system/"_s);
    QVERIFY(session.dm->SetUpRemoteCon());
    QCOMPARE(session.dm->SocketCon.Address, address);
    QCOMPARE(int(session.dm->SocketCon.Port), port);
    QCOMPARE(session.server->log, QStringList({u"Disconnect"_s, u"Connect"_s}));
    QStringList log;
    LoadErrorLog(log);
    QCOMPARE(log.contains(u"[Процедура]: TDM.SetUpRemoteCon"_s), logged);
    QCOMPARE(log.contains(u"[Грешка]: "_s + documents.path(u"system/KalvorWebService.ini"_s)), logged);
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
    session.server->connectError = u"Няма връзка със сървъра 127.0.0.1:2030."_s;
    session.dm->DataModuleCreate();
    QCOMPARE(prompt.messages, QStringList({connectionFailed + u"\r\nНяма връзка със сървъра 127.0.0.1:2030.\r\n\r\n"
                                                              u"Желаете ли да редактирате настройките за връзка?"_s,
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
    QTest::newRow("wrong password") << -1 << QStringList{u"Не валидна парола"_s};
    QTest::newRow("no data")
        << -4 << QStringList{u"Грешка при извличане на данни!\r\nМоля, проверете коректността на въведените данни!"_s};
    QTest::newRow("inactive")
        << -5
        << QStringList{
               u"Потребителя не е активен!\n\rМоля, обърнете се към системния "
               u"администратор за отстраняване на проблема!"_s};
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
    session.server->answer(u"LogIn"_s, result);
    session.host.dialogs = {accepted(choiceOf(u"AB"_s, u"AB"_s, u"7"_s)), {}};
    doExit = false;
    QVERIFY(!session.dm->ManualServerLogin());
    QCOMPARE(prompt.messages, messages);
    QCOMPARE(session.host.dialogsShown, 2);
    QVERIFY(doExit);
    QVERIFY(!documents.has(u"Kalvor/client.ini"_s));
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
    session.server->handlers.remove(u"LogIn"_s);
    session.host.dialogs = {accepted(choiceOf(u"AB"_s, u"AB"_s, u"7"_s))};
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
    QCOMPARE(session.server->log.contains(u"LogIn"_s), enters);
    if (enters)
      QCOMPARE(session.server->sentOnce(u"LogIn"_s),
               (VariantArray{user, emptyDigest, QString(), u"5"_s, QString()}));
  }

  void successfulLogInIsRemembered()
  {
    ScratchDocuments documents;
    ScriptedPrompt prompt;
    ScriptedSession session;
    LoginChoice choice = choiceOf({}, u"Иван"_s, u"7"_s);
    choice.password = u"тайна1"_s;
    session.host.dialogs = {accepted(choice)};
    session.dm->DataModuleCreate();
    QCOMPARE(prompt.messages, QStringList());
    QCOMPARE(session.host.splash, QList<bool>({false, true}));
    QCOMPARE(session.server->session, u"session-1"_s);
    QCOMPARE(session.server->sentOnce(u"LogIn"_s).value(1), QVariant(passwordDigest(u"тайна1"_s)));
    QCOMPARE(LocalData.ServerText, u"session-1"_s);
    QCOMPARE(LocalData.UserId, u"Иван"_s);
    QCOMPARE(LocalData.BGroupName, u"Обект"_s);
    QCOMPARE(LocalData.CompanyName, u"Фирма"_s);
    QCOMPARE(KalvorClientINIFileName, hostProgramName() + u".ini"_s);
    QCOMPARE(documents.read(u"Kalvor/"_s + KalvorClientINIFileName),
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
    QTest::newRow("cyrillic") << u"парола"_s << "aec3ad1ec604334531800728317f6326";
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
    QTest::newRow("set") << QByteArray("[Devices]\nBarckodeStart=%x\nMesureBarcode=13\nprn=LPT1\n") << "%"
                         << "13"
                         << "LPT1";
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
    QDir().mkpath(documents.path(u"Kalvor"_s));
    documents.write(u"Kalvor/"_s + hostProgramName() + u".ini"_s, file);
    ScriptedSession session;
    session.host.commandLine = {u"-u"_s, u"AB"_s};
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
    const QString file = hostProgramFolder() + u"abc/Info_abc.xml"_s;
    QTest::newRow("all") << QStringList{"-a", "xmlTransfer", "-u", "AB", "-p", "abc",
                                        "-c", "5",           "-b", "7",  "-f", "abc"}
                         << QStringList{"AB", "abc", "7", "5"} << QStringList{"xmlTransfer", file};
    QTest::newRow("any case") << QStringList{"-U", "AB", "-P", "x", "-C", "5", "-B", "7"}
                              << QStringList{"AB", "x", "7", "5"} << QStringList{"", ""};
    QTest::newRow("last without value") << QStringList{"-u", "AB", "-c"} << QStringList{"AB", "", "", ""}
                                        << QStringList{"", ""};
    QTest::newRow("pairs are fixed") << QStringList{"x", "-u", "AB", "-c"} << QStringList{"", "", "", ""}
                                     << QStringList{"", ""};
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
    QCOMPARE(session.server->sentOnce(u"LogIn"_s),
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
    session.host.commandLine = {u"-u"_s, u"AB"_s};
    session.server->answer(u"LogIn"_s, -1);
    session.dm->DataModuleCreate();
    QCOMPARE(prompt.messages, QStringList());
    QCOMPARE(session.host.quits, QList<int>({-1}));
    session.server->handlers.remove(u"LogIn"_s);
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
    AutoLoginData.TransferFile = u"from the command line"_s;
    QStringList imported;
    session.dm->XmlTransfer = [&](const QString& file) { imported << file; };
    QCOMPARE(session.dm->ProccessAplicationParams(), 0);
    QCOMPARE(imported, files);
    QCOMPARE(session.dm->DoXmlTransfer(u"named"_s), 0);
    QCOMPARE(imported.last(), u"named"_s);
    QCOMPARE(AutoLoginData.TransferFile, u"named"_s);
  }
};

namespace {
const RegisterTest<SessionStartTest> registered;
}
#include "session_start_test.moc"
