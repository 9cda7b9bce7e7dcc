// The amounts of a sale document under the hands of the user: which rule of business/ follows which field, and the
// document's own amounts.
#pragma once

#include "business/vat_totals.h"
#include "forms/windows/field_rules.h"
#include "registry/selector_values.h"

namespace kalvor {

class SaleDocumentRules : private DataLink {
 public:
  SaleDocumentRules(TfBase& form, TClientDataSet* header, TClientDataSet* lines);
  void attachHeader();  // once each, when the dataset's fields are known
  void attachLines();
  void choicePut(TClientDataSet* dataSet) { rules_.runWaiting(dataSet); }

  // Asks for the prices of an import's lines together.
  void askPricesAhead(const TImportSet& lines, const TFormatSettings& settings) const;

  // The document's VAT by group, as its lines stand; a group's text is its code and its percent.
  const TVATTotals& totals() const { return totals_; }
  std::function<void()> totalsChanged;
  // The document's amounts anew from its lines, in the header too.
  void refreshTotals();

 private:
  void updateTotals();
  using Walk = std::function<void()>;
  void onLines(const Walk& walk);
  using LineRule = void (*)(TClientDataSet*, TClientDataSet*, bool&);
  struct PriceListValues {
    double price = 0, discount = 0;
    bool operator==(const PriceListValues&) const = default;
  };
  PriceListValues priceListValues(qsizetype row) const;
  void eachLine(const std::function<void(qsizetype row)>& body);
  void recalculateLines(LineRule rule);
  void contractorChanged();
  void currencyChanged();
  void currencyFactorChanged();
  void dateChanged();
  void requireRate(TField* currency);
  void lineGroupChanged();
  void codeChanged();
  void quantityChanged();
  void measureChanged(const FieldRule::Others& other);
  void ratioChanged();
  void unitCostChanged();
  void writeTotals();
  Walk onLine(LineRule rule);
  void dataEvent(DataEvent event, TField* field) override;

  TfBase& form_;
  FieldRules rules_;
  TClientDataSet* header_;
  TClientDataSet* lines_;
  TVATTotals totals_;
  bool guard_ = false;      // of the rules, see business/sale_line_amounts.h
  bool walking_ = false;    // many lines change: totals once, at the end
  double rate_ = 1;         // of the currency that the header's field took
};

}  // namespace kalvor
