// Transfers against a real server; tests/common/ftp_server.py.
#include <QDir>
#include <QProcess>
#include <QTcpServer>

#include "common/ftp_transfer.h"
#include "scratch_documents.h"
#include "session/error_log.h"
#include "several_tests.h"

using namespace kalvor;

namespace {

const QString user = QStringLiteral("user");
const QString password = QStringLiteral("тайна 1");

class FtpServerProcess {
 public:
  // Empty when the server answers.
  QString start(const QString& folder, const QString& log, int cutAfter)
  {
    const QString script = QStringLiteral(KALVOR_SOURCE_DIR "/tests/common/ftp_server.py");
    QString said;
    // The system's own interpreter first: it is the one that Debian packages install for.
    for (const QString& python : {QStringLiteral("/usr/bin/python3"), QStringLiteral("python3")}) {
      process_.setProcessEnvironment(QProcessEnvironment::systemEnvironment());
      process_.start(python, {"-B", script, folder, log, QString::number(cutAfter)});
      process_.waitForReadyRead(30000);
      port = process_.readLine().trimmed().toUShort();
      if (port != 0)
        return {};
      stop();
      said += process_.readAllStandardError();
    }
    return "The FTP server did not start; it needs the package python3-pyftpdlib.\n" + said;
  }
  void stop()
  {
    process_.kill();
    process_.waitForFinished();
  }
  ~FtpServerProcess() { stop(); }

  quint16 port = 0;

 private:
  QProcess process_;
};

QByteArray manyBytes()
{
  QByteArray bytes;
  for (int i = 0; bytes.size() < 2'000'000; ++i)
    bytes += QByteArray::number(i) + ' ';
  return bytes;
}

}  // namespace

class FtpTest : public QObject {
  Q_OBJECT

 private slots:
  void init()
  {
    documents_ = std::make_unique<testing::ScratchDocuments>();
    QDir(documents_->path()).mkpath("remote/in/day");
    InitLog();
  }
  void cleanup()
  {
    server_.reset();
    CloseLog();
    documents_.reset();
  }

  void uploads_data()
  {
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("temporary");
    QTest::addColumn<QString>("stored");
    QTest::newRow("under its name") << "report.xml" << false << "report.xml";
    QTest::newRow("under a temporary name") << "report.xml" << true << "report";
    QTest::newRow("several dots") << "отчет 1.a;type=i.xml" << true << "отчет 1.a;type=i";
    QTest::newRow("no extension") << "report" << true << "report";
  }
  void uploads()
  {
    QFETCH(QString, name);
    QFETCH(bool, temporary);
    QFETCH(QString, stored);
    startServer();
    documents_->write(name, manyBytes());
    QCOMPARE(UploadFileOnFTP(documents_->path(name), "ftp://127.0.0.1/in/day", user, password, port(), temporary), 0);
    QCOMPARE(documents_->read("remote/in/day/" + name), manyBytes());
    const QStringList said = commands();
    QVERIFY2(said.contains("STOR in/day/" + stored), qPrintable(said.join('\n')));
    QVERIFY(said.indexOf("TYPE I") >= 0 && said.indexOf("TYPE I") < said.indexOf("STOR in/day/" + stored));
    QCOMPARE(said.contains("RNTO in/day/" + name), stored != name);
    QCOMPARE(QDir(documents_->path("remote/in/day")).entryList(QDir::Files), QStringList{name});
  }

  void watcherNeverSeesAPart()
  {
    startServer();
    documents_->write("report.xml", manyBytes());
    QCOMPARE(UploadFileOnFTP(documents_->path("report.xml"), "127.0.0.1/", user, password, port(), true), 0);
    const QStringList seen = commands().filter(QRegularExpression("^had "));
    QVERIFY(seen.size() > 3);
    for (const QString& folder : seen)
      QCOMPARE(folder, QString("had in report"));
    QCOMPARE(documents_->read("remote/report.xml"), manyBytes());
  }

  void downloads_data()
  {
    QTest::addColumn<QByteArray>("there");   // null: no local file
    QTest::addColumn<QByteArray>("remote");
    QTest::addColumn<QByteArray>("after");
    QTest::addColumn<bool>("remoteDeleted");
    const QByteArray many = manyBytes();
    QTest::newRow("new") << QByteArray() << many << many << true;
    QTest::newRow("empty") << QByteArray() << QByteArray("") << QByteArray("") << true;
    QTest::newRow("beginning is there") << many.first(700000) << many << many << true;
    QTest::newRow("short beginning is there") << many.first(10) << many << many << true;
    QTest::newRow("all of it is there") << many << many << many << true;
    QTest::newRow("another file is there") << QByteArray("mine") << many << QByteArray("mine") << false;
    QTest::newRow("a longer file is there") << many << many.first(100) << many << false;
    QTest::newRow("a little more is there") << many << many.chopped(100) << many << false;
  }
  void downloads()
  {
    QFETCH(QByteArray, there);
    QFETCH(QByteArray, remote);
    QFETCH(bool, remoteDeleted);
    startServer();
    documents_->write("remote/in/day/a.xml", remote);
    if (!there.isNull()) {
      QDir(documents_->path()).mkpath("local/new");
      documents_->write("local/new/a.xml", there);
    }
    QCOMPARE(download("day/a.xml", true), 0);
    QTEST(documents_->read("local/new/a.xml"), "after");
    QCOMPARE(!documents_->has("remote/in/day/a.xml"), remoteDeleted);
    QCOMPARE(logged(), !remoteDeleted);
  }

  void brokenDownloadResumes()
  {
    startServer(1'000'000);
    documents_->write("remote/in/a.xml", manyBytes());
    QCOMPARE(download("a.xml", true), -3);
    QVERIFY(logged());
    const QByteArray part = documents_->read("local/new/a.xml");
    QVERIFY(part.size() > 100'000 && part.size() <= 1'000'000);
    QVERIFY(documents_->has("remote/in/a.xml"));
    QCOMPARE(download("a.xml", true), 0);
    QCOMPARE(documents_->read("local/new/a.xml"), manyBytes());
    QVERIFY(commands().contains("REST " + QString::number(part.size() - 4096)));
    QVERIFY(!documents_->has("remote/in/a.xml"));
  }

  void failures_data()
  {
    QTest::addColumn<QString>("location");
    QTest::addColumn<QString>("password");
    QTest::addColumn<QString>("file");
    QTest::addColumn<int>("up");
    QTest::addColumn<int>("down");
    QTest::addColumn<bool>("connects");
    const QString place = "127.0.0.1/in";
    QTest::newRow("wrong password") << place << "wrong" << "a.xml" << -2 << -2 << false;
    QTest::newRow("missing file") << place << password << "none.xml" << -1 << -1 << true;
    QTest::newRow("missing folder") << "127.0.0.1/none" << password << "a.xml" << -2 << -1 << true;
    QTest::newRow("no host") << "/in" << password << "a.xml" << -1 << -1 << false;
    QTest::newRow("impossible host") << "a b/in" << password << "a.xml" << -1 << -1 << false;
    QTest::newRow("line break in the folder") << "127.0.0.1/in\r\nDELE x" << password << "a.xml" << -1 << -1 << true;
    QTest::newRow("line break in the password") << place << "x\r\nDELE x" << "a.xml" << -1 << -1 << false;
    QTest::newRow("line break in the name") << place << password << "a\nDELE x" << -1 << -1 << true;
  }
  void failures()
  {
    QFETCH(QString, location);
    QFETCH(QString, password);
    QFETCH(QString, file);
    startServer();
    for (const char* local : {"a.xml", "a\nDELE x"})
      documents_->write(local, "x");
    QTEST(UploadFileOnFTP(documents_->path(file), location, user, password, port(), true), "up");
    QTEST(DownloadFileFromFTP(file, documents_->path("local"), location, user, password, port(), false), "down");
    QTEST(TestFTPConnection(location, user, password, port()), "connects");
    QVERIFY(logged());
    QVERIFY(!documents_->has("local/" + file));
    QVERIFY(commands().filter("DELE").isEmpty());
    QStringList lines;
    LoadErrorLog(lines);
    QVERIFY(lines.filter(password).isEmpty());
  }

  void refusedConnection()
  {
    QTcpServer taken;
    QVERIFY(taken.listen(QHostAddress::LocalHost));
    const quint16 port = taken.serverPort();
    taken.close();
    documents_->write("a.xml", "x");
    QCOMPARE(UploadFileOnFTP(documents_->path("a.xml"), "127.0.0.1/in", user, password, port, false), -3);
    QCOMPARE(DownloadFileFromFTP("a.xml", documents_->path("local"), "127.0.0.1/in", user, password, port, true), -3);
    QVERIFY(!TestFTPConnection("127.0.0.1", user, password, port));
  }

  void localNamesStayInTheFolder()
  {
    startServer();
    for (const char* name : {"..", "in/..", "in/", "", "..\\a.xml"})
      QCOMPARE(download(name, true), -1);
    QCOMPARE(QDir(documents_->path("local/new")).entryList(QDir::Files | QDir::Hidden), QStringList());
  }

 private:
  void startServer(int cutAfter = 0)
  {
    server_ = std::make_unique<FtpServerProcess>();
    const QString failed = server_->start(documents_->path("remote"), documents_->path("commands"), cutAfter);
    if (!failed.isEmpty())
      qFatal("%s", qPrintable(failed));
  }
  quint16 port() const { return server_->port; }
  int download(const QString& name, bool andDelete) const
  {
    return DownloadFileFromFTP(name, documents_->path("local/new"), "ftp://127.0.0.1/in/", user, password, port(),
                               andDelete);
  }
  QStringList commands() const { return QString::fromUtf8(documents_->read("commands")).split('\n'); }
  static bool logged()
  {
    QStringList lines;
    LoadErrorLog(lines);
    return lines.contains("[Процедура]: DownLoadFileFromFTP");
  }

  std::unique_ptr<testing::ScratchDocuments> documents_;
  std::unique_ptr<FtpServerProcess> server_;
};

static const testing::RegisterTest<FtpTest> registerFtpTest;
#include "ftp_test.moc"
