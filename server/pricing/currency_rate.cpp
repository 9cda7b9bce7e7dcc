#include "server/pricing/currency_rate.h"

namespace kalvor::server {

std::optional<qint64> currencyRate(Connection& db, const QString& companyId, const QString& localCurrency,
                                   const QString& currencyId, const QDate& day, qint64 kind)
{
  if (currencyId.isEmpty() || currencyId.compare(localCurrency, Qt::CaseInsensitive) == 0) {
    return amountScale;
  }
  auto row = db.prepare(QStringLiteral("SELECT Rate FROM N_CurrencyRate WHERE Comp_Id = ? AND Currency_Id = ? AND "
                                       "Kind = ? AND RateDate <= ? ORDER BY RateDate DESC LIMIT 1"));
  row->bind(0, companyId);
  row->bind(1, currencyId);
  row->bind(2, qlonglong(kind));
  row->bind(3, day);
  return row->step() && row->integer(0) > 0 ? std::optional(row->integer(0)) : std::nullopt;
}

QString localCurrencyOf(Connection& db, const QString& companyId)
{
  return db.value(QStringLiteral("SELECT Currency_LCY FROM C_CompanySetup WHERE Id = ?"), {companyId}).toString();
}

}  // namespace kalvor::server
