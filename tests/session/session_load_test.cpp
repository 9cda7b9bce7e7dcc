// What the session loads after the log-in, and what it gives back.
#include "scratch_documents.h"
#include "scripted_ports.h"
#include "scripted_session.h"
#include "session/error_log.h"
#include "session/settings_document.h"
#include "several_tests.h"

using namespace Qt::StringLiterals;
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
      if (lines[i] == u"[Процедура]: "_s + procedure)
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
    session.server->handlers[u"RequestValue"_s] = [](VariantArray& a) -> Variant {
      if (a[1].toString().startsWith(u"SELECT"_s)) {
        a[4] = VariantArray{u"AB"_s, 3, u"Антон Борисов"_s, u"Фирма"_s};
        return 1;
      }
      if (a[1] == Variant(u"C_CompanySetup"_s)) {
        a[4] = VariantArray{Variant(VariantArray{1, 0, 2, 5, u"BGN"_s})};
        return 1;
      }
      a[4] = 1;
      return 1;
    };
    session.load();
    QCOMPARE(log.messages(u"TDM.LoadLocalData"_s), QStringList());
    QCOMPARE(LocalData.EmployeeName, u"Антон Борисов"_s);
    QCOMPARE(LocalData.ServerName, u"Сървър"_s);
    QCOMPARE(LocalData.ConnectionString, u"Catalog=1"_s);
    QCOMPARE(LocalData.LoginTime, clock.now());
    QCOMPARE(LocalData.CheckBulstat, 1);
    QCOMPARE(LocalData.CheckTaxNo, 0);
    QCOMPARE(LocalData.PrecisionAmount, 2);
    QCOMPARE(LocalData.PrecisionPrice, 5);
    QCOMPARE(LocalData.Currency_LCY, u"BGN"_s);
    QVERIFY(LocalData.ChangeCalculation);
    const QList<VariantArray> asked = session.server->sent.value(u"RequestValue"_s);
    const auto row = [](const QString& field, const QString& value, const QString& conjunction) {
      return Variant(VariantArray{field, u"="_s, value, conjunction});
    };
    QCOMPARE(asked.size(), 3);
    QCOMPARE(asked[0], (VariantArray{0, u"C_CompanySetup"_s,
                                     u"CheckBulstat,CheckTaxNo,PrecisionAmount,PrecisionPrice,Currency_LCY"_s,
                                     VariantArray{row(u"Id"_s, u"5"_s, QString())}, Variant(), true}));
    QCOMPARE(
        asked[1],
        (VariantArray{
            -1,
            u"SELECT N_Users.Id AS N_Users_Id, N_Users.Employee_Id AS N_Users_Employee_Id, N_Employee.Name AS "
            u"N_Employee_Name,  N_Company.Name AS N_Company_Name FROM N_Users  INNER JOIN N_Employee ON N_Employee.ID "
            u"= "
            u"N_Users.Employee_Id AND N_Employee.Comp_id = N_Users.Comp_id INNER JOIN N_Company ON N_Company.Id = "
            u"N_Users.Comp_id"_s,
            QString(),
            VariantArray{row(u"N_Users.Id"_s, u"AB"_s, u"AND"_s), row(u"N_Users.Comp_id"_s, u"5"_s, QString())},
            Variant(), false}));
    QCOMPARE(asked[2], (VariantArray{0, u"C_SalesSetup"_s, u"ChangeCalculation"_s,
                                     VariantArray{row(u"C_SalesSetup.Id"_s, u"5"_s, QString())}, Variant(), false}));
  }

  void settingsAreLoaded()
  {
    const LogScope log;
    ScriptedSession session;
    session.load();
    QCOMPARE(session.server->sentOnce(u"RequestData"_s),
             (VariantArray{487, -1, u"P1"_s, Variant(), QString(),
                           VariantArray{Variant(VariantArray{u"ID"_s, u"AB"_s}),
                                        Variant(VariantArray{u"Comp_ID"_s, u"5"_s})}, Variant(), 0}));
    QCOMPARE(session.server->sentOnce(u"OpenProvider"_s), (VariantArray{u"P1"_s, -1}));
    QCOMPARE(group(session.dm->userSettingsDocument(), u"ExportOptions"_s), QStringList{"Separator=tab"});
    QCOMPARE(group(session.dm->userActionsDocument(), u"UserActions"_s), QStringList{"is_Cashier=1"});
    QVERIFY(!session.dm->cdsUserSettings.FieldByName(u"UserActions")->InUpdate);
  }

  void settingsThatCannotBeLoaded_data()
  {
    QTest::addColumn<int>("result");
    QTest::addColumn<int>("rows");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("message");
    const QString failed = u"[Грешка]: Грешка при извличане на настройки за потребителя!"_s;
    QTest::newRow("refused") << -1 << 1 << "" << failed;
    const QString count = failed + u"\n\rНе е намерен запис в базата или е намерен повече от един!"_s;
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
    session.server->answer(u"RequestData"_s, result);
    session.packet = packetOf({u"Id"_s, u"Comp_id"_s, u"Settings"_s, u"UserActions"_s},
                              QList<VariantArray>(rows, {u"AB"_s, u"5"_s, text, QString()}));
    session.load();
    QVERIFY2(log.text().contains(message + u"\r\n[Процедура]: TDM.LoadLocalData"_s), qPrintable(log.text()));
    QVERIFY(!session.dm->userSettingsDocument());
    QCOMPARE(session.dm->UserLogOff(), 0);
    QCOMPARE(session.dm->GetUserDataForUpdate(), QString());
    session.server->answer(u"UpdateUserSettings"_s, 0);
    session.dm->DataModuleDestroy();
    QVERIFY(!session.server->log.contains(u"UpdateUserSettings"_s));
  }

  void secondUserIsAppended()
  {
    const LogScope log;
    ScriptedSession session;
    session.load();
    session.server->handlers[u"RequestValue"_s] = [](VariantArray& a) -> Variant {
      if (!a[1].toString().startsWith(u"exec"_s))
        return 0;
      a[4] = VariantArray{u"O'N"_s, u"5"_s, u"<Root><A><b>1</b></A></Root>"_s, QString()};
      return 1;
    };
    session.dm->LoadLocalData(QString(), QString(), QString(), u"O'N"_s, u"7"_s, u"5"_s);
    QCOMPARE(log.messages(u"TDM.LoadLocalData"_s), QStringList());
    QCOMPARE(session.server->sent.value(u"RequestValue"_s).last().value(1),
             QVariant(u"exec dbo.usp_GetUserSettings 'O''N', '5'"_s));
    QCOMPARE(session.dm->cdsUserSettings.RecordCount(), 2);
    QCOMPARE(group(session.dm->userSettingsDocument(), u"A"_s), QStringList{"b=1"});
    // The first one again: found, nothing asked.
    session.load();
    QCOMPARE(session.server->sent.value(u"RequestData"_s).size(), 1);
    QCOMPARE(group(session.dm->userSettingsDocument(), u"ExportOptions"_s), QStringList{"Separator=tab"});
  }

  void savedStatement()
  {
    const FixedClock clock(QDateTime(QDate(2024, 3, 5), QTime(9, 30)));
    const LogScope log;
    ScriptedSession session;
    QCOMPARE(session.dm->GetUserDataForUpdate(), QString());
    session.packet = packetOf({u"Id"_s, u"Comp_id"_s, u"Settings"_s, u"UserActions"_s},
                              {{u"AB"_s, u"5"_s, u"<Root a=\"'\"/>"_s, QString()}});
    session.load();
    QCOMPARE(
        session.dm->GetUserDataForUpdate(),
        u"IF Exists (Select Id from s_UserSettings where Id = 'AB' and Comp_Id = '5')Update s_UserSettings Set "
        u"settings = '<Root a=\"''\"/>',C_dateTime='20240305', C_Businessgroup_Id='7', C_User_Id='AB'where Id = "
        u"'AB' and Comp_Id = '5'ELSE insert into s_UserSettings values ('AB','5',"
        u"'<Root a=\"''\"/>','7','AB','20240305')"_s);
  }

  void changedSettingsAreSentAtTheEnd()
  {
    const LogScope log;
    ScriptedSession session;
    session.load();
    SaveNodeToXml(*session.dm->userSettingsDocument(), u"IniOptions"_s, {u"Grids=-1"_s}, false);
    session.dm->UserLogOff();
    session.server->answer(u"UpdateUserSettings"_s, 0);
    session.dm->DataModuleDestroy();
    const VariantArray sent = session.server->sentOnce(u"UpdateUserSettings"_s);
    QCOMPARE(sent.value(1), QVariant(u"'AB'"_s));
    QCOMPARE(sent.value(0).toList().size(), 1);
    QCOMPARE(
        sent.value(0).toList().value(0).toString(),
        u"<Root><ExportOptions><Separator>tab</Separator></ExportOptions>"
        u"<IniOptions><Grids>-1</Grids></IniOptions></Root>"_s);
    session.dm->DataModuleDestroy();
    QCOMPARE(session.server->sent.value(u"UpdateUserSettings"_s).size(), 1);
  }

  void refusedSettingsAreLogged()
  {
    const LogScope log;
    ScriptedSession session;
    session.load();
    SaveNodeToXml(*session.dm->userSettingsDocument(), u"IniOptions"_s, {u"Grids=-1"_s}, false);
    session.dm->UserLogOff();
    session.server->answer(u"UpdateUserSettings"_s, 5);
    session.dm->DataModuleDestroy();
    QCOMPARE(log.messages(u"TDM.DataModuleDestroy"_s), QStringList{"[Грешка]: Error applying user settings"});
  }

  void unchangedSettingsAreNotSent()
  {
    const LogScope log;
    ScriptedSession session;
    session.load();
    session.dm->DataModuleDestroy();
    QVERIFY(!session.server->log.contains(u"UpdateUserSettings"_s));
  }

  void printedCopiesAreCounted()
  {
    const LogScope log;
    ScriptedSession session;
    session.load();
    session.server->answer(u"ExecuteSQLScript"_s, 0);
    QVERIFY(session.dm->SetDocCopiesPrinted(u"D_SaleInvoiceHeader"_s, u"1'2"_s, u"CopiesPrinted"_s));
    QCOMPARE(
        session.server->sentOnce(u"ExecuteSQLScript"_s),
        (VariantArray{
            u"UPDATE D_SaleInvoiceHeader SET CopiesPrinted = CopiesPrinted + 1 "
            u"WHERE ID = '1''2' AND Comp_Id = '5'"_s}));
    session.server->answer(u"ExecuteSQLScript"_s, -1);
    QVERIFY(!session.dm->SetDocCopiesPrinted(u"T"_s, u"1"_s, u"F"_s));
    session.server->handlers.remove(u"ExecuteSQLScript"_s);
    QVERIFY(!session.dm->SetDocCopiesPrinted(u"T"_s, u"1"_s, u"F"_s));
    QCOMPARE(log.messages(u"DM.SetDocCopiesPrinted"_s).size(), 1);
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
    session.server->answer(u"RequestData"_s, result);
    const FilterArray filter{{u"Form_Id"_s, u"="_s, 10, QString(), QString()}};
    const TClientDataSet* dataSet = session.dm->CreateCDS(formId, filter, open);
    QCOMPARE(dataSet != nullptr, made);
    if (!dataSet)
      return;
    QCOMPARE(dataSet->objectName(), u"cdsP1"_s);
    QCOMPARE(dataSet->ProviderName, u"P1"_s);
    QCOMPARE(dataSet->Active(), active);
    QCOMPARE(dataSet->parent(), session.dm.get());
    if (active)
      QCOMPARE(session.server->sentOnce(u"RequestData"_s).mid(0, 4),
               (VariantArray{formId, -1, u"P1"_s, filterToVariant(filter)}));
  }

  void rightsAreFetchedOncePerOwner()
  {
    const LogScope log;
    ScriptedSession session;
    session.load();
    const auto rights = [&](const QString& owner) {
      return packetOf({u"FormId"_s, u"Owner"_s}, {{u"10"_s, owner}, {u"20"_s, owner}});
    };
    session.packet = rights(u"65_66_5_7"_s);
    session.server->sent.clear();
    session.dm->LoadLogInData(u"a;b"_s);
    QCOMPARE(session.server->sentOnce(u"RequestData"_s),
             (VariantArray{103, 0, u"P2"_s, Variant(), QString(),
                           VariantArray{Variant(VariantArray{u"Comp_Id"_s, u"5"_s}),
                                        Variant(VariantArray{u"Bg_Id"_s, u"7"_s}),
                                        Variant(VariantArray{u"User_id"_s, u"AB"_s}),
                                        Variant(VariantArray{u"isAdmin"_s, 0})}, Variant(), 0}));
    QCOMPARE(session.dm->cdsTreeView.RecordCount(), 2);
    QCOMPARE(session.server->sentOnce(u"DeleteDynamicProvider"_s), VariantArray{u"P2"_s});
    QCOMPARE(session.dm->cdsTreeView.ProviderName, QString());

    session.server->sent.clear();
    session.dm->LoadLogInData(QString());
    QVERIFY(session.server->sent.isEmpty());

    LocalData.UserId = u"SUPERVSR"_s;
    const QString administrator = u"83_85_80_69_82_86_83_82_5_7"_s;
    session.packet = rights(administrator);
    session.dm->LoadLogInData(QString());
    QCOMPARE(session.server->sentOnce(u"RequestData"_s).value(5).toList().value(3).toList().value(1), QVariant(1));
    QCOMPARE(session.dm->cdsTreeView.RecordCount(), 2);
    QCOMPARE(session.dm->cdsTreeView.FieldByName(u"Owner")->AsString(), administrator);
    QCOMPARE(session.dm->cdsTreeView.Records().rows, 4);
    QCOMPARE(session.dm->cdsTreeView.ChangeCount(), 0);
    QCOMPARE(session.server->sentOnce(u"DeleteDynamicProvider"_s), VariantArray{u"P3"_s});

    LocalData.UserId = u"AB"_s;
    session.server->sent.clear();
    session.dm->LoadLogInData(QString());
    QVERIFY(session.server->sent.isEmpty());
    QCOMPARE(session.dm->cdsTreeView.RecordCount(), 2);
    QCOMPARE(log.messages(u"DM.LoadLogInData"_s), QStringList());
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
    session.server->answer(u"RequestData"_s, result);
    session.packet = packetOf({u"FormId"_s, u"Owner"_s}, {});
    session.dm->LoadLogInData(QString());
    QCOMPARE(session.dm->cdsTreeView.Active(), loaded);
    QCOMPARE(log.messages(u"DM.LoadLogInData"_s),
             loaded ? QStringList() : QStringList{"[Грешка]: Грешка при извличане на данни за потребителя!"});
    QCOMPARE(session.server->sent.value(u"DeleteDynamicProvider"_s).size(), 1);
  }
};

namespace {
const RegisterTest<SessionLoadTest> registered;
}
#include "session_load_test.moc"
