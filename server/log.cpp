#include "server/log.h"

#include <QDateTime>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <cstdio>
#include <sys/stat.h>

namespace kalvor::server {

namespace {

// Quoted, without line ends, so that no value can pass for another line or pair.
QString loggedValue(const QString& value)
{
  QString text = value.left(1000);
  for (QChar& c : text) {
    // Marks of writing direction among them: they would show a line in another order than it has.
    const QChar::Category category = c.category();
    if (category == QChar::Other_Control || category == QChar::Other_Format || category == QChar::Separator_Line ||
        category == QChar::Separator_Paragraph) {
      c = u' ';
    }
  }
  text.replace(u'"', u'\'');
  const bool plain = !text.isEmpty() && !text.contains(u' ') && !text.contains(u'=');
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
