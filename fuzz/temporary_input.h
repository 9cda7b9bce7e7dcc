// The input of a fuzz target as a file, for readers that take a file's name.
#pragma once

#include <QTemporaryFile>
#include <cstdint>

class TemporaryInput {
 public:
  // The file's name; the next input takes its place.
  QString write(const std::uint8_t* data, std::size_t size)
  {
    if (!file_.isOpen() && !file_.open())
      qFatal("no temporary file");
    file_.resize(0);
    file_.seek(0);
    file_.write(reinterpret_cast<const char*>(data), qint64(size));
    file_.flush();
    return file_.fileName();
  }

 private:
  QTemporaryFile file_;
};
