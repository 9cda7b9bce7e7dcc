#include "forms/windows/browse_documents.h"

#include "widgets/db_grid_ex.h"

namespace kalvor {

namespace {

void showOncePerGroup(TField* field)
{
  field->OnGetText = [](TField* shown, QString& text, bool displayed) {
    const TClientDataSet* dataSet = shown->DataSet();
    if (displayed && dataSet->GroupingLevel() > 0 && !dataSet->GetGroupState(1).first) {
      text.clear();
    }
  };
}

}  // namespace

TfBrSelectDocument::TfBrSelectDocument(QWidget* parent) : TfBaseBrowse(parent)
{
  dbgMaster()->setTitleButtons(false);
}

void TfBrSelectDocument::CDS_AfterOpen(TClientDataSet* dataSet)
{
  TfBaseBrowse::CDS_AfterOpen(dataSet);
  if (dataSet != cdsMaster()) {
    return;
  }
  for (const char16_t* name : {u"DocumentNo", u"DocumentDate"}) {
    TField* field = dataSet->FindField(name);
    if (field && !field->OnGetText) {
      showOncePerGroup(field);
    }
  }
}

void TfBrSelectDocument::FormShow()
{
  TfBaseBrowse::FormShow();
  dbgMaster()->setTitleButtons(false);
}

bool TfBrBaseOrderDocument::CheckDataModification(bool, bool remove, bool)
{
  const TField* status = remove ? cdsMaster()->FindField(u"DocStatus") : nullptr;
  return !status || status->AsInteger() == 0;
}

}  // namespace kalvor
