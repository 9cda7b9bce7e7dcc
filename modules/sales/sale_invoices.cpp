#include "sale_invoices.h"

#include <QScopedValueRollback>
#include <QVBoxLayout>

#include "business/windows/change_calculation.h"
#include "vat_summary.h"

namespace kalvor {

TfEdSaleInvoice::TfEdSaleInvoice(QWidget* parent)
    : TfBaseEditMasterDetail(parent), rules_(*this, cdsMaster(), cdsDetail()), vatSummary_(new VatSummary(this))
{
  rules_.totalsChanged = [this] {
    const TField* currency = cdsMaster()->FindField(u"Currency_Id");
    vatSummary_->setTotals(rules_.totals(), currency ? currency->AsString() : QString());
  };
  addNamedAction(QStringLiteral("acChangeCalculation"), QStringLiteral("Плащане в брой"),
                 QKeySequence(QStringLiteral("Ctrl+F9")), [this] { payInCash(); });
}

TfEdSaleInvoice::~TfEdSaleInvoice()
{
  rules_.totalsChanged = nullptr;
}

void TfEdSaleInvoice::AttachDynamicEvents(TClientDataSet* dataSet)
{
  TfBaseEditMasterDetail::AttachDynamicEvents(dataSet);
  if (dataSet == cdsMaster()) {
    rules_.attachHeader();
  } else if (dataSet == cdsDetail()) {
    rules_.attachLines();
  }
}

void TfEdSaleInvoice::choicePut(TClientDataSet* dataSet)
{
  rules_.choicePut(dataSet);
}

void TfEdSaleInvoice::linesComing(const TImportSet& lines, const TFormatSettings& settings)
{
  rules_.askPricesAhead(lines, settings);
}

void TfEdSaleInvoice::documentPut()
{
  rules_.refreshTotals();
}

// A new line comes after the last one, whatever order the lines are shown in.
void TfEdSaleInvoice::CDS_OnNewRecord(TClientDataSet* dataSet)
{
  TfBaseEditMasterDetail::CDS_OnNewRecord(dataSet);
  if (dataSet != cdsDetail()) {
    return;
  }
  TField* number = dataSet->FieldByName(u"Line_No");
  const QScopedValueRollback<bool> writable(number->ReadOnly, false);
  number->SetAsInteger(dataSet->AggregateValue(QStringLiteral("MAX(Line_No)")).toLongLong() + 1);
}

void TfEdSaleInvoice::buildLayout()
{
  const bool built = layout() != nullptr;
  TfBaseEditMasterDetail::buildLayout();
  if (!built) {
    layout()->addWidget(vatSummary_);
  }
}

void TfEdSaleInvoice::payInCash()
{
  const TField* total = cdsMaster()->FindField(u"TotalVAT");
  if (!total || cdsMaster()->IsEmpty()) {
    return;
  }
  TfChangeCalculation dialog(this);
  dialog.setTotal(total->AsFloat());
  dialog.exec();
}

// --- Lines of invoices -----------------------------------------------------------------------------------------

void TfBrSaleLine::CDS_AfterOpen(TClientDataSet* dataSet)
{
  TfBrSelectDocument::CDS_AfterOpen(dataSet);
  dataSet->SetIndexFieldNames(QStringLiteral("DocumentNo DESC;Line_No"));
  dataSet->SetGroupingLevel(1);
}

}  // namespace kalvor
