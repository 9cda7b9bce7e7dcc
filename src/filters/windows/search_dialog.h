// Searching a column for a text, record by record. Stays open beside the grid.
#pragma once

#include <QDialog>
#include <QPointer>

#include "data/client_dataset.h"
#include "filters/text_search.h"
#include "layer_export.h"

class QAction;
class QCheckBox;
class QLineEdit;
class QPushButton;
class QRadioButton;

namespace kalvor {

class TDBGrid;

class BASE_PACKAGE TfSearch : public QDialog {
  Q_OBJECT
 public:
  explicit TfSearch(QWidget* parent = nullptr);
  ~TfSearch() override;

  // Opens for the column that is current in the grid, or for a field; returns at once. A text is searched for as if it
  // were typed.
  void ShowSearchForm(TDBGrid* grid, const QString& text = {});
  void ShowSearchFormNoGrid(TClientDataSet* dataSet, const QString& fieldName, const QString& text = {});

  TextSearchOptions options() const;
  void setOptions(const TextSearchOptions& options);
  QString text() const;
  void setText(const QString& text);
  QAction* action(const QString& name) const;  // "acSearch", "acSearchNext", "acEditSearch", "acClose"
  // Tag of the action: 0 "Търсене", 1 "Следващ", 2 while typing. True: a record was found.
  bool acSearchExecute(int tag);
  void stop();                                 // a search that runs

  void done(int result) override;

 private:
  void buildWindow();
  void open(const QString& text);
  TField* field() const;
  bool find(int tag);
  void readOptions();
  void saveOptions() const;

  QPointer<TClientDataSet> dataSet_;
  QString fieldName_;
  qsizetype typingStart_ = -1;  // row where the typing began, -1: it has not
  bool stopped_ = false;
  bool running_ = false;
  QLineEdit* text_;
  QRadioButton* directions_[2];
  QRadioButton* scopes_[2];
  QCheckBox* case_;
  QCheckBox* words_;
  QCheckBox* typing_;
  QPushButton* stop_;
};

}  // namespace kalvor
