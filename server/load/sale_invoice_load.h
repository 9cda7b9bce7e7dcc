// Completes loaded sale invoices: headers from their customer and currency, lines from their item and the VAT set-up.
#pragma once

#include <QDate>

#include "server/load/key_lookup.h"
#include "server/load/row_completion.h"

namespace kalvor::server {

// The latest rate of a currency on or before a day; before the first one the first.
class CurrencyRates {
 public:
  CurrencyRates(Connection& connection, const CompanyDefaults& defaults);
  // Millionths of local currency for one unit; nothing for a currency without any rate.
  std::optional<qint64> rate(const QString& currencyId, const QDate& day);

 private:
  std::shared_ptr<Statement> before_;
  std::shared_ptr<Statement> first_;
  QString companyId_;
  QHash<std::pair<QString, QDate>, qint64> known_;
};

class SaleHeaderCompletion : public RowCompletion {
 public:
  SaleHeaderCompletion(Connection& connection, const CompanyDefaults& defaults);
  QStringList columns() const override;
  void start(const LoadRow& row) override;
  void complete(LoadRow& row) override;

 private:
  enum Column {
    DocumentDate, Contragent, InvToContragent, Currency, CurrencyFactor, PriceIncludingVat, VatDate, DueDate, PayTerm,
    PayMethod, VatBusGroup, GenBusGroup, BusinessGroup, AuditGroup, SubType, Series, PostingSeries, ColumnCount
  };
  struct Customer {
    QString vatBusGroupId, genBusGroupId, paymentTermsId, paymentMethodId, currencyId;
  };
  const Customer& customer(const QString& id);
  int dueDays(const QString& termsId);
  void completeCurrency(LoadRow& row, const QString& customerCurrency);

  CompanyDefaults defaults_;
  CurrencyRates rates_;
  std::shared_ptr<Statement> customerById_;
  std::shared_ptr<Statement> daysById_;
  QHash<QString, Customer> customers_;
  QHash<QString, int> days_;
  int at_[ColumnCount] = {};
};

class SaleLineCompletion : public RowCompletion {
 public:
  SaleLineCompletion(Connection& connection, const CompanyDefaults& defaults);
  QStringList columns() const override;
  void start(const LoadRow& row) override;
  void complete(LoadRow& row) override;
  void finish() override;

 private:
  enum Column {
    Master, LineNo, Type, Code, Description, Measure, QtyPerUnit, Quantity, QuantityBase, UnitPrice, OriginalPrice,
    OriginalDiscount, LineDiscount, LineDiscountAmount, TotalPrice, VatPercent, VatCalculationType, VatLedger,
    VatProdGroup, VatBusGroup, GenProdGroup, GenBusGroup, Currency, BusinessGroup, PriceIncludingVat, UnitCost,
    UnitCostLcy, TotalValue, VatBase, VatValue, TotalVat, TotalValueLcy, VatValueLcy, TotalVatLcy, ColumnCount
  };
  struct Document {
    qint64 currencyFactor = amountScale;
    qint64 lastLine = 0;
    bool priceIncludesVat = false;
    QString currencyId, vatBusGroupId, genBusGroupId, businessGroupId;
  };
  struct Item {
    qint64 type = 1;
    QString name, measureId, vatProdGroupId, genProdGroupId;
  };
  Document& document(const QString& id);
  const Item& item(const QString& code);
  void completeFromItem(LoadRow& row);
  void completeVat(LoadRow& row, const Document& document);
  void completeAmounts(LoadRow& row, const Document& document);

  Connection& connection_;
  CompanyDefaults defaults_;
  VatRules vat_;
  KeyLookup itemByCode_;
  std::shared_ptr<Statement> documentById_;
  std::shared_ptr<Statement> itemById_;
  QHash<QString, Document> documents_;
  QHash<QString, Item> items_;
  int at_[ColumnCount] = {};
};

}  // namespace kalvor::server
