// What a company's setup says about records that do not say it themselves.
#pragma once

#include <QHash>

#include "server/load/sale_amounts.h"
#include "server/store/connection.h"

namespace kalvor::server {

struct CompanyDefaults {
  QString companyId;
  QString localCurrency;
  SaleRules rules;
  QString businessGroupId;
  QString vatBusGroupId;
  QString vatProdGroupId;
  QString genBusGroupId;
  QString genProdGroupId;
  QString measureId;
  QString paymentTermsId;
  QString paymentMethodId;
  QString subDocumentId;
  QString seriesId;         // of the sub-document
  QString postingSeriesId;
};

// Nothing when the company has no setup rows. Throws StoreError.
KALVOR_SERVER std::optional<CompanyDefaults> readCompanyDefaults(Connection& connection, const QString& companyId);

struct VatRule {
  qint64 percent = 0;  // millionths
  int calculationType = 0;
  int salesLedger = 0;
};

// The whole VAT set-up of a company, by its pairs of groups.
class KALVOR_SERVER VatRules {
 public:
  VatRules(Connection& connection, const QString& companyId);
  const VatRule* find(const QString& businessGroupId, const QString& productGroupId) const;

 private:
  QHash<std::pair<QString, QString>, VatRule> rules_;
};

}  // namespace kalvor::server
