// Pages of labels and controls for a record, made from its field descriptions.
#pragma once

#include <QTabWidget>

#include "data/client_dataset.h"

class QGridLayout;

namespace kalvor {

// One line of a page: a field, and read-only fields that its look-up fills, which stand beside it without a caption.
struct RecordLayoutItem {
  TField* field = nullptr;
  QList<TField*> beside;
  bool wide = false;  // several lines of text: spans the page
};

// The visible fields in their order. descriptions: the dataset's rows.
QList<RecordLayoutItem> recordLayoutItems(const TClientDataSet& dataSet, const VariantArray& descriptions);

class RecordLayout {
 public:
  // rowsPerColumn: what fits on a page; two columns a page, one when the record is short.
  RecordLayout(TClientDataSet& dataSet, QList<RecordLayoutItem> items, int rowsPerColumn);
  void build(QTabWidget& pages);

 private:
  void addPage(QTabWidget& pages, const QList<RecordLayoutItem>& lines, const QList<RecordLayoutItem>& wide);
  void addLine(QWidget* page, QGridLayout& grid, int row, const RecordLayoutItem& item);
  QWidget* makeControl(QWidget* page, TField* field, bool beside, bool codeOnly);
  void bind(QWidget* control, TField* field);

  TClientDataSet& dataSet_;
  QList<RecordLayoutItem> items_;
  int rowsPerColumn_;
  int captionWidth_ = 0;
  QWidget* lastControl_ = nullptr;  // of the tab order
};

}  // namespace kalvor
