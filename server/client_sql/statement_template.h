// Statements of a fixed form that a client sends as text: recognised token by token, only the values taken out.
#pragma once

#include <QHash>

#include "server/sql/sql_tokens.h"

namespace kalvor::server {

// The template is SQL in which ":name" stands for a text in quotes and "<name>" for a plain name, as in
// "UPDATE <table> SET ... WHERE ID = :id". Words match without regard to case; a place holder that comes twice must
// stand for the same. Nothing when the statement differs anywhere.
KALVOR_SERVER std::optional<QHash<QString, QString>> matchTemplate(const QString& statement, const char* pattern);

// The beginning of a statement for the log, at most 300 characters: ? stands for every text and number, and for a name
// in quotes that is none.
KALVOR_SERVER QString withoutValues(const QString& statement);

}  // namespace kalvor::server
