// Hostile texts in every place of a call where a text may stand: none becomes a part of a statement, nothing changes but
// what the user may change, and the log says who tried.
#include <QRegularExpression>

#include "hostile_texts.h"
#include "several_tests.h"
#include "server/log.h"
#include "server/store/statement_trace.h"
#include "server/test_company.h"
#include "server/test_database.h"

using namespace kalvor;
using namespace kalvor::testing;

namespace {

constexpr int textsInEachPlace = 500;

FilterArray comparison(const QString& field, const QString& op, const Variant& value, const QString& conjunction = {},
                       const QString& brackets = {})
{
  return {{field, op, value, conjunction, brackets}};
}

void openList(TestCaller& caller, const FilterArray& filter, const QString& order = {}, const Variant& parameters = {})
{
  const QString provider = caller.newProvider();
  VariantArray arguments{9000, 0, provider, filterToVariant(filter), order, parameters, Variant(), 0};
  caller.call("RequestData", arguments);
  caller.open(provider, 3);
}

void value(TestCaller& caller, int mode, const QString& source, const QString& columns, const FilterArray& filter)
{
  VariantArray arguments{mode, source, columns, filterToVariant(filter), Variant(), true};
  caller.call("RequestValue", arguments);
}

struct Place {
  const char* name;
  std::function<void(TestCaller&, const QString&)> put;
};

const QList<Place>& places()
{
  static const QList<Place> all{
      {"field of a list", [](TestCaller& caller, const QString& text) { openList(caller, comparison(text, "=", "1")); }},
      {"field of a table", [](TestCaller& caller, const QString& text) { value(caller, 0, "T_Doc", "Id", comparison(text, "=", "1")); }},
      {"field of a query", [](TestCaller& caller, const QString& text) { value(caller, 90000, {}, "Id", comparison(text, "=", "1")); }},
      {"operator", [](TestCaller& caller, const QString& text) { openList(caller, comparison("T_Doc.Name", text, "1")); }},
      {"conjunction",
       [](TestCaller& caller, const QString& text) {
         openList(caller, comparison("Name", "=", "1", text) + comparison("Name", "=", "2"));
       }},
      {"brackets", [](TestCaller& caller, const QString& text) { openList(caller, comparison("Name", "=", "1", {}, text)); }},
      {"value", [](TestCaller& caller, const QString& text) { openList(caller, comparison("Name", "=", text)); }},
      {"value that is looked for", [](TestCaller& caller, const QString& text) { openList(caller, comparison("Name", "LIKE", text)); }},
      {"list of values", [](TestCaller& caller, const QString& text) { openList(caller, comparison("Name", "IN", text)); }},
      {"value of a number", [](TestCaller& caller, const QString& text) { openList(caller, comparison("Kind", "=", text)); }},
      {"order", [](TestCaller& caller, const QString& text) { openList(caller, {}, text); }},
      {"parameter",
       [](TestCaller& caller, const QString& text) { openList(caller, {}, {}, VariantArray{Variant(VariantArray{text, text})}); }},
      {"table", [](TestCaller& caller, const QString& text) { value(caller, 0, text, "Id", {}); }},
      {"columns of a table", [](TestCaller& caller, const QString& text) { value(caller, 0, "T_Doc", text, {}); }},
      {"columns of a query", [](TestCaller& caller, const QString& text) { value(caller, 90000, {}, text, {}); }},
      {"statement", [](TestCaller& caller, const QString& text) { value(caller, -1, text, {}, {}); }},
      {"number of a query",
       [](TestCaller& caller, const QString& text) {
         VariantArray arguments{text, QString(), QStringLiteral("Id"), Variant(), Variant(), true};
         caller.call("RequestValue", arguments);
       }},
      {"script", [](TestCaller& caller, const QString& text) { caller.call("ExecuteSQLScript", {text}); }},
      {"batch", [](TestCaller& caller, const QString& text) { caller.call("ExecMultySQL", {text}); }},
      {"table of a batch",
       [](TestCaller& caller, const QString& text) { caller.call("ExecMultySQL", {"DELETE FROM " + text + " WHERE Id = 'D9'"}); }},
      {"provider",
       [](TestCaller& caller, const QString& text) {
         VariantArray request{9000, 0, text, Variant(), QString(), Variant(), Variant(), 0};
         QVERIFY(errorCode([&] { caller.call("RequestData", request); }) != 0);
         QVERIFY(errorCode([&] { caller.open(text, 1); }) != 0);
         VariantArray flow{text};
         errorCode([&] { caller.call("DisableFlowFields", flow); });
         caller.call("DeleteDynamicProvider", {text});
       }},
      {"form",
       [](TestCaller& caller, const QString& text) {
         for (const char* operation : {"GetFormsDescription", "GetFieldsDescription"}) {
           caller.call(operation, {text, 0, Variant()});
         }
         VariantArray request{text, 0, QStringLiteral("x"), Variant(), QString(), Variant(), Variant(), 0};
         caller.call("RequestData", request);
       }},
      {"users of settings", [](TestCaller& caller, const QString& text) { caller.call("UpdateUserSettings", {VariantArray{text}, text}); }},
      {"document", [](TestCaller& caller, const QString& text) { caller.call("CheckOutDocument", {text, 9001, Variant()}); }},
      {"changed field",
       [](TestCaller& caller, const QString& text) {
         auto delta = std::make_shared<Delta>();
         FieldDef key, field;
         key.name = QStringLiteral("Id");
         field.name = text;
         key.type = field.type = DataType::WideString;
         field.updatable = true;
         field.origin = text;
         delta->records = RecordSet({key, field});
         delta->records.appendRow({QStringLiteral("D9"), text});
         delta->status.push_back(UpdateStatus::Inserted);
         caller.save({{caller.request(9001), delta}}, VariantArray{Variant(VariantArray{text, text, text, text})});
       }},
      {"lookup of a rate and a price",
       [](TestCaller& caller, const QString& text) {
         caller.call("GetCurrencyRate", {text, Variant(), Variant(), Variant()});
         caller.call("GetSaleLinePrice", {VariantArray{text, text, text, 1, Variant(), 1, text, text, 0, 1, 1}, Variant(), Variant()});
       }},
      {"checked document",
       [](TestCaller& caller, const QString& text) {
         caller.call("CheckSaleContragentParams", {text, 1, 3});
         caller.call("CheckItemUnitCost", {text, 0});
       }},
      {"lists before log-in",
       [](TestCaller& caller, const QString& text) {
         caller.call("GetBGroupsList", {text, Variant()});
         caller.call("GetUsersList", {text, text, Variant()});
         caller.call("ResumeSession", {text});
       }},
      {"log-in",
       [](TestCaller& caller, const QString& text) {
         // Each from an address of its own: after some failures an address has to wait, and is not even looked at.
         static int addresses = 0;
         TestCaller stranger(caller.company);
         stranger.session.peer = QStringLiteral("test %1").arg(++addresses);
         stranger.call("LogIn", {text, text, text, text, QString()});
       }},
  };
  return all;
}

// The place, the last one, whose caller has no user yet.
int loggedOutPlace() { return int(places().size()) - 1; }

// What a hostile text must leave as it was.
QString contentOf(server::Connection& db)
{
  QString text;
  for (const char* table : {"T_Doc", "T_Line", "T_Hidden", "T_Partner", "N_Users", "S_Rights", "S_QueryList", "N_Company"}) {
    const RecordSet rows = db.query(QStringLiteral("SELECT * FROM %1 ORDER BY 1, 2, 3").arg(QLatin1StringView(table)));
    for (qsizetype row = 0; row < rows.rows; ++row) {
      for (int field = 0; field < rows.fields.size(); ++field) {
        text += variantText(rows.value(row, field)) + u'\t';
      }
    }
  }
  return text;
}

}  // namespace

class HostileTextsTest : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase()
  {
    company_ = std::make_unique<TestCompany>();
    company_->addDocument(QStringLiteral("D1"), 1, QStringLiteral("Едно"), 2);
    company_->addDocument(QStringLiteral("D2"), 2, QStringLiteral("Две"), 1);
  }
  void cleanupTestCase()
  {
    server::setStatementTrace({});
    server::setLogSink({});
    company_.reset();
  }

  void neverReachTheDatabase_data()
  {
    QTest::addColumn<int>("place");
    for (int i = 0; i < places().size(); ++i) {
      QTest::newRow(places().at(i).name) << i;
    }
  }
  void neverReachTheDatabase()
  {
    QFETCH(int, place);
    TestCaller caller(*company_, QStringLiteral("AB"));
    HostileTexts texts(quint32(2026 + place));
    const QString before = contentOf(company_->writer());
    QByteArray found;
    int statements = 0;
    server::setStatementTrace([&](const QByteArray& sql) {
      ++statements;
      static const QList<QByteArray> strange{hostileMarker.toLatin1(), ";--", "/*", "pg_sleep", "load_extension", "passwd"};
      const QByteArray lower = sql.toLower();
      for (const QByteArray& word : strange) {
        if (found.isEmpty() && lower.contains(word)) {
          found = sql.left(500);
        }
      }
    });
    QStringList lines;
    server::setLogSink([&](const QString& line) { lines.append(line); });
    int refusals = 0;
    for (int i = 0; i < textsInEachPlace; ++i) {
      const QString text = texts.next();
      QString why;
      const int code = errorCode([&] { places().at(place).put(caller, text); }, &why);
      refusals += code == RpcError::Refused || code == RpcError::Forbidden || code == RpcError::BadArguments;
      QVERIFY2(code != RpcError::Internal, qPrintable(why + text.left(200)));
      QVERIFY2(found.isEmpty(), found.constData());
    }
    server::setStatementTrace({});
    server::setLogSink({});
    QVERIFY(statements >= textsInEachPlace);  // the trace was there: every call reads at least who is calling
    QCOMPARE(contentOf(company_->writer()), before);
    int logged = 0;
    static const QRegularExpression fit(QStringLiteral("^\\d{4}-\\d\\d-\\d\\dT[\\d:.]+ level=\\w+ event=\\w+( \\w+=(\"[^\"]*\"|[^\"\\s=]+))*$"));
    for (const QString& line : std::as_const(lines)) {
      logged += line.contains(QLatin1StringView(place == loggedOutPlace() ? " event=refused user=\"\" " : " event=refused user=AB "));
      QVERIFY2(line.size() < 4500 && fit.match(line).hasMatch(), qPrintable(line));
      QVERIFY2(std::none_of(line.begin(), line.end(), [](QChar c) { return c.category() == QChar::Other_Control; }), qPrintable(line));
    }
    QVERIFY2(logged >= refusals, qPrintable(QStringLiteral("%1 of %2").arg(logged).arg(refusals)));
  }

  // Neither a text's place in the catalogue nor its own quotes matter: what is known works, so the trace sees real calls.
  void plainTextsWork()
  {
    TestCaller caller(*company_, QStringLiteral("AB"));
    openList(caller, comparison("T_Doc.Name", "LIKE", "Е%"), "T_Doc.DocDate DESC");
    value(caller, 0, "T_Doc", "Id, Name", comparison("Kind", "=", 1));
    value(caller, -1, "SELECT Id AS x FROM T_Doc WHERE Name = 'Едно'", {}, {});
  }

  // Well formed, and too much of it for a database to read: refused before it has to.
  void tooMuch_data()
  {
    QTest::addColumn<QString>("statement");
    QTest::addColumn<QString>("columns");
    QTest::addColumn<int>("code");
    const auto brackets = [](int count) {
      return "SELECT Id FROM T_Doc WHERE " + QString(count, u'(') + "Id = 'D1'" + QString(count, u')');
    };
    const auto joined = [](const QString& text, int count) { return QStringList(count, text).join(QStringLiteral(", ")); };
    QTest::newRow("brackets") << brackets(40) << QString() << 0;
    QTest::newRow("too many brackets") << brackets(41) << QString() << int(RpcError::Refused);
    QTest::newRow("a million brackets") << brackets(1'000'000) << QString() << int(RpcError::Refused);
    QTest::newRow("columns") << "SELECT " + joined("Id", 500) + " FROM T_Doc" << QString() << 0;
    QTest::newRow("too many columns") << "SELECT " + joined("Id", 501) + " FROM T_Doc" << QString() << int(RpcError::Refused);
    QTest::newRow("too many columns of a table") << "T_Doc" << joined("Id", 501) << int(RpcError::Refused);
    QTest::newRow("too many columns of a query") << QString() << joined("Id", 501) << int(RpcError::Refused);
    QTest::newRow("too many comparisons")
        << "SELECT Id FROM T_Doc WHERE " + QStringList(501, "Id = 'D1'").join(" OR ") << QString() << int(RpcError::Refused);
    QTest::newRow("too many joins")
        << "SELECT Id FROM T_Doc" + QString(" INNER JOIN T_Line ON Id = Id").repeated(17) << QString() << int(RpcError::Refused);
  }
  void tooMuch()
  {
    QFETCH(QString, statement);
    QFETCH(QString, columns);
    TestCaller caller(*company_, QStringLiteral("AB"));
    const int mode = columns.isEmpty() ? -1 : statement.isEmpty() ? 90000 : 0;
    QTEST(errorCode([&] { value(caller, mode, statement, columns, {}); }), "code");
  }
  void tooManyValues()
  {
    TestCaller caller(*company_, QStringLiteral("AB"));
    const QString list = QStringList(15'000, QStringLiteral("'x'")).join(u',');
    openList(caller, comparison("Name", "IN", list));
    FilterArray rows;
    for (int i = 0; i < 5; ++i) {
      rows += comparison("Name", "IN", list, "OR");
    }
    QCOMPARE(errorCode([&] { openList(caller, rows); }), int(RpcError::Refused));
  }

  void refusalsAreLogged_data()
  {
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QVariantList>("arguments");
    QTest::addColumn<QString>("line");  // from the operation on
    const auto row = [](const char* name, const char* operation, const QVariantList& arguments, const QString& line) {
      QTest::newRow(name) << QString::fromLatin1(operation) << arguments << line;
    };
    const QVariantList none;
    row("statement", "RequestValue", {-1, "SELECT Note FROM T_Hidden WHERE Note = 'тайна' OR Id = 17", "", Variant(), Variant(), true},
        "operation=RequestValue code=13 asked=\"-1; SELECT Note FROM T_Hidden WHERE Note = '?' OR Id = ?; ; \"");
    row("table", "RequestValue", {0, "srv_Session", "Token", Variant(), Variant(), true},
        "operation=RequestValue code=14 asked=\"0; srv_Session; Token; \"");
    row("field", "RequestData",
        {9000, 0, "prv", QVariantList{QVariant(QVariantList{"PasswordHash", "=", "тайна", ""})}, "", Variant(), Variant(), 0},
        "operation=RequestData code=14 asked=\"9000; 0; prv; ; PasswordHash = ?\"");
    row("order", "RequestData", {9000, 0, "prv", none, "PasswordHash DESC", Variant(), Variant(), 0},
        "operation=RequestData code=14 asked=\"9000; 0; prv; PasswordHash DESC; \"");
    row("operator", "RequestData",
        {9000, 0, "prv", QVariantList{QVariant(QVariantList{"Name", "= 1 OR", "тайна", ""})}, "", Variant(), Variant(), 0},
        "operation=RequestData code=14 asked=\"9000; 0; prv; ; Name = ? OR ?\"");
    row("script", "ExecuteSQLScript", {"DROP TABLE T_Doc; SELECT $x$тайна$x$, E'тайна', \"тайна 5\", 12.50\r\nuser=SUPERVSR"},
        "operation=ExecuteSQLScript code=14 asked=\"DROP TABLE T_Doc; SELECT '?', E'?', '?', ?\\r\\nuser=SUPERVSR\"");
    row("second of a batch", "ExecMultySQL", {"UPDATE T_Doc SET Name = 'тайна' WHERE Id = 'D9'; DROP TABLE T_Doc"},
        "operation=ExecMultySQL code=14 asked=\"DROP TABLE T_Doc\"");
    row("password", "ChangePassword", {"CD", "0123456789abcdef0123456789abcdef"}, "operation=ChangePassword code=13 asked=\"\"");
  }
  void refusalsAreLogged()
  {
    QFETCH(QString, operation);
    QFETCH(QVariantList, arguments);
    QFETCH(QString, line);
    TestCaller caller(*company_, QStringLiteral("AB"));
    QStringList lines;
    server::setLogSink([&](const QString& logged) { lines.append(logged); });
    const int code = errorCode([&] { caller.call(operation.toLatin1().constData(), arguments); });
    server::setLogSink({});
    QVERIFY(code != 0);
    QCOMPARE(lines.size(), 1);
    const QString expected = QStringLiteral(" level=warning event=refused user=AB company=5 peer=test ") + line;
    QVERIFY2(lines.first().contains(expected), qPrintable(lines.first()));
    QVERIFY2(!lines.first().contains(QStringLiteral("тайна")) && !lines.first().contains(QStringLiteral("12.5")) &&
                 !lines.first().contains(QStringLiteral("0123456789")), qPrintable(lines.first()));
  }

  // A user code of the log-in window is logged too: what it holds is one value of one line.
  void linesAreNotForged()
  {
    TestCaller stranger(*company_);
    stranger.session.peer = QStringLiteral("elsewhere");
    QStringList lines;
    server::setLogSink([&](const QString& logged) { lines.append(logged); });
    const QString forged = QStringLiteral("AB\n2026-01-01T00:00:00.000 level=info event=log_in user=SUPERVSR result=0\r\u2028\u0085\x1b[2J\u202E\\n\"=");
    stranger.call("LogIn", {forged, QStringLiteral("x"), QString(), QStringLiteral("5"), QString()});
    server::setLogSink({});
    QCOMPARE(lines.size(), 1);
    const QString user = QStringLiteral("user=\"AB\\n2026-01-01T00:00:00.000 level=info event=log_in user=SUPERVSR result=0"
                                        "\\r\\u2028\\x85\\x1b[2J\\u202e\\\\n'=\" company=5");
    QVERIFY2(lines.first().contains(user), qPrintable(lines.first()));
  }

 private:
  std::unique_ptr<TestCompany> company_;
};

static RegisterTest<HostileTextsTest> hostileTextsTest;

#include "hostile_texts_test.moc"
