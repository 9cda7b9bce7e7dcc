#include "server/posting/ledger.h"

#include <algorithm>

#include "server/load/row_inserter.h"

namespace kalvor::server {

namespace {

// By purpose.
constexpr const char* ledgerTexts[] = {"Вземане",           "Продажба", "ДДС", "Отчетна стойност", "Изписани стоки",
                                       "Плащане",           "Погасено вземане", "Курсова разлика"};

}  // namespace

void LedgerTransaction::add(LedgerPurpose purpose, const QString& accountId, qint64 amount, qint64 amountAcy)
{
  const auto found = std::find_if(amounts_.begin(), amounts_.end(), [&](const Amount& other) {
    return other.purpose == purpose && other.accountId == accountId;
  });
  if (found == amounts_.end()) {
    amounts_.append({purpose, accountId, amount, amountAcy});
  } else {
    found->local += amount;
    found->document += amountAcy;
  }
}

void LedgerTransaction::write(PostingJob& job) const
{
  qint64 balance = 0;
  for (const Amount& amount : amounts_) {
    balance += amount.local;
  }
  if (balance != 0) {
    throw RpcError(RpcError::Internal, QStringLiteral("%1: дебитът и кредитът на счетоводните записи се различават с %2.")
                                           .arg(job.document.shown()).arg(unscaled(balance)));
  }
  RowInserter entries(job.db(), QStringLiteral("G_Entry"),
                      {"Id", "Comp_Id", "Businessgroup_Id", "Transaction_Id", "Line_No", "Account_Id", "DocumentType",
                       "Document_Id", "DocumentNo", "PostingDate", "Contragent_Id", "Description", "DebitAmount",
                       "CreditAmount", "Currency_Id", "Amount_ACY", "C_User_Id", "C_Datetime"});
  int line = 0;
  for (const Amount& amount : amounts_) {
    if (amount.local == 0 && amount.document == 0) {
      continue;
    }
    const bool ofPayer = amount.purpose == LedgerPurpose::Receivables || amount.purpose == LedgerPurpose::Settlement;
    entries.insert({job.ids.next(), job.companyId(), PostingJob::textOrNothing(job.document.ownerGroupId),
                    job.transactionId, ++line, amount.accountId, int(job.document.kind), job.postedId, job.postedNumber,
                    job.document.date, ofPayer ? Variant(job.document.payerId) : Variant(),
                    QString::fromUtf8(ledgerTexts[int(amount.purpose)]), qlonglong(std::max<qint64>(amount.local, 0)),
                    qlonglong(std::max<qint64>(-amount.local, 0)), job.currency(), qlonglong(amount.document),
                    job.access.session.userId, job.now});
  }
}

}  // namespace kalvor::server
