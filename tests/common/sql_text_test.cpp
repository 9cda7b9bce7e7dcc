#include <QRegularExpression>

#include "common/sql_text.h"
#include "common/table_order.h"
#include "data/data_error.h"
#include "scripted_ports.h"
#include "several_tests.h"

using namespace kalvor;

class SqlTextTest : public QObject {
  Q_OBJECT
 private slots:
  void tableNames_data()
  {
    QTest::addColumn<QString>("statement");
    QTest::addColumn<QString>("table");
    QTest::newRow("select") << " select * from Items where Id = 1" << "ITEMS";
    QTest::newRow("delete") << "Delete from Items where 1=1" << "ITEMS";
    QTest::newRow("insert") << "insert into Items (Id) values (1)" << "ITEMS";
    QTest::newRow("update") << "update Items set X = 1" << "ITEMS";
    QTest::newRow("name ends the statement") << "select * from Items" << "";
    QTest::newRow("two blanks") << "update  Items set X = 1" << "";
    QTest::newRow("no table") << "select 1" << "";
    QTest::newRow("other") << "exec dbo.usp_x 1" << "";
    QTest::newRow("cyrillic") << "select * from Стоки s" << "СТОКИ";
  }
  void tableNames()
  {
    QFETCH(QString, statement);
    QTEST(GetTableNameFromSQL(statement), "table");
  }

  void parametersIntoText_data()
  {
    QTest::addColumn<VariantArray>("parameters");
    QTest::addColumn<QString>("text");
    QTest::newRow("null and quote") << VariantArray{Variant(), "O'Brien"} << "a = NULL and b = 'O''Brien'\r\n";
    QTest::newRow("dates") << VariantArray{QDateTime(QDate(2024, 3, 5), QTime(14, 30)), QDate(2024, 1, 2)}
                           << "a = '20240305' and b = '20240102'\r\n";
    QTest::newRow("number and empty") << VariantArray{1.5, ""} << "a = '1.5' and b = ''\r\n";
    QTest::newRow("too few") << VariantArray{7} << "a = '7' and b = ?\r\n";
    QTest::newRow("nul") << VariantArray{QString(QChar(u'\0')), "?"} << "a = '\\0' and b = '?'\r\n";
  }
  void parametersIntoText()
  {
    QFETCH(VariantArray, parameters);
    QTEST(parseSQLtoText({"a = ? and b = ?"}, &parameters), "text");
  }

  void textWithoutParameters()
  {
    QCOMPARE(parseSQLtoText({"a = ?", QString("b") + QChar(u'\0')}, nullptr), QString("a = ?\r\nb\\0\r\n"));
  }

  void statementLog()
  {
    const VariantArray parameters{5};
    const QStringList lines =
        PrepareSQLQueryToLog({"update Items set X = ?"}, &parameters, {"A=1", "B=x'y"}, "S_Log");
    QCOMPARE(lines.size(), 4);
    QCOMPARE(lines.at(0), QString("INSERT INTO S_Log(ID, SQLSTRING , A, B, TableName) values ("));
    QVERIFY(QRegularExpression("^'[0-9A-F]{32}', $").match(lines.at(1)).hasMatch());
    QCOMPARE(lines.at(2), QString("'update Items set X = ''5''\r\n'"));
    QCOMPARE(lines.at(3), QString(", '1', 'x''y', 'ITEMS')"));
    QCOMPARE(PrepareSQLQueryToLog({"exec x"}, nullptr, {}, "L").at(0), QString("INSERT INTO L(ID, SQLSTRING ) values ("));
  }

  void literals_data()
  {
    QTest::addColumn<Variant>("value");
    QTest::addColumn<bool>("upper");
    QTest::addColumn<QString>("literal");
    const QDate day(2024, 3, 5);
    QTest::newRow("time") << Variant(QTime(9, 5)) << false << "'30.12.1899 09:05:00'";
    QTest::newRow("time on day zero") << Variant(QDateTime(QDate(1899, 12, 30), QTime(9, 5))) << false
                                      << "'30.12.1899 09:05:00'";
    QTest::newRow("date") << Variant(day) << false << "'05.03.24 00:00:00'";
    QTest::newRow("date-time") << Variant(QDateTime(day, QTime(14, 30, 1))) << false << "'05.03.24 14:30:01'";
    QTest::newRow("null") << Variant() << false << "''";
    QTest::newRow("integer") << Variant(-7) << false << "-7";
    QTest::newRow("float") << Variant(1.5) << false << "1.5";
    QTest::newRow("text") << Variant("O'Brien") << false << "'O''Brien'";
    QTest::newRow("upper") << Variant("abc") << true << "'ABC'";
    QTest::newRow("quoted already") << Variant("'abc'") << true << "'abc'";
    QTest::newRow("NULL") << Variant(" Null ") << true << " Null ";
    QTest::newRow("boolean") << Variant(true) << false << "";
    QTest::newRow("array") << Variant(VariantArray{1}) << false << "";
  }
  void literals()
  {
    QFETCH(Variant, value);
    QFETCH(bool, upper);
    QTEST(GetVariantAsString(value, upper), "literal");
  }

  void itemsOfAText()
  {
    QCOMPARE(GetItemsFromString("  ", ","), QStringList());
    QCOMPARE(GetItemsFromString("a, b,,c,", ","), (QStringList{"a", " b", "", "c", ""}));
    QCOMPARE(ChangeSeparator("a;;b", ";", "; "), QString("a; ; b"));
    QCOMPARE(ChangeSeparator("ab", "", "x"), QString("ab"));
  }

  void connectionTexts_data()
  {
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("after");
    QTest::newRow("remove") << "timeout" << "" << "A=1;Timeout=30;B=2" << "A=1;B=2";
    QTest::newRow("remove the only one") << "A" << "" << "A=1" << "";
    QTest::newRow("change") << "B" << "x=y" << "A=1;B=2;" << "A=1;B=x=y";
    QTest::newRow("add") << "C" << "3" << "A=1" << "A=1;C=3";
    QTest::newRow("remove a missing one") << "C" << "" << "A=1;B=2" << "A=1;B=2";
  }
  void connectionTexts()
  {
    QFETCH(QString, key);
    QFETCH(QString, value);
    QFETCH(QString, before);
    SetValueToConString(key, value, before);
    QTEST(before, "after");
    QCOMPARE(GetValueFromConnectionString(before, key.toUpper()), value);
  }

  void mergedParameters()
  {
    const ParameterArray base{{"A", 1}, {"B", 2}};
    const ParameterArray extra{{"b", 3}, {"C", 4}};
    QCOMPARE(GetAllParams(base, extra), (ParameterArray{{"A", 1}, {"b", 3}, {"C", 4}}));
    QCOMPARE(GetAllParams(base, {}), base);
    QCOMPARE(GetAllParams({}, extra), extra);
    QVERIFY(GetAllParams({}, {}).isEmpty());
  }

  void identifiersDiffer()
  {
    QVERIFY(QRegularExpression("^[0-9A-F]{12}4[0-9A-F]{3}[89AB][0-9A-F]{15}$").match(CreateUniqueID()).hasMatch());
    QVERIFY(CreateUniqueID() != CreateUniqueID());
  }

  void tablesInOrder_data()
  {
    QTest::addColumn<QStringList>("tables");
    QTest::addColumn<QString>("order");  // "!" = cannot be ordered
    QTest::newRow("references") << QStringList{"Line:Doc;Item", "Doc:Client", "Client:", "Item:"}
                                << "Client,Item,Doc,Line";
    QTest::newRow("itself") << QStringList{"Tree:Tree", "A:"} << "Tree,A";
    QTest::newRow("itself and another") << QStringList{"A:", "Tree:Tree;A"} << "A,Tree";
    QTest::newRow("circle") << QStringList{"A:B", "B:A", "C:"} << "!A, B";
    QTest::newRow("no tables") << QStringList() << "";
  }
  void tablesInOrder()
  {
    QFETCH(QStringList, tables);
    QFETCH(QString, order);
    testing::ScriptedPrompt prompt;
    const auto catalogue = [&](const QString& statement, const QString& column) -> QStringList {
      if (column == "name") {
        QStringList names;
        for (const QString& table : tables)
          names.append(table.section(':', 0, 0));
        return statement == "Select name from sysobjects where  Type = 'u'" ? names : QStringList();
      }
      for (const QString& table : tables)
        if (statement == "select PK_Table from S_ReferenceTable where FK_Table = '" + table.section(':', 0, 0) + "'")
          return table.section(':', 1).split(';', Qt::SkipEmptyParts);
      return {"wrong statement"};
    };
    QStringList result{"before"};
    try {
      OrderUserTables(catalogue, result, true);
      QCOMPARE(result.join(','), order);
    } catch (const DataError& error) {
      QVERIFY2(order.startsWith('!') && error.message().endsWith(": " + order.mid(1)), qPrintable(error.message()));
      QVERIFY(result.isEmpty());
    }
    QCOMPARE(prompt.waiting, 0);
  }

  void catalogueStatementOfTheDatabase()
  {
    QString asked;
    const auto catalogue = [&](const QString& statement, const QString&) {
      asked = statement;
      return QStringList{"A", "B"};
    };
    QCOMPARE(GetDependenceTableList(catalogue, "O'x", false), QString("A;B"));
    QCOMPARE(asked, QString("SELECT DISTINCT  sor.name Pk_table, sof.name FK_table FROM sysforeignkeys sysfrk INNER "
                            "JOIN sysobjects soc ON soc.id = sysfrk.constid INNER JOIN sysobjects sof ON sof.id = "
                            "sysfrk.fkeyid  INNER JOIN sysobjects sor ON sor.id = sysfrk.rkeyid  where sof.name = "
                            "'O''x'"));
  }
};

static const testing::RegisterTest<SqlTextTest> registerSqlTextTest;
#include "sql_text_test.moc"
