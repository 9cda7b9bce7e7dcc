// The window's first show: controls wired, actions enabled, the verb that the form was opened for.
#include <QFrame>

#include "forms/windows/base_form_private.h"
#include "forms/windows/control_wiring.h"
#include "platform/ports.h"
#include "widgets/data_control.h"
#include "widgets/enter_moves_on.h"

namespace kalvor {

namespace {

struct OpeningVerb {
  ShowOption options;
  const char* action;
};
const OpeningVerb openingVerbs[] = {
    {ShowOption(so_NewRecord) | so_SelectNew, "acInsertRecord"},
    {ShowOption(so_EditRecord) | so_SelectEdit, "acEditRecord"},
    {so_CopyRecord, "acCopyNew"},
};

}  // namespace

void TfBase::FormShow()
{
  // What a field refuses is told through the same gate as everything else.
  static const bool routed = [] {
    setControlMessageHandler([](QWidget*, const QString& message) { showError(message); });
    return true;
  }();
  Q_UNUSED(routed)
  InitGridColumns();
  if (IMainFormIntf* main = mainForm()) {
    main->SetHasFilter(d->hasFilter);
  }
  SetEditControlsReadOnly();  // before the wiring, which gives plain drop-downs a colour of their own
  ControlWiring(this).run();
  for (const auto& entry : d->dataSets) {
    makeFieldSelectors(entry->DataSet);
  }
  auto* enter = new EnterMovesOn(this);
  enter->askFirst = [this](QKeyEvent* event) { return handleEnter(event); };
  SetPageControlCaptions();
  UpdateActionState();
  for (const OpeningVerb& verb : openingVerbs) {
    if (d->options & verb.options) {
      execute(QLatin1String(verb.action));
    }
  }
}

void TfBase::SetEditControlsReadOnly()
{
  setControlsReadOnly(this, !CheckDataModification(true, false, false));
}

}  // namespace kalvor
