#include "session/log_file.h"

namespace kalvor {

bool LogFile::open(const QString& path, IfUnwritable ifUnwritable)
{
  file_.setFileName(path);
  existed_ = file_.exists();
  if (file_.open(QIODevice::WriteOnly | QIODevice::Append))
    return true;
  if (!existed_ || ifUnwritable == IfUnwritable::GiveUp)
    return false;
  existed_ = false;
  return file_.remove() && file_.open(QIODevice::WriteOnly | QIODevice::Append);
}

bool LogFile::write(const QString& text)
{
  const QByteArray bytes = text.toUtf8();
  return file_.isOpen() && file_.write(bytes) == bytes.size() && file_.flush();
}

void LogFile::close()
{
  if (!file_.isOpen())
    return;
  const bool empty = file_.size() == 0;
  file_.close();
  if (empty)
    file_.remove();
}

}  // namespace kalvor
