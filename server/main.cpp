#include <QCoreApplication>
#include <csignal>
#include <cstdio>

#include "server/commands.h"
#include "server/load/command_line.h"
#include "server/serve_options.h"
#include "server/service_manager.h"

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
  kalvor::server::notifyServiceManager("READY=1\nSTATUS=port " + QByteArray::number(server.port()));
  int signal = 0;
  sigwait(&endSignals, &signal);
  kalvor::server::notifyServiceManager("STOPPING=1");
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
    if (arguments.value(0) == u"serve") {
      return serve(arguments.mid(1), endSignals);
    }
    // Any other command may be cut off.
    pthread_sigmask(SIG_UNBLOCK, &endSignals, nullptr);
    return kalvor::server::runCommand(arguments);
  } catch (const kalvor::server::UsageError& error) {
    std::fprintf(stderr, "kalvor-server: %s\n", error.what());
    return 2;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "kalvor-server: %s\n", error.what());
    return 1;
  }
}
