#include "filters/text_search.h"

#include "session/local_settings_file.h"

namespace kalvor {

namespace {

constexpr qsizetype rowsBetweenBreaths = 2048;

bool isWordEdge(const QString& text, qsizetype position)
{
  return position < 0 || position >= text.size() || text.at(position) == u' ';
}

}  // namespace

TextSearchOptions readSearchOptions(const QStringList& lines)
{
  const auto isOne = [&](const char* key) { return valueOfLine(lines, QLatin1String(key)).trimmed() == QLatin1String("1"); };
  TextSearchOptions options;
  options.direction = isOne("Direction") ? SearchDirection::Backward : SearchDirection::Forward;
  options.scope = isOne("Scope") ? SearchScope::FromCurrent : SearchScope::FromStart;
  options.caseSensitive = isOne("CaseSentisive");
  options.wholeWords = isOne("WholeWords");
  options.searchOnTyping = isOne("EditOnTyping");
  return options;
}

QStringList searchOptionLines(const TextSearchOptions& options)
{
  const auto line = [](const char* key, bool on) { return QLatin1String(key) + QLatin1String(on ? "=1" : "=0"); };
  return {line("Direction", options.direction == SearchDirection::Backward),
          line("Scope", options.scope == SearchScope::FromCurrent), line("CaseSentisive", options.caseSensitive),
          line("WholeWords", options.wholeWords), line("EditOnTyping", options.searchOnTyping)};
}

bool matchesSearch(const QString& text, const QString& searched, const TextSearchOptions& options)
{
  const Qt::CaseSensitivity letters = options.caseSensitive ? Qt::CaseSensitive : Qt::CaseInsensitive;
  for (qsizetype at = text.indexOf(searched, 0, letters); at >= 0; at = text.indexOf(searched, at + 1, letters)) {
    if (!options.wholeWords || (isWordEdge(text, at - 1) && isWordEdge(text, at + searched.size()))) {
      return true;
    }
  }
  return false;
}

qsizetype findSearchedRecord(const SearchedRecords& records, qsizetype current, const QString& searched,
                             const TextSearchOptions& options, SearchStart start)
{
  const bool forward = options.direction == SearchDirection::Forward;
  const bool fromEnd = start == SearchStart::ByScope && options.scope == SearchScope::FromStart;
  qsizetype row = forward ? (fromEnd ? 0 : current + 1) : (fromEnd ? records.last() : current - 1);
  for (qsizetype walked = 1; row >= 0 && records.has(row); row += forward ? 1 : -1, ++walked) {
    if (matchesSearch(records.textOf(row), searched, options)) {
      return row;
    }
    if (walked % rowsBetweenBreaths == 0 && records.stopped && records.stopped()) {
      return -1;
    }
  }
  return -1;
}

}  // namespace kalvor
