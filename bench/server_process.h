// The real server as a process of its own, and a workstation logged in to it.
#pragma once

#include <QCryptographicHash>
#include <QElapsedTimer>
#include <QProcess>
#include <memory>

#include "data/client_dataset.h"
#include "rpc/connection.h"

namespace kalvor::bench {

class ServerProcess {
 public:
  // Milliseconds from the start of the process to "ready"; negative when it does not come.
  double start(const QString& program, const QString& database)
  {
    QElapsedTimer timer;
    timer.start();
    process_.setStandardErrorFile(database + QStringLiteral(".log"), QIODevice::Append);
    process_.start(program, {QStringLiteral("serve"), QStringLiteral("--db"), database, QStringLiteral("--port"),
                             QStringLiteral("0")});
    while (process_.waitForReadyRead(120000))
      while (process_.canReadLine()) {
        const QString line = QString::fromUtf8(process_.readLine()).trimmed();
        if (line.startsWith(QLatin1String("ready on "))) {
          port_ = quint16(line.section(u':', -1).toUInt());
          return timer.nsecsElapsed() / 1e6;
        }
      }
    return -1;
  }
  void stop()
  {
    process_.terminate();
    process_.waitForFinished();
  }
  ~ServerProcess() { stop(); }
  quint16 port() const { return port_; }
  qint64 processId() const { return process_.processId(); }

 private:
  QProcess process_;
  quint16 port_ = 0;
};

class Workstation {
 public:
  explicit Workstation(quint16 port) : broker_(&socket_)
  {
    socket_.Port = port;
    socket_.answerTimeoutMs = 600000;
    broker_.Connect();
    VariantArray arguments{
        QStringLiteral("SUPERVSR"),
        QString::fromLatin1(QCryptographicHash::hash("demo", QCryptographicHash::Md5).toHex()), QString(),
        QStringLiteral("1"), QString()};
    if (broker_.Call(QStringLiteral("LogIn"), arguments).toInt() != 0)
      throw DataError(QStringLiteral("log-in"));
    session_ = arguments[4].toString();
    broker_.setSession(session_);
  }
  const QString& session() const { return session_; }
  ConnectionBroker& broker() { return broker_; }

  QString newProvider()
  {
    VariantArray arguments{QString(), true};
    broker_.Call(QStringLiteral("CreateDynamicProvider"), arguments);
    return arguments[0].toString();
  }
  void request(int formId, int dsIndex, const QString& provider, const FilterArray& filter = {})
  {
    VariantArray arguments{formId, dsIndex, provider, filterToVariant(filter), QString(), Variant(), Variant(), 0};
    if (broker_.Call(QStringLiteral("RequestData"), arguments).toInt() != 0)
      throw DataError(QStringLiteral("RequestData %1").arg(formId));
  }

 private:
  SocketConnection socket_;
  QString session_;
  ConnectionBroker broker_;
};

}  // namespace kalvor::bench
