// Files that are either whole or not there under their name: written as NAME.part, which one program at a time may do,
// brought to the disk and then renamed. A backup ends with a seal that says what it holds and proves every byte of it.
#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>
#include <optional>
#include <stdexcept>

#include "layer_export.h"

namespace kalvor::server {

// What goes wrong with a backup; the message is for the user.
class KALVOR_SERVER BackupError : public std::runtime_error {
 public:
  explicit BackupError(const QString& message) : std::runtime_error(message.toStdString()) {}
};

class KALVOR_SERVER PartFile {
 public:
  // Empties what a program that was killed left behind. Throws BackupError: another program is at it, no room.
  explicit PartFile(const QString& target);
  // Removes the part unless it was finished.
  ~PartFile();
  PartFile(const PartFile&) = delete;
  PartFile& operator=(const PartFile&) = delete;

  const QString& path() const { return path_; }
  enum class Existing : quint8 { Keep, Replace };
  // Brings the part to the disk and gives it the target's name. Keep: refuses when there is one by now.
  void finish(Existing existing);

 private:
  void removeCompanions();

  QString target_;
  QString path_;
  int descriptor_ = -1;
  bool finished_ = false;
};

enum class BackupKind : quint8 { Sqlite, PostgreSql };

struct BackupSeal {
  BackupKind kind = BackupKind::Sqlite;
  int version = 0;        // of the tables
  qint64 contentSize = 0; // bytes before the seal
};

// Appends the seal to a complete file.
KALVOR_SERVER void sealBackup(const QString& fileName, BackupKind kind, int version);
// Nothing when the end of the file is no seal: no backup, or one that was cut off.
KALVOR_SERVER std::optional<BackupSeal> readSeal(const QString& fileName);
// Reads the whole backup and throws BackupError when a byte of it is not what it was; what stands before the seal goes
// to the copy when there is one.
KALVOR_SERVER BackupSeal verifyBackup(const QString& fileName, QFile* copy = nullptr);

}  // namespace kalvor::server
