#include "forms/windows/paste_preview.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

#include "widgets/theme.h"

namespace kalvor {

namespace {

constexpr QSize previewSize(860, 420);

}  // namespace

TfPastePreview::TfPastePreview(const RowPaste& paste, QWidget* parent) : QDialog(parent), table_(new QTableWidget(this))
{
  setObjectName(QStringLiteral("fPastePreview"));
  setWindowTitle(QStringLiteral("Поставяне на редове"));
  const qsizetype all = paste.rows().size();
  const qsizetype fitting = paste.fitting();
  auto* summary = new QLabel(all == fitting ? QStringLiteral("Всички %1 реда са подходящи.").arg(all)
                                            : QStringLiteral("Подходящи са %1 от %2 реда. Останалите няма да бъдат "
                                                             "поставени; причината е в последната колона.")
                                                  .arg(fitting)
                                                  .arg(all),
                             this);
  summary->setObjectName(QStringLiteral("lblSummary"));
  fill(paste);
  auto* buttons = new QDialogButtonBox(this);
  QPushButton* take = buttons->addButton(QStringLiteral("Постави %1 реда").arg(fitting), QDialogButtonBox::AcceptRole);
  take->setObjectName(QStringLiteral("btnPaste"));
  take->setEnabled(fitting > 0);
  take->setDefault(true);
  buttons->addButton(QStringLiteral("Отказ"), QDialogButtonBox::RejectRole)->setObjectName(QStringLiteral("btnCancel"));
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  auto* column = new QVBoxLayout(this);
  column->addWidget(summary);
  column->addWidget(table_, 1);
  column->addWidget(buttons);
  resize(previewSize);
  (take->isEnabled() ? static_cast<QWidget*>(take) : table_)->setFocus();
}

void TfPastePreview::fill(const RowPaste& paste)
{
  const QList<TField*>& columns = paste.columns();
  const int last = int(columns.size());
  QStringList captions;
  for (const TField* field : columns) {
    captions.append(field ? field->DisplayLabel : QStringLiteral("(не се поставя)"));
  }
  table_->setColumnCount(last + 1);
  table_->setHorizontalHeaderLabels(captions << QStringLiteral("Бележка"));
  table_->setRowCount(int(paste.rows().size()));
  table_->setEditTriggers(QAbstractItemView::NoEditTriggers);
  table_->setSelectionBehavior(QAbstractItemView::SelectRows);
  table_->setAlternatingRowColors(true);
  table_->setAccessibleName(windowTitle());
  int firstBad = -1;
  for (int row = 0; row < table_->rowCount(); ++row) {
    const PastedRow& pasted = paste.rows().at(row);
    const bool fits = pasted.problem.isEmpty();
    firstBad = firstBad < 0 && !fits ? row : firstBad;
    for (int column = 0; column <= last; ++column) {
      auto* cell = new QTableWidgetItem(column == last ? pasted.problem : pasted.cells.value(column));
      if (!fits) {
        cell->setBackground(theme().invalid);
        cell->setToolTip(pasted.problem);
      } else if (column < last && !columns[column]) {
        cell->setForeground(theme().quietText);
      }
      table_->setItem(row, column, cell);
    }
  }
  table_->resizeColumnsToContents();
  table_->horizontalHeader()->setStretchLastSection(true);
  if (firstBad >= 0) {
    table_->setCurrentCell(firstBad, last);
  }
}

}  // namespace kalvor
