// The document's VAT by group, below its lines.
#pragma once

#include <QWidget>

#include "business/vat_totals.h"

class QTableWidget;

namespace kalvor {

class VatSummary : public QWidget {
  Q_OBJECT
 public:
  explicit VatSummary(QWidget* parent = nullptr);
  // One row a group and one for the document; local currency columns only where they differ from the document's.
  void setTotals(const TVATTotals& totals, const QString& currency);

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  void fillTable();

  TVATTotals totals_;
  QString currency_;
  QTableWidget* table_;
};

}  // namespace kalvor
