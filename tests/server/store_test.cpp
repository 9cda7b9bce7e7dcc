// The store: transactions, text rules, amounts, dates, migrations.
#include <QTemporaryDir>

#include "several_tests.h"
#include "server/store/migrations.h"
#include "server/store/postgres_sql.h"
#include "server/store/schema_script.h"
#include "server/store/text_rules.h"
#include "test_database.h"

using namespace kalvor;
using namespace kalvor::server;

class StoreTest : public QObject {
  Q_OBJECT

 private slots:
  void comparesText_data()
  {
    QTest::addColumn<QString>("left");
    QTest::addColumn<QString>("right");
    QTest::addColumn<int>("sign");
    QTest::newRow("case") << "Иван" << "ИВАН" << 0;
    QTest::newRow("latin case") << "abC" << "ABc" << 0;
    QTest::newRow("order") << "ябълка" << "Авокадо" << 1;
    QTest::newRow("prefix") << "Пет" << "петър" << -1;
    QTest::newRow("empty") << "" << "а" << -1;
    QTest::newRow("digits before letters") << "9" << "a" << -1;
    QTest::newRow("latin before cyrillic") << "z" << "А" << -1;
    QTest::newRow("letter with stress") << "ѝ" << "Ѝ" << 0;
  }
  void comparesText()
  {
    QFETCH(QString, left);
    QFETCH(QString, right);
    QFETCH(int, sign);
    const QByteArray a = left.toUtf8();
    const QByteArray b = right.toUtf8();
    const auto compare = [](const QByteArray& x, const QByteArray& y) {
      const int result = compareText({x.constData(), size_t(x.size())}, {y.constData(), size_t(y.size())});
      return (result > 0) - (result < 0);
    };
    QCOMPARE(compare(a, b), sign);
    QCOMPARE(compare(b, a), -sign);
  }

  void matchesLike_data()
  {
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<bool>("matches");
    QTest::newRow("contains") << "Голяма КРУША" << "%круш%" << true;
    QTest::newRow("begins") << "Круша" << "круш%" << true;
    QTest::newRow("does not begin") << "Круша" << "уша%" << false;
    QTest::newRow("one character") << "Ян" << "_н" << true;
    QTest::newRow("one is not none") << "н" << "_н" << false;
    QTest::newRow("whole") << "круша" << "КРУША" << true;
    QTest::newRow("star is a star") << "круша" << "круш*" << false;
    QTest::newRow("several runs") << "абвабвг" << "%аб%вг" << true;
    QTest::newRow("empty") << "" << "%" << true;
  }
  void matchesLike()
  {
    QFETCH(QString, text);
    QFETCH(QString, pattern);
    auto db = testing::newTestConnection();
    QTEST(db->value(QStringLiteral("SELECT ? LIKE ?"), {text, pattern}).toBool(), "matches");
  }

  // A long run of "%a" against a text without an end match must not take forever.
  void likeIsBounded()
  {
    auto db = testing::newTestConnection();
    const QString pattern = QStringLiteral("%а").repeated(200) + u'б';
    QCOMPARE(db->value(QStringLiteral("SELECT ? LIKE ?"), {QString(20000, u'а'), pattern}).toBool(), false);
  }

  void keepsTypes()
  {
    auto db = migrated();
    const QDateTime moment(QDate(2024, 2, 29), QTime(23, 59, 58));
    db->execute(QStringLiteral("INSERT INTO T (Id, Amount, Day, At, Yes, Raw, Note) VALUES (?, ?, ?, ?, ?, ?, ?)"),
                {1, -0.0000015, QDate(2024, 2, 29), moment, true, QByteArray("\0x", 2), QStringLiteral("бележка")});
    db->execute(QStringLiteral("INSERT INTO T (Id) VALUES (2)"));
    const RecordSet rows = db->query(QStringLiteral("SELECT * FROM T ORDER BY Id"));
    const QList<DataType> types{DataType::LargeInt, DataType::Float, DataType::Date, DataType::DateTime,
                                DataType::Boolean, DataType::Blob, DataType::WideString};
    for (int i = 0; i < types.size(); ++i) {
      QCOMPARE(rows.fields[i].type, types[i]);
      QCOMPARE(isNull(rows.value(1, i)), i > 0);
    }
    QCOMPARE(rows.fields[6].size, 20);
    QCOMPARE(rows.fields[6].origin, QStringLiteral("T.Note"));
    QCOMPARE(rows.value(0, 1).toDouble(), -0.000002);
    QCOMPARE(rows.value(0, 2).toDate(), QDate(2024, 2, 29));
    QCOMPARE(rows.value(0, 3).toDateTime().toString(Qt::ISODate), moment.toString(Qt::ISODate));
    QCOMPARE(rows.value(0, 4).toBool(), true);
    QCOMPARE(rows.value(0, 5).toByteArray(), QByteArray("\0x", 2));
    QCOMPARE(db->value(QStringLiteral("SELECT At FROM T WHERE Id = 1")).toDateTime().time(), moment.time());
    QCOMPARE(db->query(QStringLiteral("SELECT SUM(Amount) AS \"Sum:AMOUNT\" FROM T")).fields[0].type, DataType::Float);
    QCOMPARE(db->value(QStringLiteral("SELECT Note FROM T WHERE Note = 'БЕЛЕЖКА'")).toString(), QStringLiteral("бележка"));
  }

  void refusesAmountsOutOfRange()
  {
    auto db = migrated();
    QVERIFY_THROWS_EXCEPTION(StoreError, db->execute(QStringLiteral("INSERT INTO T (Id, Amount) VALUES (1, ?)"), {1e13}));
    QCOMPARE(scaled(2.5e-7 * 2), 1);
    QCOMPARE(scaled(-0.0000005), -1);
  }

  void transactionsNest()
  {
    auto db = migrated();
    {
      Transaction outer(*db);
      db->execute(QStringLiteral("INSERT INTO T (Id) VALUES (1)"));
      {
        const Transaction inner(*db);
        db->execute(QStringLiteral("INSERT INTO T (Id) VALUES (2)"));
      }
      outer.commit();
    }
    {
      const Transaction forgotten(*db);
      db->execute(QStringLiteral("INSERT INTO T (Id) VALUES (3)"));
    }
    QCOMPARE(db->value(QStringLiteral("SELECT COUNT(*) * 10 + MAX(Id) FROM T")).toInt(), 11);
  }

  void readersSeeCommittedOnly()
  {
    const QString name = testing::newDatabaseName(folder_.filePath(QStringLiteral("readers.db")));
    auto writer = openDatabase(name, ConnectionUse::Write);
    migrate(*writer, schema());
    auto reader = openDatabase(name, ConnectionUse::Read);
    const QString count = QStringLiteral("SELECT COUNT(*) FROM T");
    {
      Transaction transaction(*writer);
      writer->execute(QStringLiteral("INSERT INTO T (Id) VALUES (1)"));
      QCOMPARE(reader->value(count).toInt(), 0);
      transaction.commit();
    }
    QCOMPARE(reader->value(count).toInt(), 1);
    QVERIFY_THROWS_EXCEPTION(StoreError, reader->execute(QStringLiteral("DELETE FROM T")));
    QVERIFY_THROWS_EXCEPTION(StoreError, reader->execute(QStringLiteral("PRAGMA query_only=OFF")));
    QVERIFY_THROWS_EXCEPTION(StoreError, reader->execute(QStringLiteral("ATTACH 'x' AS y")));
  }

  void namesBrokenRules()
  {
    auto db = migrated();
    db->execute(QStringLiteral("INSERT INTO T (Id) VALUES (1)"));
    const auto ruleOf = [&](const QString& sql) {
      try {
        db->execute(sql);
      } catch (const StoreError& error) {
        return std::pair(error.rule(), error.columns());
      }
      return std::pair(StoreError::Rule::None, QStringList());
    };
    QCOMPARE(ruleOf(QStringLiteral("INSERT INTO T (Id) VALUES (1)")), std::pair(StoreError::Rule::Unique, QStringList{QStringLiteral("Id")}));
    QCOMPARE(ruleOf(QStringLiteral("INSERT INTO U (Note) VALUES ('x')")).first, StoreError::Rule::Required);
    QCOMPARE(ruleOf(QStringLiteral("INSERT INTO U (T_Id) VALUES (9)")).first, StoreError::Rule::Reference);
  }

  void migratesOnce()
  {
    auto db = migrated();
    QCOMPARE(migrate(*db, schema()), 0);
    QList<Migration> more = schema() + QList<Migration>{{2, QStringLiteral("more"), QStringLiteral("ALTER TABLE T ADD COLUMN Extra TEXT; "
                                                         "INSERT INTO T (Id, Extra) VALUES (7, 'А;б')")}};
    QCOMPARE(migrate(*db, more), 1);
    QCOMPARE(db->value(QStringLiteral("SELECT Id FROM T WHERE Extra = 'а;Б'")).toInt(), 7);
    // One that fails leaves nothing behind, and an older program does not touch a newer database.
    more.append({3, QStringLiteral("bad"), QStringLiteral("CREATE TABLE V (Id INTEGER); SELECT nonsense")});
    QVERIFY_THROWS_EXCEPTION(StoreError, migrate(*db, more));
    QVERIFY_THROWS_EXCEPTION(StoreError, db->execute(QStringLiteral("SELECT * FROM V")));
    QVERIFY_THROWS_EXCEPTION(StoreError, migrate(*db, schema()));
  }

  void splitsScripts()
  {
    QCOMPARE(splitScript(QStringLiteral("A 'x;''y' -- c; d\n; /* ; */ B \"q;\";;")),
             (QStringList{QStringLiteral("A 'x;''y'"), QStringLiteral("B \"q;\"")}));
    QCOMPARE(forSqlite(QStringLiteral("CREATE TABLE X (A VARCHAR(5) NOT NULL, Date DATE, N INTEGER, PRIMARY KEY (A, N))")),
             QStringLiteral("CREATE TABLE X (A VARCHAR(5) COLLATE KALVOR NOT NULL, Date DATE TEXT, N INTEGER, PRIMARY KEY (A, N))"));
  }

  void speaksPostgres_data()
  {
    QTest::addColumn<QString>("sql");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char* name, const char* sql, const char* expected) {
      QTest::newRow(name) << QString::fromUtf8(sql) << QString::fromUtf8(expected);
    };
    row("parameters", "SELECT A FROM T WHERE B = ? AND C = '?' AND D IN (?, ?)",
        "SELECT A FROM T WHERE B = $1 AND C = '?' AND D IN ($2, $3)");
    row("quoted names", "SELECT \"T\".\"Id\" AS \"Id:TEXT\" FROM \"T\"", "SELECT \"t\".\"id\" AS \"id:text\" FROM \"t\"");
    row("texts stay", "SELECT 'It''s \"Id\" -- LIKE ?' AS X", "SELECT 'It''s \"Id\" -- LIKE ?' AS \"x\"");
    row("orders", "SELECT A FROM T ORDER BY A, B DESC LIMIT ?", "SELECT A FROM T ORDER BY A NULLS FIRST , B DESC NULLS LAST LIMIT $1");
    row("order inside brackets", "SELECT (SELECT A FROM T ORDER BY MAX(A, B) DESC) AS X FROM U ORDER BY 1",
        "SELECT (SELECT A FROM T ORDER BY MAX(A, B) DESC NULLS LAST ) AS \"x\" FROM U ORDER BY 1 NULLS FIRST ");
    row("a pattern", "SELECT 1 FROM T WHERE A LIKE ? ESCAPE '!'", "SELECT 1 FROM T WHERE A ILIKE $1 ESCAPE '!'");
    row("casts", "SELECT CAST(A AS TEXT), CAST(? AS REAL), B AS Text FROM T",
        "SELECT CAST(A AS citext), CAST($1 AS double precision), B AS \"text\" FROM T");
    row("the collation", "SELECT 1 FROM T WHERE (A || B) COLLATE \"KALVOR\" = ?",
        "SELECT 1 FROM T WHERE (A || B) ::citext COLLATE kalvor = $1");
    row("a view", "CREATE VIEW V AS SELECT Id AS Key FROM T", "CREATE VIEW V AS SELECT Id AS \"key\" FROM T;COMMENT ON VIEW V IS 'V'");
    row("a table",
        "CREATE TABLE T (Id VARCHAR(9) NOT NULL PRIMARY KEY, Day DATE, \"Sum\" AMOUNT DEFAULT 0, UNIQUE (Day, \"Sum\"))",
        "CREATE TABLE T (Id citext COLLATE kalvor NOT NULL PRIMARY KEY, Day text COLLATE kalvor, \"sum\" bigint DEFAULT 0, "
        "UNIQUE (Day, \"sum\"));COMMENT ON TABLE T IS 'T';COMMENT ON COLUMN T.Id IS 'Id VARCHAR(9)';"
        "COMMENT ON COLUMN T.Day IS 'Day DATE';COMMENT ON COLUMN T.\"sum\" IS 'Sum AMOUNT'");
    row("a column", "ALTER TABLE T ADD COLUMN Raw BLOB", "ALTER TABLE T ADD COLUMN Raw bytea;COMMENT ON COLUMN T.Raw IS 'Raw BLOB'");
    row("an index", "CREATE UNIQUE INDEX I ON T (A, B DESC) WHERE A LIKE 'x%'",
        "CREATE UNIQUE INDEX I ON T (A NULLS FIRST, B DESC NULLS LAST) WHERE A ILIKE 'x%'");
    row("a trigger", "CREATE TRIGGER R AFTER INSERT ON T WHEN NEW.A IS NULL BEGIN UPDATE T SET A = 1; END",
        "CREATE FUNCTION R() RETURNS trigger LANGUAGE plpgsql AS $body$ BEGIN UPDATE T SET A = 1; RETURN NULL; END $body$;"
        "CREATE TRIGGER R AFTER INSERT ON T FOR EACH ROW WHEN (NEW.A IS NULL) EXECUTE FUNCTION R()");
  }
  void speaksPostgres()
  {
    QFETCH(QString, sql);
    QTEST(postgresDefinition(sql).join(u';'), "expected");
  }

  void namesComeBackAsWritten()
  {
    const PostgresSql sql = postgresSql(QStringLiteral("SELECT A AS \"Sum:AMOUNT\", B AS Group FROM T"));
    QCOMPARE(sql.aliases, (QHash<QString, QString>{{"sum:amount", "Sum:AMOUNT"}, {"group", "Group"}}));
    QVERIFY(sql.reads);
    QVERIFY(!postgresSql(QStringLiteral("UPDATE T SET A = (SELECT 1)")).reads);
  }

  void showsADatabaseWithoutItsSecret()
  {
    QCOMPARE(shownDatabase(QStringLiteral("postgresql://ivan:p@ss@db1,db2:5433/firm?password=x")), QStringLiteral("postgresql://db1,db2:5433/firm"));
    QCOMPARE(shownDatabase(QStringLiteral("/a/b.db")), QStringLiteral("/a/b.db"));
  }

 private:
  static QList<Migration> schema()
  {
    return {{1, QStringLiteral("first"), QStringLiteral(
        "CREATE TABLE T (Id INTEGER NOT NULL PRIMARY KEY, Amount AMOUNT, Day DATE, At TIMESTAMP, Yes BOOLEAN, Raw BLOB, "
        "Note VARCHAR(20)); CREATE TABLE U (T_Id INTEGER NOT NULL REFERENCES T (Id), Note TEXT)")}};
  }
  static std::unique_ptr<Connection> migrated()
  {
    auto db = testing::newTestConnection();
    migrate(*db, schema());
    return db;
  }
  QTemporaryDir folder_;
};

static const testing::RegisterTest<StoreTest> registered;
#include "store_test.moc"
