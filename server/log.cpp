#include "server/log.h"

#include <QDateTime>
#include <QRandomGenerator>
#include <cstdio>

namespace kalvor::server {

namespace {

// Quoted, without line ends, so that no value can pass for another line or pair.
QString loggedValue(const QString& value)
{
  QString text = value.left(1000);
  for (QChar& c : text) {
    if (c.unicode() < 0x20 || c == u'\u2028' || c == u'\u2029') {
      c = u' ';
    }
  }
  text.replace(u'"', u'\'');
  const bool plain = !text.isEmpty() && !text.contains(u' ') && !text.contains(u'=');
  return plain ? text : u'"' + text + u'"';
}

}  // namespace

void logEvent(LogLevel level, const char* event, std::initializer_list<LogPair> pairs)
{
  static constexpr const char* levels[] = {"info", "warning", "error"};
  QString line = QDateTime::currentDateTime().toString(Qt::ISODateWithMs) + QStringLiteral(" level=%1 event=%2")
      .arg(QLatin1StringView(levels[int(level)]), QLatin1StringView(event));
  for (const auto& [name, value] : pairs) {
    line += u' ' + QLatin1StringView(name) + u'=' + loggedValue(value);
  }
  line += u'\n';
  const QByteArray bytes = line.toUtf8();
  std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stderr);
}

QString logIncident(const char* event, const QString& details)
{
  const QString id = QStringLiteral("%1").arg(QRandomGenerator::global()->generate64(), 16, 16, QLatin1Char('0')).left(8);
  logEvent(LogLevel::Error, event, {{"incident", id}, {"details", details}});
  return id;
}

}  // namespace kalvor::server
