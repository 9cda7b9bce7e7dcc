#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>
#include <atomic>
#include <thread>

#include "server/backup/backup_command.h"
#include "server/backup/backup_file.h"
#include "server/backup/postgres_tools.h"
#include "server/integrity/consistency.h"
#include "server/store/introspection.h"
#include "server_demo/demo_database.h"
#include "several_tests.h"

namespace kalvor::testing {

using namespace kalvor::server;

namespace {

bool holds(const QString& database)
{
  return checkConsistency(*openDatabase(database, ConnectionUse::Read), [](const CheckOutcome& outcome) {
    if (!outcome.passed()) {
      qWarning("%s", qPrintable(outcomeLine(outcome)));
    }
  });
}

// Every record of the company's tables.
QString contentOf(const QString& database)
{
  const auto connection = openDatabase(database, ConnectionUse::Read);
  QString text;
  for (const TableInfo& table : readTables(*connection)) {
    if (table.view || QStringList{"srv_Session", "srv_Provider", "srv_DocumentLock", "srv_LogInFailure", "srv_LogInFrom"}.contains(table.name)) {
      continue;
    }
    QStringList columns;
    for (const ColumnInfo& column : table.columns) {
      columns.append(u'"' + column.name + u'"');
    }
    QStringList rows;
    auto statement = connection->prepare(QStringLiteral("SELECT %1 FROM %2").arg(columns.join(QStringLiteral(", ")), table.name));
    while (statement->step()) {
      QString row;
      for (int i = 0; i < statement->columnCount(); ++i) {
        row += statement->isNull(i) ? QStringLiteral("-|") : statement->text(i) + u'|';
      }
      rows.append(row);
    }
    rows.sort();
    text += table.name + u'\n' + rows.join(u'\n') + u'\n';
  }
  return text;
}

// Saves as a client would: a new invoice and its number, in one transaction.
void saveInvoice(Connection& writer)
{
  Transaction transaction(writer);
  writer.execute(QStringLiteral("UPDATE N_Series SET LastNo = LastNo + 1 WHERE Comp_Id = '1' AND Prefix = '1'"));
  const qint64 number =
      writer.value(QStringLiteral("SELECT LastNo FROM N_Series WHERE Comp_Id = '1' AND Prefix = '1'")).toLongLong();
  writer.execute(QStringLiteral("INSERT INTO D_SaleInvoiceHeader (Id, Comp_Id, DocumentNo, DocumentDate, Series_Id, TotalValue, TotalVAT) "
                                "SELECT ?, '1', ?, '20260601', Id, 5000000, 5000000 FROM N_Series WHERE Comp_Id = '1' AND Prefix = '1'"),
                 {QStringLiteral("LOAD%1").arg(number), QStringLiteral("1%1").arg(number, 9, 10, QLatin1Char('0'))});
  writer.execute(QStringLiteral("INSERT INTO D_SaleInvoiceLine (Id, Comp_Id, Master_Id, Line_No, TotalValue, TotalVAT) "
                                "VALUES (?, '1', ?, 1, 5000000, 5000000)"),
                 {QStringLiteral("LINE%1").arg(number), QStringLiteral("LOAD%1").arg(number)});
  transaction.commit();
}

}  // namespace

class BackupTest : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase()
  {
    database_ = newDatabaseName(folder_.filePath(QStringLiteral("company.db")));
    const auto connection = openDatabase(database_, ConnectionUse::Write);
    migrate(*connection);
    createDemoCompany(*connection, smallDemo());
  }

  void aBackupUnderLoadIsOneState()
  {
    std::atomic<bool> stop = false;
    std::atomic<int> saved = 0;
    std::thread load([&] {
      const auto writer = openDatabase(database_, ConnectionUse::Write);
      while (!stop) {
        saveInvoice(*writer);
        ++saved;
      }
    });
    QTRY_VERIFY(saved > 5);
    const int before = saved;
    const QString backup = folder_.filePath(QStringLiteral("load.backup"));
    const int code = runBackup({backup, "--db", database_});
    const int during = saved - before;
    stop = true;
    load.join();
    QCOMPARE(code, 0);
    QVERIFY(during > 0);
    const QString restored = newDatabaseName(folder_.filePath(QStringLiteral("load.db")));
    QCOMPARE(runRestore({backup, "--db", restored}), 0);
    QVERIFY(holds(restored));
    const auto there = openDatabase(restored, ConnectionUse::Read);
    const auto count = [&](const char* table) {
      return there->value(QStringLiteral("SELECT COUNT(*) FROM %1 WHERE Id LIKE 'L%' AND LENGTH(Id) < 32").arg(QLatin1StringView(table))).toInt();
    };
    QVERIFY(count("D_SaleInvoiceHeader") >= before);
    QCOMPARE(count("D_SaleInvoiceHeader"), count("D_SaleInvoiceLine"));
  }

  void whatIsRestoredIsEqual()
  {
    const QString backup = folder_.filePath(QStringLiteral("equal.backup"));
    QCOMPARE(runBackup({backup, "--db", database_}), 0);
    QCOMPARE(runBackup({backup, "--db", database_}), 0);  // in the place of the one before
    const QString restored = newDatabaseName(folder_.filePath(QStringLiteral("equal.db")));
    QCOMPARE(runRestore({backup, "--db", restored}), 0);
    QVERIFY(contentOf(restored) == contentOf(database_));
    // Not into a database that is there.
    QCOMPARE(runRestore({backup, "--db", restored}), 1);
    QCOMPARE(parts(), QStringList());
  }

  void violationsAreNoBackup()
  {
    const auto writer = openDatabase(database_, ConnectionUse::Write);
    writer->execute(QStringLiteral("UPDATE N_Series SET LastNo = LastNo - 1 WHERE Comp_Id = '1' AND Prefix = '1'"));
    const QString backup = folder_.filePath(QStringLiteral("violated.backup"));
    QCOMPARE(runBackup({backup, "--db", database_}), 1);
    QVERIFY(!QFile::exists(backup));
    QCOMPARE(runBackup({backup, "--db", database_, "--despite-violations"}), 0);
    writer->execute(QStringLiteral("UPDATE N_Series SET LastNo = LastNo + 1 WHERE Comp_Id = '1' AND Prefix = '1'"));
    const QString restored = newDatabaseName(folder_.filePath(QStringLiteral("violated.db")));
    QCOMPARE(runRestore({backup, "--db", restored}), 1);
    QCOMPARE(QFile::exists(restored), false);
    const QString another = newDatabaseName(folder_.filePath(QStringLiteral("violated.db")));
    QCOMPARE(runRestore({backup, "--db", another, "--despite-violations"}), 0);
  }

  void damagedBackupsAreRefused_data()
  {
    QTest::addColumn<int>("kind");
    const char* names[] = {"first byte", "middle", "last content", "the seal's version", "the seal's hash", "cut", "without its seal",
                           "empty", "a text", "a newer version", "missing", "a folder"};
    for (int i = 0; i < int(std::size(names)); ++i) {
      QTest::newRow(names[i]) << i;
    }
  }
  void damagedBackupsAreRefused()
  {
    QFETCH(int, kind);
    const QString backup = folder_.filePath(QStringLiteral("damaged.backup"));
    const QString target = newDatabaseName(folder_.filePath(QStringLiteral("damaged.db")));
    if (kind < 10) {
      QFile::remove(backup);
      QCOMPARE(runBackup({backup, "--db", database_}), 0);
    }
    const auto seal = readSeal(backup);
    QFile file(backup);
    QVERIFY(kind >= 10 || file.open(QIODevice::ReadWrite));
    const auto flip = [&](qint64 at) {
      file.seek(at);
      const char changed = char(file.peek(1).at(0) ^ 1);
      file.write(&changed, 1);
    };
    switch (kind) {
      case 0: flip(0); break;
      case 1: flip(file.size() / 2); break;
      case 2: flip(seal->contentSize - 1); break;
      case 3: flip(seal->contentSize + 34); break;
      case 4: flip(file.size() - 10); break;
      case 5: file.resize(file.size() / 2); break;
      case 6: file.resize(seal->contentSize); break;
      case 7: file.resize(0); break;
      case 8: file.resize(0); file.write("hello"); break;
      case 9:
        file.resize(seal->contentSize);
        sealBackup(backup, seal->kind, 9999);
        break;
      default: break;
    }
    file.close();
    const QString name = kind == 10 ? folder_.filePath(QStringLiteral("none")) : kind == 11 ? folder_.path() : backup;
    QCOMPARE(runRestore({name, "--db", target}), 1);
    QVERIFY(!QFile::exists(target));
    QCOMPARE(parts(), QStringList());
  }

  // The list of processes is everybody's.
  void noPasswordAmongArguments_data()
  {
    QTest::addColumn<QString>("uri");
    QTest::addColumn<QString>("seen");  // --dbname and the password of the environment
    QTest::newRow("user part") << "postgresql://k:s3%27cret@h:1/d" << "user='k' dbname='d' host='h' port='1'|s3'cret";
    QTest::newRow("parameter") << "postgresql://h/d?password=s3cret&sslmode=require" << "dbname='d' host='h' sslmode='require'|s3cret";
    QTest::newRow("none") << "postgresql:///d?application_name=a%27b%5C" << "dbname='d' application_name='a\\'b\\\\'|";
    QTest::newRow("unreadable") << "postgresql://k:s3%cret@h/d" << "";
    QTest::newRow("key's password") << "postgresql:///d?sslpassword=s3cret" << "";
  }
  void noPasswordAmongArguments()
  {
    QFETCH(QString, uri);
    QFETCH(QString, seen);
    QTemporaryDir programs;
    QFile program(programs.filePath(QStringLiteral("pg_seen")));
    QVERIFY(program.open(QIODevice::WriteOnly));
    program.write("#!/bin/sh\nprintf '%s|%s' \"$*\" \"$PGPASSWORD\" > \"$0.txt\"\n");
    program.close();
    program.setPermissions(QFile::ReadOwner | QFile::ExeOwner);
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", programs.path().toUtf8() + ':' + path);
    QString refused;
    try {
      runPostgresTool(QStringLiteral("pg_seen"), {}, uri);
    } catch (const std::exception& error) {
      refused = QString::fromUtf8(error.what());
    }
    qputenv("PATH", path);
    QFile written(program.fileName() + QStringLiteral(".txt"));
    const bool ran = written.open(QIODevice::ReadOnly);
    QCOMPARE(ran, !seen.isEmpty());
    QCOMPARE(refused.isEmpty(), ran);
    QVERIFY(!refused.contains(QLatin1String("s3")));
    QCOMPARE(QString::fromUtf8(ran ? written.readAll() : QByteArray()).remove(QStringLiteral("--dbname=")).remove(QStringLiteral(" --no-password")), seen);
  }

  void wrongCalls_data()
  {
    QTest::addColumn<bool>("restores");
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("code");
    QTest::newRow("no file") << false << QStringList() << 2;
    QTest::newRow("two files") << false << QStringList{"a", "b"} << 2;
    QTest::newRow("restore says where") << true << QStringList{"a"} << 2;
    QTest::newRow("unknown option") << true << QStringList{"a", "--db", "b", "--now"} << 2;
    QTest::newRow("memory") << false << QStringList{"a", "--db", ":memory:"} << 2;
    QTest::newRow("no database") << false << QStringList{"a", "--db", "/nowhere/at/all.db"} << 1;
    QTest::newRow("no folder") << false << QStringList{"/nowhere/at/all.backup", "--db", database_} << 1;
    QTest::newRow("nobody answers") << false << QStringList{folder_.filePath("a"), "--db", "postgresql://u:p@/x?host=/nowhere"} << 1;
  }
  void wrongCalls()
  {
    QFETCH(bool, restores);
    QFETCH(QStringList, arguments);
    QTEST(restores ? runRestore(arguments) : runBackup(arguments), "code");
    QCOMPARE(parts(), QStringList());
  }

  void files()
  {
    if (onPostgres()) {
      QSKIP("of SQLite");
    }
    const QString backup = folder_.filePath(QStringLiteral("files.backup"));
    QCOMPARE(runBackup({backup, "--db", database_}), 0);
    {
      const PartFile another(backup);
      QCOMPARE(runBackup({backup, "--db", database_}), 1);
      QVERIFY(QFile::exists(another.path()));
    }
    // Names in the wrong order.
    QCOMPARE(runBackup({database_, "--db", database_}), 1);
    QVERIFY(holds(database_));
    // In the place of a database that somebody uses, of one that nobody uses, of what is none.
    const QString target = folder_.filePath(QStringLiteral("files.db"));
    QCOMPARE(runRestore({backup, "--db", target}), 0);
    {
      const auto user = openDatabase(target, ConnectionUse::Write);
      user->execute(QStringLiteral("UPDATE N_Company SET Name = 'Друга'"));
      QCOMPARE(runRestore({backup, "--db", target, "--force"}), 1);
      QCOMPARE(user->value(QStringLiteral("SELECT Name FROM N_Company WHERE Id = '1'")).toString(), QStringLiteral("Друга"));
    }
    for (const char* left : {"-wal", "-sessions"}) {
      QFile stale(target + QLatin1StringView(left));
      QVERIFY(stale.open(QIODevice::WriteOnly) && stale.write("left behind") > 0);
    }
    QCOMPARE(runRestore({backup, "--db", target, "--force"}), 0);
    QVERIFY(contentOf(target) == contentOf(database_));
    QVERIFY(!QFile::exists(target + QStringLiteral("-sessions")));
    QFile broken(target);
    QVERIFY(broken.open(QIODevice::WriteOnly) && broken.write(QByteArray(100'000, 'x')) > 0);
    broken.close();
    QCOMPARE(runRestore({backup, "--db", target, "--force"}), 0);
    QVERIFY(holds(target));
  }

  // A damaged database is told by check and is no backup.
  void damagedDatabase()
  {
    if (onPostgres()) {
      QSKIP("of SQLite");
    }
    const QString damaged = folder_.filePath(QStringLiteral("broken.db"));
    const QString backup = folder_.filePath(QStringLiteral("broken.backup"));
    QCOMPARE(runBackup({backup, "--db", database_}), 0);
    QCOMPARE(runRestore({backup, "--db", damaged}), 0);
    QFile file(damaged);
    QVERIFY(file.open(QIODevice::ReadWrite));
    file.seek(file.size() / 2 / 4096 * 4096);
    file.write(QByteArray(8192, '\x55'));
    file.close();
    bool storage = true;
    checkConsistency(*openDatabase(damaged, ConnectionUse::Read),
                     [&](const CheckOutcome& outcome) { storage = storage && (outcome.name != u"storage" || outcome.passed()); });
    QVERIFY(!storage);
    const QString none = folder_.filePath(QStringLiteral("none.backup"));
    QCOMPARE(runBackup({none, "--db", damaged, "--despite-violations"}), 1);
    QVERIFY(!QFile::exists(none));
  }

  // Killed at any moment, or out of room: the name holds the whole backup before or none.
  void cutOff()
  {
    if (onPostgres()) {
      QSKIP("of SQLite");
    }
    const QString backup = folder_.filePath(QStringLiteral("cut.backup"));
    const QStringList arguments{"backup", backup, "--db", database_};
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(QProcess::execute(QStringLiteral(KALVOR_SERVER_PROGRAM), arguments), 0);
    const int whole = int(timer.elapsed());
    QFile::remove(backup);
    int cut = 0;
    for (int i = 0; i < 8; ++i) {
      QProcess process;
      process.start(QStringLiteral(KALVOR_SERVER_PROGRAM), arguments);
      QVERIFY(process.waitForStarted());
      QThread::msleep(ulong(whole * (i + 1) / 9));
      process.kill();
      process.waitForFinished();
      cut += process.exitStatus() == QProcess::CrashExit;
      if (QFile::exists(backup)) {
        verifyBackup(backup);
      }
    }
    QVERIFY(cut > 0);
    // What was left behind is in nobody's way.
    QCOMPARE(runBackup(arguments.mid(1)), 0);
    const QString full = folder_.filePath(QStringLiteral("full.backup"));
    const QString limited = QStringLiteral("trap '' XFSZ; ulimit -f 200; exec '%1' backup '%2' --db '%3'")
                                .arg(QStringLiteral(KALVOR_SERVER_PROGRAM), full, database_);
    QCOMPARE(QProcess::execute(QStringLiteral("sh"), {QStringLiteral("-c"), limited}), 1);
    QVERIFY(!QFile::exists(full));
    QCOMPARE(parts(), QStringList());
  }

 private:
  QStringList parts() const { return QDir(folder_.path()).entryList({QStringLiteral("*.part*")}); }

  QTemporaryDir folder_;
  QString database_;
};

static RegisterTest<BackupTest> backupTest;

}  // namespace kalvor::testing

#include "backup_test.moc"
