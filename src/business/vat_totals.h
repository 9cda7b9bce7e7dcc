// VAT of a document: rounded once per VAT group on the group's summed values, as the law's invoice totals are.
#pragma once

#include <QList>
#include <QString>

#include "layer_export.h"

namespace kalvor {

// CRN = document currency, the others local currency.
struct TVATGroupInfo {
  double TotalValue = 0, CRN_TotalValue = 0, VATPercent = 0, VATValue = 0, TotalVAT = 0, CRN_VATValue = 0,
         CRN_TotalVAT = 0;
};

class KALVOR_RULES TVATTotals {
 public:
  explicit TVATTotals(int decimals) : decimals_(decimals) {}
  // Adds a line's value (local currency) and its value in document currency to its group; an existing group keeps
  // its percent.
  void AddVATGroups(const QString& group, double vatPercent, double value, double valueInDocumentCurrency);
  void ClearVATGroups();
  // "TOTALVALUE", "VATVALUE", "TOTALVAT", "CRN_TOTALVALUE", "CRN_VATVALUE", "CRN_TOTALVAT" in any case; else 0.
  double ValueByName(const QString& name) const;

  struct Group {
    QString name;
    TVATGroupInfo info;
  };
  const QList<Group>& groups() const { return groups_; }

  double TotalValue = 0, VATValue = 0, TotalVAT = 0, CRN_TotalValue = 0, CRN_VATValue = 0, CRN_TotalVAT = 0;

 private:
  void addToTotals(const TVATGroupInfo& info, int sign);
  int decimals_;
  QList<Group> groups_;
};

}  // namespace kalvor
