#include "server/configuration.h"

#include <QFile>
#include <QFileInfo>
#include <QMap>
#include <QStringDecoder>
#include <algorithm>

#include "server/load/command_line.h"
#include "server/store/database.h"

namespace kalvor::server {

namespace {

constexpr qint64 largestFile = 1024 * 1024;

enum class SettingKind : quint8 {
  Text,
  Port,   // 0 to 65535
  Count,  // 1 or more
  Flag   // yes or no
};

struct Setting {
  const char* key;
  SettingKind kind;
  const char* variable;
};

// Every option of serve that a site sets once.
constexpr Setting settings[] = {
    {"db", SettingKind::Text, "KALVOR_DATABASE"},
    {"bind", SettingKind::Text, "KALVOR_BIND"},
    {"port", SettingKind::Port, "KALVOR_PORT"},
    {"plaintext", SettingKind::Flag, "KALVOR_PLAINTEXT"},
    {"tls", SettingKind::Flag, "KALVOR_TLS"},
    {"tls-dir", SettingKind::Text, "KALVOR_TLS_DIR"},
    {"certificate", SettingKind::Text, "KALVOR_CERTIFICATE"},
    {"key", SettingKind::Text, "KALVOR_KEY"},
    {"idle-hours", SettingKind::Count, "KALVOR_IDLE_HOURS"},
    {"session-days", SettingKind::Count, "KALVOR_SESSION_DAYS"},
    {"metrics-port", SettingKind::Port, "KALVOR_METRICS_PORT"},
};

using SettingValues = QMap<QString, QString>;  // by key; a flag is "yes" or "no"

const Setting* settingOf(const QString& key)
{
  const auto found = std::find_if(std::begin(settings), std::end(settings),
                                  [&](const Setting& setting) { return key == QLatin1StringView(setting.key); });
  return found == std::end(settings) ? nullptr : found;
}

// As the command line takes it. The message names no value: it may hold a password.
QString checkedValue(const Setting& setting, const QString& text, const QString& where)
{
  static const QStringList yes{QStringLiteral("yes"), QStringLiteral("true"), QStringLiteral("on"), QStringLiteral("1")};
  static const QStringList no{QStringLiteral("no"), QStringLiteral("false"), QStringLiteral("off"), QStringLiteral("0")};
  const auto refuse = [&](const QString& wanted) {
    throw UsageError(QStringLiteral("%1: „%2“ иска %3").arg(where, QLatin1StringView(setting.key), wanted));
  };
  if (text.isEmpty() || text.startsWith(u"--") ||
      std::any_of(text.begin(), text.end(), [](QChar c) { return c.category() == QChar::Other_Control; })) {
    refuse(QStringLiteral("стойност"));
  }
  if (setting.kind == SettingKind::Port || setting.kind == SettingKind::Count) {
    const bool digits = std::all_of(text.begin(), text.end(), [](QChar c) { return c >= u'0' && c <= u'9'; });
    bool ok = false;
    const int number = text.toInt(&ok);
    const bool port = setting.kind == SettingKind::Port;
    if (!digits || !ok || (port ? number > 65535 : number < 1)) {
      refuse(port ? QStringLiteral("число от 0 до 65535") : QStringLiteral("цяло число от 1 нагоре"));
    }
  }
  if (setting.kind == SettingKind::Flag) {
    if (!yes.contains(text.toLower()) && !no.contains(text.toLower())) {
      refuse(QStringLiteral("yes или no"));
    }
    return yes.contains(text.toLower()) ? QStringLiteral("yes") : QStringLiteral("no");
  }
  return text;
}

SettingValues fileSettings(const QString& fileName)
{
  QFile file(fileName);
  if (QFileInfo(fileName).isDir() || !file.open(QIODevice::ReadOnly)) {
    throw UsageError(QStringLiteral("%1 липсва или не може да бъде прочетен").arg(fileName));
  }
  if (file.size() > largestFile) {
    throw UsageError(QStringLiteral("%1 е твърде голям").arg(fileName));
  }
  SettingValues values;
  QMap<QString, int> lines;
  int number = 0;
  while (!file.atEnd()) {
    const QString where = QStringLiteral("%1, ред %2").arg(fileName).arg(++number);
    QStringDecoder decoder(QStringDecoder::Utf8);
    const QString line = QString(decoder(file.readLine())).trimmed();
    if (decoder.hasError()) {
      throw UsageError(QStringLiteral("%1: текстът не е UTF-8").arg(where));
    }
    if (line.isEmpty() || line.startsWith(u'#')) {
      continue;
    }
    const qsizetype equals = line.indexOf(u'=');
    if (equals < 1) {
      throw UsageError(QStringLiteral("%1: редът не е от вида ключ = стойност").arg(where));
    }
    const QString key = line.left(equals).trimmed();
    const Setting* const setting = settingOf(key);
    if (!setting) {
      throw UsageError(QStringLiteral("%1: непознат ключ „%2“").arg(where, key.left(64)));
    }
    if (lines.contains(key)) {
      throw UsageError(QStringLiteral("%1: „%2“ е дадено вече на ред %3").arg(where, key).arg(lines.value(key)));
    }
    lines.insert(key, number);
    values.insert(key, checkedValue(*setting, line.mid(equals + 1).trimmed(), where));
  }
  return values;
}

// What file and environment say; an empty name stands for the usual file, where there is one.
SettingValues configuredSettings(const QString& fileName)
{
  SettingValues values;
  if (!fileName.isEmpty()) {
    values = fileSettings(fileName);
  } else if (QFile::exists(usualConfigurationFile())) {
    values = fileSettings(usualConfigurationFile());
  }
  for (const Setting& setting : settings) {
    const QString value = qEnvironmentVariable(setting.variable).trimmed();
    if (!value.isEmpty()) {
      values.insert(QLatin1StringView(setting.key), checkedValue(setting, value, QLatin1StringView(setting.variable)));
    }
  }
  return values;
}

}  // namespace

QString usualConfigurationFile() { return QStringLiteral("/etc/kalvor/server.conf"); }

QStringList withConfiguration(const QStringList& arguments)
{
  QStringList result = arguments;
  QString fileName;
  const qsizetype at = result.indexOf(QStringLiteral("--config"));
  if (at >= 0) {
    fileName = result.value(at + 1);
    if (fileName.isEmpty() || fileName.startsWith(u"--")) {
      throw UsageError(QStringLiteral("--config иска стойност"));
    }
    result.remove(at, 2);
  }
  SettingValues values = configuredSettings(fileName);
  // One of the two on the command line is also an answer about the other.
  for (const auto& [given, other] : {std::pair("--tls", "plaintext"), std::pair("--plaintext", "tls")}) {
    if (arguments.contains(QLatin1StringView(given))) {
      values.remove(QLatin1StringView(other));
    }
  }
  for (auto value = values.begin(); value != values.end(); ++value) {
    const QString option = QStringLiteral("--") + value.key();
    const bool flag = settingOf(value.key())->kind == SettingKind::Flag;
    if (result.contains(option) || (flag && *value == u"no")) {
      continue;
    }
    result.append(option);
    if (!flag) {
      result.append(*value);
    }
  }
  return result;
}

QString databaseOf(const CommandArguments& arguments)
{
  if (arguments.has(QStringLiteral("--db"))) {
    return arguments.value(QStringLiteral("--db"));
  }
  const QString configured = configuredSettings(arguments.value(QStringLiteral("--config"))).value(QStringLiteral("db"));
  return configured.isEmpty() ? defaultDatabase() : configured;
}

}  // namespace kalvor::server
