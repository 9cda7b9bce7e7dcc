#include <QTemporaryDir>
#include <QtEndian>

#include "data/data_error.h"
#include "platform/file_version.h"
#include "platform/version_resource.h"
#include "several_tests.h"

using namespace kalvor;

namespace {

QByteArray words(std::initializer_list<quint16> values)
{
  QByteArray bytes;
  for (const quint16 value : values)
    bytes.append(char(value & 0xFF)).append(char(value >> 8));
  return bytes;
}

QByteArray longs(std::initializer_list<quint32> values)
{
  QByteArray bytes;
  for (const quint32 value : values)
    bytes += words({quint16(value & 0xFFFF), quint16(value >> 16)});
  return bytes;
}

QByteArray padded(QByteArray bytes) { return bytes.append((4 - bytes.size() % 4) % 4, '\0'); }

QByteArray utf16(const QString& text)
{
  QByteArray bytes;
  for (const QChar c : text)
    bytes += words({c.unicode()});
  return bytes + words({0});
}

// A node of the version data: total length, length of the value, whether that is text, name, value, further nodes.
QByteArray node(const QString& name, const QByteArray& value, quint16 valueLength, bool isText,
                const QList<QByteArray>& children = {})
{
  QByteArray bytes = padded(words({0, valueLength, quint16(isText)}) + utf16(name)) + value;
  for (const QByteArray& child : children)
    bytes = padded(bytes) + child;
  return words({quint16(bytes.size())}) + bytes.mid(2);
}

QByteArray textNode(const QString& key, const QString& text)
{
  return node(key, utf16(text), quint16(text.size() + 1), true);
}

QByteArray versionData()
{
  const QByteArray fixed = longs({0xFEEF04BD, 0x10000, 0x00020007, 0x000B1234, 0, 0, 0, 0, 0, 0, 0, 0, 0});
  const QByteArray table = node("040204E3", {}, 0, true,
                                {textNode("CompanyName", "Фирма"), textNode("InternalName", "Модул")});
  return node("VS_VERSION_INFO", fixed, quint16(fixed.size()), false,
              {node("StringFileInfo", {}, 0, true, {table}),
               node("VarFileInfo", {}, 0, true, {node("Translation", words({0x0402, 0x04E3}), 4, false)})});
}

// One section, at address 0x1000 and offset 0x200, that holds the resources: type, name, language, data.
QByteArray executable(bool wide, quint32 type = 16)
{
  const auto directory = [](quint32 id, quint32 target) { return longs({0, 0, 0, 0x00010000, id, target}); };
  const QByteArray data = versionData();
  const QByteArray resources = directory(type, 0x80000018) + directory(1, 0x80000030) + directory(0x402, 0x48) +
                               longs({0x1000 + 0x58, quint32(data.size()), 0, 0}) + data;
  QByteArray optional = words({quint16(wide ? 0x20B : 0x10B)});
  optional.append((wide ? 112 : 96) - 2, '\0');
  optional += longs({0, 0, 0, 0, 0x1000, quint32(resources.size())});
  QByteArray file = "MZ";
  file.append(0x3A, '\0');
  file += longs({0x40}) + "PE" + words({0}) + words({0x14C, 1}) + longs({0, 0, 0}) +
          words({quint16(optional.size()), 0}) + optional;
  file += QByteArray(".rsrc\0\0\0", 8) + longs({quint32(resources.size()), 0x1000, quint32(resources.size()), 0x200});
  return file.leftJustified(0x200, '\0') + resources;
}

}  // namespace

class FileVersionTest : public QObject {
  Q_OBJECT

 private slots:
  void versions_data()
  {
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("version");
    QTest::addColumn<QString>("internalName");
    QTest::newRow("32-bit program") << "a.exe" << executable(false) << "2.7.11.4660" << "Модул";
    QTest::newRow("64-bit library") << "a.dll" << executable(true) << "2.7.11.4660" << "Модул";
    QTest::newRow("other resources") << "a.exe" << executable(true, 10) << "0.0.0.0" << "";
    QTest::newRow("shared library") << "libx.so.1.2.3" << QByteArray("\x7f" "ELF") << "1.2.3.0" << "";
    QTest::newRow("major alone") << "libx.so.6" << QByteArray() << "6.0.0.0" << "";
    QTest::newRow("no version") << "libx.so" << QByteArray("text") << "0.0.0.0" << "";
  }
  void versions()
  {
    QFETCH(QString, name);
    QFETCH(QByteArray, content);
    QFETCH(QString, version);
    const QString path = write(name, content);
    int major = -1, minor = -1, release = -1, build = -1;
    QCOMPARE(GetFileVersionDetailed(path, major, minor, release, build), version);
    QCOMPARE(QString("%1.%2.%3.%4").arg(major).arg(minor).arg(release).arg(build), version);
    QCOMPARE(GetFileVersion(path, true), quint32(major << 16 | minor));
    QCOMPARE(GetFileVersion(path, false), quint32(release << 16 | build));
    QTEST(GetFileInternalName(path, "InternalName"), "internalName");
    QCOMPARE(GetFileInternalName(path, "None"), QString());
  }

  void linksAreFollowed()
  {
    write("liby.so.4.5", "x");
    QVERIFY(QFile::link(folder_.filePath("liby.so.4.5"), folder_.filePath("liby.so")));
    QCOMPARE(GetFileVersion(folder_.filePath("liby.so"), true), quint32(0x00040005));
  }

  void runningProgram()
  {
    QCoreApplication::setApplicationVersion("3.1");
    QCOMPARE(GetFileVersion(QCoreApplication::applicationFilePath(), true), quint32(0x00030001));
  }

  void unreadable()
  {
    int part = 0;
    for (const QString& path : {folder_.filePath("none"), folder_.path()}) {
      QVERIFY_EXCEPTION_THROWN(GetFileVersion(path, true), SilentAbort);
      QVERIFY_EXCEPTION_THROWN(GetFileVersionDetailed(path, part, part, part, part), SilentAbort);
      QCOMPARE(GetFileInternalName(path, "InternalName"), QString());
    }
  }

  // Under the sanitizers a byte read outside of the file is an error.
  void damagedFiles()
  {
    const QByteArray whole = executable(true);
    QVERIFY(readVersionResource(whole));
    for (qsizetype size = 0; size < whole.size(); ++size) {
      const auto version = readVersionResource(QByteArray(whole.constData(), size));
      QVERIFY(!version || version->fileVersionHigh == 0x00020007);
    }
    for (qsizetype at = 0; at < whole.size(); ++at)
      for (const char value : {'\0', '\x7f', '\xff'}) {
        QByteArray damaged = whole;
        damaged[at] = value;
        readVersionResource(damaged);
      }
  }

 private:
  QString write(const QString& name, const QByteArray& content) const
  {
    QFile file(folder_.filePath(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
      qFatal("cannot write");
    return file.fileName();
  }

  QTemporaryDir folder_;
};

static const testing::RegisterTest<FileVersionTest> registerFileVersionTest;
#include "file_version_test.moc"
