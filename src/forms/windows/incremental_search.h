// Searching the current column of a grid while typing, in a small field over the grid.
#pragma once

#include <QFrame>

#include "data/field.h"

class QLabel;
class QLineEdit;

namespace kalvor {

class TDBGrid;

// Goes to the first record, from the current one on and round, whose text in the column contains what is typed; case
// does not matter. Down and F3 go to the next one, Up to the one before; Enter and Escape close and stay there. A text
// that is not found is marked and the cursor stays. Frees itself when it loses the focus.
class IncrementalSearch : public QFrame {
  Q_OBJECT
 public:
  static IncrementalSearch* start(TDBGrid* grid, const QString& firstText);
  bool found() const { return found_; }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  enum class Direction { Here, Forward, Backward };
  IncrementalSearch(TDBGrid* grid, const QString& fieldName);
  void search(Direction direction);
  bool fetchMore(qsizetype wanted);
  bool matches(qsizetype row) const;
  void place();
  void finish();

  TDBGrid* grid_;
  QString fieldName_;
  QLineEdit* edit_;
  bool found_ = true;
};

}  // namespace kalvor
