// Paints the cells of a string grid and makes their editors.
#pragma once

#include <QPointer>
#include <QStyledItemDelegate>

namespace kalvor {

class TStringGrid;

class StringGridDelegate : public QStyledItemDelegate {
  Q_OBJECT
 public:
  explicit StringGridDelegate(TStringGrid* grid);

  void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
  QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
  void setEditorData(QWidget* editor, const QModelIndex& index) const override;
  void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override;
  void updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option, const QModelIndex& index) const override;

  QWidget* editor() const { return editor_; }
  void end(bool keep);  // of the open edit

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  bool editorKey(QWidget* editor, QKeyEvent* event);

  TStringGrid* grid_;
  mutable QPointer<QWidget> editor_;
};

// The item that a typed text means: the same, else the same in other letters, else the first that begins so, else the
// only one that holds it. A text that means none, and the empty text, come back as typed.
QString completedItem(const QString& typed, const QStringList& items);

}  // namespace kalvor
