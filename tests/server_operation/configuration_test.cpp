#include "server/configuration.h"

#include <QTemporaryDir>

#include "server/load/command_line.h"
#include "several_tests.h"

namespace kalvor::testing {

using namespace kalvor::server;

class ConfigurationTest : public QObject {
  Q_OBJECT

 private slots:
  void settings_data()
  {
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("environment");  // VARIABLE=value
    QTest::addColumn<QStringList>("line");
    QTest::addColumn<QString>("result");  // the options, or how the message ends
    const auto row = [](const char* name, const QByteArray& text, const char* environment, const QStringList& line, const char* result) {
      QTest::newRow(name) << text << QString::fromUtf8(environment) << line << QString::fromUtf8(result);
    };
    row("comments, blanks, a mark", "\xEF\xBB\xBF# c\r\n\n  port =  7 \n db=a = b#c\n", "", {}, "--db a = b#c --port 7");
    row("nothing", "", "", {"--port", "1"}, "--port 1");
    row("environment before file", "port = 7\nbind = ::1", "KALVOR_PORT=8", {}, "--bind ::1 --port 8");
    row("line before both", "port = 7", "KALVOR_PORT=8", {"--port", "9"}, "--port 9");
    row("flags", "plaintext = Yes", "", {}, "--plaintext");
    row("a flag taken back", "plaintext = yes", "KALVOR_PLAINTEXT=off", {}, "");
    row("the line decides on encryption", "tls = yes", "", {"--plaintext"}, "--plaintext");
    row("no hours", "idle-hours = 0", "", {}, "ред 1: „idle-hours“ иска цяло число от 1 нагоре");
    row("unknown key", "port = 7\n\nprot = 8", "", {}, "ред 3: непознат ключ „prot“");
    row("keys have one spelling", "Port = 7", "", {}, "ред 1: непознат ключ „Port“");
    row("no pair", "#\nport", "", {}, "ред 2: редът не е от вида ключ = стойност");
    row("no key", " = 3", "", {}, "ред 1: редът не е от вида ключ = стойност");
    row("no value", "db =", "", {}, "ред 1: „db“ иска стойност");
    row("an option as value", "db = --force", "", {}, "ред 1: „db“ иска стойност");
    row("a control character", QByteArray("db = a\0b", 8), "", {}, "ред 1: „db“ иска стойност");
    row("no number", "port = 0x10", "", {}, "ред 1: „port“ иска число от 0 до 65535");
    row("a sign", "metrics-port = -1", "", {}, "ред 1: „metrics-port“ иска число от 0 до 65535");
    row("too great", "port = 65536", "", {}, "ред 1: „port“ иска число от 0 до 65535");
    row("no flag", "plaintext = 2", "", {}, "ред 1: „plaintext“ иска yes или no");
    row("twice", "port = 7\nport = 7", "", {}, "ред 2: „port“ е дадено вече на ред 1");
    row("no UTF-8", "# ok\nbind = \xFF", "", {}, "ред 2: текстът не е UTF-8");
    row("a bad variable", "", "KALVOR_METRICS_PORT=x", {}, "KALVOR_METRICS_PORT: „metrics-port“ иска число от 0 до 65535");
  }

  void settings()
  {
    QFETCH(QByteArray, text);
    QFETCH(QString, environment);
    QFETCH(QStringList, line);
    QFETCH(QString, result);
    QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("server.conf")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(text);
    file.close();
    const QByteArray variable = environment.section(u'=', 0, 0).toUtf8();
    const QByteArray database = qgetenv("KALVOR_DATABASE");
    qunsetenv("KALVOR_DATABASE");
    if (!variable.isEmpty()) {
      qputenv(variable.constData(), environment.section(u'=', 1).toUtf8());
    }
    QString got;
    try {
      got = withConfiguration(QStringList{"--config", file.fileName()} + line).join(u' ');
    } catch (const UsageError& error) {
      got = QString::fromUtf8(error.what());
      got = got.startsWith(folder.path()) ? got.section(QStringLiteral(".conf, "), 1) : got;
    }
    qunsetenv(variable.constData());
    if (!database.isNull()) {
      qputenv("KALVOR_DATABASE", database);
    }
    QCOMPARE(got, result);
  }

  void filesThatCannotBeRead()
  {
    QTemporaryDir folder;
    QVERIFY_THROWS_EXCEPTION(UsageError, withConfiguration({"--config", folder.filePath("none")}));
    QVERIFY_THROWS_EXCEPTION(UsageError, withConfiguration({"--config", folder.path()}));
    QVERIFY_THROWS_EXCEPTION(UsageError, withConfiguration({"--config"}));
    QVERIFY_THROWS_EXCEPTION(UsageError, withConfiguration({"--config", "--db"}));
  }
};

static RegisterTest<ConfigurationTest> configurationTest;

}  // namespace kalvor::testing

#include "configuration_test.moc"
