// The session against the real server with the demo company, over a socket.
#include <QTest>

#include "common/xml_exchange.h"
#include "platform/system.h"
#include "scratch_documents.h"
#include "scripted_ports.h"
#include "scripted_session.h"
#include "server/demo/demo_company.h"
#include "server/operations/passwords.h"
#include "server/server.h"
#include "server/server_core.h"
#include "session/error_log.h"
#include "session/local_settings_file.h"
#include "session/login_lists.h"
#include "session/settings_document.h"

using namespace Qt::StringLiterals;
using namespace kalvor;
using namespace kalvor::testing;

namespace {

std::unique_ptr<server::ApplicationServer> demoServer()
{
  server::ServerOptions options;
  options.database = u":memory:"_s;
  options.port = 0;
  auto started = std::make_unique<server::ApplicationServer>(options);
  server::DemoOptions demo;
  demo.hashDigest = server::hashDigest;
  demo.contragents = 20;
  demo.items = 50;
  demo.invoices = 10;
  const auto writer = started->core().openWriter();
  server::createDemoCompany(*writer, demo);
  started->start();
  return started;
}

}  // namespace

class SessionServerTest : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase()
  {
    InitLog();
    server_ = demoServer();
  }
  void cleanupTestCase()
  {
    server_.reset();
    CloseLog();
  }
  void init()
  {
    LocalData = {};
    AutoLoginData = {};
    KalvorClientINIFileName = hostProgramName() + u".ini"_s;
  }

  void listsBeforeLogIn()
  {
    SocketConnection connection;
    connection.Port = server_->port();
    ConnectionBroker broker(&connection);
    broker.Connect();
    LoginLists lists(broker);
    lists.LoadCombosFromIni();
    QCOMPARE(lists.companies.items().size(), 3);
    lists.companies.selectId(u"1"_s);
    lists.companyChanged();
    QVERIFY(!lists.objects.items().isEmpty());
    lists.objects.select(0);
    lists.objectChanged();
    lists.users.selectId(u"SUPERVSR"_s);
    QVERIFY(lists.users.selected() >= 0);
  }

  void refusals_data()
  {
    QTest::addColumn<QString>("user");
    QTest::addColumn<QString>("password");
    QTest::addColumn<QString>("object");
    QTest::addColumn<QString>("message");
    const QString noData = u"Грешка при извличане на данни!\r\nМоля, проверете коректността на въведените данни!"_s;
    QTest::newRow("password") << "SUPERVSR" << "x" << "" << u"Не валидна парола"_s;
    QTest::newRow("user") << "NOBODY" << "demo" << "" << noData;
    QTest::newRow("object") << "CLERK" << "demo" << "3" << noData;
    QTest::newRow("inactive")
        << "FORMER"
        << "demo"
        << "2"
        << u"Потребителя не е активен!\n\rМоля, обърнете се към системния "
               u"администратор за отстраняване на проблема!"_s;
  }
  void refusals()
  {
    QFETCH(QString, user);
    QFETCH(QString, password);
    QFETCH(QString, object);
    QFETCH(QString, message);
    Desk desk(*server_, documents_);
    LoginChoice choice;
    choice.user = user;
    choice.businessGroup = object;
    choice.company = u"1"_s;
    choice.password = password;
    desk.host.dialogs = {{true, choice}, {}};
    desk.dm.DataModuleCreate();
    QCOMPARE(desk.prompt.messages, QStringList{message});
    QCOMPARE(desk.host.quits, QList<int>{-1});
  }

  void administratorWorksAndSettingsAreKept()
  {
    {
      Desk desk(*server_, documents_);
      desk.logIn(u"SUPERVSR"_s);
      QCOMPARE(desk.prompt.messages, QStringList());
      QVERIFY2(errors().isEmpty(), qPrintable(errors()));
      QVERIFY(!LocalData.EmployeeName.isEmpty());
      QCOMPARE(LocalData.Currency_LCY, u"EUR"_s);
      QVERIFY(!LocalData.ServerText.isEmpty() && !LocalData.ServerName.isEmpty());
      desk.dm.LoadLogInData(QString());
      QVERIFY2(errors().isEmpty(), qPrintable(errors()));
      QVERIFY(desk.dm.cdsTreeView.RecordCount() > 0);
      QCOMPARE(desk.dm.cdsTreeView.FieldByName(u"Owner")->AsString(), u"83_85_80_69_82_86_83_82_1_"_s);
      QCOMPARE(desk.dm.cdsTreeView.FieldByName(u"ReadRight")->AsInteger(), 1);
      QVERIFY(desk.dm.userSettingsDocument() && desk.dm.userActionsDocument());
      SaveNodeToXml(*desk.dm.userSettingsDocument(), u"Form_Id150"_s, {u"Filter=Захар's"_s}, true);
      desk.dm.UserLogOff();
    }
    Desk again(*server_, documents_);
    again.logIn(u"SUPERVSR"_s);
    QStringList lines;
    QVERIFY(GetNodeFromXml(*again.dm.userSettingsDocument(), u"Form_Id150"_s, lines));
    QCOMPARE(lines, QStringList{"Filter=Захар's"});
    QVERIFY2(errors().isEmpty(), qPrintable(errors()));
    QVERIFY(!again.dm.SetDocCopiesPrinted(u"N_Users"_s, u"1"_s, u"PasswordHash"_s));
  }

  // The statement that saves the settings does the same as the end of the session.
  void savingStatementIsUnderstood()
  {
    Desk desk(*server_, documents_);
    desk.logIn(u"SUPERVSR"_s);
    QVERIFY(desk.dm.userSettingsDocument());
    SaveNodeToXml(*desk.dm.userSettingsDocument(), u"IniOptions"_s, {u"Grids=-1"_s}, true);
    QCOMPARE(desk.dm.ConBroker->Call(u"ExecuteSQLScript"_s, {desk.dm.GetUserDataForUpdate()}), Variant(0));
    Desk again(*server_, documents_);
    again.logIn(u"SUPERVSR"_s);
    QStringList lines;
    GetNodeFromXml(*again.dm.userSettingsDocument(), u"IniOptions"_s, lines);
    QCOMPARE(lines, QStringList{"Grids=-1"});
  }

  // Of a packet's statement batches each is carried out whole or leaves nothing.
  void statementsOfAPacket()
  {
    Desk desk(*server_, documents_);
    desk.logIn(u"SUPERVSR"_s);
    TClientDataSet packet, target;
    const auto field = [](const QString& name, DataType type) {
      FieldDef def;
      def.name = name;
      def.type = type;
      return def;
    };
    packet.CreateDataSet({field(u"ADDITIONALDATA"_s, DataType::WideMemo)});
    packet.AppendRecord({u"INSERT INTO N_Measure (Id, Code, Name) VALUES ('M1', 'м1', 'Мярка''1');\n"
                         "UPDATE N_Measure SET Decimals = 2 WHERE Id = 'M1'"_s});
    packet.AppendRecord({u"INSERT INTO N_Measure (Id, Code, Name) VALUES ('M2', 'м2', 'Мярка 2'); DROP TABLE N_Measure"_s});
    packet.AppendRecord({u"UPDATE N_Measure SET Name = 'Друга' WHERE Code = 'м1'"_s});
    const QTemporaryDir folder;
    packet.SaveToFile(folder.filePath(u"a.xml"_s));
    target.CreateDataSet({field(u"Note"_s, DataType::Integer)});
    target.AppendRecord({1});
    target.MergeChangeLog();
    target.SetRemoteServer(desk.dm.ConBroker);
    QVERIFY(ImportFromXML(&target, folder.filePath(u"a.xml"_s), false));
    VariantArray query{0, u"N_Measure"_s, u"Code,Name,Decimals"_s, filterToVariant({{u"N_Measure.Id"_s, u"LIKE"_s, u"M%"_s, {}, {}}}),
                       Variant(), true};
    QCOMPARE(desk.dm.ConBroker->Call(u"RequestValue"_s, query).toInt(), 1);
    const VariantArray row = query[4].toList().value(0).toList();
    QCOMPARE(row, (VariantArray{u"м1"_s, u"Друга"_s, 2LL}));
    QVERIFY2(errors().contains(u"Команда 2: Заявката не е разрешена."_s), qPrintable(errors()));
  }

  // Somebody who never saved anything has no row; both ways of saving make one.
  void firstSettingsOfAUser_data()
  {
    QTest::addColumn<bool>("byStatement");
    QTest::newRow("end of the session") << false;
    QTest::newRow("statement") << true;
  }
  void firstSettingsOfAUser()
  {
    QFETCH(bool, byStatement);
    const QString before = errors();
    const auto own = u" FROM s_UserSettings WHERE Id = 'SUPERVSR' AND Comp_Id = '1'"_s;
    const auto database = server_->core().openWriter();
    database->execute(u"DELETE"_s + own);
    {
      Desk desk(*server_, documents_);
      desk.logIn(u"SUPERVSR"_s);
      QCOMPARE(errors(), before);
      QVERIFY(desk.dm.userSettingsDocument() && desk.dm.userActionsDocument());
      SaveNodeToXml(*desk.dm.userSettingsDocument(), u"Form_Id120"_s, {u"SortOrder=Name ASC"_s}, true);
      if (byStatement)
        QCOMPARE(desk.dm.ConBroker->Call(u"ExecuteSQLScript"_s, {desk.dm.GetUserDataForUpdate()}), Variant(0));
      else
        desk.dm.UserLogOff();
    }
    QCOMPARE(database->value(u"SELECT COUNT(*)"_s + own).toInt(), 1);
    Desk again(*server_, documents_);
    again.logIn(u"SUPERVSR"_s);
    QStringList lines;
    QVERIFY(again.dm.userSettingsDocument());
    GetNodeFromXml(*again.dm.userSettingsDocument(), u"Form_Id120"_s, lines);
    QCOMPARE(lines, QStringList{"SortOrder=Name ASC"});
    QCOMPARE(errors(), before);
  }

  void datasetIsReadInPackets()
  {
    Desk desk(*server_, documents_);
    desk.logIn(u"SUPERVSR"_s);
    const std::unique_ptr<TClientDataSet> items(desk.dm.CreateCDS(150, {}, true));
    QVERIFY2(items && items->Active(), qPrintable(errors()));
    QCOMPARE(items->RecordCount(), 32);
    items->Last();
    QCOMPARE(items->RecordCount(), 50);
    QVERIFY(items->AllFetched());
    const FilterArray none{{u"1"_s, u"="_s, 2, QString(), QString()}};
    const std::unique_ptr<TClientDataSet> empty(desk.dm.CreateCDS(150, none, true));
    QVERIFY(empty && empty->IsEmpty());
    QVERIFY(!desk.dm.CreateCDS(999999, {}, true));
  }

  void connectionThatBreaksIsMended()
  {
    Desk desk(*server_, documents_);
    desk.logIn(u"SUPERVSR"_s);
    const quint16 port = server_->port();
    server_->stop();
    server_->start();
    desk.dm.SocketCon.Port = server_->port();
    QVERIFY(port != 0);
    QCOMPARE(desk.dm.ConBroker->Call(u"servername"_s), Variant(LocalData.ServerName));
    desk.dm.ConBroker->setSession(u"nonsense"_s);
    desk.dm.ConBroker->Disconnect();
    QVERIFY_THROWS_EXCEPTION(RpcError, desk.dm.ConBroker->Call(u"servername"_s));
  }

 private:
  struct Desk {
    Desk(server::ApplicationServer& running, const ScratchDocuments&)
    {
      dm.SocketCon.Port = running.port();
      SaveSectionToIni(u"Server"_s, {u"ServerPort=%1"_s.arg(running.port()),
                                                  u"ServerAddress=127.0.0.1"_s});
    }
    void logIn(const QString& user)
    {
      LoginChoice choice;
      choice.user = user;
      choice.company = u"1"_s;
      choice.password = server::demoPassword();
      host.dialogs = {{true, choice}};
      dm.DataModuleCreate();
    }
    ScriptedPrompt prompt;
    ScriptedHost host;
    TDM dm{host};
  };

  // What the error log holds.
  static QString errors()
  {
    QStringList lines;
    LoadErrorLog(lines);
    return lines.join(u'\n');
  }

  ScratchDocuments documents_;
  std::unique_ptr<server::ApplicationServer> server_;
};

QTEST_GUILESS_MAIN(SessionServerTest)
#include "session_server_test.moc"
