#include "server/backup/postgres_tools.h"

#include <sys/prctl.h>

#include <QDir>
#include <QProcess>
#include <QStandardPaths>
#include <csignal>

#include "server/backup/backup_file.h"
#include "server/store/postgres_uri.h"

namespace kalvor::server {

namespace {

// On the path, else that of the newest version where Debian puts them.
QString pathOf(const QString& program)
{
  const QString found = QStandardPaths::findExecutable(program);
  if (!found.isEmpty()) {
    return found;
  }
  const QDir versions(QStringLiteral("/usr/lib/postgresql"));
  QStringList names = versions.entryList(QDir::Dirs | QDir::NoDotAndDotDot);
  std::sort(names.begin(), names.end(), [](const QString& a, const QString& b) { return a.toInt() > b.toInt(); });
  for (const QString& version : std::as_const(names)) {
    const QString path = versions.filePath(version + QStringLiteral("/bin/") + program);
    if (QFile::exists(path)) {
      return path;
    }
  }
  throw BackupError(QStringLiteral("няма програма %1; тя е част от PostgreSQL").arg(program));
}

}  // namespace

void runPostgresTool(const QString& program, const QStringList& arguments, const QString& uri)
{
  QProcess process;
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  QStringList all = arguments;
  if (!uri.isEmpty()) {
    const PostgresTarget target = postgresTarget(uri);
    all.append(QStringLiteral("--dbname=") + target.connection);
    // Nobody is there to be asked for one.
    all.append(QStringLiteral("--no-password"));
    if (!target.password.isEmpty()) {
      environment.insert(QStringLiteral("PGPASSWORD"), target.password);
    }
  }
  process.setProcessEnvironment(environment);
  process.setStandardInputFile(QProcess::nullDevice());
  process.setStandardOutputFile(QProcess::nullDevice());
  // It must not go on writing for a program that was killed.
  process.setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGTERM); });
  process.start(pathOf(program), all);
  const bool ended = process.waitForStarted() && process.waitForFinished(-1);
  if (!ended || process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0) {
    const QString said = QString::fromUtf8(process.readAllStandardError()).trimmed();
    throw BackupError(QStringLiteral("%1: %2").arg(program, said.isEmpty() ? process.errorString() : said));
  }
}

}  // namespace kalvor::server
