#include "common/files.h"
#include "common/registry_options.h"
#include "data/data_error.h"
#include "scratch_registry.h"
#include "several_tests.h"

using namespace kalvor;

namespace {

const QString key = QStringLiteral("\\SOFTWARE\\Фирма/1\\App");

Variant readOption(const QString& keyPath, const QString& name, RegistryType type, bool currentUser = true)
{
  Variant value = QStringLiteral("before");
  GetRegistryOption(keyPath, name, type, value, currentUser);
  return value;
}

}  // namespace

class RegistryOptionsTest : public QObject {
  Q_OBJECT

 private slots:
  void init() { registry_ = std::make_unique<testing::ScratchRegistry>(); }
  void cleanup() { registry_.reset(); }

  void types_data()
  {
    QTest::addColumn<RegistryType>("type");
    QTest::addColumn<Variant>("written");
    QTest::addColumn<Variant>("read");
    QTest::addColumn<Variant>("valueMissing");
    QTest::addColumn<Variant>("keyMissing");
    const Variant before("before"), null, minusOne(-1), minusOneReal(-1.0);
    const auto row = [](const char* name, RegistryType type, const Variant& written, const Variant& read,
                        const Variant& valueMissing, const Variant& keyMissing) {
      QTest::newRow(name) << type << written << read << valueMissing << keyMissing;
    };
    row("boolean", RegistryType::Boolean, true, true, false, false);
    row("boolean from text", RegistryType::Boolean, "True", false, false, false);
    row("integer", RegistryType::Integer, -2147483647, -2147483647, minusOne, minusOne);
    row("16-bit integer", RegistryType::SmallInt, Variant::fromValue<qint16>(-300), -300, minusOne, null);
    row("8-bit signed integer", RegistryType::ShortInt, Variant::fromValue<qint8>(-3), -3, minusOne, null);
    row("8-bit unsigned integer", RegistryType::Byte, Variant::fromValue<quint8>(200), 200, before, null);
    row("single float", RegistryType::Single, 1.5f, 1.5, minusOneReal, minusOneReal);
    row("double float", RegistryType::Double, 0.1, 0.1, minusOneReal, minusOneReal);
    row("text", RegistryType::Text, "a, b=\"в\"\r\n", "a, b=\"в\"\r\n", "", "");
    row("text like a mark", RegistryType::Text, "@Invalid()", "@Invalid()", "", "");
    row("other", RegistryType::Other, "x", before, before, null);
    row("no number", RegistryType::Integer, "x", -1, minusOne, minusOne);
    row("date is not written", RegistryType::Text, QDate(2026, 1, 18), "", "", "");
    row("null is not written", RegistryType::Integer, Variant(), minusOne, minusOne, minusOne);
  }
  void types()
  {
    QFETCH(RegistryType, type);
    QFETCH(Variant, written);
    for (const bool currentUser : {true, false}) {
      QTEST(readOption(key, "Value", type, currentUser), "keyMissing");
      SetRegistryOption(key, "Value", written, currentUser);
      QTEST(readOption(key, "Value", type, currentUser), "read");
      QTEST(readOption(key, "Another", type, currentUser), "valueMissing");
      QTEST(readOption(key + "\\Below", "Value", type, currentUser), "keyMissing");
    }
  }

  void namesMatchInAnyCase()
  {
    SetRegistryOption("Software\\Kalvor", "Път", "a", true);
    SetRegistryOption("SOFTWARE\\KALVOR\\", "ПЪТ", "b", true);
    QCOMPARE(readOption("software\\kalvor", "път", RegistryType::Text), Variant("b"));
    QCOMPARE(readOption("software\\kalvor", "път", RegistryType::Text, false), Variant(""));
    SetRegistryOption("Software\\Kalvor", "", "own", true);
    QCOMPARE(readOption("Software\\Kalvor", "", RegistryType::Text), Variant("own"));
    DeleteRegistryOption("software\\Kalvor", "път", true);
    DeleteRegistryOption("software\\none", "x", true);
    QCOMPARE(readOption("Software\\Kalvor", "Път", RegistryType::Byte), Variant("before"));
    QCOMPARE(readOption("Software\\none", "x", RegistryType::Byte), Variant());
  }

  void keysAreDeletedWithWhatIsBelow()
  {
    SetRegistryOption("A\\B\\C", "x", 1, true);
    SetRegistryOption("A\\D", "x", 2, true);
    DeleteRegistryKey("a\\b", true);
    QCOMPARE(readOption("A\\B\\C", "x", RegistryType::Integer), Variant(-1));
    QCOMPARE(readOption("A\\D", "x", RegistryType::Integer), Variant(2));
    for (const char* missing : {"A\\B", "", "\\"})
      try {
        DeleteRegistryKey(missing, true);
        QFAIL("nothing was raised");
      } catch (const DataError& error) {
        QCOMPARE(error.message(), QString("Не може да изтрие ключа от регистрите."));
      }
  }

  void writingThatFails()
  {
    registry_->makeUnwritable();
    QVERIFY_EXCEPTION_THROWN(SetRegistryOption("A", "x", 1, false), DataError);
    QCOMPARE(readOption("A", "x", RegistryType::Integer, false), Variant(-1));
  }

  void registryPaths_data()
  {
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("value");
    QTest::newRow("machine") << "HKEY_LOCAL_MACHINE\\SOFTWARE\\Vendor\\App|InstallDir" << "/opt/app";
    QTest::newRow("user") << "HKEY_CURRENT_USER\\SOFTWARE\\Vendor\\App|InstallDir" << "/home/app";
    QTest::newRow("any other root") << "x\\SOFTWARE\\Vendor\\App|InstallDir" << "/opt/app";
    QTest::newRow("no such value") << "HKEY_LOCAL_MACHINE\\SOFTWARE\\Vendor\\App|None" << "";
    QTest::newRow("no such key") << "HKEY_LOCAL_MACHINE\\SOFTWARE\\None|InstallDir" << "";
    QTest::newRow("number") << "HKEY_LOCAL_MACHINE\\SOFTWARE\\Vendor\\App|Number" << "7";
    QTest::newRow("nothing") << "" << "";
  }
  void registryPaths()
  {
    QFETCH(QString, path);
    writePaths();
    QString value = "before";
    CheckRegKey(path, value);
    QTEST(value, "value");
  }

  void fileNames_data()
  {
    QTest::addColumn<QString>("given");
    QTest::addColumn<QString>("name");
    const QString install = "<#HKEY_LOCAL_MACHINE\\SOFTWARE\\Vendor\\App|InstallDir#>";
    QTest::newRow("blank") << "  " << "  ";
    QTest::newRow("plain") << "a\\b.txt" << "a\\b.txt";
    QTest::newRow("Windows folder") << "<#WINDIR#>\\notepad.exe" << IP_GetWinDir() + "\\notepad.exe";
    QTest::newRow("both, twice") << "<#WINSYSDIR#>;<#WINDIR#>;<#WINSYSDIR#>"
                                 << "@SYS;" + IP_GetWinDir() + ";@SYS";
    QTest::newRow("registry") << install + "/bin/x" << "/opt/app/bin/x";
    QTest::newRow("in front of what is left") << "x" + install + "y" << "/opt/appxy";
    QTest::newRow("the first one only") << install + install << "/opt/app" + install;
    QTest::newRow("missing value") << "<#HKEY_LOCAL_MACHINE\\A|B#>y" << "y";
    QTest::newRow("no end") << "a<#HKEY" << "a<#HKEY";
  }
  void fileNames()
  {
    QFETCH(QString, given);
    QFETCH(QString, name);
    writePaths();
    QCOMPARE(IP_GetFileName(given), name.replace("@SYS", IP_GetWinSysDir()));
  }

 private:
  void writePaths()
  {
    SetRegistryOption("SOFTWARE\\Vendor\\App", "InstallDir", "/opt/app", false);
    SetRegistryOption("SOFTWARE\\Vendor\\App", "InstallDir", "/home/app", true);
    SetRegistryOption("SOFTWARE\\Vendor\\App", "Number", 7, false);
  }

  std::unique_ptr<testing::ScratchRegistry> registry_;
};

static const testing::RegisterTest<RegistryOptionsTest> registerRegistryOptionsTest;
#include "registry_options_test.moc"
