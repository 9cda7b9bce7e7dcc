#include "server/backup/backup_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QCryptographicHash>
#include <QFileInfo>
#include <cerrno>
#include <cstdio>
#include <cstring>

namespace kalvor::server {

namespace {

constexpr qint64 chunk = 1024 * 1024;
constexpr const char* kindNames[] = {"sqlite", "postgresql"};

[[noreturn]] void failFile(const QString& fileName, const QString& reason)
{
  throw BackupError(QStringLiteral("%1: %2").arg(fileName, reason));
}

[[noreturn]] void failSystem(const QString& fileName)
{
  const int code = errno;
  failFile(fileName, code == ENOSPC ? QStringLiteral("дискът е пълен") : QString::fromLocal8Bit(std::strerror(code)));
}

QByteArray folderOf(const QString& fileName) { return QFile::encodeName(QFileInfo(fileName).absolutePath()); }

// "\nkalvor-backup 1 sqlite     00000070 HASH\n", always of one length; the hash covers what stands before it too.
QByteArray sealStart(BackupKind kind, int version)
{
  return "\nkalvor-backup 1 " + QByteArray(kindNames[size_t(kind)]).leftJustified(10) + ' ' +
         QByteArray::number(version).rightJustified(8, '0') + ' ';
}

qsizetype sealSize() { return sealStart(BackupKind::Sqlite, 0).size() + 64 + 1; }

QByteArray contentHash(QFile& file, qint64 size, const QByteArray& start, QFile* copy)
{
  QCryptographicHash hash(QCryptographicHash::Sha256);
  file.seek(0);
  for (qint64 left = size; left > 0;) {
    const QByteArray bytes = file.read(qMin(chunk, left));
    if (bytes.isEmpty()) {
      failFile(file.fileName(), QStringLiteral("файлът не може да бъде прочетен докрай: %1").arg(file.errorString()));
    }
    hash.addData(bytes);
    if (copy && copy->write(bytes) != bytes.size()) {
      failFile(copy->fileName(), copy->errorString());
    }
    left -= bytes.size();
  }
  hash.addData(start);
  return hash.result().toHex();
}

// The seal with its bytes.
std::optional<std::pair<BackupSeal, QByteArray>> sealOf(QFile& file)
{
  const qint64 size = file.size() - sealSize();
  if (size <= 0 || !file.seek(size)) {
    return {};
  }
  const QByteArray bytes = file.read(sealSize());
  for (const BackupKind kind : {BackupKind::Sqlite, BackupKind::PostgreSql}) {
    const QByteArray start = bytes.left(bytes.size() - 65);
    const int version = start.right(9).trimmed().toInt();
    if (version >= 0 && bytes.size() == sealSize() && bytes.endsWith('\n') && start == sealStart(kind, version)) {
      return {{BackupSeal{kind, version, size}, bytes}};
    }
  }
  return {};
}

// As root: whoever owns the folder, such as the server's user, is to read what was put there for him.
void giveToFolderOwner(int descriptor, const QString& fileName)
{
  struct stat folder{};
  if (geteuid() == 0 && stat(folderOf(fileName).constData(), &folder) == 0 &&
      fchown(descriptor, folder.st_uid, folder.st_gid) != 0) {
    failSystem(fileName);
  }
}

}  // namespace

PartFile::PartFile(const QString& target) : target_(target), path_(target + QStringLiteral(".part"))
{
  const QByteArray name = QFile::encodeName(path_);
  for (;;) {
    descriptor_ = open(name.constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, S_IRUSR | S_IWUSR);
    if (descriptor_ < 0) {
      failSystem(path_);
    }
    if (flock(descriptor_, LOCK_EX | LOCK_NB) != 0) {
      close(descriptor_);
      failFile(path_, QStringLiteral("друга програма пише в него"));
    }
    // Whoever held the lock until now may have renamed or removed the file.
    struct stat mine{}, there{};
    if (fstat(descriptor_, &mine) == 0 && stat(name.constData(), &there) == 0 && mine.st_ino == there.st_ino &&
        mine.st_dev == there.st_dev) {
      break;
    }
    close(descriptor_);
  }
  removeCompanions();
  if (ftruncate(descriptor_, 0) != 0) {
    failSystem(path_);
  }
  fchmod(descriptor_, S_IRUSR | S_IWUSR);
  giveToFolderOwner(descriptor_, path_);
}

PartFile::~PartFile()
{
  if (!finished_) {
    QFile::remove(path_);
    removeCompanions();
  }
  close(descriptor_);
}

void PartFile::removeCompanions()
{
  for (const char* ending : {"-journal", "-wal", "-shm"}) {
    QFile::remove(path_ + QLatin1StringView(ending));
  }
}

void PartFile::finish(Existing existing)
{
  if (fsync(descriptor_) != 0) {
    failSystem(path_);
  }
  const QByteArray from = QFile::encodeName(path_);
  const QByteArray to = QFile::encodeName(target_);
  int code = renameat2(AT_FDCWD, from.constData(), AT_FDCWD, to.constData(),
                       existing == Existing::Keep ? RENAME_NOREPLACE : 0);
  // Some file systems do not know how to keep what is there.
  if (code != 0 && errno == EINVAL && existing == Existing::Keep && !QFile::exists(target_)) {
    code = rename(from.constData(), to.constData());
  }
  if (code != 0) {
    failSystem(target_);
  }
  finished_ = true;
  const int folder = open(folderOf(target_).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  const bool synced = folder >= 0 && fsync(folder) == 0;
  if (folder >= 0) {
    close(folder);
  }
  if (!synced) {
    failSystem(target_);
  }
}

void sealBackup(const QString& fileName, BackupKind kind, int version)
{
  QFile file(fileName);
  if (!file.open(QIODevice::ReadWrite)) {
    failFile(fileName, file.errorString());
  }
  const QByteArray start = sealStart(kind, version);
  const qint64 size = file.size();
  const QByteArray seal = start + contentHash(file, size, start, nullptr) + '\n';
  if (!file.seek(size) || file.write(seal) != seal.size() || !file.flush()) {
    failFile(fileName, file.errorString());
  }
}

std::optional<BackupSeal> readSeal(const QString& fileName)
{
  QFile file(fileName);
  if (QFileInfo(fileName).isDir() || !file.open(QIODevice::ReadOnly)) {
    return {};
  }
  const auto found = sealOf(file);
  return found ? std::optional(found->first) : std::nullopt;
}

BackupSeal verifyBackup(const QString& fileName, QFile* copy)
{
  QFile file(fileName);
  if (QFileInfo(fileName).isDir() || !file.open(QIODevice::ReadOnly)) {
    failFile(fileName, QStringLiteral("няма такъв файл или не може да бъде прочетен"));
  }
  const auto found = sealOf(file);
  if (!found) {
    failFile(fileName, QStringLiteral("това не е архив на kalvor-server или краят му липсва"));
  }
  const auto& [seal, bytes] = *found;
  const QByteArray start = bytes.left(bytes.size() - 65);
  if (contentHash(file, seal.contentSize, start, copy) != bytes.mid(start.size(), 64)) {
    failFile(fileName, QStringLiteral("архивът е повреден"));
  }
  if (copy && !copy->flush()) {
    failFile(copy->fileName(), copy->errorString());
  }
  return seal;
}

}  // namespace kalvor::server
