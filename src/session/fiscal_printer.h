// Fiscal printers: the port that their drivers implement, and the forms of the kinds that are known here.
//
// A driver is a class that a module registers under the name of its kind ("TFPDatecs"); CreateFiscalPrinterObject
// makes it. The module also brings the kind's settings form, which writes the section of the local settings file
// named by the kind, and its report form.
#pragma once

#include <QStringList>

#include "data/variant.h"

namespace kalvor {

class KALVOR_RULES IFiscalPrinterIntf {
 public:
  virtual ~IFiscalPrinterIntf();
  // The name=value lines of the kind's section of the local settings file.
  virtual void SetSettings(const QStringList& lines) = 0;
  // Prints a receipt: data as the server gives it, and the three values that say what was paid. Negative: not printed.
  virtual int PrintFiscalCheck(const Variant& data, const VariantArray& values) = 0;
};

struct FiscalPrinterKind {
  QStringView name;
  int settingsForm;
  int reportForm;
};

// Null for a kind that is not known.
KALVOR_RULES const FiscalPrinterKind* fiscalPrinterKind(const QString& name);

}  // namespace kalvor
