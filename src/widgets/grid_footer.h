// Totals under the columns of a grid.
#pragma once

#include <QHash>
#include <QPainter>
#include <QWidget>

#include "layer_export.h"

namespace kalvor {

class TDBGridEx;

// One cell a column, by field name. Follows the columns' places; texts stand as the column's values do.
class KALVOR_WIDGETS TGridFooter : public QWidget {
  Q_OBJECT
 public:
  explicit TGridFooter(TDBGridEx* grid);

  void setText(const QString& fieldName, const QString& text);  // empty = none
  QString text(const QString& fieldName) const { return texts_.value(fieldName.toLower()); }
  // A line of its own below the totals, about the marked rows; empty = none.
  void setStatus(const QString& text);
  const QString& status() const { return status_; }
  bool hasTexts() const { return !texts_.isEmpty(); }
  void clear();
  int textWidth(const QString& text) const;  // that a cell needs
  QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  TDBGridEx* grid_;
  void paintTotals(QPainter& painter, const QRect& line);

  QHash<QString, QString> texts_;
  QString status_;
};

}  // namespace kalvor
