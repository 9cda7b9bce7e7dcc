#include "server/posting/vat_posting.h"

#include <map>

#include "server/load/row_inserter.h"

namespace kalvor::server {

namespace {

struct VatGroup {
  GroupPair groups;
  qint64 percent = 0;
  int calculation = 0;
  int ledger = 0;
  qint64 base = 0;
  qint64 baseLcy = 0;
  qint64 vat = 0;
  qint64 vatLcy = 0;

  bool takes(const GlobalLine& line) const
  {
    return groups == line.vat && percent == line.vatPercent && calculation == line.vatCalculation && ledger == line.vatLedger;
  }
};

SaleTotals totalsOf(qint64 percent, qint64 base, qint64 baseLcy, const SaleRules& rules)
{
  SaleTotalsBuilder sum;
  sum.add(percent, base, baseLcy);
  return sum.totals(rules);
}

QList<VatGroup> vatGroups(const QList<GlobalLine>& lines)
{
  QList<VatGroup> groups;
  for (const GlobalLine& line : lines) {
    auto group = std::find_if(groups.begin(), groups.end(), [&](const VatGroup& other) { return other.takes(line); });
    if (group == groups.end()) {
      groups.append({line.vat, line.vatPercent, line.vatCalculation, line.vatLedger});
      group = groups.end() - 1;
    }
    group->base += line.value;
    group->baseLcy += line.valueLcy;
  }
  return groups;
}

// Each group's own VAT; what rounding leaves of the percent's goes to its largest group.
void shareOut(QList<VatGroup>& groups, const SaleRules& rules)
{
  struct Percent {
    VatGroup* largest = nullptr;
    qint64 base = 0, baseLcy = 0, vat = 0, vatLcy = 0;
  };
  std::map<qint64, Percent> percents;
  for (VatGroup& group : groups) {
    const SaleTotals own = totalsOf(group.percent, group.base, group.baseLcy, rules);
    group.vat = own.vatValue;
    group.vatLcy = own.vatValueLcy;
    Percent& percent = percents[group.percent];
    percent.base += group.base;
    percent.baseLcy += group.baseLcy;
    percent.vat += group.vat;
    percent.vatLcy += group.vatLcy;
    if (!percent.largest || std::abs(group.baseLcy) > std::abs(percent.largest->baseLcy)) {
      percent.largest = &group;
    }
  }
  for (auto& [number, percent] : percents) {
    const SaleTotals whole = totalsOf(number, percent.base, percent.baseLcy, rules);
    percent.largest->vat += whole.vatValue - percent.vat;
    percent.largest->vatLcy += whole.vatValueLcy - percent.vatLcy;
  }
}

}  // namespace

SaleTotals documentTotals(const QList<GlobalLine>& lines, const SaleRules& rules)
{
  SaleTotalsBuilder sum;
  for (const GlobalLine& line : lines) {
    sum.add(line.vatPercent, line.value, line.valueLcy);
  }
  return sum.totals(rules);
}

void postVat(PostingJob& job, PostingSetup& setup, LedgerTransaction& ledger)
{
  RowInserter entries(job.db(), QStringLiteral("G_VATEntry"),
                      {"Id", "Comp_Id", "Businessgroup_Id", "Transaction_Id", "Gen_PostingType", "DocumentType",
                       "Document_Id", "DocumentNo", "DocumentDate", "VATDate", "PostingDate", "Contragent_Id",
                       "VATBus_PostingGroup", "VATProd_PostingGroup", "VATPercent", "VATCalculationType", "VATLedger",
                       "BaseAmount", "VATAmount", "Currency_Id", "BaseAmount_ACY", "VATAmount_ACY"});
  constexpr int sales = 1;
  const GlobalDocument& document = job.document;
  QList<VatGroup> groups = vatGroups(document.lines);
  shareOut(groups, job.rules.sale);
  for (const VatGroup& group : std::as_const(groups)) {
    if (group.base == 0 && group.baseLcy == 0) {
      continue;
    }
    if (group.vatLcy != 0 || group.vat != 0) {
      ledger.add(LedgerPurpose::Vat, setup.salesVat(group.groups), -job.signedAmount(group.vatLcy), -job.signedAmount(group.vat));
    }
    entries.insert({job.ids.next(), job.companyId(), PostingJob::textOrNothing(document.ownerGroupId), job.transactionId,
                    sales, int(document.kind), job.postedId, job.postedNumber, document.date, document.vatDate,
                    document.date, document.payerId, PostingJob::textOrNothing(group.groups.business),
                    PostingJob::textOrNothing(group.groups.product), qlonglong(group.percent), group.calculation,
                    group.ledger, qlonglong(job.signedAmount(group.baseLcy)), qlonglong(job.signedAmount(group.vatLcy)),
                    job.currency(), qlonglong(job.signedAmount(group.base)), qlonglong(job.signedAmount(group.vat))});
  }
}

}  // namespace kalvor::server
