#include "server/load/company_defaults.h"

namespace kalvor::server {

std::optional<CompanyDefaults> readCompanyDefaults(Connection& connection, const QString& companyId)
{
  auto setup = connection.prepare(QStringLiteral(
      "SELECT C_CompanySetup.Currency_LCY, C_SalesSetup.BusinessGroup_Id, C_SalesSetup.VATBusPostGroup_Id, "
      "C_SalesSetup.VATProdPostGroup_Id, C_SalesSetup.GenBusPostGroup_Id, C_SalesSetup.GenProdPostGroup_Id, "
      "C_SalesSetup.Measure_Id, C_SalesSetup.PaymentTerms_Id, C_SalesSetup.PaymentMethod_Id, "
      "C_SalesSetup.SubDocument_Id, N_SubDocument.Series_Id, N_SubDocument.Post_Series_Id, "
      "C_CompanySetup.PrecisionAmount, C_CompanySetup.PrecisionPrice "
      "FROM C_CompanySetup JOIN C_SalesSetup ON C_SalesSetup.Id = C_CompanySetup.Id "
      "LEFT JOIN N_SubDocument ON N_SubDocument.Id = C_SalesSetup.SubDocument_Id WHERE C_CompanySetup.Id = ?"));
  setup->bind(0, companyId);
  if (!setup->step()) {
    return {};
  }
  CompanyDefaults defaults;
  defaults.companyId = companyId;
  QString* const texts[] = {
      &defaults.localCurrency,  &defaults.businessGroupId, &defaults.vatBusGroupId,  &defaults.vatProdGroupId,
      &defaults.genBusGroupId,  &defaults.genProdGroupId,  &defaults.measureId,      &defaults.paymentTermsId,
      &defaults.paymentMethodId, &defaults.subDocumentId,  &defaults.seriesId,       &defaults.postingSeriesId};
  int column = 0;
  for (QString* text : texts) {
    *text = setup->text(column++);
  }
  defaults.rules.amountDecimals = int(setup->integer(column++));
  defaults.rules.priceDecimals = int(setup->integer(column));
  return defaults;
}

VatRules::VatRules(Connection& connection, const QString& companyId)
{
  auto rows = connection.prepare(QStringLiteral(
      "SELECT VATBus_PostingGroup, VATProd_PostingGroup, VATPercent, VATCalculationType, SalesVATLedger "
      "FROM G_VATPostingSetup WHERE Comp_Id = ?"));
  rows->bind(0, companyId);
  while (rows->step()) {
    rules_.insert({rows->text(0), rows->text(1)}, {rows->integer(2), int(rows->integer(3)), int(rows->integer(4))});
  }
}

const VatRule* VatRules::find(const QString& businessGroupId, const QString& productGroupId) const
{
  const auto it = rules_.find({businessGroupId, productGroupId});
  return it == rules_.end() ? nullptr : &*it;
}

}  // namespace kalvor::server
