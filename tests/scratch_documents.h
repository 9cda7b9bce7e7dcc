// A documents folder that lasts as long as the test that made it.
#pragma once

#include <QFile>
#include <QTemporaryDir>

namespace kalvor::testing {

class ScratchDocuments {
 public:
  ScratchDocuments() { qputenv("KALVOR_DOCUMENTS", folder_.path().toUtf8()); }
  ~ScratchDocuments() { qunsetenv("KALVOR_DOCUMENTS"); }

  QString path(const QString& relative = {}) const { return folder_.filePath(relative); }
  QByteArray read(const QString& relative) const
  {
    QFile file(path(relative));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
  }
  void write(const QString& relative, const QByteArray& bytes) const
  {
    QFile file(path(relative));
    if (file.open(QIODevice::WriteOnly))
      file.write(bytes);
  }
  bool has(const QString& relative) const { return QFile::exists(path(relative)); }

 private:
  QTemporaryDir folder_;
};

}  // namespace kalvor::testing
