#include <QDir>

#include "common/files.h"
#include "scratch_documents.h"
#include "scripted_ports.h"
#include "several_tests.h"

using namespace kalvor;

class FilesTest : public QObject {
  Q_OBJECT

 private slots:
  void init() { documents_ = std::make_unique<testing::ScratchDocuments>(); }
  void cleanup() { documents_.reset(); }

  void deleting_data()
  {
    QTest::addColumn<QString>("what");  // begins with "*" or "?": a mask
    QTest::addColumn<QString>("left");
    QTest::newRow("extension") << "txt" << "a.TXTX,b,c.dat";
    QTest::newRow("with its dot") << ".txt" << "a.TXTX,b,c.dat";
    QTest::newRow("no extension") << "" << "A.TXT,a.TXTX,a.txt,b,c.dat";
    QTest::newRow("mask") << "*.txt" << "a.TXTX,b,c.dat";
    QTest::newRow("one character") << "?.d?t" << "A.TXT,a.TXTX,a.txt,b";
    QTest::newRow("everything") << "*.*" << "";
    QTest::newRow("any") << "*" << "";
    QTest::newRow("a set is no mask") << "*[a].txt" << "A.TXT,a.TXTX,a.txt,b,c.dat";
  }
  void deleting()
  {
    QFETCH(QString, what);
    for (const char* name : {"a.txt", "A.TXT", "a.TXTX", "b", "c.dat"})
      documents_->write(name, "x");
    QDir(documents_->path()).mkpath("below.txt");
    documents_->write("below.txt/d.txt", "x");
    if (what.startsWith('*') || what.startsWith('?'))
      DeleteFilesInDirectory(documents_->path(), what);
    else
      QCOMPARE(DeleteFilesWithExt(documents_->path(), what), 0);
    QStringList left = QDir(documents_->path()).entryList(QDir::Files);
    left.sort();
    QTEST(left.join(','), "left");
    QVERIFY(documents_->has("below.txt/d.txt"));
  }

  void shellOperations_data()
  {
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("target");
    QTest::addColumn<ShellOperation>("operation");
    QTest::addColumn<QString>("files");  // with their contents afterwards; "!" before = false
    const QString all = "dir/in/b=b,dir/one=1,one=one,two=two";
    QTest::newRow("copy") << "one" << "three" << ShellOperation::Copy << "three=one," + all;
    QTest::newRow("copy into") << "two" << "dir" << ShellOperation::Copy << "dir/two=two," + all;
    QTest::newRow("copy over") << "two" << "one" << ShellOperation::Copy << "dir/in/b=b,dir/one=1,one=two,two=two";
    QTest::newRow("copy a folder") << "dir" << "new" << ShellOperation::Copy << "new/in/b=b,new/one=1," + all;
    QTest::newRow("move") << "one" << "dir/in" << ShellOperation::Move
                          << "dir/in/b=b,dir/in/one=one,dir/one=1,two=two";
    QTest::newRow("rename a folder") << "dir" << "new" << ShellOperation::Rename
                                     << "new/in/b=b,new/one=1,one=one,two=two";
    QTest::newRow("delete") << "dir" << "" << ShellOperation::Delete << "one=one,two=two";
    QTest::newRow("into itself") << "dir" << "dir/in" << ShellOperation::Copy << "!" + all;
    QTest::newRow("onto itself") << "one" << "one" << ShellOperation::Copy << "!" + all;
    QTest::newRow("missing") << "none" << "x" << ShellOperation::Move << "!" + all;
    QTest::newRow("no folder") << "one" << "none/x" << ShellOperation::Copy << "!" + all;
  }
  void shellOperations()
  {
    QFETCH(QString, source);
    QFETCH(QString, target);
    QFETCH(ShellOperation, operation);
    QFETCH(QString, files);
    makeTree();
    testing::ScriptedPrompt prompt;
    const bool wanted = !files.startsWith('!');
    QCOMPARE(ShellFileOperation(documents_->path(source), target.isEmpty() ? "" : documents_->path(target), operation),
             wanted);
    QStringList expected = files.mid(wanted ? 0 : 1).split(',');
    expected.sort();
    QCOMPARE(tree(), expected);
    QCOMPARE(prompt.kinds.contains(PromptKind::Error), !wanted);
  }

  void replacingIsAskedFor()
  {
    makeTree();
    testing::ScriptedPrompt prompt;
    prompt.answers = {PromptButton::No};
    QVERIFY(!ShellFileOperation(documents_->path("one"), documents_->path("two"), ShellOperation::Move));
    QCOMPARE(prompt.kinds, QList<PromptKind>{PromptKind::Confirmation});
    QCOMPARE(documents_->read("two"), QByteArray("two"));
    QCOMPARE(documents_->read("one"), QByteArray("one"));
  }

  void locations_data()
  {
    QTest::addColumn<QString>("location");
    QTest::addColumn<QString>("host");
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QString>("file");
    QTest::newRow("address") << "ftp://host/in/day" << "host" << "in/day" << "day";
    QTest::newRow("without scheme") << "host/dir/file" << "host" << "dir/file" << "file";
    QTest::newRow("host alone") << "host" << "host" << "" << "host";
    QTest::newRow("address of a host") << "ftp://host" << "host" << "" << "host";
    QTest::newRow("host like the scheme") << "ftp://f/x" << "f" << "x" << "x";
    QTest::newRow("trailing slash") << "host/in/" << "host" << "in/" << "";
    QTest::newRow("no host") << "/in/day" << "" << "/in/day" << "day";
    QTest::newRow("no host in an address") << "ftp:///in" << "" << "ftp:///in" << "in";
    QTest::newRow("empty") << "" << "" << "" << "";
  }
  void locations()
  {
    QFETCH(QString, location);
    QTEST(ExtractIPHostName(location), "host");
    QTEST(ExtractIPDir(location), "folder");
    QTEST(ExtractIPFileName(location), "file");
  }

  void names()
  {
    QCOMPARE(RemoveHostNameFromPath("PC:C:\\a\\b"), QString("C:\\a\\b"));
    QCOMPARE(RemoveHostNameFromPath("C:\\a"), QString("C:\\a"));
    QCOMPARE(RemoveHostNameFromPath("PC:C:"), QString("PC:C:"));
    QCOMPARE(GetHostName(), IPGetComputerName() == "(unknown)" ? QString() : IPGetComputerName() + ':');
    QCOMPARE(GetShortFilePath("/a b/long file name.text"), QString("/a b/long file name.text"));
    QString folder;
    QVERIFY(ReturnSystemDirectory(folder));
    QCOMPARE(folder, IP_GetWinSysDir());
    QVERIFY(ReturnWindowsDirectory(folder));
    QCOMPARE(folder, IP_GetWinDir());
    QVERIFY(QDir(folder).exists() && !folder.endsWith('/'));
  }

 private:
  void makeTree() const
  {
    QDir(documents_->path()).mkpath("dir/in");
    documents_->write("one", "one");
    documents_->write("two", "two");
    documents_->write("dir/one", "1");
    documents_->write("dir/in/b", "b");
  }
  QStringList tree(const QString& below = {}) const
  {
    QStringList all;
    const QDir folder(documents_->path(below));
    for (const QString& name : folder.entryList(QDir::Files))
      all << below + name + "=" + documents_->read(below + name);
    for (const QString& name : folder.entryList(QDir::Dirs | QDir::NoDotAndDotDot))
      all << tree(below + name + "/");
    all.sort();
    return all;
  }

  std::unique_ptr<testing::ScratchDocuments> documents_;
};

static const testing::RegisterTest<FilesTest> registerFilesTest;
#include "files_test.moc"
