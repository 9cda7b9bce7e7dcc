// The real server as a process that is killed and started again on the same port.
#pragma once

#include <QProcess>

namespace kalvor::testing {

struct ServerProcess {
  QString program;
  QString database;  // a file or a URI
  QString log;
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  quint16 port = 0;
  QProcess process;

  void launch()
  {
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::SeparateChannels);
    process.setStandardErrorFile(log, QIODevice::Append);
    process.start(program, {QStringLiteral("serve"), QStringLiteral("--db"), database, QStringLiteral("--port"),
                            QString::number(port)});
  }
  // Waits until it listens; a first start makes the demo company.
  bool start()
  {
    launch();
    while (process.waitForReadyRead(120000)) {
      while (process.canReadLine()) {
        const QString line = QString::fromUtf8(process.readLine()).trimmed();
        if (line.startsWith(QLatin1String("ready on "))) {
          port = quint16(line.section(u':', -1).toUInt());
          return true;
        }
      }
    }
    return false;
  }
  void kill()
  {
    process.kill();
    process.waitForFinished();
  }
};

}  // namespace kalvor::testing
