#include <QCoreApplication>
#include <csignal>
#include <cstdio>

#include "server/commands.h"
#include "server/serve_options.h"

namespace {

// Serves until the process is told to end.
int serve(const QStringList& arguments, const sigset_t& endSignals)
{
  const kalvor::server::ServerOptions options = kalvor::server::serveOptions(arguments);
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
    const QStringList arguments = application.arguments().mid(1);
    return arguments.value(0) == u"serve" ? serve(arguments.mid(1), endSignals) : kalvor::server::runCommand(arguments);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "kalvor-server: %s\n", error.what());
    return 1;
  }
}
