#include "server/server.h"

#include <QHostAddress>
#include <QThread>
#include <stdexcept>

#include "server/log.h"
#include "server/net/io_server.h"

namespace kalvor::server {

struct ApplicationServer::Private {
  explicit Private(ServerOptions given) : options(std::move(given)), core(ServerCore::Databases::of(options.database)) {}

  ServerOptions options;
  ServerCore core;
  QThread thread;
  IoServer* io = nullptr;  // lives in the thread
  quint16 port = 0;
};

ApplicationServer::ApplicationServer(ServerOptions options) : d(std::make_unique<Private>(std::move(options))) {}

ApplicationServer::~ApplicationServer() { stop(); }

void ApplicationServer::start()
{
  if (d->io) {
    return;
  }
  const QHostAddress address(d->options.address);
  if (address.isNull()) {
    throw std::runtime_error("not an address: " + d->options.address.toStdString());
  }
  if (!address.isLoopback()) {
    if (!d->options.plaintext) {
      throw std::runtime_error("only the loopback may be served in plain text; --plaintext allows other addresses");
    }
    logEvent(LogLevel::Warning, "plaintext",
             {{"address", d->options.address},
              {"warning", QStringLiteral("passwords and data cross the network unencrypted")}});
  }
  d->io = new IoServer(d->core, d->options.workers, d->options.limits);
  d->io->moveToThread(&d->thread);
  d->thread.setObjectName(QStringLiteral("sockets"));
  d->thread.start();
  QString error;
  QMetaObject::invokeMethod(d->io, [&] {
    error = d->io->listen(address, d->options.port);
    d->port = d->io->port();
  }, Qt::BlockingQueuedConnection);
  if (!error.isEmpty()) {
    stop();
    throw std::runtime_error(error.toStdString());
  }
  logEvent(LogLevel::Info, "listening", {{"address", d->options.address}, {"port", QString::number(d->port)}});
}

quint16 ApplicationServer::port() const { return d->port; }

void ApplicationServer::stop()
{
  if (!d->io) {
    return;
  }
  QMetaObject::invokeMethod(d->io, [this] { d->io->close(); }, Qt::BlockingQueuedConnection);
  d->thread.quit();
  d->thread.wait();
  delete d->io;
  d->io = nullptr;
  d->port = 0;
  logEvent(LogLevel::Info, "stopped");
}

ServerCore& ApplicationServer::core() { return d->core; }

}  // namespace kalvor::server
