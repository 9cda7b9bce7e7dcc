#include "server/log.h"

#include <QDateTime>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <algorithm>
#include <cstdio>
#include <sys/stat.h>

namespace kalvor::server {

namespace {

LogSink& currentSink()
{
  static LogSink sink;
  return sink;
}

// Ends a line, moves the cursor or turns the direction of writing, or is none at all.
bool isUnfit(QChar c)
{
  return c.category() == QChar::Other_Control || c.category() == QChar::Other_Format || c.category() == QChar::Separator_Line ||
         c.category() == QChar::Separator_Paragraph || c.category() == QChar::Other_NotAssigned;
}

QString escaped(QChar c)
{
  switch (c.unicode()) {
    case u'\\': return QStringLiteral("\\\\");
    case u'\n': return QStringLiteral("\\n");
    case u'\r': return QStringLiteral("\\r");
    case u'\t': return QStringLiteral("\\t");
    default: break;
  }
  return c.unicode() < 0x100 ? QStringLiteral("\\x%1").arg(c.unicode(), 2, 16, QLatin1Char('0'))
                             : QStringLiteral("\\u%1").arg(c.unicode(), 4, 16, QLatin1Char('0'));
}

// In quotes where it is not plain, so that no value can pass for another line or pair.
QString loggedValue(const QString& value)
{
  constexpr qsizetype longest = 1000;
  QString text;
  qsizetype i = 0;
  for (; i < value.size() && text.size() < longest; ++i) {
    const QChar c = value.at(i);
    const bool pair = c.isHighSurrogate() && i + 1 < value.size() && value.at(i + 1).isLowSurrogate();
    if (pair) {
      text += value.mid(i++, 2);
    } else if (c == u'\\' || c.isSurrogate() || isUnfit(c)) {
      text += escaped(c);
    } else {
      text += c == u'"' ? QChar(u'\'') : c;
    }
  }
  if (i < value.size()) {
    text += u'\u2026';
  }
  const bool plain = !text.isEmpty() && !text.contains(u'=') &&
                     std::none_of(text.begin(), text.end(), [](QChar c) { return c.isSpace(); });
  return plain ? text : u'"' + text + u'"';
}

// Whether stderr is the stream that the journal reads, as its variable "device:inode" says.
bool journalReads()
{
  struct stat stream{};
  return fstat(fileno(stderr), &stream) == 0 &&
         qgetenv("JOURNAL_STREAM") == QByteArray::number(quint64(stream.st_dev)) + ':' + QByteArray::number(quint64(stream.st_ino));
}

}  // namespace

void setLogSink(LogSink sink) { currentSink() = std::move(sink); }

void logEvent(LogLevel level, const char* event, std::initializer_list<LogPair> pairs)
{
  static constexpr const char* levels[] = {"info", "warning", "error"};
  // The priority that the journal takes from the beginning of a line.
  static constexpr const char* priorities[] = {"<6>", "<4>", "<3>"};
  static const bool forJournal = journalReads();
  QString line = QLatin1StringView(forJournal ? priorities[int(level)] : "") + QDateTime::currentDateTime().toString(Qt::ISODateWithMs) + QStringLiteral(" level=%1 event=%2")
      .arg(QLatin1StringView(levels[int(level)]), QLatin1StringView(event));
  for (const auto& [name, value] : pairs) {
    line += u' ' + QLatin1StringView(name) + u'=' + loggedValue(value);
  }
  if (const LogSink& sink = currentSink()) {
    sink(line);
    return;
  }
  line += u'\n';
  const QByteArray bytes = line.toUtf8();
  std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stderr);
}

QString logIncident(const char* event, const QString& details)
{
  const QString id = QStringLiteral("%1").arg(QRandomGenerator::global()->generate64(), 16, 16, QLatin1Char('0')).left(8);
  // Statements in messages may hold what somebody typed; one that was cut has no closing quote.
  static const QRegularExpression text(QStringLiteral("'(?:[^']|'')*(?:'|$)"));
  logEvent(LogLevel::Error, event, {{"incident", id}, {"details", QString(details).replace(text, QStringLiteral("'…'"))}});
  return id;
}

}  // namespace kalvor::server
