// The sample file and the trial of a filter, and the ways to the form.
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTabWidget>
#include <QTableWidget>

#include "data/data_error.h"
#include "forms/form_rights.h"
#include "forms/windows/base_browse.h"
#include "forms/windows/form_focus.h"
#include "import/windows/import_choice.h"
#include "import/windows/import_filters_form.h"
#include "platform/ports.h"
#include "registry/form_descriptions.h"
#include "registry/windows/form_registry.h"
#include "session/dm.h"
#include "widgets/db_grid_ex.h"

namespace kalvor {

// --- The sample ------------------------------------------------------------------------------------------------

void TfEdImportFilters::chooseSample()
{
  const QString file = SelectDataFile();
  if (!file.isEmpty()) {
    openSample(file);
  }
}

void TfEdImportFilters::openSample(const QString& fileName)
{
  sampleFile_ = fileName;
  ebxFile->setText(fileName);
  ebxFile->setToolTip(fileName);
  readSample();
  showMapping();
}

// What of the filter the sample depends on.
QString TfEdImportFilters::sampleSignature() const
{
  QString signature = schema_ + u'\n';
  for (const char16_t* key : {u"TXTFILE_SEP", u"DATE_FORMAT", u"DATE_SEPARATOR", u"DECIMAL_SEPARATOR"}) {
    signature += text_.value(ImportSection::Options, QString::fromUtf16(key)) + u'\n';
  }
  if (signature.contains(QStringLiteral("FIXEDLEN"), Qt::CaseInsensitive)) {
    signature += text_.text();
  }
  return signature;
}

void TfEdImportFilters::readSample()
{
  const WaitCursorScope wait;
  sampleSignature_ = sampleSignature();
  sample_ = readImportSample(sampleFile_, text_.filter(targetForm(), schema_));
  showSample();
}

void TfEdImportFilters::takeDelimiter()
{
  if (sample_.delimiterFound) {
    tryChange([this](ImportText& filter) {
      filter.setValue(ImportSection::Options, QStringLiteral("TXTFILE_SEP"), sample_.delimiter);
    });
  }
}

void TfEdImportFilters::tryFilter()
{
  commitGrids();
  if (sampleFile_.isEmpty()) {
    chooseSample();
  }
  if (sampleFile_.isEmpty() || targetForm() <= 0) {
    return;
  }
  {
    const WaitCursorScope wait;
    trial_ = tryImport(targetForm(), text_.filter(targetForm(), schema_), sampleFile_);
  }
  showTrial();
  pcPages->setCurrentIndex(pcPages->count() - 1);
  tblDocuments->setFocus(Qt::ShortcutFocusReason);
}

void TfEdImportFilters::togglePanes()
{
  if (focusedGrid(this) == dbgMaster_) {
    pcPages->currentWidget()->setFocus(Qt::ShortcutFocusReason);
  } else {
    dbgMaster_->setFocus(Qt::ShortcutFocusReason);
  }
}

// --- The way in ------------------------------------------------------------------------------------------------

bool mayOpenImportFilters()
{
  return DM && GetRegisterFormClass(QStringLiteral("TfEdImportFilters")) &&
         loadFormRights(importFiltersForm, false, LocalData.UserId, &DM->cdsTreeView).ReadRight;
}

void openImportFilters(QWidget* form)
{
  int formId = 0;
  if (const auto* list = qobject_cast<TfBaseBrowse*>(form)) {
    formId = list->formId() + 1;
  } else if (const auto* card = qobject_cast<TfBaseEdit*>(form); card && card->formId() != importFiltersForm) {
    formId = card->formId();
  }
  openImportFiltersOf(formId);
}

void openImportFiltersOf(int formId)
{
  FilterArray ofForm;
  TDefaultValues defaults;
  if (formId > 0) {
    ofForm.append({QStringLiteral("S_DataPort.Form_Id"), QStringLiteral("="), formId, QString(), QString()});
    defaults = {{QStringLiteral("Form_Id"), formId, 0}, {QStringLiteral("Form_Caption"), GetFormCaption(QString::number(formId)), 0}};
  }
  TSelectionList none;
  RequestForm(importFiltersForm, ShowOption(so_Normal) | so_AllowEdit | so_AllowInsert | so_AllowDelete, ofForm, {}, {},
              none, defaults, nullptr, nullptr);
}

}  // namespace kalvor
