// The files of a folder as a disk holds them whose power was cut: what was synchronized for certain, of the rest any part.
#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QMap>
#include <memory>
#include <random>

#include "write_record.h"

namespace kalvor::testing {

class DiskModel {
 public:
  // All that is in the folder now is on the disk.
  explicit DiskModel(QString folder);
  // Reads what the recorder wrote; a record that was cut off at its end counts as far as whole.
  void replay(const QString& recordFile);

  // How much of what was not synchronized the disk has all the same.
  enum class Kept { Nothing, Everything, UpToSomeMoment, WholeWrites, Pages, Sectors };
  static constexpr int waysToKeep = 6;
  using Files = QMap<QString, QByteArray>;  // by name in the folder
  Files afterCut(Kept kept, std::mt19937& random) const;

  // Puts the files in the place of what is in the folder.
  static void write(const QString& folder, const Files& files);
  static Files read(const QString& folder);
  // Changes that await a synchronization: of all, of one file's content.
  qint64 unsynchronized() const;
  qint64 unsynchronized(const QString& name) const { return names_.contains(name) ? names_[name]->changes.size() : 0; }

 private:
  struct Change {
    bool truncates = false;
    quint64 offset = 0;  // or the new size
    QByteArray bytes;
    qint64 moment = 0;
  };
  struct File {
    QByteArray synchronized;
    QList<Change> changes;
  };
  using FilePtr = std::shared_ptr<File>;
  struct NameChange {
    QString name;
    FilePtr file;  // null: gone
    qint64 moment = 0;
  };
  using Names = QMap<QString, FilePtr>;
  static void applyName(Names& names, const NameChange& change);
  static void apply(QByteArray& content, const Change& change);
  static void applyInParts(QByteArray& content, const Change& change, quint64 part, std::mt19937& random);
  void take(const WriteRecord& head, const QByteArray& bytes);
  void changeName(const QString& name, FilePtr file);
  QString nameOf(const QByteArray& path) const;

  QString folder_;
  QHash<quint64, FilePtr> byInode_;
  Names names_;              // as the server sees them
  Names synchronizedNames_;  // as they are on the disk
  QList<NameChange> nameChanges_;
  qint64 moment_ = 0;
};

}  // namespace kalvor::testing
