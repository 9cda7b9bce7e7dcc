// What pasted rows will become, before they do: every row with its cells, and what does not fit with the reason.
#pragma once

#include <QDialog>

#include "forms/pasted_rows.h"

class QTableWidget;

namespace kalvor {

// Accepted: the rows that fit are wanted. Columns without a field are shown as not taken.
class BASE_PACKAGE TfPastePreview : public QDialog {
  Q_OBJECT
 public:
  explicit TfPastePreview(const RowPaste& paste, QWidget* parent = nullptr);
  QTableWidget* table() const { return table_; }

 private:
  void fill(const RowPaste& paste);

  QTableWidget* table_;
};

}  // namespace kalvor
