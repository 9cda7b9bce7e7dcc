#include "server/log.h"

#include <QTemporaryFile>
#include <unistd.h>

#include "several_tests.h"

namespace kalvor::testing {

using namespace kalvor::server;

class LogTest : public QObject {
  Q_OBJECT

 private slots:
  // A value stays inside its quotes on its line, whatever it holds.
  void noValueForgesALine_data()
  {
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("written");
    QTest::newRow("plain") << "abc" << "abc";
    QTest::newRow("nothing") << "" << "\"\"";
    QTest::newRow("line ends") << "a\r\n<3>2026 level=error" << "\"a\\r\\n<3>2026 level=error\"";
    QTest::newRow("next line, separators") << QStringLiteral("a\u0085b\u2028c\u2029d") << "a\\x85b\\u2028c\\u2029d";
    QTest::newRow("escape, zero") << QString::fromLatin1(QByteArray("a\x1b[2J\0b", 7)) << "a\\x1b[2J\\x00b";
    QTest::newRow("direction") << QStringLiteral("a\u202Eb") << "a\\u202eb";
    QTest::newRow("quote") << "a\" user=\"x" << "\"a' user='x\"";
    QTest::newRow("pair") << "a=b" << "\"a=b\"";
  }
  void noValueForgesALine()
  {
    QFETCH(QString, value);
    QFETCH(QString, written);
    const QString line = writtenBy([&] { logEvent(LogLevel::Warning, "tried", {{"value", value}, {"last", QStringLiteral("1")}}); });
    QCOMPARE(line.section(u' ', 1), QStringLiteral("level=warning event=tried value=%1 last=1\n").arg(written));
  }

  void incidentsHoldNoTexts()
  {
    const QString line = writtenBy([] {
      logIncident("LogIn", QStringLiteral("near \"x\" in: SELECT 1 WHERE a = 'тай''на' AND b = 2 AND c = 'недовър"));
    });
    QVERIFY(line.endsWith(QStringLiteral(" details=\"near 'x' in: SELECT 1 WHERE a = '…' AND b = 2 AND c = '…'\"\n")));
  }

 private:
  template <class Body>
  static QString writtenBy(Body body)
  {
    QTemporaryFile file;
    file.open();
    const int before = dup(fileno(stderr));
    dup2(file.handle(), fileno(stderr));
    body();
    dup2(before, fileno(stderr));
    close(before);
    file.seek(0);
    return QString::fromUtf8(file.readAll());
  }
};

static RegisterTest<LogTest> logTest;

}  // namespace kalvor::testing

#include "log_test.moc"
