// Which rows a user sees and may write: the security filter of a form, for masters and for their details.
#pragma once

#include "server/rights/form_rights.h"

namespace kalvor::server {

// The condition over a query's rows that the rights of its form ask for, besides the company: the security filter
// for a master; for a detail, that its master is a row the user may see. Empty: every row. Throws RpcError
// (Forbidden) when the filter cannot be applied: then nothing is seen.
// Writing asks also without a filter that a detail's master is a row of the company.
enum class RowUse : quint8 { Reading, Writing };
KALVOR_SERVER Fragment rowSecurity(const Access& access, const StoredQuery& query, const ParameterArray& parameters,
                                   RowUse use = RowUse::Reading);

// The same for a table that is read by its name: the security filters of the forms over it that the user may read.
// `alias` is the table's name in the statement. Throws RpcError (Forbidden) when the user may not read the table.
KALVOR_SERVER Fragment tableSecurity(const Access& access, const TableInfo& table, const QString& alias);

}  // namespace kalvor::server
