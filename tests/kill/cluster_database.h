// A database of the cluster that KALVOR_TEST_DATABASE names, as long as this lives. The cluster may crash meanwhile.
#pragma once

#include <QCoreApplication>
#include <cstdio>

#include "server/store/database.h"

namespace kalvor::testing {

class ClusterDatabase {
 public:
  ClusterDatabase() { run(QStringLiteral("CREATE DATABASE ") + name_); }
  ~ClusterDatabase()
  {
    try {
      run(QStringLiteral("DROP DATABASE %1 WITH (FORCE)").arg(name_));
    } catch (const server::StoreError& error) {
      std::printf("%s\n", error.what());
    }
  }
  ClusterDatabase(const ClusterDatabase&) = delete;
  ClusterDatabase& operator=(const ClusterDatabase&) = delete;
  QString uri() const { return uriOf(name_); }

 private:
  static QString uriOf(const QString& name) { return qEnvironmentVariable("KALVOR_TEST_DATABASE").arg(name); }
  static void run(const QString& statement)
  {
    server::openDatabase(uriOf(QStringLiteral("postgres")), server::ConnectionUse::Write)->execute(statement);
  }

  QString name_ = QStringLiteral("kill_%1").arg(QCoreApplication::applicationPid());
};

}  // namespace kalvor::testing
