// One lookup of an import filter: where is looked, what is compared, and which fields take what was found.
#pragma once

#include <QDialog>
#include <functional>

#include "import/import_mapping.h"

class QCheckBox;
class QComboBox;
class QLineEdit;
class QPushButton;

namespace kalvor {

class TStringGrid;

class BASE_PACKAGE TfImportLookup : public QDialog {
  Q_OBJECT
 public:
  // targets: fields that may be filled. fallbacks: how many there are to choose from. removable: it is in the filter.
  TfImportLookup(const ImportLookupText& lookup, const QStringList& targets, int fallbacks, bool removable,
                 QWidget* parent = nullptr);

  ImportLookupText lookup() const;  // as it stands in the controls
  bool removed() const { return removed_; }
  // Asked before the dialog closes with Ok: throws what speaks against it.
  std::function<void(const ImportLookupText&)> onAccept;
  void accept() override;

  QComboBox *cbQuery, *cbFallback;
  QLineEdit *ebxQuery, *ebxTable, *ebxColumn, *ebxRange;
  QCheckBox* cbxKey;
  TStringGrid *grdConditions, *grdFields;
  QPushButton *btnOk, *btnCancel, *btnRemove;

 private:
  void build(bool removable, int fallbacks);
  void showLookup(const ImportLookupText& lookup);
  void loadQueries();
  void loadSourceFields();

  ImportLookupText original_;
  QStringList targets_, sourceFields_;
  QString sourceFieldsOf_;
  bool removed_ = false;
};

}  // namespace kalvor
