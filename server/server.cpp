#include "server/server.h"

#include <QHostAddress>
#include <QTemporaryDir>
#include <QThread>
#include <optional>
#include <stdexcept>

#include "rpc/server_trust.h"
#include "server/log.h"
#include "server/net/io_server.h"
#include "server/net/metrics_server.h"
#include "server/service_manager.h"

namespace kalvor::server {

struct ApplicationServer::Private {
  explicit Private(ServerOptions given) : options(std::move(given)), core(ServerCore::Databases::of(options.database))
  {
    if (options.database == u":memory:" && options.tlsFolder.isEmpty()) {
      options.tlsFolder = memoryFolder.path();
    }
    core.state().setLimits(options.sessions);
  }

  ServerOptions options;
  ServerCore core;
  QThread thread;
  IoServer* io = nullptr;  // lives in the thread
  quint16 port = 0;
  QByteArray fingerprint;
  QTemporaryDir memoryFolder;  // of the certificate of a database in memory
  MetricsServer* metrics = nullptr;  // as io
  quint16 metricsPort = 0;
  QTimer* watchdog = nullptr;  // as io

  void startMetrics();
  void startWatchdog();
};

void ApplicationServer::Private::startMetrics()
{
  // Opened with the first question, in the thread that asks.
  const auto reader = std::make_shared<std::unique_ptr<Connection>>();
  const auto ask = [this, reader]() -> DatabaseState {
    try {
      if (!*reader) {
        *reader = core.openReader();
      }
      (*reader)->value(QStringLiteral("SELECT MAX(Number) FROM srv_Migration"));
      const auto [sessions, locks] = core.state().counts();
      return {true, sessions, locks};
    } catch (const StoreError& error) {
      logEvent(LogLevel::Warning, "database_unhealthy", {{"details", QString::fromUtf8(error.what())}});
      return {};
    }
  };
  QString error;
  QMetaObject::invokeMethod(io, [&] {
    metrics = new MetricsServer(ask, [this] { return io->figures(); });
    error = metrics->listen(quint16(options.metricsPort));
    metricsPort = metrics->port();
  }, Qt::BlockingQueuedConnection);
  if (!error.isEmpty()) {
    throw std::runtime_error("metrics: " + error.toStdString());
  }
  logEvent(LogLevel::Info, "metrics_listening", {{"port", QString::number(metricsPort)}});
}

// In the thread of the sockets, so that the service manager learns when that one stands still.
void ApplicationServer::Private::startWatchdog()
{
  const std::chrono::milliseconds interval = watchdogInterval();
  if (interval.count() > 0) {
    QMetaObject::invokeMethod(io, [this, interval] {
      watchdog = new QTimer;
      QObject::connect(watchdog, &QTimer::timeout, io, [] { notifyServiceManager("WATCHDOG=1"); });
      watchdog->start(interval);
    }, Qt::BlockingQueuedConnection);
  }
}

CertificateFiles certificateFilesOf(const ServerOptions& options)
{
  const CertificateFiles& own = options.certificate;
  if (own.certificate.isEmpty() != own.key.isEmpty()) {
    throw std::runtime_error("--certificate and --key go together");
  }
  if (!own.certificate.isEmpty()) {
    return own;
  }
  return certificateFilesIn(options.tlsFolder.isEmpty() ? certificateFolderOf(options.database) : options.tlsFolder);
}

ServerCertificate certificateOf(const ServerOptions& options)
{
  const CertificateFiles files = certificateFilesOf(options);
  return files == options.certificate ? readCertificate(files) : readOrMakeCertificate(files);
}

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
  if (d->options.tls && d->options.plaintext) {
    throw std::runtime_error("--tls and --plaintext exclude each other");
  }
  const bool encrypted = d->options.tls || (!address.isLoopback() && !d->options.plaintext);
  std::optional<ServerCertificate> certificate;
  if (encrypted) {
    certificate = certificateOf(d->options);
    d->fingerprint = certificate->fingerprint;
  } else if (!address.isLoopback()) {
    logEvent(LogLevel::Warning, "plaintext",
             {{"address", d->options.address},
              {"warning", QStringLiteral("passwords and data cross the network unencrypted")}});
  }
  auto io = std::make_unique<IoServer>(d->core, d->options.workers);
  if (certificate) {
    io->encryptWith(*certificate);
  }
  d->io = io.release();
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
  if (d->options.metricsPort >= 0) {
    try {
      d->startMetrics();
    } catch (...) {
      stop();
      throw;
    }
  }
  d->startWatchdog();
  logEvent(LogLevel::Info, "listening", {{"address", d->options.address}, {"port", QString::number(d->port)},
                                         {"fingerprint", encrypted ? fingerprintText(d->fingerprint) : QStringLiteral("none")}});
}

quint16 ApplicationServer::port() const { return d->port; }
QByteArray ApplicationServer::fingerprint() const { return d->fingerprint; }
quint16 ApplicationServer::metricsPort() const { return d->metricsPort; }

void ApplicationServer::stop()
{
  if (!d->io) {
    return;
  }
  QMetaObject::invokeMethod(d->io, [this] {
    delete d->metrics;
    delete d->watchdog;
    d->io->close();
  }, Qt::BlockingQueuedConnection);
  d->thread.quit();
  d->thread.wait();
  delete d->io;
  d->io = nullptr;
  d->port = 0;
  d->metrics = nullptr;
  d->watchdog = nullptr;
  d->metricsPort = 0;
  logEvent(LogLevel::Info, "stopped");
}

ServerCore& ApplicationServer::core() { return d->core; }

}  // namespace kalvor::server
