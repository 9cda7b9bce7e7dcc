// The fiscal printer of the settings form: which ones there are, which one is chosen, its forms.
#include <QComboBox>

#include "platform/ports.h"
#include "registry/windows/form_registry.h"
#include "session/dm.h"
#include "session/error_log.h"
#include "session/fiscal_printer.h"
#include "session/local_settings_file.h"
#include "session/server_calls.h"
#include "session/windows/fiscal_printer_object.h"
#include "session/windows/settings_form.h"

namespace kalvor {

void TfSettings::cbxFiscalPrinterDropDown()
{
  // One printer is the remembered one: the server has not been asked yet.
  if (cbxFiscalPrinter->count() >= 2 || !DM)
    return;
  try {
    const WaitCursorScope waiting;
    Variant rows;
    const int found = requestValue(*DM->ConBroker, TableColumns, QStringLiteral("S_FiscalPrinterSetup"),
                                   QStringLiteral("ID, PrinterType"), {}, rows, RowsWanted::All);
    if (found <= 0)
      return;
    const QSignalBlocker quiet(cbxFiscalPrinter);
    const int chosen = cbxFiscalPrinter->currentIndex();
    for (const Variant& row : rows.toList())
      cbxFiscalPrinter->addItem(variantText(row.toList().value(0)), variantText(row.toList().value(1)));
    cbxFiscalPrinter->setCurrentIndex(chosen);
  } catch (const std::exception& error) {
    LogError(errorText(error), QStringLiteral("uSettings.cbxFiscalPrinterDropDown"));
    showError(errorText(error));
  }
}

void TfSettings::cbxFiscalPrinterChange()
{
  if (cbxFiscalPrinter->currentIndex() < 0 || !DM)
    return;
  DM->FiscalPrinter.reset();
  LocalData.FPType = cbxFiscalPrinter->currentData().toString();
  QStringList lines;
  GetSectionFromIni(LocalData.FPType, lines);
  if (lines.isEmpty())
    btnFiscalSettingsClick();
  else
    CreateFiscalPrinterObject(LocalData.FPType, lines);
}

void TfSettings::openPrinterForm(int printerForm)
{
  if (printerForm > 0)
    RequestForm(printerForm, so_Normal);
}

void TfSettings::btnFiscalSettingsClick()
{
  const FiscalPrinterKind* kind = fiscalPrinterKind(LocalData.FPType);
  openPrinterForm(kind ? kind->settingsForm : 0);
}

void TfSettings::btnFiscalPrinterReportClick()
{
  const FiscalPrinterKind* kind = fiscalPrinterKind(LocalData.FPType);
  openPrinterForm(kind ? kind->reportForm : 0);
}

}  // namespace kalvor
