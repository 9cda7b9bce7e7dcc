// Rows of a spreadsheet into an editable grid: tried, shown, and kept when the user agrees.
#include <QApplication>
#include <QClipboard>

#include "forms/field_metadata.h"
#include "forms/messages.h"
#include "forms/pasted_rows.h"
#include "forms/windows/base_form_private.h"
#include "forms/windows/paste_preview.h"
#include "platform/ports.h"
#include "widgets/data_control.h"
#include "widgets/db_grid.h"

namespace kalvor {

namespace {

constexpr qsizetype mostPastedRows = 5000;

struct PasteTarget {
  QList<TField*> columns;  // null: not taken
  bool captioned = false;  // the first line holds captions
};

QString captionOf(const TField* field)
{
  return field->DisplayLabel.isEmpty() ? field->FieldName() : field->DisplayLabel;
}

// By the captions of the first line where all of them are the grid's, else from the current column to the right.
PasteTarget pasteTarget(const TDBGrid& grid, const QList<QStringList>& table)
{
  PasteTarget target;
  const auto writable = [&grid](TField* field) { return grid.canEditField(field) ? field : nullptr; };
  target.captioned = table.size() > 1;
  for (const QString& caption : table.first()) {
    TField* named = nullptr;
    for (int i = 0; i < grid.shownColumnCount() && !named; ++i) {
      named = captionOf(grid.shownField(i)).compare(caption, Qt::CaseInsensitive) == 0 ? grid.shownField(i) : nullptr;
    }
    target.captioned = target.captioned && named;
    target.columns.append(named ? writable(named) : nullptr);
  }
  if (!target.captioned) {
    qsizetype width = 0;
    for (const QStringList& row : table) {
      width = std::max(width, row.size());
    }
    target.columns.clear();
    for (int i = 0; i < width; ++i) {
      TField* field = grid.shownField(grid.selectedColumn() + i);
      target.columns.append(field ? writable(field) : nullptr);
    }
  }
  return target;
}

}  // namespace

void TfBase::pasteRows(TDBGrid* grid)
{
  QList<QStringList> table = pastedTable(QApplication::clipboard()->text());
  TClientDataSet* dataSet = grid->dataSet();
  if (table.isEmpty() || !dataSet || !dataSet->Active() || !grid->commitCell()) {
    return;
  }
  runGuarded(QStringLiteral("TfBase.PasteRows"), [&] {
    if (table.size() == 1 && table.first().size() == 1) {
      TField* field = grid->selectedField();
      if (grid->canEditField(field)) {
        if (!dataSet->IsEditing()) {
          dataSet->Edit();
        }
        d->selectors.setExactly(field, table.first().first());
      }
      return;
    }
    const PasteTarget target = pasteTarget(*grid, table);
    if (target.captioned) {
      table.removeFirst();
    }
    if (table.size() > mostPastedRows) {
      throw FormRefusal(QStringLiteral("Могат да бъдат поставени най-много %1 реда наведнъж.").arg(mostPastedRows));
    }
    if (std::ranges::none_of(target.columns, [](const TField* field) { return field != nullptr; })) {
      throw FormRefusal(QStringLiteral("Никоя от колоните не може да приеме поставените стойности."));
    }
    TClientDataSet* master = GetCdsMaster();
    const bool wasEditing = CheckState();
    bool kept = false;
    {
      RowPaste paste(dataSet, target.columns,
                     [this](TField* field, const QString& text) { d->selectors.setExactly(field, text); });
      {
        const WaitCursorScope wait;
        paste.run(table);
      }
      TfPastePreview preview(paste, window());
      kept = preview.exec() == QDialog::Accepted;
      if (kept) {
        paste.keep();
      }
    }
    if (!kept && !wasEditing && CheckState() && !hasChanges()) {
      master->Cancel();
    }
  });
}

}  // namespace kalvor
