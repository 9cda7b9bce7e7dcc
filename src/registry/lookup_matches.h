// What a lookup field offers while its text is being typed: the records that match best by code or by name, asked of
// the server beside the session's own connection, so that typing never waits.
#pragma once

#include <QHash>
#include <functional>

#include "rpc/remote_calls.h"

namespace kalvor {

inline constexpr int lookupMatchCount = 20;

// A lookup as far as it is typed. The filters have their macros expanded.
struct LookupQuestion {
  int itemIndex = -1;        // of the selector's item that asks
  int formId = 0;            // lookup form
  QString text;
  QString shownField;        // of the lookup form's records: what the typed field will show
  FilterArray filter;        // caller filter
  QList<int> typedRows;      // its rows that compare with the typed text
  FilterArray publicFilter;
};

// Records of the lookup form, the best first; no rows when nothing matches or the server did not answer.
struct LookupMatches {
  QStringList columns;       // every field of the form's query
  QList<VariantArray> rows;  // at most lookupMatchCount
  int codeColumn = -1;       // shown first; -1: none
  int nameColumn = -1;
};

// One request: a filter and an order. Those of a question run in turn until there are records enough.
struct LookupAttempt {
  FilterArray filter;
  QString order;

  bool operator==(const LookupAttempt&) const = default;
};

// What begins with the text in the field that the filter compares with it, then in the form's code, then in its name,
// then what contains it in the name. codeField and nameField: names in filters, empty for a form without them.
KALVOR_RULES QList<LookupAttempt> lookupAttempts(const LookupQuestion& question, const QString& codeField,
                                                 const QString& nameField);

// Asks over one connection, in the calling thread. Throws what the calls throw.
class KALVOR_RULES LookupFinder {
 public:
  explicit LookupFinder(RemoteCalls& calls) : calls_(calls) {}
  LookupMatches find(const LookupQuestion& question);

 private:
  struct FormFields {
    QString code, name;  // in filters
  };
  FormFields fieldsOf(int formId);
  bool takeRecords(const LookupQuestion& question, const LookupAttempt& attempt, LookupMatches& matches);

  RemoteCalls& calls_;
  QString provider_;
  QHash<int, FormFields> fields_;
};

class KALVOR_RULES LookupSource {
 public:
  using Answer = std::function<void(const LookupMatches& matches)>;
  virtual ~LookupSource();
  // answered is called once in the thread that asks, at once or later, and never for a receiver that is gone. Errors
  // are no matches.
  virtual void ask(const LookupQuestion& question, QObject* receiver, Answer answered) = 0;
};
// At first: the session's server, on a connection and in a thread of its own. The one before is returned; null brings
// the session's back.
KALVOR_RULES LookupSource* installLookupSource(LookupSource* source);
KALVOR_RULES LookupSource& lookupSource();

}  // namespace kalvor
