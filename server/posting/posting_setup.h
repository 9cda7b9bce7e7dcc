// Which accounts a document goes to, by groups, contractor and payment method. What is missing refuses the posting and
// is named.
#pragma once

#include <QHash>

#include "server/posting/posting_job.h"

namespace kalvor::server {

inline size_t qHash(const GroupPair& pair, size_t seed = 0) { return qHashMulti(seed, pair.business, pair.product); }

// The accounts of a pair of general groups.
enum class GeneralAccount : quint8 { Sales, SalesCreditMemo, Cost, Inventory };
enum class ContragentAccount : quint8 { Receivables, ExchangeGain, ExchangeLoss };

class PostingSetup {
 public:
  explicit PostingSetup(const PostingJob& job) : job_(job) {}

  // All return the account's Id; they throw RpcError naming document, line and what is missing, and StoreError.
  QString general(const GlobalLine& line, GeneralAccount account);
  QString salesVat(const GroupPair& groups);
  QString contragent(ContragentAccount account);
  QString payment();

 private:
  using Accounts = QHash<GroupPair, QStringList>;
  // The first row's texts, kept by the pair; empty when there is none.
  const QStringList& accountsOf(Accounts& known, const char* sql, const GroupPair& groups);
  // Usable: of the company and not blocked. `what` says what it is needed for.
  QString usable(const QString& accountId, const QString& what);
  QString shown(const GroupPair& groups, const char* businessTable, const char* productTable) const;

  const PostingJob& job_;
  Accounts general_, vat_, contragent_;
  QHash<QString, bool> usable_;
};

}  // namespace kalvor::server
