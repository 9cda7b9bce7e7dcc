#include "server/load/command_line.h"

#include <QTextStream>

namespace kalvor::server {

CommandArguments parseArguments(const QStringList& arguments, const QList<CommandOption>& options)
{
  CommandArguments result;
  for (qsizetype i = 0; i < arguments.size(); ++i) {
    const QString& argument = arguments.at(i);
    if (!argument.startsWith(u"--")) {
      result.positional.append(argument);
      continue;
    }
    const auto option = std::find_if(options.begin(), options.end(),
                                     [&](const CommandOption& known) { return known.name == argument; });
    if (option == options.end()) {
      throw UsageError(QStringLiteral("непозната опция %1").arg(argument));
    }
    QStringList& values = result.options[argument];
    if (option->kind == OptionKind::Flag) {
      continue;
    }
    const qsizetype before = values.size();
    const auto takesNext = [&] {
      const bool there = i + 1 < arguments.size() && !arguments.at(i + 1).startsWith(u"--");
      return option->kind == OptionKind::Value ? there && values.size() == before
                                               : there && arguments.at(i + 1).contains(u'=');
    };
    while (takesNext()) {
      values.append(arguments.at(++i));
    }
    if (values.size() == before) {
      throw UsageError(QStringLiteral("%1 иска стойност").arg(argument));
    }
  }
  return result;
}

std::pair<QString, QString> pairOf(const QString& text)
{
  const qsizetype at = text.indexOf(u'=');
  if (at < 1) {
    throw UsageError(QStringLiteral("„%1“ не е от вида име=стойност").arg(text));
  }
  return {text.left(at), text.mid(at + 1)};
}

int countOf(const CommandArguments& arguments, const QString& name, int otherwise)
{
  if (!arguments.has(name)) {
    return otherwise;
  }
  bool ok = false;
  const int count = arguments.value(name).toInt(&ok);
  if (!ok || count < 0) {
    throw UsageError(QStringLiteral("%1 иска брой, не „%2“").arg(name, arguments.value(name)));
  }
  return count;
}

int exitCodeOf(const char* usage, const std::function<void()>& command)
{
  QTextStream errors(stderr);
  try {
    command();
    return 0;
  } catch (const UsageError& error) {
    errors << QString::fromUtf8(error.what()) << "\n\n" << QString::fromUtf8(usage) << Qt::endl;
    return 2;
  } catch (const std::exception& error) {
    errors << QString::fromUtf8(error.what()) << Qt::endl;
    return 1;
  }
}

}  // namespace kalvor::server
