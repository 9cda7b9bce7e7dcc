// Packets that go on by key: ties, nulls, both directions, and what rights and company leave of the rows.
#include "several_tests.h"
#include "server/test_company.h"

using namespace kalvor;
using namespace kalvor::testing;

class PacketsTest : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase()
  {
    // Ties and nulls in every order column, and rows of another company between them.
    const QList<Variant> days{Variant(), QDate(2024, 1, 1), QDate(2024, 1, 2), Variant(), QDate(2024, 1, 1)};
    const QList<Variant> names{QStringLiteral("в"), QStringLiteral("А"), QStringLiteral("а"), QStringLiteral("Б")};
    const QList<Variant> amounts{0.1, Variant(), -3.25, 0.1, 7.0, 0.1};
    for (int i = 0; i < 97; ++i) {
      company_.writer().execute(
          QStringLiteral("INSERT INTO T_Doc (Id, Comp_Id, Name, DocDate, Moment, Amount, Kind, Partner_Id) VALUES (?, ?, ?, ?, ?, ?, ?, ?)"),
          {QStringLiteral("%1").arg(i * 37 % 97, 3, 10, QLatin1Char('0')), i % 11 == 3 ? QStringLiteral("6") : QStringLiteral("5"),
           names[i % names.size()], days[i % days.size()],
           i % 4 ? Variant(QDateTime(QDate(2024, 1, i % 3 + 1), QTime(i % 2, 0))) : Variant(), amounts[i % amounts.size()], i % 2,
           i % 3 ? Variant(i % 2 ? QStringLiteral("P1") : QStringLiteral("P2")) : Variant()});
    }
  }

  void goOnByKey_data()
  {
    QTest::addColumn<QString>("order");
    for (const char* order : {"", "Id DESC", "DocDate", "DocDate DESC", "Name DESC, DocDate", "Amount, Name DESC", "Moment DESC, Amount DESC",
                              "T_Partner_Name, Kind DESC, DocDate DESC", "Twice DESC", "Kind"})
      QTest::newRow(order) << QString::fromLatin1(order);
  }
  void goOnByKey()
  {
    QFETCH(QString, order);
    TestCaller caller(company_, QStringLiteral("AB"));
    const QString provider = caller.request(9000, 0, {}, order);
    const QStringList whole = caller.column(provider, QStringLiteral("Id")).split(u' ');
    QCOMPARE(whole.size(), 97 - 9);
    for (int size : {1, 7, 32, 88, 1000}) {
      QStringList ids;
      DataPacketPtr packet = caller.open(provider, size);
      while (true) {
        QVERIFY(packet->records.rows <= size);
        for (qsizetype row = 0; row < packet->records.rows; ++row)
          ids << packet->records.value(row, 0).toString();
        if (isNull(packet->continuation))
          break;
        QCOMPARE(packet->records.rows, size);
        packet = caller.fetch(provider, packet->continuation, size);
      }
      QCOMPARE(ids, whole);
    }
  }

  // A row that is gone or new between two packets neither repeats nor hides another.
  void survivesChangesBetweenPackets()
  {
    TestCaller caller(company_, QStringLiteral("AB"));
    const QString provider = caller.request(9000, 0, {}, QStringLiteral("Id"));
    const DataPacketPtr first = caller.open(provider, 10);
    const QString last = first->records.value(9, 0).toString();
    company_.writer().execute(QStringLiteral("UPDATE T_Doc SET Kind = 5 WHERE Id = ?"), {last});
    const DataPacketPtr second = caller.fetch(provider, first->continuation, 10);
    QVERIFY(second->records.value(0, 0).toString() > last);
  }

  void refusesForeignContinuation_data()
  {
    QTest::addColumn<Variant>("continuation");
    QTest::newRow("text") << Variant(QStringLiteral("1; DROP TABLE T_Doc"));
    QTest::newRow("too few values") << Variant(VariantArray{Variant(VariantArray()), Variant(VariantArray())});
    QTest::newRow("types out of range") << Variant(VariantArray{Variant(VariantArray{QStringLiteral("1")}), Variant(VariantArray(17, 99))});
  }
  void refusesForeignContinuation()
  {
    QFETCH(Variant, continuation);
    TestCaller caller(company_, QStringLiteral("AB"));
    const QString provider = caller.request(9000);
    QCOMPARE(errorCode([&] { caller.fetch(provider, continuation, 10); }), int(RpcError::Refused));
  }

  void describesFields()
  {
    TestCaller caller(company_, QStringLiteral("AB"));
    const QString provider = caller.request(9000, 0, {{QStringLiteral("1"), QStringLiteral("="), 2, {}, {}}});
    const DataPacketPtr packet = caller.open(provider, 32);
    QCOMPARE(packet->records.rows, 0);
    const auto field = [&](const char* name) { return packet->records.fields[packet->records.indexOf(QString::fromLatin1(name))]; };
    QCOMPARE(field("Name").size, 12);
    QCOMPARE(field("Name").origin, QStringLiteral("T_Doc.Name"));
    QVERIFY(field("Name").updatable);
    QVERIFY(!field("T_Partner_Name").updatable);
    QVERIFY(!field("Twice").updatable);
    QVERIFY(!field("Locked").updatable);
    QCOMPARE(field("Twice").type, DataType::Float);
    QCOMPARE(field("Flag").type, DataType::Boolean);
    QCOMPARE(field("Kind").type, DataType::LargeInt);
  }

  void resolvesNames_data()
  {
    QTest::addColumn<FilterArray>("filter");
    QTest::addColumn<int>("rows");
    const auto row = [](const char* name, const char* field, const char* op, const Variant& value, int rows) {
      QTest::newRow(name) << FilterArray{{QString::fromUtf8(field), QString::fromUtf8(op), value, {}, {}}} << rows;
    };
    row("filter name", "T_Doc.Name", "=", QStringLiteral("б"), 22);
    row("field name in another case", "nAmE", "LIKE", QStringLiteral("б%"), 22);
    row("joined table by its filter name", "T_Partner.Name", "=", QStringLiteral("АЛФА"), 29);
    row("column that is no field", "T_Doc.PrintCount", "=", 1, -1);
    row("base column unqualified", "Partner_Id", "is", QStringLiteral("null"), 30);
    row("base column not selected", "T_Doc.CopiesPrinted", "is", QStringLiteral("null"), 88);
    row("caption", "Вид", "=", 0, 46);
    row("expression", "Twice", "=", 14, 14);
    row("another table's column", "N_Users.PasswordHash", "is not", QStringLiteral("null"), -1);
    row("joined table's column that is no field", "T_Partner.Comp_Id", "=", QStringLiteral("6"), -1);
  }
  void resolvesNames()
  {
    QFETCH(FilterArray, filter);
    QFETCH(int, rows);
    TestCaller caller(company_, QStringLiteral("AB"));
    int found = -1;
    const int code = errorCode([&] { found = int(caller.open(caller.request(9000, 0, filter))->records.rows); });
    QCOMPARE(code, rows < 0 ? int(RpcError::Refused) : 0);
    if (rows >= 0) {
      const QString sql = QStringLiteral("SELECT COUNT(*) FROM T_Doc WHERE Comp_Id = '5'");
      QVERIFY(company_.reader().value(sql).toInt() >= found);
      QCOMPARE(found, rows);
    }
  }

  // A query with groups takes its conditions around it, the company inside.
  void wrapsGroups()
  {
    TestCaller caller(company_, QStringLiteral("AB"));
    const QString all = caller.request(9010);
    QCOMPARE(caller.column(all, QStringLiteral("Kind")), QStringLiteral("0 1 5"));
    const QString one = caller.request(9010, 0, {{QStringLiteral("Kind"), QStringLiteral("="), 1, {}, {}}});
    const Variant expected = company_.reader().value(
        QStringLiteral("SELECT SUM(Amount) AS \"S:AMOUNT\" FROM T_Doc WHERE Comp_Id = '5' AND Kind = 1"));
    QCOMPARE(caller.column(one, QStringLiteral("Total")), variantText(expected));
  }

 private:
  TestCompany company_;
};

static const RegisterTest<PacketsTest> registered;
#include "packets_test.moc"
