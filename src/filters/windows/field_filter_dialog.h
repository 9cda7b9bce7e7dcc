// Filtering by the current column with one typed criterion ("C*", "10..20", "<>0", "a|b").
#pragma once

#include <QDialog>
#include <memory>

#include "registry/form_interfaces.h"

class QAction;

namespace kalvor {

class BASE_PACKAGE TfFilterFields : public QDialog, public IFieldFilterIntf {
  Q_OBJECT
 public:
  // owner takes the filter (SetPblFilter); description is the field's row of 19 values.
  TfFilterFields(IBaseIntf* owner, int formId, TField* field, const VariantArray& description,
                 const QString& startValue, const QString& title, QAction* tableFilterAction,
                 QWidget* parent = nullptr);
  ~TfFilterFields() override;

  void DoShowFieldFilter();  // reads the settings, makes the value editor, shows the dialog and waits
  void btnOKClick();
  void btnTableClick();
  void ExecuteSelector();

  QString value() const;     // the criterion, as the editor shows it
  void setValue(const QString& text);

  void SetSelectorForm(QObject* form) override;
  bool ProcessSelectedRecords(const TSelectionList& selection, ShowOption options) override;
  void SelectorFormSaved(QObject* form, const QString& recordId) override;

 private:
  struct Private;
  std::unique_ptr<Private> d;
};

}  // namespace kalvor
