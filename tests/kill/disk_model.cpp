#include "disk_model.h"

#include <sys/stat.h>

#include <QDir>
#include <QFile>
#include <cstring>
#include <stdexcept>

namespace kalvor::testing {

namespace {

quint64 inodeOf(const QString& path)
{
  struct stat facts;
  if (stat(path.toLocal8Bit().constData(), &facts) != 0) {
    throw std::runtime_error("no such file: " + path.toStdString());
  }
  return facts.st_ino;
}

QByteArray contentOf(const QString& path)
{
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) {
    throw std::runtime_error("cannot be read: " + path.toStdString());
  }
  return file.readAll();
}

bool coin(std::mt19937& random) { return random() % 2 == 0; }

}  // namespace

DiskModel::DiskModel(QString folder) : folder_(std::move(folder))
{
  const Files files = read(folder_);
  for (auto file = files.cbegin(); file != files.cend(); ++file) {
    const auto known = std::make_shared<File>(File{file.value(), {}});
    byInode_.insert(inodeOf(folder_ + u'/' + file.key()), known);
    names_.insert(file.key(), known);
  }
  synchronizedNames_ = names_;
}

DiskModel::Files DiskModel::read(const QString& folder)
{
  Files files;
  for (const QString& name : QDir(folder).entryList(QDir::Files | QDir::Hidden)) {
    if (!name.endsWith(QLatin1String("-shm"))) {
      files.insert(name, contentOf(folder + u'/' + name));
    }
  }
  return files;
}

void DiskModel::write(const QString& folder, const Files& files)
{
  for (const QString& name : QDir(folder).entryList(QDir::Files | QDir::Hidden)) {
    QFile::remove(folder + u'/' + name);
  }
  for (auto entry = files.cbegin(); entry != files.cend(); ++entry) {
    QFile file(folder + u'/' + entry.key());
    if (!file.open(QIODevice::WriteOnly) || file.write(entry.value()) != entry.value().size()) {
      throw std::runtime_error("cannot be written: " + entry.key().toStdString());
    }
  }
}

QString DiskModel::nameOf(const QByteArray& path) const { return QString::fromLocal8Bit(path).mid(folder_.size() + 1); }

void DiskModel::replay(const QString& recordFile)
{
  const QByteArray record = contentOf(recordFile);
  qsizetype at = 0;
  WriteRecord head;
  while (record.size() - at >= qsizetype(sizeof head)) {
    std::memcpy(&head, record.constData() + at, sizeof head);
    at += sizeof head;
    if (record.size() - at < qsizetype(head.size)) {
      break;
    }
    take(head, record.mid(at, head.size));
    at += head.size;
  }
}

void DiskModel::applyName(Names& names, const NameChange& change)
{
  change.file ? void(names.insert(change.name, change.file)) : void(names.remove(change.name));
}

void DiskModel::changeName(const QString& name, FilePtr file)
{
  nameChanges_.append({name, std::move(file), moment_});
  applyName(names_, nameChanges_.last());
}

void DiskModel::take(const WriteRecord& head, const QByteArray& bytes)
{
  ++moment_;
  const FilePtr file = byInode_.value(head.file);
  switch (head.kind) {
    case WriteRecord::Created:
      byInode_[head.file] = std::make_shared<File>();
      return changeName(nameOf(bytes), byInode_.value(head.file));
    case WriteRecord::Unlink: return changeName(nameOf(bytes), nullptr);
    case WriteRecord::Rename: {
      const qsizetype end = bytes.indexOf('\0');
      const QString from = nameOf(bytes.left(end));
      const FilePtr moved = names_.value(from);
      changeName(from, nullptr);
      return changeName(nameOf(bytes.mid(end + 1)), moved);
    }
    case WriteRecord::SyncFolder:
      while (!nameChanges_.isEmpty() && nameChanges_.first().moment <= qint64(head.offset)) {
        applyName(synchronizedNames_, nameChanges_.takeFirst());
      }
      return;
    default: break;
  }
  if (!file) {
    throw std::runtime_error("a change of a file that was never opened");
  }
  if (head.kind == WriteRecord::Sync) {
    while (!file->changes.isEmpty() && file->changes.first().moment <= qint64(head.offset)) {
      apply(file->synchronized, file->changes.takeFirst());
    }
    return;
  }
  file->changes.append({head.kind == WriteRecord::Truncate, head.offset, bytes, moment_});
}

void DiskModel::apply(QByteArray& content, const Change& change)
{
  if (change.truncates) {
    content.resize(qsizetype(change.offset), '\0');
    return;
  }
  const qsizetype end = qsizetype(change.offset) + change.bytes.size();
  if (content.size() < end) {
    content.resize(end, '\0');
  }
  std::memcpy(content.data() + change.offset, change.bytes.constData(), size_t(change.bytes.size()));
}

// Only those parts of the disk that the coin lets through; a part is counted from the file's beginning.
void DiskModel::applyInParts(QByteArray& content, const Change& change, quint64 part, std::mt19937& random)
{
  const quint64 end = change.offset + quint64(change.bytes.size());
  for (quint64 from = change.offset; from < end;) {
    const quint64 to = qMin(end, (from / part + 1) * part);
    if (coin(random)) {
      apply(content, {false, from, change.bytes.mid(qsizetype(from - change.offset), qsizetype(to - from)), 0});
    }
    from = to;
  }
}

DiskModel::Files DiskModel::afterCut(Kept kept, std::mt19937& random) const
{
  const qint64 until = kept == Kept::Everything ? moment_ : kept == Kept::Nothing ? 0 : qint64(random() % quint64(moment_ + 1));
  Names names = synchronizedNames_;
  // A folder's changes reach the disk in their order.
  for (const NameChange& change : nameChanges_) {
    if (change.moment > until) {
      break;
    }
    applyName(names, change);
  }
  Files files;
  for (auto name = names.cbegin(); name != names.cend(); ++name) {
    QByteArray content = name.value()->synchronized;
    for (const Change& change : std::as_const(name.value()->changes)) {
      const bool inTime = change.moment <= until;
      switch (kept) {
        case Kept::Nothing: break;
        case Kept::Everything: apply(content, change); break;
        case Kept::UpToSomeMoment: inTime ? apply(content, change) : void(); break;
        case Kept::WholeWrites: coin(random) ? apply(content, change) : void(); break;
        case Kept::Pages:
        case Kept::Sectors:
          if (!change.truncates) {
            applyInParts(content, change, kept == Kept::Pages ? 4096 : 512, random);
          } else if (coin(random)) {
            apply(content, change);
          }
      }
    }
    files.insert(name.key(), content);
  }
  return files;
}

qint64 DiskModel::unsynchronized() const
{
  qint64 count = nameChanges_.size();
  for (const FilePtr& file : names_) {
    count += file->changes.size();
  }
  return count;
}

}  // namespace kalvor::testing
