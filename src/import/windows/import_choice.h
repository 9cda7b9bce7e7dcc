// What the user chooses before an import: one of the form's import filters, and the data file.
#pragma once

#include <QDialog>

#include "import/import_filter.h"

class QListWidget;
class QPushButton;

namespace kalvor {

// Lets the user choose one of the form's filters and loads it. False: there is none (the user was told), or he gave
// up. DataError "Import Filter Object not assigned!" without a filter.
BASE_PACKAGE bool SelectImportFilter(TImportFilter* filter);

// The path of the file that the user chose; empty when he gave up.
BASE_PACKAGE QString SelectDataFile();

// The list of filters, by their descriptions.
class BASE_PACKAGE TfSelectImportFilter : public QDialog {
  Q_OBJECT
 public:
  explicit TfSelectImportFilter(const QStringList& descriptions, QWidget* parent = nullptr);
  int chosen() const;
  bool filtersWanted() const { return filtersWanted_; }  // left by btnFilters

  QListWidget* lbFilters;
  QPushButton* btnFilters;  // to the form in which filters are written; hidden without the right to it

 private:
  bool filtersWanted_ = false;
};

}  // namespace kalvor
