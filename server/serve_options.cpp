#include "server/serve_options.h"

#include "server/configuration.h"
#include "server/load/command_line.h"
#include "server/store/database.h"

namespace kalvor::server {

namespace {

constexpr qint64 secondsOfHour = 3600;
constexpr qint64 secondsOfDay = 24 * secondsOfHour;
constexpr int longestDays = 3650;

// A number of hours or days from 1 up, in seconds.
qint64 spanOf(const CommandArguments& line, const QString& name, qint64 unit, qint64 otherwise)
{
  const int count = countOf(line, name, int(otherwise / unit));
  if (count < 1 || count * unit > longestDays * secondsOfDay) {
    throw UsageError(QStringLiteral("%1 иска цяло число от 1 нагоре").arg(name));
  }
  return count * unit;
}

int portOf(const CommandArguments& line, const QString& name, int otherwise)
{
  const int port = countOf(line, name, otherwise);
  if (port > 65535) {
    throw UsageError(QStringLiteral("%1 иска число от 0 до 65535").arg(name));
  }
  return port;
}

}  // namespace

ServerOptions serveOptions(const QStringList& arguments)
{
  const CommandArguments line = parseArguments(
      withConfiguration(arguments),
      {{QStringLiteral("--db")}, {QStringLiteral("--bind")}, {QStringLiteral("--port")},
                  {QStringLiteral("--plaintext"), OptionKind::Flag}, {QStringLiteral("--tls"), OptionKind::Flag},
                  {QStringLiteral("--tls-dir")}, {QStringLiteral("--certificate")}, {QStringLiteral("--key")},
                  {QStringLiteral("--idle-hours")}, {QStringLiteral("--session-days")}, {QStringLiteral("--metrics-port")}});
  ServerOptions options;
  options.database = line.value(QStringLiteral("--db"), defaultDatabase());
  options.address = line.value(QStringLiteral("--bind"), options.address);
  options.port = quint16(portOf(line, QStringLiteral("--port"), options.port));
  options.metricsPort = portOf(line, QStringLiteral("--metrics-port"), options.metricsPort);
  options.plaintext = line.has(QStringLiteral("--plaintext"));
  options.tls = line.has(QStringLiteral("--tls"));
  options.tlsFolder = line.value(QStringLiteral("--tls-dir"));
  options.certificate = {line.value(QStringLiteral("--certificate")), line.value(QStringLiteral("--key"))};
  if (options.tls && options.plaintext) {
    throw UsageError(QStringLiteral("--tls и --plaintext се изключват"));
  }
  if (options.certificate.certificate.isEmpty() != options.certificate.key.isEmpty()) {
    throw UsageError(QStringLiteral("--certificate и --key се дават заедно"));
  }
  options.sessions.idleSeconds = spanOf(line, QStringLiteral("--idle-hours"), secondsOfHour, options.sessions.idleSeconds);
  options.sessions.absoluteSeconds =
      spanOf(line, QStringLiteral("--session-days"), secondsOfDay, options.sessions.absoluteSeconds);
  return options;
}

}  // namespace kalvor::server
