// Sale invoices: the list, and the card whose amounts follow what the user changes.
#pragma once

#include "forms/windows/base_browse.h"
#include "forms/windows/base_edit.h"
#include "forms/windows/browse_documents.h"
#include "sale_document_rules.h"

namespace kalvor {

class VatSummary;

class TfBrSaleInvoice : public TfBaseBrowseCard {
  Q_OBJECT
 public:
  using TfBaseBrowseCard::TfBaseBrowseCard;
};

// Invoice lines to choose from, grouped by their invoice.
class TfBrSaleLine : public TfBrSelectDocument {
  Q_OBJECT
 public:
  using TfBrSelectDocument::TfBrSelectDocument;
  void CDS_AfterOpen(TClientDataSet* dataSet) override;
};

class TfEdSaleInvoice : public TfBaseEditMasterDetail {
  Q_OBJECT
 public:
  explicit TfEdSaleInvoice(QWidget* parent = nullptr);
  ~TfEdSaleInvoice() override;

  void AttachDynamicEvents(TClientDataSet* dataSet) override;
  void buildLayout() override;

 protected:
  void choicePut(TClientDataSet* dataSet) override;
  void linesComing(const TImportSet& lines, const TFormatSettings& settings) override;
  void documentPut() override;
  void CDS_OnNewRecord(TClientDataSet* dataSet) override;

 private:
  void payInCash();
  SaleDocumentRules rules_;
  VatSummary* vatSummary_;
};

}  // namespace kalvor
