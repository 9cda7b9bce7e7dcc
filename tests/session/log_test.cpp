#include <QDir>
#include <QRegularExpression>
#include <thread>

#include "platform/system.h"
#include "scratch_documents.h"
#include "scripted_ports.h"
#include "session/import_log.h"
#include "several_tests.h"

using namespace kalvor;

class LogTest : public QObject {
  Q_OBJECT

  QString day() const { return QStringLiteral("Kalvor/session_files_testLog/20260118.LOG"); }

 private slots:
  void init() { documents_ = std::make_unique<testing::ScratchDocuments>(); }
  void cleanup()
  {
    CloseLog();
    ImportCloseLog();
    documents_.reset();
  }

  void entryLayout()
  {
    testing::FixedClock clock(QDateTime(QDate(2026, 1, 18), QTime(9, 5, 7)));
    InitLog();
    QCOMPARE(LogError("Няма връзка", "TDM.LoadLocalData", -7, "четене", "ред 1\nред 2"), int(LogWritten));
    clock.set(QDateTime(QDate(2026, 1, 19), QTime(0, 0, 1)));  // the name stays that of the first day
    const TELException error(5, "Втори");
    const TELException copy(error);
    const QByteArray expected =
        "[18.01.2026 09:05:07] [Error] \r\n"
        "[Грешка]: Няма връзка\r\n"
        "[Процедура]: TDM.LoadLocalData\r\n"
        "[Код на грешка]: -7\r\n"
        "[Операция]: четене\r\n"
        "[Описание]: ред 1\nред 2\r\n"
        "\r\n"
        "[19.01.2026 00:00:01] [Error] \r\n"
        "[Грешка]: \r\n"
        "[Процедура]: Втори\r\n"
        "[Код на грешка]: 5\r\n"
        "[Операция]: \r\n"
        "[Описание]: \r\n"
        "\r\n";
    QCOMPARE(documents_->read(day()), expected);
    QStringList lines{"old"};
    QCOMPARE(LoadErrorLog(lines), int(LogWritten));
    QCOMPARE(lines.size(), 15);
    QCOMPARE(lines.at(1), QString("[Грешка]: Няма връзка"));
  }

  void emptyLogIsRemovedAndFullOneAppendedTo()
  {
    testing::FixedClock clock(QDateTime(QDate(2026, 1, 18), QTime(9, 5)));
    InitLog();
    QVERIFY(documents_->has(day()));
    CloseLog();
    QVERIFY(!documents_->has(day()));
    QCOMPARE(LogError("x", "y"), int(LogNotOpen));
    QStringList untouched{"as it was"};
    QCOMPARE(LoadErrorLog(untouched), int(LogNotOpen));
    QCOMPARE(untouched, QStringList{"as it was"});
    for (int i = 0; i < 2; ++i) {
      InitLog();
      WriteLog("text");
      CloseLog();
    }
    QCOMPARE(documents_->read(day()), QByteArray("[18.01.2026 09:05:00] [Error] \r\ntext\r\n").repeated(2));
  }

  void unusableDocumentsFolderFallsBack()
  {
    documents_->write("file", "not a folder");
    qputenv("KALVOR_DOCUMENTS", documents_->path("file").toUtf8());
    QCOMPARE(errorLogFolder(), temporaryFolder());
    ImportInitLog();
    QCOMPARE(ImportLogError("x", "y"), int(LogNotOpen));
    QCOMPARE(ImportInfoLog("x", 0, 0), int(LogNotOpen));
  }

  void unopenableFileLeavesTheLogClosed()
  {
    testing::FixedClock clock(QDateTime(QDate(2026, 1, 18), QTime(9, 5)));
    QVERIFY(QDir().mkpath(documents_->path(day() + "/inside")));
    InitLog();
    QCOMPARE(LogError("x", "y"), int(LogNotOpen));
    QVERIFY(errorLogFileName().isEmpty());
  }

  void oldLogsAreMoreThanOne()
  {
    QVERIFY(!OldLogsExist());
    QVERIFY(QDir().mkpath(documents_->path("Kalvor/Log")));
    documents_->write("Kalvor/Log/20250101.LOG", "x");
    documents_->write("Kalvor/Log/20250101.txt", "x");
    QVERIFY(!OldLogsExist());
    documents_->write("Kalvor/Log/20250102.LOG", "x");
    QVERIFY(OldLogsExist());
  }

  void importLogs()
  {
    testing::FixedClock clock(QDateTime(QDate(2026, 1, 18), QTime(9, 5, 7)));
    ImportInitLog();
    QCOMPARE(ImportInfoLog("A1", 0, 0), int(LogWritten));
    QCOMPARE(ImportInfoLog("A2", 1, 1), int(LogWritten));
    QCOMPARE(ImportInfoLog("", 2, -1), int(LogWritten));
    TImportException("Няма поле", "TImportTxt.ReadRecord");
    ImportCloseLog();
    ImportInitLog();
    ImportCloseLog();
    QCOMPARE(documents_->read("Kalvor/ImportLog/20260118.LOG"),
             QByteArray("[09:05:07 Процедура: TImportTxt.ReadRecord]\r\n[Грешка]: Няма поле\r\n\r\n"));
    QCOMPARE(documents_->read("Kalvor/ImportLog/Info_20260118.LOG"),
             QByteArray("Обработка на запис: A1 -> Успешна\r\nПропускане на запис A2 -> Неуспешна\r\n"
                        "Операция  -> Неуспешна\r\n18.01.2026 09:05:07\r\n"));
  }

  void importWithoutAWordLeavesNoFiles()
  {
    ImportInitLog();
    ImportCloseLog();
    QCOMPARE(QDir(documents_->path("Kalvor/ImportLog")).entryList(QDir::Files), QStringList());
  }

  void entriesOfThreadsStayWhole()
  {
    InitLog();
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
      threads.emplace_back([] {
        for (int i = 0; i < 50; ++i)
          LogError("грешка", "нишка");
      });
    for (std::thread& thread : threads)
      thread.join();
    QStringList lines;
    LoadErrorLog(lines);
    QCOMPARE(lines.size(), 4 * 50 * 7);
    const QRegularExpression head("^\\[\\d\\d\\.\\d\\d\\.\\d{4} \\d\\d:\\d\\d:\\d\\d\\] \\[Error\\] $");
    for (qsizetype i = 0; i < lines.size(); i += 7) {
      QVERIFY(head.match(lines.at(i)).hasMatch());
      QCOMPARE(lines.at(i + 2), QString("[Процедура]: нишка"));
      QCOMPARE(lines.at(i + 6), QString());
    }
  }

  void bodiesRaiseWithContextOrLog()
  {
    InitLog();
    try {
      raisingLogged("uX.Routine", []() -> int { throw DataError("лошо"); });
      QFAIL("nothing was raised");
    } catch (const TELException& error) {
      QCOMPARE(error.message(), QString("лошо"));
      QCOMPARE(error.procedure(), QString("uX.Routine"));
    }
    QVERIFY_EXCEPTION_THROWN(raisingLogged("uX.Routine", [] { throw SilentAbort(); }), SilentAbort);
    QVERIFY(!loggingErrors("uX.Other", [] { throw std::runtime_error("plain"); }));
    QStringList lines;
    LoadErrorLog(lines);
    QCOMPARE(lines.filter("[Процедура]"), (QStringList{"[Процедура]: uX.Routine", "[Процедура]: uX.Other"}));
  }

 private:
  std::unique_ptr<testing::ScratchDocuments> documents_;
};

static const testing::RegisterTest<LogTest> registerLogTest;
#include "log_test.moc"
