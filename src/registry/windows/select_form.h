// Choosing the forms whose stored settings of one kind are deleted.
#pragma once

#include <QDialog>

#include "registry/user_settings.h"

class QListWidget;
class QPushButton;

namespace kalvor {

// Lists every form that has stored settings of the kind, sorted by caption; "Ok" deletes those of the checked ones.
class BASE_PACKAGE TfSelectForm : public QDialog {
  Q_OBJECT
 public:
  // The kind as the settings form numbers it: 1 filter and sort order, 2 grid views, 3 form sizes.
  explicit TfSelectForm(int kind, QWidget* parent = nullptr);

  void btnSelectAllClick();
  void btnUnselectAllClick();
  void btnInverseClick();
  void btnOkClick();
  QList<int> checkedForms() const;

  QListWidget* clbForms;
  QPushButton* btnSelectAll;
  QPushButton* btnUnselectAll;
  QPushButton* btnInverse;
  QPushButton* btnOk;
  QPushButton* btnCancel;

 private:
  void build();
  void fill();
  template <class Change>
  void changeChecks(Change change);

  StoredSettings kind_;
};

}  // namespace kalvor
