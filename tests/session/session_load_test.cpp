// What the session loads after the log-in, and what it gives back.
#include "scratch_documents.h"
#include "scripted_ports.h"
#include "scripted_session.h"
#include "session/error_log.h"
#include "session/settings_document.h"
#include "several_tests.h"

using namespace kalvor;
using namespace kalvor::testing;

namespace {

struct LogScope {
  LogScope() { InitLog(); }
  ~LogScope() { CloseLog(); }
  QStringList messages(const QString& procedure) const
  {
    QStringList lines, found;
    LoadErrorLog(lines);
    for (qsizetype i = 1; i < lines.size(); ++i)
      if (lines[i] == QStringLiteral("[Процедура]: ") + procedure)
        found << lines[i - 1];
    return found;
  }
  QString text() const
  {
    QFile file(errorLogFileName());
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
  }
  ScratchDocuments documents;
};

QStringList group(QDomDocument* document, const QString& name)
{
  QStringList lines;
  if (document)
    GetNodeFromXml(*document, name, lines);
  return lines;
}

}  // namespace

class SessionLoadTest : public QObject {
  Q_OBJECT

 private slots:
  void contextIsFilled()
  {
    const LogScope log;
    const FixedClock clock(QDateTime(QDate(2024, 3, 5), QTime(9, 30)));
    ScriptedSession session;
    session.server->handlers[QStringLiteral("RequestValue")] = [](VariantArray& a) -> Variant {
      if (a[1].toString().startsWith(QStringLiteral("SELECT"))) {
        a[4] = VariantArray{QStringLiteral("AB"), 3, QStringLiteral("Антон Борисов"), QStringLiteral("Фирма")};
        return 1;
      }
      if (a[1] == Variant(QStringLiteral("C_CompanySetup"))) {
        a[4] = VariantArray{Variant(VariantArray{1, 0, 2, 5, QStringLiteral("BGN")})};
        return 1;
      }
      a[4] = 1;
      return 1;
    };
    session.load();
    QCOMPARE(log.messages(QStringLiteral("TDM.LoadLocalData")), QStringList());
    QCOMPARE(LocalData.EmployeeName, QStringLiteral("Антон Борисов"));
    QCOMPARE(LocalData.ServerName, QStringLiteral("Сървър"));
    QCOMPARE(LocalData.ConnectionString, QStringLiteral("Catalog=1"));
    QCOMPARE(LocalData.LoginTime, clock.now());
    QCOMPARE(LocalData.CheckBulstat, 1);
    QCOMPARE(LocalData.CheckTaxNo, 0);
    QCOMPARE(LocalData.PrecisionAmount, 2);
    QCOMPARE(LocalData.PrecisionPrice, 5);
    QCOMPARE(LocalData.Currency_LCY, QStringLiteral("BGN"));
    QVERIFY(LocalData.ChangeCalculation);
    const QList<VariantArray> asked = session.server->sent.value(QStringLiteral("RequestValue"));
    const auto row = [](const QString& field, const QString& value, const QString& conjunction) {
      return Variant(VariantArray{field, QStringLiteral("="), value, conjunction});
    };
    QCOMPARE(asked.size(), 3);
    QCOMPARE(asked[0], (VariantArray{0, QStringLiteral("C_CompanySetup"),
                                     QStringLiteral("CheckBulstat,CheckTaxNo,PrecisionAmount,PrecisionPrice,Currency_LCY"),
                                     VariantArray{row(QStringLiteral("Id"), QStringLiteral("5"), QString())}, Variant(), true}));
    QCOMPARE(asked[1], (VariantArray{-1, QStringLiteral("SELECT N_Users.Id AS N_Users_Id, N_Users.Employee_Id AS N_Users_Employee_Id, N_Employee.Name AS N_Employee_Name,  N_Company.Name AS N_Company_Name FROM N_Users  INNER JOIN N_Employee ON N_Employee.ID = N_Users.Employee_Id AND N_Employee.Comp_id = N_Users.Comp_id INNER JOIN N_Company ON N_Company.Id = N_Users.Comp_id"),
                                     QString(), VariantArray{row(QStringLiteral("N_Users.Id"), QStringLiteral("AB"), QStringLiteral("AND")),
                                                             row(QStringLiteral("N_Users.Comp_id"), QStringLiteral("5"), QString())}, Variant(), false}));
    QCOMPARE(asked[2], (VariantArray{0, QStringLiteral("C_SalesSetup"), QStringLiteral("ChangeCalculation"),
                                     VariantArray{row(QStringLiteral("C_SalesSetup.Id"), QStringLiteral("5"), QString())}, Variant(), false}));
  }

  void settingsAreLoaded()
  {
    const LogScope log;
    ScriptedSession session;
    session.load();
    QCOMPARE(session.server->sentOnce(QStringLiteral("RequestData")),
             (VariantArray{487, -1, QStringLiteral("P1"), Variant(), QString(),
                           VariantArray{Variant(VariantArray{QStringLiteral("ID"), QStringLiteral("AB")}),
                                        Variant(VariantArray{QStringLiteral("Comp_ID"), QStringLiteral("5")})}, Variant(), 0}));
    QCOMPARE(session.server->sentOnce(QStringLiteral("OpenProvider")), (VariantArray{QStringLiteral("P1"), -1}));
    QCOMPARE(group(session.dm->userSettingsDocument(), QStringLiteral("ExportOptions")), QStringList{"Separator=tab"});
    QCOMPARE(group(session.dm->userActionsDocument(), QStringLiteral("UserActions")), QStringList{"is_Cashier=1"});
    QVERIFY(!session.dm->cdsUserSettings.FieldByName(u"UserActions")->InUpdate);
  }

  void settingsThatCannotBeLoaded_data()
  {
    QTest::addColumn<int>("result");
    QTest::addColumn<int>("rows");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("message");
    const QString failed = QStringLiteral("[Грешка]: Грешка при извличане на настройки за потребителя!");
    QTest::newRow("refused") << -1 << 1 << "" << failed;
    const QString count = failed + QStringLiteral("\n\rНе е намерен запис в базата или е намерен повече от един!");
    QTest::newRow("no row") << 0 << 0 << "" << count;
    QTest::newRow("two rows") << 0 << 2 << "" << count;
    QTest::newRow("no XML") << 0 << 1 << "<Root>" << failed;
  }
  // The session goes on without them, and never writes anything over what it could not read.
  void settingsThatCannotBeLoaded()
  {
    QFETCH(int, result);
    QFETCH(int, rows);
    QFETCH(QString, text);
    QFETCH(QString, message);
    const LogScope log;
    ScriptedSession session;
    session.server->answer(QStringLiteral("RequestData"), result);
    session.packet = packetOf({QStringLiteral("Id"), QStringLiteral("Comp_id"), QStringLiteral("Settings"), QStringLiteral("UserActions")},
                              QList<VariantArray>(rows, {QStringLiteral("AB"), QStringLiteral("5"), text, QString()}));
    session.load();
    QVERIFY2(log.text().contains(message + QStringLiteral("\r\n[Процедура]: TDM.LoadLocalData")), qPrintable(log.text()));
    QVERIFY(!session.dm->userSettingsDocument());
    QCOMPARE(session.dm->UserLogOff(), 0);
    QCOMPARE(session.dm->GetUserDataForUpdate(), QString());
    session.server->answer(QStringLiteral("UpdateUserSettings"), 0);
    session.dm->DataModuleDestroy();
    QVERIFY(!session.server->log.contains(QStringLiteral("UpdateUserSettings")));
  }

  void secondUserIsAppended()
  {
    const LogScope log;
    ScriptedSession session;
    session.load();
    session.server->handlers[QStringLiteral("RequestValue")] = [](VariantArray& a) -> Variant {
      if (!a[1].toString().startsWith(QStringLiteral("exec")))
        return 0;
      a[4] = VariantArray{QStringLiteral("O'N"), QStringLiteral("5"), QStringLiteral("<Root><A><b>1</b></A></Root>"), QString()};
      return 1;
    };
    session.dm->LoadLocalData(QString(), QString(), QString(), QStringLiteral("O'N"), QStringLiteral("7"), QStringLiteral("5"));
    QCOMPARE(log.messages(QStringLiteral("TDM.LoadLocalData")), QStringList());
    QCOMPARE(session.server->sent.value(QStringLiteral("RequestValue")).last().value(1),
             QVariant(QStringLiteral("exec dbo.usp_GetUserSettings 'O''N', '5'")));
    QCOMPARE(session.dm->cdsUserSettings.RecordCount(), 2);
    QCOMPARE(group(session.dm->userSettingsDocument(), QStringLiteral("A")), QStringList{"b=1"});
    // The first one again: found, nothing asked.
    session.load();
    QCOMPARE(session.server->sent.value(QStringLiteral("RequestData")).size(), 1);
    QCOMPARE(group(session.dm->userSettingsDocument(), QStringLiteral("ExportOptions")), QStringList{"Separator=tab"});
  }

  void savedStatement()
  {
    const FixedClock clock(QDateTime(QDate(2024, 3, 5), QTime(9, 30)));
    const LogScope log;
    ScriptedSession session;
    QCOMPARE(session.dm->GetUserDataForUpdate(), QString());
    session.packet = packetOf({QStringLiteral("Id"), QStringLiteral("Comp_id"), QStringLiteral("Settings"), QStringLiteral("UserActions")},
                              {{QStringLiteral("AB"), QStringLiteral("5"), QStringLiteral("<Root a=\"'\"/>"), QString()}});
    session.load();
    QCOMPARE(session.dm->GetUserDataForUpdate(),
             QStringLiteral("IF Exists (Select Id from s_UserSettings where Id = 'AB' and Comp_Id = '5')Update s_UserSettings Set "
                            "settings = '<Root a=\"''\"/>',C_dateTime='20240305', C_Businessgroup_Id='7', C_User_Id='AB'where Id = "
                            "'AB' and Comp_Id = '5'ELSE insert into s_UserSettings values ('AB','5','<Root a=\"''\"/>','7','AB','20240305')"));
  }

  void changedSettingsAreSentAtTheEnd()
  {
    const LogScope log;
    ScriptedSession session;
    session.load();
    SaveNodeToXml(*session.dm->userSettingsDocument(), QStringLiteral("IniOptions"), {QStringLiteral("Grids=-1")}, false);
    session.dm->UserLogOff();
    session.server->answer(QStringLiteral("UpdateUserSettings"), 0);
    session.dm->DataModuleDestroy();
    const VariantArray sent = session.server->sentOnce(QStringLiteral("UpdateUserSettings"));
    QCOMPARE(sent.value(1), QVariant(QStringLiteral("'AB'")));
    QCOMPARE(sent.value(0).toList().size(), 1);
    QCOMPARE(sent.value(0).toList().value(0).toString(),
             QStringLiteral("<Root><ExportOptions><Separator>tab</Separator></ExportOptions><IniOptions><Grids>-1</Grids></IniOptions></Root>"));
    session.dm->DataModuleDestroy();
    QCOMPARE(session.server->sent.value(QStringLiteral("UpdateUserSettings")).size(), 1);
  }

  void refusedSettingsAreLogged()
  {
    const LogScope log;
    ScriptedSession session;
    session.load();
    SaveNodeToXml(*session.dm->userSettingsDocument(), QStringLiteral("IniOptions"), {QStringLiteral("Grids=-1")}, false);
    session.dm->UserLogOff();
    session.server->answer(QStringLiteral("UpdateUserSettings"), 5);
    session.dm->DataModuleDestroy();
    QCOMPARE(log.messages(QStringLiteral("TDM.DataModuleDestroy")), QStringList{"[Грешка]: Error applying user settings"});
  }

  void unchangedSettingsAreNotSent()
  {
    const LogScope log;
    ScriptedSession session;
    session.load();
    session.dm->DataModuleDestroy();
    QVERIFY(!session.server->log.contains(QStringLiteral("UpdateUserSettings")));
  }

  void printedCopiesAreCounted()
  {
    const LogScope log;
    ScriptedSession session;
    session.load();
    session.server->answer(QStringLiteral("ExecuteSQLScript"), 0);
    QVERIFY(session.dm->SetDocCopiesPrinted(QStringLiteral("D_SaleInvoiceHeader"), QStringLiteral("1'2"), QStringLiteral("CopiesPrinted")));
    QCOMPARE(session.server->sentOnce(QStringLiteral("ExecuteSQLScript")),
             (VariantArray{QStringLiteral("UPDATE D_SaleInvoiceHeader SET CopiesPrinted = CopiesPrinted + 1 WHERE ID = '1''2' AND Comp_Id = '5'")}));
    session.server->answer(QStringLiteral("ExecuteSQLScript"), -1);
    QVERIFY(!session.dm->SetDocCopiesPrinted(QStringLiteral("T"), QStringLiteral("1"), QStringLiteral("F")));
    session.server->handlers.remove(QStringLiteral("ExecuteSQLScript"));
    QVERIFY(!session.dm->SetDocCopiesPrinted(QStringLiteral("T"), QStringLiteral("1"), QStringLiteral("F")));
    QCOMPARE(log.messages(QStringLiteral("DM.SetDocCopiesPrinted")).size(), 1);
  }

  void datasetsOfTheSession_data()
  {
    QTest::addColumn<int>("formId");
    QTest::addColumn<bool>("open");
    QTest::addColumn<int>("result");
    QTest::addColumn<bool>("made");
    QTest::addColumn<bool>("active");
    QTest::newRow("opened") << 155 << true << 0 << true << true;
    QTest::newRow("not opened") << 155 << false << 0 << true << false;
    QTest::newRow("no form") << 0 << true << 0 << true << false;
    QTest::newRow("no query") << 155 << true << -1 << false << false;
  }
  void datasetsOfTheSession()
  {
    QFETCH(int, formId);
    QFETCH(bool, open);
    QFETCH(int, result);
    QFETCH(bool, made);
    QFETCH(bool, active);
    const LogScope log;
    ScriptedSession session;
    session.server->answer(QStringLiteral("RequestData"), result);
    const FilterArray filter{{QStringLiteral("Form_Id"), QStringLiteral("="), 10, QString(), QString()}};
    const TClientDataSet* dataSet = session.dm->CreateCDS(formId, filter, open);
    QCOMPARE(dataSet != nullptr, made);
    if (!dataSet)
      return;
    QCOMPARE(dataSet->objectName(), QStringLiteral("cdsP1"));
    QCOMPARE(dataSet->ProviderName, QStringLiteral("P1"));
    QCOMPARE(dataSet->Active(), active);
    QCOMPARE(dataSet->parent(), session.dm.get());
    if (active)
      QCOMPARE(session.server->sentOnce(QStringLiteral("RequestData")).mid(0, 4),
               (VariantArray{formId, -1, QStringLiteral("P1"), filterToVariant(filter)}));
  }

  void rightsAreFetchedOncePerOwner()
  {
    const LogScope log;
    ScriptedSession session;
    session.load();
    const auto rights = [&](const QString& owner) {
      return packetOf({QStringLiteral("FormId"), QStringLiteral("Owner")}, {{QStringLiteral("10"), owner}, {QStringLiteral("20"), owner}});
    };
    session.packet = rights(QStringLiteral("65_66_5_7"));
    session.server->sent.clear();
    session.dm->LoadLogInData(QStringLiteral("a;b"));
    QCOMPARE(session.server->sentOnce(QStringLiteral("RequestData")),
             (VariantArray{103, 0, QStringLiteral("P2"), Variant(), QString(),
                           VariantArray{Variant(VariantArray{QStringLiteral("Comp_Id"), QStringLiteral("5")}),
                                        Variant(VariantArray{QStringLiteral("Bg_Id"), QStringLiteral("7")}),
                                        Variant(VariantArray{QStringLiteral("User_id"), QStringLiteral("AB")}),
                                        Variant(VariantArray{QStringLiteral("isAdmin"), 0})}, Variant(), 0}));
    QCOMPARE(session.dm->cdsTreeView.RecordCount(), 2);
    QCOMPARE(session.server->sentOnce(QStringLiteral("DeleteDynamicProvider")), VariantArray{QStringLiteral("P2")});
    QCOMPARE(session.dm->cdsTreeView.ProviderName, QString());

    session.server->sent.clear();
    session.dm->LoadLogInData(QString());
    QVERIFY(session.server->sent.isEmpty());

    LocalData.UserId = QStringLiteral("SUPERVSR");
    const QString administrator = QStringLiteral("83_85_80_69_82_86_83_82_5_7");
    session.packet = rights(administrator);
    session.dm->LoadLogInData(QString());
    QCOMPARE(session.server->sentOnce(QStringLiteral("RequestData")).value(5).toList().value(3).toList().value(1), QVariant(1));
    QCOMPARE(session.dm->cdsTreeView.RecordCount(), 2);
    QCOMPARE(session.dm->cdsTreeView.FieldByName(u"Owner")->AsString(), administrator);
    QCOMPARE(session.dm->cdsTreeView.Records().rows, 4);
    QCOMPARE(session.dm->cdsTreeView.ChangeCount(), 0);
    QCOMPARE(session.server->sentOnce(QStringLiteral("DeleteDynamicProvider")), VariantArray{QStringLiteral("P3")});

    LocalData.UserId = QStringLiteral("AB");
    session.server->sent.clear();
    session.dm->LoadLogInData(QString());
    QVERIFY(session.server->sent.isEmpty());
    QCOMPARE(session.dm->cdsTreeView.RecordCount(), 2);
    QCOMPARE(log.messages(QStringLiteral("DM.LoadLogInData")), QStringList());
  }

  void refusedRightsReleaseTheirProvider_data()
  {
    QTest::addColumn<int>("result");
    QTest::addColumn<bool>("loaded");
    QTest::newRow("negative") << -1 << false;
    QTest::newRow("positive") << 1 << true;
  }
  void refusedRightsReleaseTheirProvider()
  {
    QFETCH(int, result);
    QFETCH(bool, loaded);
    const LogScope log;
    ScriptedSession session;
    session.server->answer(QStringLiteral("RequestData"), result);
    session.packet = packetOf({QStringLiteral("FormId"), QStringLiteral("Owner")}, {});
    session.dm->LoadLogInData(QString());
    QCOMPARE(session.dm->cdsTreeView.Active(), loaded);
    QCOMPARE(log.messages(QStringLiteral("DM.LoadLogInData")),
             loaded ? QStringList() : QStringList{"[Грешка]: Грешка при извличане на данни за потребителя!"});
    QCOMPARE(session.server->sent.value(QStringLiteral("DeleteDynamicProvider")).size(), 1);
  }
};

namespace {
const RegisterTest<SessionLoadTest> registered;
}
#include "session_load_test.moc"
