// The user tables of a database, each after the tables that it refers to.
#pragma once

#include <QStringList>
#include <functional>

#include "layer_export.h"

namespace kalvor {

// Runs a statement over the database catalogue and gives one column of all its rows.
using CatalogueQuery = std::function<QStringList(const QString& statement, const QString& column)>;

// The tables that a table refers to, joined by ";". useReferenceTable reads S_ReferenceTable instead of the
// database's own catalogue.
KALVOR_RULES QString GetDependenceTableList(const CatalogueQuery& catalogue, const QString& table,
                                            bool useReferenceTable);

// Fills result in order: tables without references first, then each after those it refers to (itself apart).
// Tables that refer to each other in a circle, or to one that is no user table, cannot be placed: DataError that
// names them, with result empty.
KALVOR_RULES void OrderUserTables(const CatalogueQuery& catalogue, QStringList& result, bool useReferenceTable);

}  // namespace kalvor
