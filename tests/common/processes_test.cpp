#include <QDir>
#include <QSemaphore>

#include "../rpc/scripted_server.h"
#include "../session/scripted_session.h"
#include "common/messages.h"
#include "common/processes.h"
#include "common/threads.h"
#include "data/data_error.h"
#include "scratch_documents.h"
#include "scripted_ports.h"
#include "session/error_log.h"
#include "several_tests.h"

using namespace kalvor;

namespace {

class CountingPrompt : public testing::ScriptedPrompt {
 public:
  void processMessages() override { ++breaths; }
  int breaths = 0;
};

class Environment {
 public:
  Environment(const char* name, const QByteArray& value)
      : name_(name), was_(qgetenv(name)), set_(qEnvironmentVariableIsSet(name))
  {
    qputenv(name, value);
  }
  ~Environment() { set_ ? qputenv(name_, was_) : qunsetenv(name_); }

 private:
  const char* name_;
  QByteArray was_;
  bool set_;
};

QStringList loggedLines()
{
  QStringList lines;
  LoadErrorLog(lines);
  return lines;
}

}  // namespace

class ProcessesTest : public QObject {
  Q_OBJECT

 private slots:
  void init()
  {
    documents_ = std::make_unique<testing::ScratchDocuments>();
    InitLog();
  }
  void cleanup()
  {
    CloseLog();
    documents_.reset();
  }

  void waitedFor_data()
  {
    QTest::addColumn<QString>("application");
    QTest::addColumn<QString>("commandLine");
    QTest::addColumn<QString>("written");
    const QString script = "\"printf %s \"\"$1:$PWD\"\" >out; exit 3\" x";
    QTest::newRow("command line alone") << " " << "/bin/sh -c " + script + " \"a b\"" << "a b";
    QTest::newRow("application") << "/bin/sh" << "-c " + script + " a;b" << "a;b";
    QTest::newRow("with its own name first") << "/bin/sh" << "sh -c " + script + " $HOME" << "$HOME";
  }
  void waitedFor()
  {
    QFETCH(QString, application);
    QFETCH(QString, commandLine);
    QFETCH(QString, written);
    testing::ScriptedPrompt prompt;
    commandLine.replace("\"\"$1:$PWD\"\"", "\"\"\"$1:$PWD\"\"\"");
    QVERIFY(ExecuteProcess(application, commandLine, documents_->path(), true, 1));
    QCOMPARE(documents_->read("out"), (written + ':' + QDir(documents_->path()).canonicalPath()).toUtf8());
    QVERIFY(prompt.messages.isEmpty());
  }

  void notWaitedFor()
  {
    QVERIFY(ExecuteProcess("/bin/sh", "-c \"echo >out\"", documents_->path(), false, 0));
    QTRY_VERIFY(documents_->has("out"));
  }

  void notStarted_data()
  {
    QTest::addColumn<QString>("application");
    QTest::addColumn<QString>("folder");
    QTest::newRow("no program") << "none" << "";
    QTest::newRow("nothing") << "" << "";
    QTest::newRow("no folder") << "/bin/true" << "none";
  }
  void notStarted()
  {
    QFETCH(QString, application);
    QFETCH(QString, folder);
    for (const bool wait : {true, false}) {
      testing::ScriptedPrompt prompt;
      QVERIFY(!ExecuteProcess(application.startsWith('n') ? documents_->path(application) : application, "",
                              folder.isEmpty() ? folder : documents_->path(folder), wait, 1));
      QCOMPARE(prompt.messages, QStringList{"Грешка при създаване на процес"});
      QCOMPARE(prompt.kinds, QList<PromptKind>{PromptKind::Error});
      QVERIFY(loggedLines().contains("[Процедура]: ExecuteNewProcess"));
    }
  }

  void programsAndDocumentsAreOpened()
  {
    CountingPrompt prompt;
    makeProgram("program", "sleep 0.2; echo done >out");
    ShellExecute_AndWait(documents_->path("program"));
    QCOMPARE(documents_->read("out"), QByteArray("done\n"));
    QVERIFY(prompt.breaths > 0);
    makeProgram("xdg-open", "echo \"$1\" >opened; test \"$1\" = http://a/b && exit 4; exit 0");
    const Environment path("PATH", documents_->path().toUtf8() + ':' + qgetenv("PATH"));
    documents_->write("-a b.txt", "x");
    ShellExecute_AndWait(documents_->path("-a b.txt"));
    QCOMPARE(documents_->read("opened"), (documents_->path("-a b.txt") + '\n').toUtf8());
    QVERIFY(prompt.messages.isEmpty());
    ShellExecute_AndWait("http://a/b");
    QCOMPARE(prompt.takeMessages(), QStringList{"Документът http://a/b не може да бъде отворен."});
    ShellExecute_AndWait(documents_->path("none.txt"));
    QCOMPARE(prompt.takeMessages(), QStringList{qt_error_string(ENOENT)});
  }

  void interpreterOfTheEnvironment()
  {
    makeProgram("command", "echo \"$# $1 $2\" >out");
    const Environment interpreter("COMSPEC", documents_->path("command").toUtf8());
    ExecuteShellCommand("dir | more", true);
    QTRY_COMPARE(documents_->read("out"), QByteArray("2 /C dir | more\n"));
    const Environment none("COMSPEC", documents_->path("none").toUtf8());
    QVERIFY_EXCEPTION_THROWN(ExecuteShellCommand("x", false), DataError);
  }

  void shellOfTheUser()
  {
    const Environment noInterpreter("COMSPEC", "");
    for (const char* shell : {"/bin/sh", ""}) {
      const Environment userShell("SHELL", shell);
      QFile::remove(documents_->path("out"));
      ExecuteShellCommand("echo a | cat > '" + documents_->path("out") + '\'', false);
      QTRY_COMPARE(documents_->read("out"), QByteArray("a\n"));
    }
  }

  void threadRunsWhenItIsStarted()
  {
    QSemaphore ran;
    QPointer<TCommonThread> thread = new TCommonThread([&] { ran.release(); });
    QVERIFY(!thread->isRunning() && !ran.tryAcquire());
    thread->start();
    ran.acquire();
    QTRY_VERIFY(thread.isNull());
    thread = new TCommonThread;
    thread->start();
    QTRY_VERIFY(thread.isNull());
  }

  void threadsErrorsEndInTheLog()
  {
    QPointer<TCommonThread> thread = new TCommonThread([] { throw DataError("счупено"); });
    thread->start();
    QTRY_VERIFY(thread.isNull());
    QVERIFY(loggedLines().contains("[Грешка]: счупено"));
    thread = new TCommonThread([] { throw 5; });
    thread->start();
    QTRY_VERIFY(thread.isNull());
  }

  void scripts_data()
  {
    QTest::addColumn<int>("result");
    QTest::newRow("done") << 0;
    QTest::newRow("refused") << -1;
  }
  void scripts()
  {
    QFETCH(int, result);
    test::ScriptedServer server([&](const Frame& call) { return encodeAnswer(call.id, result, call.arguments); });
    testing::ScriptedHost host;
    TDM dm(host);
    dm.SocketCon.Port = server.port();
    dm.ConBroker->Connect();
    QPointer<TExecuteScriptTread> thread = new TExecuteScriptTread("update x");
    thread->start();
    QTRY_VERIFY(thread.isNull());
    QCOMPARE(server.calls(), QStringList{"ExecuteSQLScript"});
    QCOMPARE(server.connections(), 1);
    QCOMPARE(loggedLines().contains("[Грешка]: " + _err_UnableToSaveUserSettings), result != 0);
  }

  void sessionEndsAfterItsScripts()
  {
    test::ScriptedServer server([](const Frame& call) { return encodeAnswer(call.id, 0, call.arguments); });
    testing::ScriptedHost host;
    {
      TDM dm(host);
      dm.SocketCon.Port = server.port();
      for (int i = 0; i < 5; ++i)
        (new TExecuteScriptTread("x"))->start();
    }
    QCOMPARE(server.calls().size(), 5);
    QVERIFY(loggedLines().isEmpty());
    QPointer<TExecuteScriptTread> late = new TExecuteScriptTread("x");
    late->start();
    QTRY_VERIFY(late.isNull());
    QVERIFY(loggedLines().contains("[Грешка]: Грешка при запис на настойките на потребетеля !"));
  }

 private:
  void makeProgram(const QString& name, const QByteArray& script) const
  {
    documents_->write(name, "#!/bin/sh\ncd '" + documents_->path().toUtf8() + "'\n" + script + '\n');
    QFile::setPermissions(documents_->path(name), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
  }

  std::unique_ptr<testing::ScratchDocuments> documents_;
};

static const testing::RegisterTest<ProcessesTest> registerProcessesTest;
#include "processes_test.moc"
