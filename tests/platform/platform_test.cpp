#include <QTemporaryDir>

#include "platform/system.h"
#include "platform/text_encoding.h"
#include "scripted_ports.h"
#include "several_tests.h"

using namespace kalvor;

class PlatformTest : public QObject {
  Q_OBJECT
 private slots:
  void windows1251Bytes_data()
  {
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("back");
    QTest::newRow("letters") << "АЯая" << QByteArray("\xc0\xdf\xe0\xff") << "АЯая";
    QTest::newRow("signs") << "№€«»" << QByteArray("\xb9\x88\xab\xbb") << "№€«»";
    QTest::newRow("missing character") << "ѝa" << QByteArray("?a") << "?a";
    QTest::newRow("outside the plane") << "x😀y" << QByteArray("x?y") << "x?y";
    QTest::newRow("empty") << "" << QByteArray() << "";
  }
  void windows1251Bytes()
  {
    QFETCH(QString, text);
    QFETCH(QByteArray, bytes);
    QFETCH(QString, back);
    QCOMPARE(toWindows1251(text), bytes);
    QCOMPARE(fromWindows1251(bytes), back);
  }

  void everyByteSurvivesARoundTrip()
  {
    QByteArray all;
    for (int i = 0; i < 256; ++i)
      all.append(char(i));
    QCOMPARE(toWindows1251(fromWindows1251(all)), all);
  }

  void textFilesAreReadInEitherEncoding()
  {
    QCOMPARE(decodeTextFile("\xef\xbb\xbf\xd0\x90"), QString("А"));
    QCOMPARE(decodeTextFile("\xd0\x90"), QString("А"));
    QCOMPARE(decodeTextFile("\xc0\xe1"), QString("Аб"));
  }

  void documentsFolderCanBeNamedByTheEnvironment()
  {
    QTemporaryDir folder;
    qputenv("KALVOR_DOCUMENTS", folder.path().toUtf8());
    QCOMPARE(personalDocumentsFolder(), folder.path() + directorySeparator());
    qunsetenv("KALVOR_DOCUMENTS");
    QVERIFY(personalDocumentsFolder() != folder.path() + directorySeparator());
  }

  void processUsesMemory() { QVERIFY(processMemoryUsage() > 1024 * 1024); }

  void portsGoBackToTheStandardOnes()
  {
    const QDateTime when(QDate(2026, 1, 18), QTime(9, 5));
    {
      testing::FixedClock clock(when);
      testing::ScriptedPrompt prompt;
      prompt.answers = {PromptButton::No};
      QCOMPARE(systemClock().today(), QDate(2026, 1, 18));
      QVERIFY(!confirm("Да?"));
      QCOMPARE(prompt.takeMessages(), QStringList{"Да?"});
      QCOMPARE(prompt.kinds, QList<PromptKind>{PromptKind::Confirmation});
    }
    QVERIFY(systemClock().now() > when);
    QCOMPARE(randomSource().bytes(16).size(), 16);
    QVERIFY(randomSource().bytes(16) != randomSource().bytes(16));
  }
};

static const testing::RegisterTest<PlatformTest> registerPlatformTest;
#include "platform_test.moc"
