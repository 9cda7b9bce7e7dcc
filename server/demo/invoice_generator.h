// Any number of sale invoices, quickly: for measuring how lists and saves behave in a large company.
#pragma once

#include <QDate>

#include "server/store/connection.h"

namespace kalvor::server {

struct GeneratorOptions {
  QString companyId = QStringLiteral("1");
  int invoices = 0;
  int linesEach = 0;             // 0: headers alone, with amounts as if they had a line
  int days = 3 * 365;            // that they spread over, up to lastDay
  QDate lastDay = QDate(2026, 6, 30);
  quint64 seed = 1;
};

// In one transaction of its own. Numbers are "G" and nine digits, after the last such one. The company must have
// contractors and items. Throws StoreError.
KALVOR_SERVER void generateInvoices(Connection& connection, const GeneratorOptions& options);

}  // namespace kalvor::server
