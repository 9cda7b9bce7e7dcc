// The lists of the log-in dialog.
#include <QDir>

#include "scratch_documents.h"
#include "scripted_session.h"
#include "session/login_lists.h"
#include "several_tests.h"

using namespace Qt::StringLiterals;
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
    answer(u"GetCompaniesList"_s, 0, {{0, rowsOf({{u"1"_s, u"Първа"_s}, {u"5"_s, u"Пета"_s}})}});
    answer(u"GetBGroupsList"_s, 0, {{1, rowsOf({{u"7"_s, u"Склад"_s}, {u"8"_s, u"Магазин"_s}})}});
    answer(u"GetUsersList"_s, 0, {{2, rowsOf({{u"AB"_s}, {u"SUPERVSR"_s}})}});
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
    QTest::newRow("three lines") << QByteArray("[User]\nUser=AB\nObject=8\nCompany=5\n") << QStringList{"5", "8", "AB"}
                                 << all;
    QTest::newRow("by position") << QByteArray("[User]\na=AB\nb=8\nc=5\nd=x\n") << QStringList{"5", "8", "AB"} << all;
    QTest::newRow("two lines") << QByteArray("[User]\nUser=AB\nCompany=5\n") << QStringList{"", "", ""} << one;
    QTest::newRow("company is gone") << QByteArray("[User]\nUser=AB\nObject=8\nCompany=9\n") << QStringList{"", "", ""}
                                     << one;
    QTest::newRow("object and user are gone")
        << QByteArray("[User]\nUser=X\nObject=9\nCompany=1\n") << QStringList{"1", "", ""} << all;
    QTest::newRow("nothing") << QByteArray() << QStringList{"", "", ""} << one;
  }
  void lastChoiceIsSelected()
  {
    QFETCH(QByteArray, file);
    QFETCH(QStringList, selected);
    QFETCH(QStringList, calls);
    ScratchDocuments documents;
    QDir().mkpath(documents.path(u"Kalvor"_s));
    documents.write(u"Kalvor/client.ini"_s, file);
    KalvorClientINIFileName = u"client.ini"_s;
    ListServer server;
    LoginLists lists(server);
    lists.LoadCombosFromIni();
    QCOMPARE(QStringList({lists.companies.selectedId(), lists.objects.selectedId(), lists.users.selectedId()}),
             selected);
    QCOMPARE(lists.companies.items().size(), 2);
    QCOMPARE(lists.companies.items()[1].text, u"Пета"_s);
    QCOMPARE(server.log, calls);
  }

  void companyBringsItsObjects()
  {
    ListServer server;
    LoginLists lists(server);
    lists.companies.fill(rowsOf({{u"5"_s, u"Пета"_s}}));
    lists.users.fill(rowsOf({{u"X"_s}}));
    lists.companies.select(0);
    lists.companyChanged();
    QCOMPARE(server.sentOnce(u"GetBGroupsList"_s), (VariantArray{u"5"_s, Variant()}));
    QCOMPARE(lists.objects.items().size(), 2);
    QVERIFY(lists.users.items().isEmpty());
    lists.objects.select(1);
    lists.objectChanged();
    QCOMPARE(server.sentOnce(u"GetUsersList"_s), (VariantArray{u"8"_s, u"5"_s, Variant()}));
    QCOMPARE(lists.users.items()[0].text, u"AB"_s);
    QCOMPARE(lists.users.items()[0].store.Id, u"AB"_s);
  }

  void refusedListsStay()
  {
    ListServer server;
    LoginLists lists(server);
    lists.objects.fill(rowsOf({{u"7"_s, u"Склад"_s}}));
    lists.users.fill(rowsOf({{u"X"_s}}));
    server.answer(u"GetBGroupsList"_s, -1);
    server.answer(u"GetUsersList"_s, -1);
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
