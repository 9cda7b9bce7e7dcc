// Filtering by the current column with one typed criterion ("C*", "10..20", "<>0", "a|b").
#pragma once

#include <QDialog>
#include <memory>

#include "registry/form_interfaces.h"

class QAction;

namespace kalvor {

class TSelector;

class BASE_PACKAGE TfFilterFields : public QDialog, public IFieldFilterIntf {
  Q_OBJECT
 public:
  // owner takes the filter (SetPblFilter); description is the field's row of 19 values; title is the field's caption.
  // tableFilterAction switches to the table filter, null: there is none.
  TfFilterFields(IBaseIntf* owner, int formId, TField* field, const VariantArray& description,
                 const QString& startValue, const QString& title, QAction* tableFilterAction,
                 QWidget* parent = nullptr);
  ~TfFilterFields() override;

  void DoShowFieldFilter();  // reads the settings, shows the dialog and waits
  void btnOKClick();
  void btnTableClick();
  void ExecuteSelector();

  // Of a field that has one, else null.
  TSelector* selector() const;
  // The criterion, as the editor shows it, and as the filter language reads it.
  QString value() const;
  void setValue(const QString& text);
  QString criterion() const;

  void SetSelectorForm(QObject* form) override;
  bool ProcessSelectedRecords(const TSelectionList& selection, ShowOption options) override;
  void SelectorFormSaved(QObject* form, const QString& recordId) override;

 private:
  void releaseOwner();  // the lookups of the form are its own again
  struct Private;
  std::unique_ptr<Private> d;
};

// A criterion on a text field without full match: "*" is put where neither "*" nor "%" stands at an end.
BASE_PACKAGE QString containsCriterion(const QString& text);

}  // namespace kalvor
