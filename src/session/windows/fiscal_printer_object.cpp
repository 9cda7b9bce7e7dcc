#include "session/windows/fiscal_printer_object.h"

#include "registry/windows/form_registry.h"
#include "session/dm.h"
#include "session/fiscal_printer.h"

namespace kalvor {

bool CreateFiscalPrinterObject(const QString& kind, const QStringList& lines)
{
  const FormClass* printerClass = GetRegisterFormClass(kind);
  if (!printerClass || !DM)
    return false;
  std::unique_ptr<QObject> printer(printerClass->createObject ? printerClass->createObject()
                                                              : printerClass->create(nullptr));
  auto* port = dynamic_cast<IFiscalPrinterIntf*>(printer.get());
  if (!port)
    return false;
  port->SetSettings(lines);
  DM->FiscalPrinter = std::move(printer);
  return true;
}

}  // namespace kalvor
