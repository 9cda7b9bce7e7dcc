// A text file that is appended to and flushed entry by entry. Shared by the logs; not thread-safe itself.
#pragma once

#include <QFile>

#include "layer_export.h"

namespace kalvor {

class LogFile {
 public:
  enum class IfUnwritable : quint8 { GiveUp, MakeAnew };

  // Creates the file or appends to it; existed() tells which.
  bool open(const QString& path, IfUnwritable ifUnwritable);
  bool isOpen() const { return file_.isOpen(); }
  bool existed() const { return existed_; }
  bool write(const QString& text);
  QString path() const { return file_.fileName(); }
  // A file to which nothing was ever written is removed.
  void close();

 private:
  QFile file_;
  bool existed_ = false;
};

}  // namespace kalvor
