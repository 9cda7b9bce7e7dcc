#include "server/store/postgres_uri.h"

#include <libpq-fe.h>

#include <memory>

#include "server/store/connection.h"

namespace kalvor::server {

namespace {

using Options = std::unique_ptr<PQconninfoOption, decltype(&PQconninfoFree)>;

Options optionsOf(const QString& uri)
{
  char* message = nullptr;
  Options options(PQconninfoParse(uri.toUtf8().constData(), &message), &PQconninfoFree);
  PQfreemem(message);
  if (!options) {
    throw StoreError(StoreError::Kind::Unreachable,
                     QStringLiteral("адресът на базата данни не може да бъде прочетен: не е URI на PostgreSQL"));
  }
  return options;
}

}  // namespace

void requirePostgresUri(const QString& uri) { optionsOf(uri); }

PostgresTarget postgresTarget(const QString& uri)
{
  const Options options = optionsOf(uri);
  PostgresTarget target;
  for (const PQconninfoOption* option = options.get(); option->keyword; ++option) {
    if (!option->val) {
      continue;
    }
    const QString keyword = QString::fromUtf8(option->keyword);
    QString value = QString::fromUtf8(option->val);
    if (keyword == u"password") {
      target.password = value;
      continue;
    }
    if (keyword == u"sslpassword") {
      throw StoreError(StoreError::Kind::Other, QStringLiteral("адрес с sslpassword не може да се даде на pg_dump и pg_restore"));
    }
    value.replace(u'\\', QStringLiteral("\\\\")).replace(u'\'', QStringLiteral("\\'"));
    target.connection += (target.connection.isEmpty() ? QString() : QStringLiteral(" ")) + keyword + QStringLiteral("='") + value + u'\'';
  }
  return target;
}

}  // namespace kalvor::server
