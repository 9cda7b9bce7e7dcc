// What a document line asks a price or a discount for, and the item it is for.
#pragma once

#include <QDate>
#include <QString>
#include <optional>

#include "server/store/connection.h"

namespace kalvor::server {

enum class LineSide : quint8 { Purchase = 0, Sale = 1 };

// Statuses of price and discount answers. Found is 0 as the callers expect it.
enum LookupStatus : int {
  LookupFound = 0,
  LookupSpecial = 1,       // a special price of a sale; a discount of a purchase
  LookupUnknownItem = -1,  // no such item in the company, or a line type that takes no price
  LookupNoPrice = -2,
  LookupNoConversion = -3  // the price is in a currency without a rate, or of the other VAT kind without a VAT set-up
};

// Quantities in millionths. Texts may be empty: no contractor, the item's base measure, no sub-type, the item's own
// product group.
struct LineRequest {
  LineSide side = LineSide::Sale;
  QString contragentId;
  QString itemCode;
  QString measureId;
  qint64 quantity = 0;      // in the line's measure
  qint64 baseQuantity = 0;
  QDate date;               // valid
  QString subDocumentCode;
  QString vatBusGroupId;
  QString vatProdGroupId;
  bool priceIncludesVat = false;
  qint64 currencyFactor = amountScale;  // local currency for one unit of the document's; 0 counts as 1
  qint64 lineType = 0;

  // Items, services and sets; other lines are not looked up.
  bool takesPrice() const { return lineType == 1 || lineType == 3 || lineType == 6; }
};

struct PricedItem {
  QString id, measureId, groupId, vatProdGroupId;
  std::optional<qint64> listPrice;  // local currency without VAT, base measure; the cost on the purchase side
  int priceDecimals = 5;
  QString localCurrency;
};

// By its code in the company; nothing when there is none. Throws StoreError.
std::optional<PricedItem> findPricedItem(Connection& db, const QString& companyId, const LineRequest& request);

// The contractor's price group, invalid when he has none or is unknown.
Variant priceGroupOf(Connection& db, const QString& companyId, const QString& contragentId);

// VAT in millionths of a percent, of a pair of groups; nothing when the company has no such pair set up.
std::optional<qint64> vatPercentOf(Connection& db, const QString& companyId, const QString& businessGroupId,
                                   const QString& productGroupId);

}  // namespace kalvor::server
