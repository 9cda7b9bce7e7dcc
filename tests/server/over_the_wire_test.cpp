// What a caller gets who speaks the wire by hand: nothing without a log-in, nothing beyond the user's rights, row filter
// and company, whatever the calls ask for.
#include <QTcpSocket>
#include <QtTest>

#include "server/demo/demo_company.h"
#include "server/operations/operation.h"
#include "server/operations/passwords.h"
#include "server/server.h"
#include "server/server_core.h"
#include "several_tests.h"
#include "test_database.h"
#include "wire_caller.h"

namespace kalvor::testing {

namespace {

FilterArray equals(const QString& field, const QString& value) { return {{field, QStringLiteral("="), value, {}, {}}}; }

}  // namespace

class OverTheWireTest : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase()
  {
    server::ServerOptions options;
    options.database = newServerDatabase();
    options.port = 0;
    server_ = std::make_unique<server::ApplicationServer>(options);
    server::DemoOptions demo;
    demo.hashDigest = server::hashDigest;
    demo.contragents = 20;
    demo.items = 20;
    demo.invoices = 60;
    const auto writer = server_->core().openWriter();
    server::createDemoCompany(*writer, demo);
    server_->start();
  }
  void cleanupTestCase() { server_.reset(); }

  void logInResults_data()
  {
    QTest::addColumn<QString>("user");
    QTest::addColumn<QString>("group");
    QTest::addColumn<QString>("company");
    QTest::addColumn<QByteArray>("password");
    QTest::addColumn<int>("result");
    QTest::newRow("administrator without an object") << "SUPERVSR" << "" << "1" << QByteArray("demo") << 0;
    QTest::newRow("wrong password") << "CLERK" << "1" << "1" << QByteArray("demon") << -1;
    QTest::newRow("inactive") << "FORMER" << "2" << "1" << QByteArray("demo") << -5;
    QTest::newRow("no such user") << "NOBODY" << "1" << "1" << QByteArray("demo") << -4;
    QTest::newRow("an object that is not his") << "CLERK" << "3" << "1" << QByteArray("demo") << -4;
    QTest::newRow("a company that is not his") << "CLERK" << "4" << "2" << QByteArray("demo") << -4;
  }
  void logInResults()
  {
    QFETCH(QString, user);
    QFETCH(QString, group);
    QFETCH(QString, company);
    QFETCH(QByteArray, password);
    Caller caller(server_->port());
    QTEST(caller.logIn(user, group, company, password), "result");
  }

  void nothingWithoutLogIn()
  {
    // One of each thread that calls go to; every operation is in rights_matrix_test.cpp.
    Caller caller(server_->port());
    for (const char* operation : {"RequestData", "UpdateClientData", "trStart", "trCommit", "trRollback"}) {
      VariantArray arguments(server::findOperation(QLatin1StringView(operation))->parameters.size());
      QCOMPARE(Caller::refusal([&] { caller.broker.Call(QLatin1StringView(operation), arguments); }), int(RpcError::NotLoggedIn));
    }
    QCOMPARE(Caller::refusal([&] { caller.broker.Call(QStringLiteral("PostEverything")); }),
             int(RpcError::UnknownOperation));
  }

  void rightsOfAForm()
  {
    Caller guest(server_->port());
    QCOMPARE(guest.logIn(QStringLiteral("GUEST"), QStringLiteral("3"), QStringLiteral("1")), 0);
    TClientDataSet nothing;
    QCOMPARE(Caller::refusal([&] { guest.open(nothing, 120, 0, {}); }), int(RpcError::Forbidden));
    QVERIFY(Caller::refusal([&] {
              VariantArray value{0, QStringLiteral("D_SaleInvoiceHeader"), QStringLiteral("DocumentNo"), Variant(), Variant(), true};
              guest.broker.Call(QStringLiteral("RequestValue"), value);
            }) != 0);

    Caller auditor(server_->port());
    QCOMPARE(auditor.logIn(QStringLiteral("AUDITOR"), QStringLiteral("3"), QStringLiteral("1")), 0);
    TClientDataSet invoices;
    auditor.open(invoices, 121, 0, {});
    QVERIFY(invoices.RecordCount() > 0);
    invoices.Edit();
    invoices.FieldByName(u"Note")->SetAsString(QStringLiteral("чуждо"));
    invoices.Post();
    QCOMPARE(auditor.save(invoices), int(RpcError::Forbidden));
    invoices.CancelUpdates();
    invoices.Delete();
    QCOMPARE(auditor.save(invoices), int(RpcError::Forbidden));
  }

  void rowFilterStaysUnderEverything()
  {
    Caller administrator(server_->port());
    QCOMPARE(administrator.logIn(QStringLiteral("SUPERVSR"), QString(), QStringLiteral("1")), 0);
    TClientDataSet foreign;
    administrator.open(foreign, 121, 0, equals(QStringLiteral("D_SaleInvoiceHeader.C_Businessgroup_Id"), QStringLiteral("2")));
    QVERIFY(foreign.RecordCount() > 0);
    const QString foreignId = foreign.FieldByName(u"Id")->AsString();

    Caller clerk(server_->port());
    QCOMPARE(clerk.logIn(QStringLiteral("CLERK"), QStringLiteral("1"), QStringLiteral("1")), 0);
    TClientDataSet list;
    clerk.open(list, 120, 0, {});
    QVERIFY(list.RecordCount() > 0);
    for (qsizetype row = 0; row < list.RecordCount(); ++row) {
      QCOMPARE(list.FieldByName(u"C_Businessgroup_Id")->ValueAt(row).toString(), QStringLiteral("1"));
    }
    for (const int form : {120, 121}) {
      TClientDataSet asked;
      clerk.open(asked, form, 0, {{QStringLiteral("ID"), QStringLiteral("="), foreignId, QStringLiteral("OR"), {}},
                                  {QStringLiteral("1"), QStringLiteral("="), 1, {}, {}}});
      for (qsizetype row = 0; row < asked.RecordCount(); ++row) {
        QVERIFY(asked.FieldByName(u"Id")->ValueAt(row).toString() != foreignId);
      }
    }
    TClientDataSet lines;
    clerk.open(lines, 121, 1, equals(QStringLiteral("D_SaleInvoiceLine.Master_ID"), foreignId));
    QVERIFY(lines.IsEmpty());

    // A delta forged from somebody else's record.
    TClientDataSet own;
    clerk.open(own, 121, 0, {});
    TClientDataSet forged;
    forged.SetRecords(foreign.Records());
    forged.ProviderName = own.ProviderName;
    forged.Edit();
    forged.FieldByName(u"Note")->SetAsString(QStringLiteral("чуждо"));
    forged.Post();
    QVERIFY(clerk.save(forged) != 0);
    // One's own record moved out of one's sight.
    own.Edit();
    own.FieldByName(u"C_Businessgroup_Id")->ReadOnly = false;
    own.FieldByName(u"C_Businessgroup_Id")->SetAsString(QStringLiteral("2"));
    own.Post();
    const int moved = clerk.save(own);
    TClientDataSet again;
    administrator.open(again, 121, 0, equals(QStringLiteral("ID"), own.FieldByName(u"Id")->AsString()));
    QVERIFY2(moved != 0 || again.FieldByName(u"C_Businessgroup_Id")->AsString() == QLatin1String("1"), "moved out of sight");
    administrator.open(foreign, 121, 0, equals(QStringLiteral("ID"), foreignId));
    QVERIFY(foreign.FieldByName(u"Note")->AsString() != QLatin1String("чуждо"));
  }

  void anotherCompanyIsNotThere()
  {
    Caller second(server_->port());
    QCOMPARE(second.logIn(QStringLiteral("SUPERVSR"), QStringLiteral("4"), QStringLiteral("2")), 0);
    TClientDataSet theirs;
    second.open(theirs, 140, 0, {}, 1);
    const QString id = theirs.FieldByName(u"Id")->AsString();
    Caller first(server_->port());
    QCOMPARE(first.logIn(QStringLiteral("SUPERVSR"), QString(), QStringLiteral("1")), 0);
    TClientDataSet none;
    first.open(none, 140, 0, {{QStringLiteral("N_Contragent.Id"), QStringLiteral("="), id, QStringLiteral("OR"), {}},
                              {QStringLiteral("N_Contragent.Comp_Id"), QStringLiteral("="), QStringLiteral("2"), {}, {}}});
    QVERIFY(none.IsEmpty());
    VariantArray value{0, QStringLiteral("N_Contragent"), QStringLiteral("Id"), filterToVariant(equals(QStringLiteral("Id"), id)),
                       Variant(), false};
    QVERIFY(Caller::refusal([&] { QVERIFY(first.broker.Call(QStringLiteral("RequestValue"), value).toInt() <= 0); }) == 0);
    VariantArray secret{0, QStringLiteral("N_Users"), QStringLiteral("PasswordHash"), Variant(), Variant(), true};
    QVERIFY(Caller::refusal([&] { first.broker.Call(QStringLiteral("RequestValue"), secret); }) != 0);
  }

  void garbageClosesItsOwnConnectionOnly()
  {
    Caller quiet(server_->port());
    QCOMPARE(quiet.logIn(QStringLiteral("SUPERVSR"), QString(), QStringLiteral("1")), 0);
    const QList<QByteArray> rubbish{QByteArray(64, '\xff'), QByteArray("GET / HTTP/1.1\r\n\r\n"),
                                    QByteArray::fromHex("00000001ff"), QByteArray::fromHex("7fffffff00"),
                                    QByteArray::fromHex("00000000"), QByteArray::fromHex("00000004840001f6")};
    for (const QByteArray& bytes : rubbish) {
      QTcpSocket socket;
      socket.connectToHost(QStringLiteral("127.0.0.1"), server_->port());
      QVERIFY(socket.waitForConnected());
      socket.write(bytes);
      QVERIFY2(socket.waitForDisconnected(5000) || socket.state() == QAbstractSocket::UnconnectedState,
               bytes.toHex().constData());
      QVERIFY(!quiet.broker.Call(QStringLiteral("servername")).toString().isEmpty());
    }
  }

 private:
  std::unique_ptr<server::ApplicationServer> server_;
};

static RegisterTest<OverTheWireTest> overTheWireTest;

}  // namespace kalvor::testing

#include "over_the_wire_test.moc"
