// Rates of currencies by day.
#pragma once

#include <QDate>
#include <optional>

#include "server/store/connection.h"

namespace kalvor::server {

// Millionths of local currency for one unit: the latest rate of that kind on or before the day (kind 0 = central
// bank). The local currency, and none (an empty id), are worth 1. Nothing when there is no such rate or it is not
// above 0. Throws StoreError.
KALVOR_SERVER std::optional<qint64> currencyRate(Connection& db, const QString& companyId, const QString& localCurrency,
                                                 const QString& currencyId, const QDate& day, qint64 kind);

// The local currency of a company, empty when it is not set up.
KALVOR_SERVER QString localCurrencyOf(Connection& db, const QString& companyId);

}  // namespace kalvor::server
