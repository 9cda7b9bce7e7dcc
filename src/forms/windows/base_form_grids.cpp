// The views of the form's grids: kept for the user, and changed in the column-properties dialog.
#include <QAbstractButton>
#include <QMenu>

#include "forms/windows/base_form_private.h"
#include "forms/windows/columns_dialog.h"
#include "forms/windows/form_focus.h"
#include "forms/windows/grid_view_store.h"
#include "registry/windows/help_topics.h"
#include "session/dm.h"
#include "session/ini_options.h"
#include "widgets/db_grid.h"

namespace kalvor {

namespace {

// Null: nothing is kept.
QDomDocument* gridViewDocument()
{
  return IniOptions.Grids && DM ? DM->userSettingsDocument() : nullptr;
}

}  // namespace

void TfBase::DoSaveGridView(TDBGrid* grid)
{
  if (QDomDocument* document = gridViewDocument(); document && grid) {
    runGuarded(QStringLiteral("TfBase.DoSaveGridView"),
               [&] { SaveGridView(*document, d->formId, gridTag(grid), grid); });
  }
}

void TfBase::DoLoadGridView(TDBGrid* grid)
{
  if (const QDomDocument* document = gridViewDocument(); document && grid) {
    runGuarded(QStringLiteral("TfBase.DoLoadGridView"),
               [&] { LoadGridView(*document, d->formId, gridTag(grid), grid); });
  }
}

void TfBase::PopUpButtonClick(QAbstractButton* button)
{
  if (auto* menu = button->findChild<QMenu*>(QString(), Qt::FindDirectChildrenOnly)) {
    menu->popup(button->mapToGlobal(QPoint(button->width(), button->height() / 2)));
  }
}

void TfBase::bindGridActions()
{
  QAction* columns = addNamedAction(QStringLiteral("acColumnsProps"), QStringLiteral("Настройка на колони"),
                                    QKeySequence(QStringLiteral("Ctrl+K")), [this] { acColumnsPropsExecute(); });
  d->gridMenu->addAction(columns);
  setActionHandler(QStringLiteral("acHelp"), [this] { showHelpTopic(d->formId); });
}

void TfBase::acColumnsPropsExecute()
{
  TDBGrid* grid = focusedGrid(this);
  if (!grid || !grid->commitCell()) {
    return;
  }
  if (TfColumnsProps(d->formId, grid, window()).DoShowColumns() == 1) {
    DoSaveGridView(grid);
  }
  grid->setFocus();
}

}  // namespace kalvor
