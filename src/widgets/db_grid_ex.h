// The enhanced data grid.
#pragma once

#include "widgets/db_grid.h"

namespace kalvor {

class TGridFooter;

// A TDBGrid with a footer for totals and columns that stay in place while the others scroll.
class KALVOR_WIDGETS TDBGridEx : public TDBGrid {
  Q_OBJECT
  Q_PROPERTY(bool footerVisible READ footerVisible WRITE setFooterVisible)
  Q_PROPERTY(int fixedColumns READ fixedColumns WRITE setFixedColumns)
 public:
  explicit TDBGridEx(QWidget* parent = nullptr);

  void setFooterVisible(bool on);  // off at first
  bool footerVisible() const;
  TGridFooter* footer() const { return footer_; }
  void setFooterStatus(const QString& text);  // shown below the totals
  void setFooterText(const QString& fieldName, const QString& text);

  // The first count shown columns do not scroll sideways; 0 at first.
  void setFixedColumns(int count);
  int fixedColumns() const { return fixedColumns_; }

  QRect visualRect(const QModelIndex& index) const override;
  QModelIndex indexAt(const QPoint& point) const override;
  void scrollTo(const QModelIndex& index, ScrollHint hint = EnsureVisible) override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void updateGeometries() override;
  void scrollContentsBy(int dx, int dy) override;
  void columnsArranged() override;

 private:
  friend class TGridFooter;

  TGridFooter* footer_;
  int fixedColumns_ = 0;
  bool placing_ = false;
};

}  // namespace kalvor
