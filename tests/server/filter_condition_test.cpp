// Filters as conditions: every operator, every type, brackets, and texts that must not get through.
#include "several_tests.h"
#include "rpc/rpc_error.h"
#include "server/queries/filter_condition.h"
#include "server/queries/order_terms.h"
#include "server/rights/stored_filter.h"
#include "server/test_company.h"

using namespace kalvor;
using namespace kalvor::server;

namespace {

class FewFields : public FieldResolver {
 public:
  std::optional<ResolvedField> resolve(const QString& name) const override
  {
    static const QHash<QString, DataType> fields{
        {QStringLiteral("name"), DataType::WideString}, {QStringLiteral("code"), DataType::LargeInt},
        {QStringLiteral("amount"), DataType::Float},    {QStringLiteral("day"), DataType::Date},
        {QStringLiteral("at"), DataType::DateTime},     {QStringLiteral("yes"), DataType::Boolean}};
    const auto found = fields.constFind(name.toLower());
    return found == fields.constEnd() ? std::nullopt
                                      : std::optional(ResolvedField{{name.left(1).toUpper(), {}}, *found, 0, name});
  }
};

QString boundTexts(const VariantArray& values)
{
  QStringList texts;
  for (const Variant& value : values)
    texts << variantText(value);
  return texts.join(u'|');
}

using Rows = QList<QStringList>;

FilterArray filterOf(const Rows& rows)
{
  FilterArray filter;
  for (const QStringList& row : rows)
    filter.append({row.value(0), row.value(1), row.value(2), row.value(3), row.value(4)});
  return filter;
}

}  // namespace

class FilterConditionTest : public QObject {
  Q_OBJECT

 private slots:
  void renders_data()
  {
    QTest::addColumn<Rows>("rows");
    QTest::addColumn<QString>("sql");
    QTest::addColumn<QString>("values");
    const auto row = [](const char* name, const Rows& rows, const char* sql, const char* values) {
      QTest::newRow(name) << rows << QString::fromUtf8(sql) << QString::fromUtf8(values);
    };
    row("none", {}, "", "");
    row("text", {{"Name", "=", "Ян", ""}}, "(N = ?)", "Ян");
    row("quotes around", {{"Name", "=", "'O''Х'", ""}}, "(N = ?)", "O'Х");
    row("one quote stays", {{"Name", "=", "O'Х", ""}}, "(N = ?)", "O'Х");
    row("no row", {{"1", "=", "2", ""}}, "(1 = 0)", "");
    row("every row", {{"1", "=", "1", ""}}, "(1 = 1)", "");
    row("whole number", {{"Code", ">=", " 10 ", ""}}, "(C >= ?)", "10");
    row("amount", {{"Amount", "<", "1.5", "AND"}, {"Amount", "<>", "-2", ""}}, "(A < ?) AND (A <> ?)", "1.5|-2");
    row("flag", {{"Yes", "=", "-1", ""}}, "(Y = ?)", "1");
    row("day", {{"Day", "=", "20240229", ""}}, "(D = ?)", "20240229");
    row("short year", {{"Day", "<=", "240115", ""}}, "(D <= ?)", "20240115");
    row("moment of a day", {{"At", ">", "20240115 10:11:12", ""}}, "(A > ?)", "20240115 10:11:12");
    row("whole day", {{"At", "=", "20240115", ""}}, "((A >= ?) AND (A < ?))", "20240115 00:00:00|20240116 00:00:00");
    row("to the end of a day", {{"At", "<=", "20240115", ""}}, "(A < ?)", "20240116 00:00:00");
    row("empty or null", {{"Name", "=", "", "OR", "("}, {"Name", "is", "null", "", ")"}}, "((N = ?) OR (N IS NULL))", "");
    row("empty number", {{"Code", "=", "", "OR", "("}, {"Code", "is", "null", "", ")"}}, "((1 = 0) OR (C IS NULL))", "");
    row("not empty number", {{"Code", "<>", "", "AND", "("}, {"Code", "is not ", "null", "", ")"}},
        "((C IS NOT NULL) AND (C IS NOT NULL))", "");
    row("IS", {{"Name", "IS", "NULL", ""}}, "(N IS NULL)", "");
    row("text without a pattern", {{"Name", "LIKE", "аб_", ""}}, "(N LIKE ? ESCAPE '!')", "%аб!_%");
    row("no text in a pattern", {{"Name", "LIKE", "", ""}}, "(N LIKE ? ESCAPE '!')", "%");
    row("pattern", {{"Name", "LIKE", "%аб", ""}}, "(N LIKE ? ESCAPE '!')", "%аб");
    row("pattern with a beginning", {{"Name", "LIKE", "аб%", ""}}, "((N >= ?) AND (N < ?) AND (N LIKE ? ESCAPE '!'))", "аб|ав|аб%");
    row("star in a pattern", {{"Name", "like", "%а*", "OR"}}, "(N LIKE ? ESCAPE '!')", "%а%");
    row("no other wildcards", {{"Name", "LIKE", "%а_!", ""}}, "(N LIKE ? ESCAPE '!')", "%а!_!!");
    row("pattern of a number", {{"Code", "LIKE", "5%", ""}}, "(CAST(C AS TEXT) LIKE ? ESCAPE '!')", "5%");
    row("in", {{"Name", "IN", "('a','б''в')", ""}}, "(N IN (?, ?))", "a|б'в");
    row("in without its bracket", {{"Name", "IN ", "('a','b'", ")"}}, "(N IN (?, ?))", "a|b");
    row("in, then a further row", {{"Code", "IN ", "(1,2", ")"}, {"Name", "=", "x", ""}}, "(C IN (?, ?)) AND (N = ?)", "1|2|x");
    row("in with null", {{"Name", "IN", "('a',null)", ""}}, "(N IN (?))", "a");
    row("in nothing", {{"Name", "IN", "()", ""}}, "(1 = 0)", "");
    row("empty conjunction", {{"Name", "=", "a", ""}, {"Code", "=", "1", ""}}, "(N = ?) AND (C = ?)", "a|1");
    row("blank before AND", {{"Name", "=", "a", " AND"}, {"Code", "=", "1", ""}}, "(N = ?) AND (C = ?)", "a|1");
    row("brackets", {{"Name", "=", "a", "AND"}, {"Code", "=", "1", "OR", "(("}, {"Code", "=", "2", "", "))"}},
        "(N = ?) AND (((C = ?) OR (C = ?)))", "a|1|2");
    row("both brackets", {{"Name", "=", "a", "", "()"}}, "((N = ?))", "a");
    row("statement as a value", {{"Name", "=", "x' OR 1=1 --", ""}}, "(N = ?)", "x' OR 1=1 --");
    row("unknown macro is a value", {{"Name", "=", "<#Field(X)#>", ""}}, "(N = ?)", "<#Field(X)#>");
  }
  void renders()
  {
    QFETCH(Rows, rows);
    QFETCH(QString, sql);
    QFETCH(QString, values);
    const Fragment condition = filterCondition(filterOf(rows), FewFields());
    QCOMPARE(condition.sql, sql);
    QCOMPARE(boundTexts(condition.values), values);
  }

  void comparesWithNothing()
  {
    QCOMPARE(filterCondition({{QStringLiteral("Name"), QStringLiteral("="), Variant(), {}, {}}}, FewFields()).sql, QStringLiteral("(1 = 0)"));
    const Fragment typed = filterCondition({{QStringLiteral("Day"), QStringLiteral("="), QDate(2024, 1, 2), {}, {}}}, FewFields());
    QCOMPARE(typed.values.value(0).toDate(), QDate(2024, 1, 2));
  }

  void refuses_data()
  {
    QTest::addColumn<Rows>("rows");
    const auto row = [](const char* name, const Rows& rows) { QTest::newRow(name) << rows; };
    row("unknown field", {{"Secret", "=", "1", ""}});
    row("field with a statement", {{"Name = '' OR 1", "=", "1", ""}});
    row("field with a comment", {{"Name--", "=", "1", ""}});
    row("field with a quote", {{"Name\"", "=", "1", ""}});
    row("empty field", {{"", "=", "1", ""}});
    row("number compared with a text", {{"1", "=", "(SELECT 1)", ""}});
    row("number with another operator", {{"1", "LIKE", "1", ""}});
    row("unknown operator", {{"Name", "REGEXP", "1", ""}});
    row("operator with a statement", {{"Name", "= '' OR 1 =", "1", ""}});
    row("two operators", {{"Name", "=;", "1", ""}});
    row("is with a value", {{"Name", "is", "0", ""}});
    row("text for a number", {{"Code", "=", "1 OR 1", ""}});
    row("fraction for a number", {{"Code", "=", "1.5", ""}});
    row("comma for an amount", {{"Amount", "=", "1,5", ""}});
    row("no amount", {{"Amount", "=", "nan", ""}});
    row("no date", {{"Day", "=", "20230229", ""}});
    row("a pattern of amounts", {{"Amount", "LIKE", "1%", ""}});
    row("list with an open quote", {{"Name", "IN", "('a", ""}});
    row("list with something behind", {{"Name", "IN", "('a') OR (1=1", ""}});
    row("list of the wrong type", {{"Code", "IN", "('a')", ""}});
    row("conjunction with a statement", {{"Name", "=", "a", "OR 1=1 OR"}, {"Name", "=", "b", ""}});
    row("brackets with a statement", {{"Name", "=", "a", "", "(SELECT"}});
    row("open bracket", {{"Name", "=", "a", "", "("}});
    row("closed before opened", {{"Name", "=", "a", "AND", ")"}, {"Name", "=", "a", "", "("}});
    row("too many rows", Rows(501, {"Name", "=", "a", "OR"}));
  }
  void refuses()
  {
    QFETCH(Rows, rows);
    QString text;
    QCOMPARE(testing::errorCode([&] { filterCondition(filterOf(rows), FewFields()); }, &text), int(RpcError::Refused));
    QVERIFY(!text.isEmpty());
  }

  void orders_data()
  {
    QTest::addColumn<QString>("order");
    QTest::addColumn<QString>("terms");
    QTest::newRow("none") << "" << "";
    QTest::newRow("directions") << "Name DESC, Code asc,Day" << "N- C D";
    QTest::newRow("twice") << "Name,Name DESC" << "N";
    QTest::newRow("stray blanks") << " Name  DESC , " << "N-";
    QTest::newRow("statement") << "Name; DROP TABLE X" << "refused";
    QTest::newRow("expression") << "LENGTH(Name)" << "refused";
    QTest::newRow("position") << "1" << "refused";
    QTest::newRow("direction alone") << "DESC" << "refused";
  }
  void orders()
  {
    QFETCH(QString, order);
    QStringList terms;
    const int code = testing::errorCode([&] {
      for (const OrderTerm& term : orderTerms(order, FewFields()))
        terms << term.expression.sql + QLatin1String(term.descending ? "-" : "");
    });
    QTEST(code == RpcError::Refused ? QStringLiteral("refused") : terms.join(u' '), "terms");
  }

  void readsStoredFilters_data()
  {
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("rows");
    QTest::newRow("one row") << "Name,=,x," << "Name = x ";
    QTest::newRow("two rows") << "Name,LIKE,ab%,&Code,=,5," << "Name LIKE ab% AND; Code = 5 ";
    QTest::newRow("or") << "Code,=,1,|Code,=,3," << "Code = 1 OR; Code = 3 ";
    QTest::newRow("company") << "Comp_Id,=,<#Param(company_id)#>," << "Comp_Id = 5 ";
    QTest::newRow("group and user") << "A,=,<#Param(BUSINESSGROUP_ID)#>,&B,=,<#Param(USER_ID)#>," << "A = 7 AND; B = AB ";
    QTest::newRow("days ago") << "D,>=,<#Param(-7d)#>,&E,<,<#Param(CURRENT_DATE)#>," << "D >= 20240301 AND; E < 20240308 ";
    QTest::newRow("month in cyrillic") << "D,=,<#Param(+1м)#>," << "D = 20240408 ";
    QTest::newRow("unknown name") << "D,=,<#Param(NOTHING)#>," << "D =  ";
    QTest::newRow("too short") << "Name,=" << "";
    QTest::newRow("nothing") << "" << "";
  }
  void readsStoredFilters()
  {
    QFETCH(QString, text);
    Session session;
    session.userId = QStringLiteral("AB");
    session.companyId = QStringLiteral("5");
    session.groupId = QStringLiteral("7");
    QStringList rows;
    for (const FilterRow& row : storedFilter(text, session, QDate(2024, 3, 8)))
      rows << QStringLiteral("%1 %2 %3 %4").arg(row.field, row.op, row.value.toString(), row.conjunction);
    QTEST(rows.join(QStringLiteral("; ")), "rows");
  }
};

static const testing::RegisterTest<FilterConditionTest> registered;
#include "filter_condition_test.moc"
