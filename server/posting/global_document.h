// A global sale document as posting reads it: the header, its sub-type and its lines with their items.
#pragma once

#include <QDate>
#include <optional>

#include "server/load/sale_amounts.h"
#include "server/rights/access.h"

namespace kalvor::server {

// What a document becomes; the numbers are those of DocumentType in the entries.
enum class PostedKind : int { Invoice = 0, CreditMemo = 1, StoreDocument = 2, Payment = 3 };

// A pair of groups that a set-up is found by.
struct GroupPair {
  QString business;
  QString product;
  bool operator==(const GroupPair&) const = default;
};

// Amounts and quantities in millionths; groups are the line's own, else the document's or the item's.
struct GlobalLine {
  QString id;
  qint64 number = 0;
  int type = 0;
  QString code;
  QString itemId;            // empty: no item of the company has the code
  int itemType = 0;
  qint64 itemUnitCost = 0;
  GroupPair general;
  GroupPair vat;
  qint64 vatPercent = 0;
  int vatCalculation = 0;
  int vatLedger = 0;
  qint64 quantity = 0;
  qint64 quantityBase = 0;
  qint64 value = 0;          // without VAT
  qint64 valueLcy = 0;
  QString sourceLineId;

  // An item moves goods; services, sets and everything else do not.
  bool movesStock() const { return type == 1 && itemType == 1 && quantityBase != 0; }
};

struct GlobalDocument {
  QString id;
  QString number;
  QDate date;
  QDate vatDate;             // the date where there is none
  QDate dueDate;
  PostedKind kind = PostedKind::Invoice;
  bool knownSubType = false;
  QString seriesId;          // of the posted document
  QString shipSeriesId;      // of the store document; empty: it takes the posted document's number
  QString payerId;           // who owes the amount
  QString payerName;         // empty: no such contractor of the company
  QString customerId;
  QString objectId;          // business group of the sale
  QString ownerGroupId;      // that row filters go by
  QString payMethodId;
  QString currencyId;        // empty: local
  qint64 currencyFactor = 0;
  QString generalBusinessGroup;
  QString appliesToId;
  bool annulled = false;
  bool posted = false;
  bool paidDirectly = false;
  SaleTotals totals;         // as they stand in the header
  QList<GlobalLine> lines;   // by line number

  bool isCreditMemo() const { return kind == PostedKind::CreditMemo; }
  // What stands before everything that is said about the document.
  QString shown() const;
  QString shown(const GlobalLine& line) const;
};

// Nothing when the company has no such document. Throws StoreError.
KALVOR_SERVER std::optional<GlobalDocument> readGlobalDocument(Connection& db, const QString& companyId,
                                                               const QString& documentId);

}  // namespace kalvor::server
