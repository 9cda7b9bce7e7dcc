#include "server/checks/contragent_checks.h"

#include "server/rights/row_security.h"

namespace kalvor::server {

namespace {

constexpr int salesEntries = 1;

// What the contractor owes on the sales side; payments in advance make it less.
qint64 openDebt(const Access& access, const QString& contragentId)
{
  auto row = access.db.prepare(QStringLiteral(
      "SELECT SUM(Remaining_LCY) FROM G_ContragentEntry "
      "WHERE Comp_Id = ? AND Contragent_Id = ? AND Opened = 1 AND Gen_PostingType = ?"));
  row->bind(0, access.session.companyId);
  row->bind(1, contragentId);
  row->bind(2, salesEntries);
  return row->step() ? row->integer(0) : 0;
}

bool hasOverdueDebt(const Access& access, const QString& contragentId, const QDate& today)
{
  auto row = access.db.prepare(QStringLiteral(
      "SELECT 1 FROM G_ContragentEntry WHERE Comp_Id = ? AND Contragent_Id = ? AND Opened = 1 AND Gen_PostingType = ? "
      "AND DueDate < ? AND Remaining_LCY > 0 LIMIT 1"));
  row->bind(0, access.session.companyId);
  row->bind(1, contragentId);
  row->bind(2, salesEntries);
  row->bind(3, today);
  return row->step();
}

bool exceeds(qint64 debt, qint64 amount, qint64 limit)
{
  qint64 sum = 0;
  return __builtin_add_overflow(debt, amount, &sum) ? amount > 0 : sum > limit;
}

}  // namespace

ContragentVerdict checkSaleContragent(const Access& access, const QString& contragentId, qint64 amount, int mode,
                                      const QDate& today)
{
  if ((mode & (CheckCreditLimit | CheckOverdueDebt)) == 0) {
    return ContragentVerdict::Clear;
  }
  const TableInfo& table = *access.metadata.catalogue().table(u"N_Contragent");
  const Fragment visible = allOf({Fragment{QStringLiteral("N_Contragent.Id = ? AND N_Contragent.Comp_Id = ?"),
                                           {contragentId, access.session.companyId}},
                                  tableSecurity(access, table, table.name)});
  auto contragent =
      access.db.prepare(QStringLiteral("SELECT N_Contragent.CreditLimit FROM N_Contragent WHERE ") + visible.sql);
  for (int i = 0; i < visible.values.size(); ++i) {
    contragent->bind(i, visible.values.at(i));
  }
  if (!contragent->step()) {
    return ContragentVerdict::Unknown;
  }
  const bool limited = (mode & CheckCreditLimit) != 0 && !contragent->isNull(0);
  if (limited && exceeds(openDebt(access, contragentId), amount, contragent->integer(0))) {
    return ContragentVerdict::AboveCreditLimit;
  }
  const bool overdue = (mode & CheckOverdueDebt) != 0 && hasOverdueDebt(access, contragentId, today);
  return overdue ? ContragentVerdict::OverdueDebt : ContragentVerdict::Clear;
}

}  // namespace kalvor::server
