// What the parts of one posting share: the document, the company's rules, and what is being made of it.
#pragma once

#include <QDateTime>

#include "rpc/rpc_error.h"
#include "server/load/id_sequence.h"
#include "server/posting/global_document.h"

namespace kalvor::server {

struct PostingRules {
  SaleRules sale;
  QDate closedTo;              // invalid: nothing is closed
  bool negativeStock = false;
};

// Throws StoreError, and RpcError when the company is not set up.
PostingRules postingRules(Connection& db, const QString& companyId);

struct PostingJob {
  const Access& access;
  GlobalDocument document;
  PostingRules rules;
  SaleTotals totals;           // computed from the lines
  QString transactionId;
  QString postedId;            // of the invoice or credit memo
  QString postedNumber;
  QString shipmentId;          // empty: no goods move
  QString shipmentNumber;
  QDateTime now;
  IdSequence ids{};

  Connection& db() const { return access.db; }
  const QString& companyId() const { return access.session.companyId; }
  // Invoices raise what is owed and lower the stock, credit memos the other way round.
  int sign() const { return document.isCreditMemo() ? -1 : 1; }
  qint64 signedAmount(qint64 amount) const { return sign() * amount; }
  Variant currency() const { return textOrNothing(document.currencyId); }
  static Variant textOrNothing(const QString& text) { return text.isEmpty() ? Variant() : Variant(text); }
};

// Refuses the posting: nothing of it is left. The text is for the user.
[[noreturn]] void refusePosting(const QString& text);

}  // namespace kalvor::server
