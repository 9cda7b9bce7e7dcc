// Titles and record marks of a grid.
#pragma once

#include <QHeaderView>
#include <functional>

namespace kalvor {

class DatasetModel;

struct SortMark {
  int section;
  Qt::SortOrder order;
  bool operator==(const SortMark&) const = default;
};

// Captions with the sort mark. Tells of moved and resized columns once, when the mouse button is let go. Fixed
// sections stay at the left edge while the others scroll under them.
class GridHeader : public QHeaderView {
  Q_OBJECT
 public:
  explicit GridHeader(QWidget* parent);
  void setTitleColor(const QColor& color);
  QColor titleColor() const { return titleColor_; }
  void setSortMarks(const QList<SortMark>& marks);  // the first decides; several are numbered
  const QList<SortMark>& sortMarks() const { return sortMarks_; }

  void setFixedSections(const QList<int>& sections);
  int fixedWidth() const;           // that covers scrolled sections; 0 while nothing is scrolled
  int leftOf(int section) const;    // in the viewport
  int fixedSectionAt(int x) const;  // -1: none there
  bool isFixed(int section) const { return fixedWidth() > 0 && fixedSections_.contains(section); }

  std::function<Qt::Alignment(int section)> alignmentOf;  // captions stand as their columns do

  int captionWidth(const QString& caption) const;  // with padding and room for the sort mark

 signals:
  void layoutChangedByUser();

 protected:
  void paintSection(QPainter* painter, const QRect& rect, int section) const override;
  void paintEvent(QPaintEvent* event) override;
  QSize sectionSizeFromContents(int section) const override;
  QSize sizeHint() const override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;

 private:
  QList<int> fixedSections_;
  int pressedFixed_ = -1;
  QColor titleColor_;
  QList<SortMark> sortMarks_;
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
