#include <QCoreApplication>
#include <csignal>
#include <cstdio>

#include "server/commands.h"
#include "server/log.h"
#include "server/server.h"

namespace {

using kalvor::server::CommandLine;

// Serves until the process is told to end.
int serve(const CommandLine& line, const sigset_t& endSignals)
{
  kalvor::server::ServerOptions options;
  options.database = line.database();
  options.address = line.value(QStringLiteral("bind"), options.address);
  options.port = quint16(line.value(QStringLiteral("port"), QString::number(options.port)).toUInt());
  options.plaintext = line.has(QStringLiteral("plaintext"));
  kalvor::server::prepareDatabase(options.database);
  kalvor::server::ApplicationServer server(options);
  server.start();
  std::printf("ready on %s:%u\n", qPrintable(options.address), unsigned(server.port()));
  std::fflush(stdout);
  int signal = 0;
  sigwait(&endSignals, &signal);
  server.stop();
  return 0;
}

}  // namespace

int main(int argc, char** argv)
{
  // Before any thread is there, so that the signals reach sigwait alone.
  sigset_t endSignals;
  sigemptyset(&endSignals);
  sigaddset(&endSignals, SIGTERM);
  sigaddset(&endSignals, SIGINT);
  pthread_sigmask(SIG_BLOCK, &endSignals, nullptr);
  std::signal(SIGPIPE, SIG_IGN);

  const QCoreApplication application(argc, argv);
  QCoreApplication::setApplicationName(QStringLiteral("kalvor"));
  try {
    const CommandLine line(application.arguments().mid(1));
    if (line.command() == u"serve") {
      return serve(line, endSignals);
    }
    return kalvor::server::runCommand(line);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "kalvor-server: %s\n", error.what());
    return 1;
  }
}
