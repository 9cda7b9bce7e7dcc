// Sale invoices: the list, and the card whose amounts follow what the user changes.
#pragma once

#include "forms/windows/base_browse.h"
#include "forms/windows/base_edit.h"

namespace kalvor {

class TfBrSaleInvoice : public TfBaseBrowseCard {
  Q_OBJECT
 public:
  using TfBaseBrowseCard::TfBaseBrowseCard;
};

class TfEdSaleInvoice : public TfBaseEditMasterDetail {
  Q_OBJECT
 public:
  using TfBaseEditMasterDetail::TfBaseEditMasterDetail;

  void AttachDynamicEvents(TClientDataSet* dataSet) override;

 private:
  void attachLineRules();
  void updateDocumentTotals();

  bool guard_ = false;  // the line rules' own, see business/sale_line_amounts.h
  bool lineRulesAttached_ = false;
};

}  // namespace kalvor
