#include "server/posting/item_posting.h"

#include <QRegularExpression>

#include "server/load/row_inserter.h"
#include "server/pricing/exact_amount.h"

namespace kalvor::server {

namespace {

// Of everything that was posted, whatever its day.
struct StockBalance {
  qint64 quantity = 0;
  qint64 cost = 0;
  qint64 available = 0;  // least of what is there on the document's day and after
};

StockBalance stockBalance(const PostingJob& job, const QString& itemId)
{
  auto sums = job.db().prepare(QStringLiteral("SELECT SUM(Quantity), SUM(CostAmount), MAX(PostingDate) AS \"Last:DATE\" "
                                              "FROM G_ItemValueEntry WHERE Comp_Id = ? AND Item_Id = ?"));
  sums->bind(0, job.companyId());
  sums->bind(1, itemId);
  if (!sums->step()) {
    return {};
  }
  StockBalance balance{sums->integer(0), sums->integer(1), sums->integer(0)};
  const QDate last = sums->value(2).toDate();
  if (!last.isValid() || last <= job.document.date) {
    return balance;
  }
  // Backwards from the end, a day at a time.
  auto days = job.db().prepare(QStringLiteral(
      "SELECT PostingDate, SUM(Quantity) FROM G_ItemValueEntry WHERE Comp_Id = ? AND Item_Id = ? AND PostingDate > ? "
      "GROUP BY PostingDate ORDER BY PostingDate DESC"));
  days->bind(0, job.companyId());
  days->bind(1, itemId);
  days->bind(2, job.document.date);
  qint64 running = balance.quantity;
  while (days->step()) {
    running -= days->integer(1);
    balance.available = std::min(balance.available, running);
  }
  return balance;
}

QString shownQuantity(qint64 quantity) { return QString::number(unscaled(quantity), 'f', 6).remove(QRegularExpression(QStringLiteral("\\.?0+$"))).replace(u'.', u','); }

class ItemPosting {
 public:
  ItemPosting(PostingJob& job, PostingSetup& setup, LedgerTransaction& ledger)
      : job_(job), setup_(setup), ledger_(ledger),
        items_(job.db(), QStringLiteral("G_ItemEntry"),
               {"Id", "Comp_Id", "Businessgroup_Id", "Transaction_Id", "Item_Id", "DocumentType", "Document_Id",
                "DocumentNo", "DocLine_Id", "Contragent_Id", "PostingDate", "Quantity"}),
        values_(job.db(), QStringLiteral("G_ItemValueEntry"),
                {"Id", "Comp_Id", "Businessgroup_Id", "Transaction_Id", "ItemEntry_Id", "Item_Id", "DocumentType",
                 "Document_Id", "DocumentNo", "DocLine_Id", "PostingDate", "Quantity", "CostAmount", "SalesAmount"})
  {
  }

  void post(const GlobalLine& line)
  {
    const qint64 moved = -job_.signedAmount(line.quantityBase);
    StockBalance& balance = balanceOf(line.itemId);
    if (moved < 0 && balance.available + moved < 0 && !job_.rules.negativeStock) {
      refusePosting(QStringLiteral("%1: недостатъчно количество на артикул %2 в склада. Налично: %3, необходимо: %4.")
                        .arg(job_.document.shown(line), line.code, shownQuantity(std::max<qint64>(balance.available, 0)),
                             shownQuantity(-moved)));
    }
    const qint64 cost = costOf(line, moved, balance);
    write(line, moved, cost);
    balance.quantity += moved;
    balance.available += moved;
    balance.cost += cost;
    ledger_.add(LedgerPurpose::Inventory, setup_.general(line, GeneralAccount::Inventory), cost);
    ledger_.add(LedgerPurpose::Cost, setup_.general(line, GeneralAccount::Cost), -cost);
  }

 private:
  StockBalance& balanceOf(const QString& itemId)
  {
    auto found = balances_.find(itemId);
    return found != balances_.end() ? *found : *balances_.insert(itemId, stockBalance(job_, itemId));
  }

  // Signed as the movement.
  qint64 costOf(const GlobalLine& line, qint64 moved, const StockBalance& balance) const
  {
    if (balance.quantity + moved == 0 && (moved < 0 ? balance.cost >= 0 : balance.cost <= 0)) {
      return -balance.cost;
    }
    if (const auto source = moved > 0 ? sourceCost(line, moved) : std::nullopt) {
      return *source;
    }
    return balance.quantity > 0 ? share(balance.cost, moved, balance.quantity, line)
                                : share(line.itemUnitCost, moved, amountScale, line);
  }

  // What the returned pieces cost when they left: their part of the sold line's cost, and the last of them the rest.
  std::optional<qint64> sourceCost(const GlobalLine& line, qint64 moved) const
  {
    if (line.sourceLineId.isEmpty() || job_.document.appliesToId.isEmpty()) {
      return {};
    }
    auto sold = job_.db().prepare(QStringLiteral(
        "SELECT SUM(Quantity), SUM(CostAmount) FROM G_ItemValueEntry WHERE Document_Id = ? AND DocLine_Id = ? AND Item_Id = ?"));
    sold->bind(0, job_.document.appliesToId);
    sold->bind(1, line.sourceLineId);
    sold->bind(2, line.itemId);
    if (!sold->step() || sold->integer(0) >= 0) {
      return {};
    }
    const qint64 soldQuantity = -sold->integer(0);
    const qint64 soldCost = -sold->integer(1);
    auto returned = job_.db().prepare(QStringLiteral(
        "SELECT SUM(v.Quantity), SUM(v.CostAmount) FROM D_SaleCrMemoLine l "
        "JOIN G_ItemValueEntry v ON v.Document_Id = l.Master_Id AND v.DocLine_Id = l.Id "
        "WHERE l.SrcLine_Id = ? AND v.Item_Id = ?"));
    returned->bind(0, line.sourceLineId);
    returned->bind(1, line.itemId);
    returned->step();
    const bool last = returned->integer(0) + moved == soldQuantity;
    return last ? soldCost - returned->integer(1) : share(soldCost, moved, soldQuantity, line);
  }

  qint64 share(qint64 cost, qint64 times, qint64 over, const GlobalLine& line) const
  {
    const auto part = ExactAmount(cost).multiply(times, over).roundedMillionths(job_.rules.sale.amountDecimals);
    if (!part) {
      refusePosting(QStringLiteral("%1: себестойността на артикул %2 е твърде голяма.").arg(job_.document.shown(line), line.code));
    }
    return *part;
  }

  void write(const GlobalLine& line, qint64 moved, qint64 cost)
  {
    const QString entry = job_.ids.next();
    const Variant group = PostingJob::textOrNothing(job_.document.ownerGroupId);
    items_.insert({entry, job_.companyId(), group, job_.transactionId, line.itemId, int(PostedKind::StoreDocument),
                   job_.shipmentId, job_.shipmentNumber, line.id, job_.document.customerId, job_.document.date,
                   qlonglong(moved)});
    values_.insert({job_.ids.next(), job_.companyId(), group, job_.transactionId, entry, line.itemId,
                    int(job_.document.kind), job_.postedId, job_.postedNumber, line.id, job_.document.date,
                    qlonglong(moved), qlonglong(cost), qlonglong(job_.signedAmount(line.valueLcy))});
  }

  PostingJob& job_;
  PostingSetup& setup_;
  LedgerTransaction& ledger_;
  RowInserter items_, values_;
  QHash<QString, StockBalance> balances_;
};

}  // namespace

void postItems(PostingJob& job, PostingSetup& setup, LedgerTransaction& ledger)
{
  ItemPosting posting(job, setup, ledger);
  for (const GlobalLine& line : std::as_const(job.document.lines)) {
    if (line.movesStock()) {
      posting.post(line);
    }
  }
}

}  // namespace kalvor::server
