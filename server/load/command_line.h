// Arguments of the program's commands that fill a database.
#pragma once

#include <QHash>
#include <QStringList>
#include <functional>
#include <stdexcept>

#include "layer_export.h"

namespace kalvor::server {

// How a command was called wrongly; the message is for the user.
class KALVOR_SERVER UsageError : public std::runtime_error {
 public:
  explicit UsageError(const QString& message) : std::runtime_error(message.toStdString()) {}
};

enum class OptionKind : quint8 {
  Flag,   // --name
  Value,  // --name VALUE
  Pairs   // --name A=B [C=D ...], as often as one likes
};

struct CommandOption {
  QString name;  // with its dashes
  OptionKind kind = OptionKind::Value;
};

struct CommandArguments {
  QStringList positional;
  QHash<QString, QStringList> options;  // a flag that is there has an empty list

  bool has(const QString& name) const { return options.contains(name); }
  QString value(const QString& name, const QString& otherwise = {}) const
  {
    const QStringList values = options.value(name);
    return values.isEmpty() ? otherwise : values.last();
  }
};

// Throws UsageError for an unknown option and for one without its value.
KALVOR_SERVER CommandArguments parseArguments(const QStringList& arguments, const QList<CommandOption>& options);

// The two sides of the first "="; throws UsageError without one or with an empty left side.
KALVOR_SERVER std::pair<QString, QString> pairOf(const QString& text);

// A whole number from 0; throws UsageError.
KALVOR_SERVER int countOf(const CommandArguments& arguments, const QString& name, int otherwise);

// Runs a command: messages of UsageError (2) and of any other exception (1) go to the error output.
KALVOR_SERVER int exitCodeOf(const char* usage, const std::function<void()>& command);

}  // namespace kalvor::server
