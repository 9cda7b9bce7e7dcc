// Batches of statements: all of one or nothing, within the rights of who sends it, and nothing but what forms could do.
#include "several_tests.h"
#include "server/test_company.h"

using namespace kalvor;
using namespace kalvor::testing;

class StatementBatchTest : public QObject {
  Q_OBJECT

 private slots:
  void init()
  {
    for (const char* table : {"T_Line", "T_Doc"})
      company_.writer().execute(QStringLiteral("DELETE FROM ") + QLatin1StringView(table));
    company_.addDocument(QStringLiteral("D1"), 1, QStringLiteral("Едно"), 2);
    company_.addDocument(QStringLiteral("D2"), 2, QStringLiteral("Две"), 1);
    company_.writer().execute(QStringLiteral("INSERT INTO T_Doc (Id, Comp_Id, Name, Kind) VALUES ('X1', '6', 'Чужд', 1)"));
  }

  void outcome_data()
  {
    QTest::addColumn<QString>("user");
    QTest::addColumn<QString>("batch");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("after");  // what changed of the rows; "" = nothing
    const auto row = [](const char* name, const char* user, const char* batch, int code, const char* after = "") {
      QTest::newRow(name) << QString::fromUtf8(user) << QString::fromUtf8(batch) << code << QString::fromUtf8(after);
    };
    row("nothing", "AB", " ;; ", 0);
    row("several kinds", "AB",
        "UPDATE T_Doc SET Name = 'Нов', Amount = -12.5 WHERE Id = 'D1';\r\n"
        "insert into dbo.T_Doc (Id, Comp_Id, Name, Kind, DocDate, C_User_Id) values ('D3', '5', N'О''Нийл; --', 1, '20240131', 'ZZ')\n"
        "INSERT INTO T_Line (Id, Master_Id, Text) VALUES ('D3-1', 'D3', NULL), ('D3-2', 'D3', 'б');"
        "DELETE FROM T_Line WHERE T_Line.Master_Id = 'D1' AND (Quantity > 1 OR Text = 'x');",
        0, "D1 Нов -12.5 AB|-D1-2 ред|D3 О'Нийл; --  AB|D3-1 |D3-2 б");
    row("a later one sees the earlier", "AB", "UPDATE T_Doc SET Kind = 9 WHERE Id = 'D2'; UPDATE T_Doc SET Name = 'x' WHERE Kind = 9", 0,
        "D2 x 1.5 AB");
    row("a deleted document's lines", "AB", "DELETE FROM T_Doc WHERE Id = 'D1'", 0, "-D1 Едно 1.5 NN|-D1-1 ред|-D1-2 ред");
    row("nothing found", "AB", "UPDATE T_Doc SET Name = 'x' WHERE Id = 'нищо'", 0);

    const char* const good = "UPDATE T_Doc SET Name = 'x' WHERE Id = 'D1'; ";
    const auto second = [&](const char* name, const char* bad, int code) {
      QTest::newRow(name) << QStringLiteral("AB") << QString::fromUtf8(good) + QString::fromUtf8(bad) + u';' + QString::fromUtf8(good)
                          << code << QString();
    };
    second("unknown column", "UPDATE T_Doc SET Nome = 'y'", RpcError::Refused);
    second("unknown column in the condition", "UPDATE T_Doc SET Name = 'y' WHERE Nome = 1", RpcError::Refused);
    second("column twice", "UPDATE T_Doc SET Name = 'y', name = 'z'", RpcError::Refused);
    second("no number", "UPDATE T_Doc SET Amount = 'много'", RpcError::Invalid);
    second("no date", "UPDATE T_Doc SET DocDate = '20240230'", RpcError::Invalid);
    second("too long", "UPDATE T_Doc SET Name = '1234567890123'", RpcError::Invalid);
    second("required", "UPDATE T_Doc SET Name = NULL", RpcError::Invalid);
    second("key is there", "INSERT INTO T_Doc (Id, Name, Kind) VALUES ('D2', 'y', 1)", RpcError::Invalid);
    second("no such master", "INSERT INTO T_Line (Id, Master_Id) VALUES ('L', 'D9')", RpcError::Invalid);
    second("values and columns differ", "INSERT INTO T_Doc (Id, Name) VALUES ('D9')", RpcError::Refused);
    second("other company's row in the list", "INSERT INTO T_Doc (Id, Comp_Id, Name, Kind) VALUES ('D9', '6', 'y', 1)", RpcError::Forbidden);
    second("key changes", "UPDATE T_Doc SET Id = 'D9'", RpcError::Refused);
    second("column of the server", "UPDATE T_Doc SET C_User_Id = 'ZZ'", RpcError::Refused);
    second("company changes", "UPDATE T_Doc SET Comp_Id = '6'", RpcError::Refused);
    second("column that the form does not write", "UPDATE T_Doc SET Locked = 'y'", RpcError::Refused);
    second("column that no form shows", "UPDATE T_Doc SET CopiesPrinted = 5", RpcError::Refused);
    second("table without a form", "UPDATE T_Hidden SET Note = 'y'", RpcError::Refused);
    second("table behind a join", "UPDATE T_Partner SET Name = 'y'", RpcError::Refused);
    second("secret", "UPDATE N_Users SET PasswordHash = ''", RpcError::Refused);
    second("the server's table", "DELETE FROM srv_Request", RpcError::Refused);
    second("inner select", "UPDATE T_Doc SET Name = (SELECT Note FROM T_Hidden)", RpcError::Refused);
    second("select in the condition", "DELETE FROM T_Doc WHERE Id IN (SELECT Id FROM T_Doc)", RpcError::Refused);
    second("expression", "UPDATE T_Doc SET Amount = Amount + 1", RpcError::Refused);
    second("always true", "DELETE FROM T_Doc WHERE 1 = 1", RpcError::Refused);
    second("foreign column in the condition", "DELETE FROM T_Doc WHERE T_Hidden.Note = 'тайна'", RpcError::Refused);
    second("a query", "SELECT Id FROM T_Doc", RpcError::Refused);
    second("a procedure", "EXEC xp_cmdshell 'x'", RpcError::Refused);
    second("a definition", "DROP TABLE T_Doc", RpcError::Refused);
    second("words behind the statement", "DELETE FROM T_Line WHERE Id = 'D1-1' COMMIT", RpcError::Refused);
    second("comment", "DELETE FROM T_Doc -- WHERE Id = 'D9'\n", RpcError::Refused);
    second("open quote", "UPDATE T_Doc SET Name = 'y", RpcError::Refused);

    row("only the own company", "XY", "UPDATE T_Doc SET Name = 'x'", 0, "X1 x  XY");
    row("only what is seen", "CD", "UPDATE T_Doc SET Name = 'x'", 0, "D1 x 1.5 CD");
    row("out of what is seen", "CD", "UPDATE T_Doc SET Kind = 2 WHERE Id = 'D1'", RpcError::Forbidden);
    row("into what is not seen", "CD", "INSERT INTO T_Doc (Id, Name, Kind) VALUES ('D9', 'x', 2)", RpcError::Forbidden);
    row("lines of what is not seen", "CD", "DELETE FROM T_Line WHERE Quantity = 1", 0, "-D1-1 ред");
    row("a line there", "CD", "INSERT INTO T_Line (Id, Master_Id) VALUES ('L', 'D2')", RpcError::Forbidden);
    for (const char* user : {"EF", "IJ"}) {
      row(qPrintable(QStringLiteral("%1 changes").arg(QLatin1StringView(user))), user, "UPDATE T_Doc SET Name = 'x'", RpcError::Forbidden);
      row(qPrintable(QStringLiteral("%1 adds").arg(QLatin1StringView(user))), user,
          "INSERT INTO T_Doc (Id, Name, Kind) VALUES ('D9', 'x', 1)", RpcError::Forbidden);
      row(qPrintable(QStringLiteral("%1 deletes lines").arg(QLatin1StringView(user))), user, "DELETE FROM T_Line", RpcError::Forbidden);
    }
  }
  void outcome()
  {
    QFETCH(QString, user);
    QFETCH(QString, batch);
    QFETCH(int, code);
    QFETCH(QString, after);
    TestCaller caller(company_, user, user == u"XY" ? QStringLiteral("6") : QStringLiteral("5"),
                      user == u"XY" ? QStringLiteral("8") : QStringLiteral("7"));
    const QStringList before = rows();
    QString message;
    QCOMPARE(errorCode([&] { QCOMPARE(caller.call("ExecMultySQL", {batch}), Variant(0)); }, &message), code);
    const QStringList now = rows();
    QStringList changed;
    for (const QString& row : before)
      if (const QString key = row.section(u' ', 0, 0) + u' '; !now.contains(row) && now.filter(QRegularExpression(u'^' + key)).isEmpty())
        changed << u'-' + row;
    for (const QString& row : now)
      if (!before.contains(row))
        changed << row;
    std::sort(changed.begin(), changed.end(), [](QString a, QString b) { return a.remove(u'-') < b.remove(u'-'); });
    QStringList expected = after.split(u'|', Qt::SkipEmptyParts);
    std::sort(expected.begin(), expected.end(), [](QString a, QString b) { return a.remove(u'-') < b.remove(u'-'); });
    QCOMPARE(changed, expected);
    if (code != 0 && batch.contains(u"; "))
      QVERIFY2(message.startsWith(QStringLiteral("Команда 2: ")) || message == u"Заявката не е разрешена.", qPrintable(message));
  }

  // In a transaction of the client's a batch that failed leaves no trace, and the one before it stays.
  void insideATransaction()
  {
    TestCaller caller(company_, QStringLiteral("AB"));
    caller.call("trStart");
    caller.call("ExecMultySQL", {QStringLiteral("UPDATE T_Doc SET Name = 'a' WHERE Id = 'D1'")});
    QCOMPARE(errorCode([&] {
      caller.call("ExecMultySQL", {QStringLiteral("UPDATE T_Doc SET Name = 'b' WHERE Id = 'D2'; DELETE FROM T_Hidden")});
    }), int(RpcError::Refused));
    caller.call("trCommit");
    QVERIFY(rows().contains(QStringLiteral("D1 a 1.5 AB")) && rows().contains(QStringLiteral("D2 Две 1.5 NN")));
  }

 private:
  // "Id Name Amount User" of the documents, "Id Text" of the lines.
  QStringList rows() const
  {
    QStringList texts;
    for (const char* sql : {"SELECT Id, Name, Amount, C_User_Id FROM T_Doc ORDER BY Id", "SELECT Id, Text FROM T_Line ORDER BY Id"}) {
      const auto row = company_.writer().prepare(QString::fromLatin1(sql));
      while (row->step()) {
        QStringList values;
        for (int i = 0; i < row->columnCount(); ++i)
          values << variantText(row->value(i));
        texts << values.join(u' ');
      }
    }
    return texts;
  }

  mutable TestCompany company_;
};

static const testing::RegisterTest<StatementBatchTest> registered;
#include "statement_batch_test.moc"
