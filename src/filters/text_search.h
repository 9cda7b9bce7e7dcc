// Finding a text in a column: when a text matches, and which record is the next that does.
#pragma once

#include <QStringList>
#include <functional>

#include "layer_export.h"

namespace kalvor {

enum class SearchDirection : quint8 { Forward, Backward };
enum class SearchScope : quint8 { FromStart, FromCurrent };

struct TextSearchOptions {
  SearchDirection direction = SearchDirection::Forward;
  SearchScope scope = SearchScope::FromStart;
  bool caseSensitive = false;
  bool wholeWords = false;   // a match stands between blanks or ends of the text
  bool searchOnTyping = false;

  bool operator==(const TextSearchOptions&) const = default;
};

// The group of the user settings and its lines; missing keys read as 0.
inline const QString searchOptionsGroup = QStringLiteral("SearchOptions");
KALVOR_RULES TextSearchOptions readSearchOptions(const QStringList& lines);
KALVOR_RULES QStringList searchOptionLines(const TextSearchOptions& options);

KALVOR_RULES bool matchesSearch(const QString& text, const QString& searched, const TextSearchOptions& options);

enum class SearchStart : quint8 {
  ByScope,    // from the first (backward: the last) record when the scope says so, else as Next
  Next        // from the record after (backward: before) the current one
};
// Records as the search sees them; rows count from 0.
struct SearchedRecords {
  std::function<QString(qsizetype row)> textOf;
  // False: there is no such record, after fetching what the search needs of those that are not here yet.
  std::function<bool(qsizetype row)> has;
  std::function<qsizetype()> last;          // of all records, fetched for it
  std::function<bool()> stopped;            // asked now and then; lets the interface breathe
};
// The record that matches, -1 when there is none or the search was stopped. current may be -1.
KALVOR_RULES qsizetype findSearchedRecord(const SearchedRecords& records, qsizetype current, const QString& searched,
                                          const TextSearchOptions& options, SearchStart start);

}  // namespace kalvor
