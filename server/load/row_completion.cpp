#include "server/load/row_completion.h"

#include "server/load/id_sequence.h"
#include "server/load/row_inserter.h"
#include "server/load/sale_invoice_load.h"

namespace kalvor::server {

namespace {

struct SlotDefault {
  const char* column;
  Variant value;
  int slot = -1;
};

// Columns with one value for all records.
class DefaultsCompletion : public RowCompletion {
 public:
  explicit DefaultsCompletion(std::vector<SlotDefault> defaults) : defaults_(std::move(defaults)) {}

  QStringList columns() const override
  {
    QStringList names{QStringLiteral("Id"), QStringLiteral("Code"), QStringLiteral("Name")};
    for (const SlotDefault& entry : defaults_) {
      names.append(QLatin1StringView(entry.column));
    }
    return names;
  }

  void start(const LoadRow& row) override
  {
    id_ = row.slot(QLatin1StringView("Id"));
    code_ = row.slot(QLatin1StringView("Code"));
    name_ = row.slot(QLatin1StringView("Name"));
    for (SlotDefault& entry : defaults_) {
      entry.slot = row.slot(QLatin1StringView(entry.column));
    }
  }

  void complete(LoadRow& row) override
  {
    for (const SlotDefault& entry : defaults_) {
      row.setDefault(entry.slot, entry.value);
    }
  }

 protected:
  int id_ = -1;
  int code_ = -1;
  int name_ = -1;

 private:
  std::vector<SlotDefault> defaults_;
};

class ContragentCompletion : public DefaultsCompletion {
 public:
  explicit ContragentCompletion(const CompanyDefaults& defaults)
      : DefaultsCompletion({{"PaymentTerms_Id", defaults.paymentTermsId},
                            {"PaymentMethodCode", defaults.paymentMethodId},
                            {"VATBusPostGroup_Id", defaults.vatBusGroupId},
                            {"GenBusPostGroup_Id", defaults.genBusGroupId},
                            {"C_Businessgroup_Id", defaults.businessGroupId},
                            {"Inactive", 0}})
  {
  }

  void complete(LoadRow& row) override
  {
    DefaultsCompletion::complete(row);
    row.setDefault(name_, QStringLiteral("Клиент ") + row.text(code_));
  }
};

// An item is sold in its base measure, so that measure is among its measures.
class ItemCompletion : public DefaultsCompletion {
 public:
  ItemCompletion(Connection& connection, const CompanyDefaults& defaults)
      : DefaultsCompletion({{"Type", 1},
                            {"Measure_Id", defaults.measureId},
                            {"VATProdPostGroup_Id", defaults.vatProdGroupId},
                            {"GenProdPostGroup_Id", defaults.genProdGroupId},
                            {"C_Businessgroup_Id", defaults.businessGroupId},
                            {"Inactive", 0}}),
        connection_(connection), companyId_(defaults.companyId)
  {
  }

  void start(const LoadRow& row) override
  {
    DefaultsCompletion::start(row);
    measure_ = row.slot(QLatin1StringView("Measure_Id"));
  }

  void complete(LoadRow& row) override
  {
    DefaultsCompletion::complete(row);
    loaded_.append({row.text(id_), row.text(measure_)});
  }

  void finish() override
  {
    IdSequence ids;
    RowInserter measures(connection_, QStringLiteral("N_ItemMeasure"),
                         {QStringLiteral("Id"), QStringLiteral("Comp_Id"), QStringLiteral("Item_Id"),
                          QStringLiteral("Measure_Id"), QStringLiteral("QtyPerUnitOfMeasure")});
    for (const auto& [item, measure] : std::as_const(loaded_)) {
      measures.insert({ids.next(), companyId_, item, measure, qlonglong(amountScale)});
    }
  }

 private:
  Connection& connection_;
  QString companyId_;
  int measure_ = -1;
  QList<std::pair<QString, QString>> loaded_;
};

}  // namespace

std::unique_ptr<RowCompletion> rowCompletion(const QString& table, Connection& connection,
                                             const CompanyDefaults& defaults)
{
  if (table == u"N_Contragent") {
    return std::make_unique<ContragentCompletion>(defaults);
  }
  if (table == u"N_Item") {
    return std::make_unique<ItemCompletion>(connection, defaults);
  }
  if (table == u"D_SaleInvoiceHeader") {
    return std::make_unique<SaleHeaderCompletion>(connection, defaults);
  }
  if (table == u"D_SaleInvoiceLine") {
    return std::make_unique<SaleLineCompletion>(connection, defaults);
  }
  return nullptr;
}

}  // namespace kalvor::server
