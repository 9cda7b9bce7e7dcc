// The ledger side of one posting: amounts gathered by account and purpose, written together, debit equal to credit.
#pragma once

#include "server/posting/posting_job.h"

namespace kalvor::server {

// What an amount is; amounts of one account and purpose become one entry.
enum class LedgerPurpose : quint8 { Receivables, Sales, Vat, Cost, Inventory, Payment, Settlement,
                                     ExchangeDifference };

class LedgerTransaction {
 public:
  // Debit positive, credit negative, in local and in the document's currency.
  void add(LedgerPurpose purpose, const QString& accountId, qint64 amount, qint64 amountAcy = 0);
  // Inserts what is not 0. Throws RpcError (Internal) when debit is not credit, StoreError.
  void write(PostingJob& job) const;

 private:
  struct Amount {
    LedgerPurpose purpose;
    QString accountId;
    qint64 local;
    qint64 document;
  };
  QList<Amount> amounts_;
};

}  // namespace kalvor::server
