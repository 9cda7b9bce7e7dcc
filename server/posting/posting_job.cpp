#include "server/posting/posting_job.h"

namespace kalvor::server {

PostingRules postingRules(Connection& db, const QString& companyId)
{
  auto row = db.prepare(QStringLiteral(
      "SELECT PrecisionAmount, PrecisionPrice, ClosedPeriodTo, AllowNegativeStock FROM C_CompanySetup WHERE Id = ?"));
  row->bind(0, companyId);
  if (!row->step()) {
    refusePosting(QStringLiteral("Няма настройки на фирмата."));
  }
  return {{int(row->integer(0)), int(row->integer(1))}, row->isNull(2) ? QDate() : row->value(2).toDate(), row->integer(3) != 0};
}

void refusePosting(const QString& text) { throw RpcError(RpcError::Refused, text); }

}  // namespace kalvor::server
