// The form's records out to a text or a spreadsheet file.
#include "common/export_spreadsheet.h"
#include "common/export_text.h"
#include "common/windows/export_dialog.h"
#include "forms/messages.h"
#include "forms/windows/base_form_private.h"
#include "platform/ports.h"
#include "session/dm.h"
#include "session/export_options.h"
#include "session/settings_document.h"

namespace kalvor {

namespace {

struct ExportDelimiterRow {
  ExportSeparator separator;
  TDelimiter delimiter;
};
constexpr ExportDelimiterRow exportDelimiters[] = {{ExportSeparator::Fixed, dtFixedLen},
                                                   {ExportSeparator::Tab, dtTab},
                                                   {ExportSeparator::Comma, dtComma},
                                                   {ExportSeparator::Semicolon, dtSemiColon},
                                                   {ExportSeparator::Symbol, dtChar}};

TDelimiter delimiterOf(ExportSeparator separator)
{
  for (const ExportDelimiterRow& row : exportDelimiters) {
    if (row.separator == separator) {
      return row.delimiter;
    }
  }
  return dtChar;
}

TExportOptions storedExportOptions()
{
  QStringList lines;
  if (const QDomDocument* document = DM ? DM->userSettingsDocument() : nullptr) {
    GetNodeFromXml(*document, exportOptionsGroup, lines);
  }
  return exportOptionsFromLines(lines);
}

}  // namespace

void TfBase::acExportExecute()
{
  if (!d->rights.ExportRight) {
    throw FormRefusal(rightsRefusal(_err_ExportNotAllowed, d->formId));
  }
  TClientDataSet* master = GetCdsMaster();
  if (!master) {
    return;
  }
  TClientDataSet* detail = dataSetCount() > 1 && cdsOptions(1).DataSet->Active() ? cdsOptions(1).DataSet : nullptr;
  // The lines are read again for every record: changes in them would be lost.
  if (detail && (hasChanges() || CheckState())) {
    showInformation(_inf_unAppliedRecords);
    return;
  }
  TfExportOptions dialog(window());
  dialog.FillListBox(master, detail);
  if (dialog.exec() == QDialog::Accepted) {
    exportAs(dialog, master, dialog.detailList().isEmpty() ? nullptr : detail);
  }
}

void TfBase::exportAs(const TfExportOptions& choice, TClientDataSet* master, TClientDataSet* detail)
{
  const WaitCursorScope wait;
  if (choice.fileType() == ExportFileType::TXT) {
    const TExportOptions options = storedExportOptions();
    ExportToTXT(choice.path(), master, detail, choice.masterList(), choice.detailList(), delimiterOf(options.separator),
                options.symbol, options.decimals, options.captions, options.dosCodePage);
    return;
  }
  const auto readDetails = detail ? std::function<void()>([this] { acGetDetailsExecute(); }) : std::function<void()>();
  ExportToXLS(master, detail, choice.masterList(), choice.detailList(), choice.path(), QStringLiteral("SheetName"),
              readDetails);
  if (detail) {
    acGetDetailsExecute();
  }
}

}  // namespace kalvor
