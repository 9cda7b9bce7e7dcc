// Everything a window, or the calls behind it, can do to read rows: each way gives the texts that came to the user.
#pragma once

#include <functional>

#include "sample_forms.h"

namespace kalvor::testing {

inline constexpr int securedList = 120;
inline constexpr int securedCard = 121;

inline const QString hiddenDocument = QStringLiteral("СКРИТ");
inline const QString hiddenContragent = QStringLiteral("ТАЕН");
inline const QString seenRow = QStringLiteral("ЯВЕН");

// Of a hidden document, of one that may be seen, of a hidden contractor; there once hideRows() has run.
struct SecuredIds {
  QString hidden, own, contragent;
};
const SecuredIds& securedIds();

// Gives the clerk's rights row filters, and the rows their texts. The statement that changed nothing, or null.
const char* hideRows();

// All records that a form would show, packet by packet.
QStringList recordsOf(TfBase* form);

enum class Shows : quint8 { Something, Nothing };

struct Way {
  const char* name;
  const QString& hidden;  // the text that must not appear
  Shows shows;            // whether the row that may be seen must appear
  std::function<QStringList(Desk&)> run;
};
const QList<Way>& windowWays();
const QList<Way>& callWays();

}  // namespace kalvor::testing
