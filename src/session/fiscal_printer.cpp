#include "session/fiscal_printer.h"

namespace kalvor {
namespace {

constexpr FiscalPrinterKind fiscalPrinterKinds[] = {{u"TFPDatecs", 116, 2810}, {u"TFPEltrade", 117, 118}};

}  // namespace

IFiscalPrinterIntf::~IFiscalPrinterIntf() = default;

const FiscalPrinterKind* fiscalPrinterKind(const QString& name)
{
  for (const FiscalPrinterKind& kind : fiscalPrinterKinds)
    if (name == kind.name)
      return &kind;
  return nullptr;
}

}  // namespace kalvor
