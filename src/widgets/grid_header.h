// Titles and record marks of a grid.
#pragma once

#include <QHeaderView>
#include <functional>

namespace kalvor {

class DatasetModel;

// Captions with the sort mark. Tells of moved and resized columns once, when the mouse button is let go.
class GridHeader : public QHeaderView {
  Q_OBJECT
 public:
  explicit GridHeader(QWidget* parent);
  void setTitleColor(const QColor& color);
  QColor titleColor() const { return titleColor_; }
  void setSortMark(int section, Qt::SortOrder order);  // -1 = none

  std::function<Qt::Alignment(int section)> alignmentOf;  // captions stand as their columns do

  int captionWidth(const QString& caption) const;  // with padding and room for the sort mark

 signals:
  void layoutChangedByUser();

 protected:
  void paintSection(QPainter* painter, const QRect& rect, int section) const override;
  void paintEvent(QPaintEvent* event) override;
  QSize sectionSizeFromContents(int section) const override;
  void mouseReleaseEvent(QMouseEvent* event) override;

 private:
  QColor titleColor_;
  int sortSection_ = -1;
  Qt::SortOrder sortOrder_ = Qt::AscendingOrder;
  bool changed_ = false;
};

// A narrow strip left of the rows: the current record, whether it is being edited, what is not saved yet.
class RowHeader : public QHeaderView {
  Q_OBJECT
 public:
  RowHeader(DatasetModel* source, QWidget* parent);

  static constexpr int width = 20;

 protected:
  void paintSection(QPainter* painter, const QRect& rect, int section) const override;
  QSize sizeHint() const override { return QSize(width, 0); }

 private:
  DatasetModel* source_;
};

}  // namespace kalvor
