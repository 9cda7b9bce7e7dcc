// What a form keeps for its user, and rights: both come from the session.
#include "forms/form_settings.h"
#include "forms/windows/base_form_private.h"
#include "registry/windows/form_host.h"
#include "session/dm.h"
#include "session/settings_document.h"

namespace kalvor {

namespace {

QStringList storedSettings(int formId)
{
  QStringList lines;
  if (const QDomDocument* document = DM ? DM->userSettingsDocument() : nullptr) {
    GetNodeFromXml(*document, formSettingsGroup(formId), lines);
  }
  return lines;
}

}  // namespace

void TfBase::SetFormRights(int formId, bool defaultRight)
{
  FormCreate();
  d->rightsFormId = formId;
  d->formId = formId;
  d->rights = loadFormRights(formId, defaultRight, LocalData.UserId, DM ? &DM->cdsTreeView : nullptr);
}

void TfBase::GetFormSettings()
{
  const LoadedFormSettings stored = loadFormSettings(storedSettings(d->formId), IniOptions, d->options, d->formFilter);
  if (stored.size) {
    resize(*stored.size);
    d->sizeFromSettings = true;
  }
  if (stored.sortOrder) {
    d->sortOrder = *stored.sortOrder;
  }
  if (!stored.filter.isEmpty()) {
    d->formFilter = stored.filter;
  }
}

void TfBase::SaveFormSetings()
{
  QDomDocument* document = DM ? DM->userSettingsDocument() : nullptr;
  if (!document || d->formId == 0) {
    return;
  }
  FormSettingsToSave state;
  state.size = size();
  state.maximized = windowOf(this)->isMaximized();
  state.formFilter = d->formFilter;
  state.sortOrder = d->sortOrder;
  const QStringList lines = formSettingsLines(storedSettings(d->formId), state, IniOptions, d->options);
  SaveNodeToXml(*document, formSettingsGroup(d->formId), lines, true);
}

}  // namespace kalvor
