// A registry of its own, of the user and of the machine, that lasts as long as the test that made it.
#pragma once

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace kalvor::testing {

class ScratchRegistry {
 public:
  ScratchRegistry() : config_(qgetenv("XDG_CONFIG_HOME"))
  {
    qputenv("XDG_CONFIG_HOME", folder_.filePath("config").toUtf8());
    qputenv("KALVOR_SYSTEM_SETTINGS", folder_.filePath("machine").toUtf8());
  }
  ~ScratchRegistry()
  {
    qputenv("XDG_CONFIG_HOME", config_);
    qunsetenv("KALVOR_SYSTEM_SETTINGS");
  }

  // A file stands where the machine's folder should be.
  void makeUnwritable() const
  {
    QFile file(folder_.filePath("machine"));
    file.open(QIODevice::WriteOnly);
  }

 private:
  QByteArray config_;
  QTemporaryDir folder_;
};

}  // namespace kalvor::testing
