#include "server/posting/contragent_posting.h"

#include "server/load/row_inserter.h"
#include "server/pricing/exact_amount.h"

namespace kalvor::server {

namespace {

constexpr int salesSide = 1;
enum DetailType : int { DetailEntry = 0, DetailSettled = 1, DetailExchange = 2 };

struct Debt {
  qint64 document = 0;
  qint64 local = 0;

  Debt operator-() const { return {-document, -local}; }
  Debt operator+(const Debt& other) const { return {document + other.document, local + other.local}; }
  bool operator==(const Debt&) const = default;
};

struct DebtEntry {
  QString id;
  int documentType = 0;
  QString documentId;
  QString number;
  Debt remaining;
};

class ContragentPosting {
 public:
  ContragentPosting(PostingJob& job, PostingSetup& setup, LedgerTransaction& ledger)
      : job_(job), setup_(setup), ledger_(ledger),
        entries_(job.db(), QStringLiteral("G_ContragentEntry"),
                 {"Id", "Comp_Id", "Businessgroup_Id", "Transaction_Id", "Contragent_Id", "Gen_PostingType",
                  "DocumentType", "Document_Id", "DocumentNo", "DocumentDate", "PostingDate", "DueDate",
                  "PaymentMethod_Id", "Currency_Id", "Amount", "Amount_LCY", "Remaining", "Remaining_LCY", "Opened"}),
        details_(job.db(), QStringLiteral("G_ContragentEntryDetail"),
                 {"Id", "Comp_Id", "Businessgroup_Id", "Transaction_Id", "Entry_Id", "EntryType", "AppliedToEntry_Id",
                  "Contragent_Id", "DocumentType", "Document_Id", "DocumentNo", "PostingDate", "Currency_Id", "Amount",
                  "Amount_LCY"})
  {
  }

  void post()
  {
    const Debt total{job_.signedAmount(job_.totals.totalVat), job_.signedAmount(job_.totals.totalVatLcy)};
    ledger_.add(LedgerPurpose::Receivables, receivables(), total.local, total.document);
    DebtEntry debt = writeEntry(job_.document.kind, job_.document.dueDate, total);
    if (job_.document.paidDirectly) {
      pay(debt);
    } else if (job_.document.isCreditMemo() && !job_.document.appliesToId.isEmpty()) {
      applyToInvoice(debt);
    }
  }

 private:
  QString receivables() { return setup_.contragent(ContragentAccount::Receivables); }

  DebtEntry writeEntry(PostedKind kind, const QDate& due, const Debt& amount)
  {
    const GlobalDocument& document = job_.document;
    const DebtEntry entry{job_.ids.next(), int(kind), job_.postedId, job_.postedNumber, amount};
    entries_.insert({entry.id, job_.companyId(), group(), job_.transactionId, document.payerId, salesSide, int(kind),
                     job_.postedId, job_.postedNumber, document.date, document.date, due,
                     PostingJob::textOrNothing(document.payMethodId), job_.currency(), qlonglong(amount.document),
                     qlonglong(amount.local), qlonglong(amount.document), qlonglong(amount.local), isOpen(amount)});
    writeDetail(entry, DetailEntry, Variant(), amount);
    return entry;
  }

  static int isOpen(const Debt& remaining) { return int(remaining != Debt{}); }
  Variant group() const { return PostingJob::textOrNothing(job_.document.ownerGroupId); }

  void writeDetail(const DebtEntry& entry, DetailType type, const Variant& other, const Debt& amount)
  {
    details_.insert({job_.ids.next(), job_.companyId(), group(), job_.transactionId, entry.id, int(type), other,
                     job_.document.payerId, int(job_.document.kind), job_.postedId, job_.postedNumber,
                     job_.document.date, job_.currency(), qlonglong(amount.document), qlonglong(amount.local)});
  }

  void change(DebtEntry& entry, const Debt& by)
  {
    entry.remaining = entry.remaining + by;
    job_.db().execute(
        QStringLiteral("UPDATE G_ContragentEntry SET Remaining = ?, Remaining_LCY = ?, Opened = ? WHERE Id = ?"),
        {qlonglong(entry.remaining.document), qlonglong(entry.remaining.local), isOpen(entry.remaining), entry.id});
  }

  void settle(DebtEntry& entry, DebtEntry& other, const Debt& amount)
  {
    writeDetail(entry, DetailSettled, other.id, amount);
    writeDetail(other, DetailSettled, entry.id, -amount);
    change(entry, amount);
    change(other, -amount);
  }

  void pay(DebtEntry& debt)
  {
    const Debt paid = debt.remaining;
    if (paid == Debt{}) {
      return;
    }
    const QString account = setup_.payment();
    DebtEntry payment = writeEntry(PostedKind::Payment, job_.document.date, -paid);
    settle(debt, payment, -paid);
    ledger_.add(LedgerPurpose::Payment, account, paid.local, paid.document);
    ledger_.add(LedgerPurpose::Settlement, receivables(), -paid.local, -paid.document);
    RowInserter money(job_.db(), QStringLiteral("G_LBankAccountEntry"),
                      {"Id", "Comp_Id", "Businessgroup_Id", "Transaction_Id", "PaymentMethod_Id", "Account_Id",
                       "DocumentType", "Document_Id", "DocumentNo", "PostingDate", "Contragent_Id", "Description",
                       "Currency_Id", "Amount", "Amount_LCY"});
    const QString text = job_.document.isCreditMemo() ? QStringLiteral("Върната сума по кредитно известие %1")
                                                      : QStringLiteral("Плащане по фактура %1");
    money.insert({job_.ids.next(), job_.companyId(), group(), job_.transactionId, job_.document.payMethodId, account,
                  int(job_.document.kind), job_.postedId, job_.postedNumber, job_.document.date, job_.document.payerId,
                  text.arg(job_.postedNumber), job_.currency(), qlonglong(paid.document), qlonglong(paid.local)});
  }

  std::optional<DebtEntry> invoiceEntry() const
  {
    auto row = job_.db().prepare(QStringLiteral(
        "SELECT Id, DocumentNo, Remaining, Remaining_LCY FROM G_ContragentEntry "
        "WHERE Document_Id = ? AND Comp_Id = ? AND DocumentType = ? AND Gen_PostingType = ?"));
    row->bind(0, job_.document.appliesToId);
    row->bind(1, job_.companyId());
    row->bind(2, int(PostedKind::Invoice));
    row->bind(3, salesSide);
    if (!row->step()) {
      return {};
    }
    return DebtEntry{row->text(0), int(PostedKind::Invoice), job_.document.appliesToId, row->text(1),
                     {row->integer(2), row->integer(3)}};
  }

  // The local amount of a part of what is open, and all of it with the last part.
  qint64 localPart(const Debt& open, qint64 part) const
  {
    if (part == open.document) {
      return open.local;
    }
    const auto local = ExactAmount(open.local).multiply(part, open.document).roundedMillionths(job_.rules.sale.amountDecimals);
    if (!local) {
      refusePosting(QStringLiteral("%1: сумата е твърде голяма.").arg(job_.document.shown()));
    }
    return *local;
  }

  // What a memo takes off its invoice at the invoice's rate; what its own rate makes more or less of that is a
  // difference of rates.
  void applyToInvoice(DebtEntry& memo)
  {
    auto invoice = invoiceEntry();
    const qint64 settled = invoice ? std::min(invoice->remaining.document, -memo.remaining.document) : 0;
    if (settled <= 0) {
      return;
    }
    const qint64 invoiceLocal = localPart(invoice->remaining, settled);
    const qint64 memoLocal = localPart(-memo.remaining, settled);
    settle(memo, *invoice, {settled, invoiceLocal});
    const qint64 difference = memoLocal - invoiceLocal;
    if (difference == 0) {
      return;
    }
    writeDetail(memo, DetailExchange, invoice->id, {0, difference});
    change(memo, {0, difference});
    ledger_.add(LedgerPurpose::ExchangeDifference, receivables(), difference);
    ledger_.add(LedgerPurpose::ExchangeDifference,
                setup_.contragent(difference > 0 ? ContragentAccount::ExchangeGain : ContragentAccount::ExchangeLoss),
                -difference);
  }

  PostingJob& job_;
  PostingSetup& setup_;
  LedgerTransaction& ledger_;
  RowInserter entries_, details_;
};

}  // namespace

void postContragent(PostingJob& job, PostingSetup& setup, LedgerTransaction& ledger)
{
  ContragentPosting(job, setup, ledger).post();
}

}  // namespace kalvor::server
