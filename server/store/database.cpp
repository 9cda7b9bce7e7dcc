#include "server/store/database.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

namespace kalvor::server {

bool isPostgresUri(const QString& name)
{
  return name.startsWith(u"postgresql://") || name.startsWith(u"postgres://");
}

std::unique_ptr<Connection> openDatabase(const QString& name, ConnectionUse use)
{
  return isPostgresUri(name) ? openPostgres(name, use) : openSqlite(name, use == ConnectionUse::Read);
}

QString shownDatabase(const QString& name)
{
  // A URI of several hosts is none to QUrl; what may hold a password is cut off by hand.
  if (!isPostgresUri(name)) {
    return name;
  }
  const QString rest = name.section(QStringLiteral("://"), 1).section(u'?', 0, 0);
  return QStringLiteral("postgresql://") + rest.section(u'@', -1);
}

bool mayExist(const QString& name) { return isPostgresUri(name) || QFile::exists(name); }

void makeFolderOf(const QString& name)
{
  if (!isPostgresUri(name)) {
    QDir().mkpath(QFileInfo(name).absolutePath());
  }
}

QString defaultDatabase()
{
  const QString named = qEnvironmentVariable("KALVOR_DATABASE");
  return named.isEmpty() ? QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + QStringLiteral("/kalvor/kalvor.db")
                         : named;
}

}  // namespace kalvor::server
