// The lists of the log-in dialog.
#include <QDir>

#include "scratch_documents.h"
#include "scripted_session.h"
#include "session/login_lists.h"
#include "several_tests.h"

using namespace kalvor;
using namespace kalvor::testing;

namespace {

Variant rowsOf(std::initializer_list<VariantArray> rows)
{
  VariantArray list;
  for (const VariantArray& row : rows)
    list.append(Variant(row));
  return list;
}

struct ListServer : ScriptedCalls {
  ListServer()
  {
    answer(QStringLiteral("GetCompaniesList"), 0, {{0, rowsOf({{QStringLiteral("1"), QStringLiteral("Първа")}, {QStringLiteral("5"), QStringLiteral("Пета")}})}});
    answer(QStringLiteral("GetBGroupsList"), 0, {{1, rowsOf({{QStringLiteral("7"), QStringLiteral("Склад")}, {QStringLiteral("8"), QStringLiteral("Магазин")}})}});
    answer(QStringLiteral("GetUsersList"), 0, {{2, rowsOf({{QStringLiteral("AB")}, {QStringLiteral("SUPERVSR")}})}});
  }
};

}  // namespace

class LoginListsTest : public QObject {
  Q_OBJECT

 private slots:
  void lastChoiceIsSelected_data()
  {
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QStringList>("selected");  // company, object, user
    QTest::addColumn<QStringList>("calls");
    const QStringList all{"GetCompaniesList", "GetBGroupsList", "GetUsersList"}, one{"GetCompaniesList"};
    QTest::newRow("three lines") << QByteArray("[User]\nUser=AB\nObject=8\nCompany=5\n") << QStringList{"5", "8", "AB"} << all;
    QTest::newRow("by position") << QByteArray("[User]\na=AB\nb=8\nc=5\nd=x\n") << QStringList{"5", "8", "AB"} << all;
    QTest::newRow("two lines") << QByteArray("[User]\nUser=AB\nCompany=5\n") << QStringList{"", "", ""} << one;
    QTest::newRow("company is gone") << QByteArray("[User]\nUser=AB\nObject=8\nCompany=9\n") << QStringList{"", "", ""} << one;
    QTest::newRow("object and user are gone") << QByteArray("[User]\nUser=X\nObject=9\nCompany=1\n") << QStringList{"1", "", ""} << all;
    QTest::newRow("nothing") << QByteArray() << QStringList{"", "", ""} << one;
  }
  void lastChoiceIsSelected()
  {
    QFETCH(QByteArray, file);
    QFETCH(QStringList, selected);
    QFETCH(QStringList, calls);
    ScratchDocuments documents;
    QDir().mkpath(documents.path(QStringLiteral("Kalvor")));
    documents.write(QStringLiteral("Kalvor/client.ini"), file);
    KalvorClientINIFileName = QStringLiteral("client.ini");
    ListServer server;
    LoginLists lists(server);
    lists.LoadCombosFromIni();
    QCOMPARE(QStringList({lists.companies.selectedId(), lists.objects.selectedId(), lists.users.selectedId()}), selected);
    QCOMPARE(lists.companies.items().size(), 2);
    QCOMPARE(lists.companies.items()[1].text, QStringLiteral("Пета"));
    QCOMPARE(server.log, calls);
  }

  void companyBringsItsObjects()
  {
    ListServer server;
    LoginLists lists(server);
    lists.companies.fill(rowsOf({{QStringLiteral("5"), QStringLiteral("Пета")}}));
    lists.users.fill(rowsOf({{QStringLiteral("X")}}));
    lists.companies.select(0);
    lists.companyChanged();
    QCOMPARE(server.sentOnce(QStringLiteral("GetBGroupsList")), (VariantArray{QStringLiteral("5"), Variant()}));
    QCOMPARE(lists.objects.items().size(), 2);
    QVERIFY(lists.users.items().isEmpty());
    lists.objects.select(1);
    lists.objectChanged();
    QCOMPARE(server.sentOnce(QStringLiteral("GetUsersList")), (VariantArray{QStringLiteral("8"), QStringLiteral("5"), Variant()}));
    QCOMPARE(lists.users.items()[0].text, QStringLiteral("AB"));
    QCOMPARE(lists.users.items()[0].store.Id, QStringLiteral("AB"));
  }

  void refusedListsStay()
  {
    ListServer server;
    LoginLists lists(server);
    lists.objects.fill(rowsOf({{QStringLiteral("7"), QStringLiteral("Склад")}}));
    lists.users.fill(rowsOf({{QStringLiteral("X")}}));
    server.answer(QStringLiteral("GetBGroupsList"), -1);
    server.answer(QStringLiteral("GetUsersList"), -1);
    lists.companyChanged();
    lists.objectChanged();
    QCOMPARE(lists.objects.items().size(), 1);
    QCOMPARE(lists.users.items().size(), 1);
  }
};

namespace {
const RegisterTest<LoginListsTest> registered;
}
#include "login_lists_test.moc"
