// What happened to the records of a dataset since the server delivered them: enough to undo it and to tell it.
#pragma once

#include <QHash>
#include <vector>

#include "data/record_set.h"

namespace kalvor {

using RowId = quint32;
constexpr RowId noRow = ~RowId(0);

// Gone: inserted and deleted again, or deleted without a log; nothing is left to tell.
enum class RowState : quint8 { Unmodified, Modified, Inserted, Deleted, Gone };

constexpr UpdateStatus updateStatusOf(RowState state)
{
  return state == RowState::Gone ? UpdateStatus::Deleted : UpdateStatus(quint8(state));
}

class ChangeLog {
 public:
  struct Step {
    RowId row;
    RowState before;   // state of the record before the step
    RowState after;
    qsizetype image;   // row of images() with the values before the step; -1 when they did not change
  };

  void reset(QList<FieldDef> fields);
  void addColumn(const FieldDef& field);
  bool isEmpty() const { return steps_.empty(); }
  int changeCount() const { return changeCount_; }

  void inserted(RowId row, std::vector<RowState>& states);
  void modified(RowId row, const RecordSet& store, std::vector<RowState>& states);
  void deleted(RowId row, std::vector<RowState>& states);

  // Puts values and state of the last step's record back and forgets the step.
  Step undoLast(RecordSet& store, std::vector<RowState>& states);
  // The record as the server delivered it; its steps are forgotten.
  void revert(RowId row, RecordSet& store, std::vector<RowState>& states);
  void revertAll(RecordSet& store, std::vector<RowState>& states);
  void merge(std::vector<RowState>& states);

  // Row of images() with the values the server delivered, -1 when the storage still holds them.
  qsizetype originalOf(RowId row) const { return originals_.value(row, -1); }
  const RecordSet& images() const { return images_; }
  std::vector<RowId> changedRows(const std::vector<RowState>& states) const;  // in the order of their first change
  const std::vector<Step>& steps() const { return steps_; }
  // A log as a file keeps it: for every changed record its state and, when modified, its original values.
  void restore(RowId row, RowState state, const RecordSet& original, qsizetype originalRow,
               std::vector<RowState>& states);

 private:
  void addStep(RowId row, RowState after, qsizetype image, std::vector<RowState>& states);
  void setState(RowId row, RowState state, std::vector<RowState>& states);
  void restoreImage(RowId row, qsizetype image, RecordSet& store);
  void dropImages();

  std::vector<Step> steps_;
  RecordSet images_;
  QHash<RowId, qsizetype> originals_;
  int changeCount_ = 0;
};

}  // namespace kalvor
