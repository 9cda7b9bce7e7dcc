// Paints a grid's cells and makes their editors.
#pragma once

#include <QAbstractItemDelegate>

#include "widgets/plain_text.h"

namespace kalvor {

class TDBGrid;

// Its editors are data-bound controls, so a cell is edited exactly as the same field is on a form.
class GridDelegate : public QAbstractItemDelegate {
  Q_OBJECT
 public:
  explicit GridDelegate(TDBGrid* grid);

  void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
  QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
  void setEditorData(QWidget* editor, const QModelIndex& index) const override;
  void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override;
  void updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option, const QModelIndex& index) const override;

  // The whole text of a cell that is too narrow for it; nothing over the others.
  bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                 const QModelIndex& index) override;

  static QRect buttonRect(const QRect& cell);  // where the mark of a drop-down or selector stands

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  bool editorKey(QWidget* editor, QKeyEvent* event);

  TDBGrid* grid_;
  mutable PlainTextPainter text_;
};

}  // namespace kalvor
