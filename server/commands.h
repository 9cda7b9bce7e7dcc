// What kalvor-server does besides serving: making a database, loading files into it.
#pragma once

#include <QHash>
#include <QStringList>

#include "layer_export.h"

namespace kalvor::server {

// COMMAND [--name value]... [--flag]... [FILE]... Throws std::runtime_error for an unknown option.
class KALVOR_SERVER CommandLine {
 public:
  explicit CommandLine(const QStringList& arguments);
  const QString& command() const { return command_; }
  const QStringList& files() const { return files_; }
  bool has(const QString& name) const { return values_.contains(name); }
  QString value(const QString& name, const QString& otherwise = {}) const;  // the last one given
  QStringList all(const QString& name) const { return values_.value(name); }
  QString database() const;  // --db, else the user's data folder

 private:
  QString command_;
  QStringList files_;
  QHash<QString, QStringList> values_;
};

// Makes the database with the demo company when there is no file; brings an existing one to this version.
KALVOR_SERVER void prepareDatabase(const QString& fileName);

// init, load, help; the exit code. Throws std::exception with what went wrong.
KALVOR_SERVER int runCommand(const CommandLine& line);

}  // namespace kalvor::server
