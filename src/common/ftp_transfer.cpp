#include "common/ftp_transfer.h"

#include <QDir>
#include <QFileInfo>

#include "common/files.h"
#include "common/text_tools.h"
#include "platform/ftp.h"
#include "session/error_log.h"

namespace kalvor {
namespace {

constexpr qint64 compared = 4096;  // bytes at the end of a local part that must be those of the remote file

FtpServer serverOf(const QString& location, const QString& user, const QString& password, quint16 port)
{
  return {ExtractIPHostName(location), port, user, password};
}

QString remoteFolderOf(const QString& location) { return EndWithDirSlash(ExtractIPDir(location), u'/'); }

int resultOf(const std::exception& error)
{
  const auto* ftp = dynamic_cast<const FtpError*>(&error);
  if (ftp && ftp->failure() == FtpFailure::Socket)
    return FtpSocketError;
  return ftp && ftp->failure() == FtpFailure::Reply ? FtpReplyError : FtpOtherError;
}

// Without its last extension; a name that begins with its only dot has none.
QString temporaryNameOf(const QString& fileName)
{
  const qsizetype dot = fileName.lastIndexOf(u'.');
  return dot > 0 ? fileName.left(dot) : fileName;
}

// The local end of a download. Nothing is written before the bytes that are there already proved to be the same.
class LocalPart {
 public:
  explicit LocalPart(const QString& path) : file_(path)
  {
    if (!file_.exists())
      return;
    if (!file_.open(QIODevice::ReadOnly))
      throw DataError(file_.errorString());
    start_ = qMax<qint64>(0, file_.size() - compared);
    file_.seek(start_);
    expected_ = file_.readAll();
    file_.close();
  }

  qint64 start() const { return start_; }
  bool differs() const { return differs_; }
  bool matchesToTheEnd() const { return !differs_ && expected_.isEmpty(); }

  bool receive(QByteArrayView bytes)
  {
    const qsizetype known = qMin(bytes.size(), expected_.size());
    differs_ = bytes.first(known) != QByteArrayView(expected_).first(known);
    expected_.remove(0, known);
    if (!differs_ && known < bytes.size())
      append(bytes.sliced(known));
    return !differs_;
  }

  // An empty remote file comes without a byte.
  void finish()
  {
    if (!file_.exists())
      append({});
    file_.close();
    if (file_.error() != QFileDevice::NoError)
      throw DataError(file_.errorString());
  }

 private:
  void append(QByteArrayView bytes)
  {
    if (!file_.isOpen() && !file_.open(QIODevice::WriteOnly | QIODevice::Append))
      throw DataError(file_.errorString());
    if (file_.write(bytes.data(), bytes.size()) != bytes.size())
      throw DataError(file_.errorString());
  }

  QFile file_;
  qint64 start_ = 0;
  QByteArray expected_;
  bool differs_ = false;
};

// True when the local file is the remote one afterwards.
bool fetchRest(FtpSession& session, const QString& remoteName, const QString& localFile)
{
  LocalPart local(localFile);
  try {
    session.fetch(remoteName, local.start(), [&](QByteArrayView bytes) { return local.receive(bytes); });
  } catch (const FtpError& error) {
    if (!local.differs() && error.failure() != FtpFailure::PastTheEnd)
      throw;
    return false;
  }
  local.finish();
  return local.matchesToTheEnd();
}

QString localNameOf(const QString& remoteFile)
{
  const QString name = ExtractIPFileName(remoteFile);
  if (name.isEmpty() || name == QLatin1String(".") || name == QLatin1String("..") || name.contains(u'\\'))
    throw DataError(QStringLiteral("Недопустимо име на файл: \"%1\"").arg(remoteFile));
  return name;
}

}  // namespace

int UploadFileOnFTP(const QString& localFile, const QString& location, const QString& user, const QString& password,
                    quint16 port, bool temporaryName)
{
  try {
    FtpSession session(serverOf(location, user, password, port));
    session.connect();
    const QString name = QFileInfo(localFile).fileName();
    const QString folder = remoteFolderOf(location);
    const QString storedName = temporaryName ? temporaryNameOf(name) : name;
    session.store(localFile, folder + storedName);
    if (storedName != name)
      session.rename(folder + storedName, folder + name);
    return FtpDone;
  } catch (const std::exception& error) {
    return resultOf(error);
  }
}

int DownloadFileFromFTP(const QString& remoteFile, const QString& localFolder, const QString& location,
                        const QString& user, const QString& password, quint16 port, bool deleteAfterDownload)
{
  try {
    if (!QDir().mkpath(localFolder))
      throw DataError(QStringLiteral("Папката %1 не може да бъде създадена.").arg(localFolder));
    const QString localFile = QDir(localFolder).filePath(localNameOf(remoteFile));
    const QString remoteName = remoteFolderOf(location) + remoteFile;
    FtpSession session(serverOf(location, user, password, port));
    session.connect();
    const bool fetched = fetchRest(session, remoteName, localFile);
    if (!fetched)
      LogError(QStringLiteral("Файлът %1 вече съществува с друго съдържание.").arg(localFile),
               QStringLiteral("DownLoadFileFromFTP"));
    if (fetched && deleteAfterDownload)
      session.remove(remoteName);
    return QFileInfo::exists(localFile) ? FtpDone : FtpOtherError;
  } catch (const std::exception& error) {
    LogError(errorText(error), QStringLiteral("DownLoadFileFromFTP"));
    return resultOf(error);
  }
}

bool TestFTPConnection(const QString& location, const QString& user, const QString& password, quint16 port)
{
  try {
    FtpSession session(serverOf(location, user, password, port));
    session.connect();
    return true;
  } catch (const std::exception&) {
    return false;
  }
}

}  // namespace kalvor
