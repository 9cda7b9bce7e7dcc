// The controls of a filter panel. None of them is bound to a dataset: the panel says what their values mean.
#pragma once

#include <QComboBox>
#include <QLineEdit>
#include <functional>

#include "forms/filter_panel.h"
#include "registry/form_interfaces.h"

namespace kalvor {

// What happens to a control, for whoever keeps it. Leaving is told after the focus has moved.
struct PanelControlEvents {
  std::function<void()> entered, left;
};

class BASE_PACKAGE FlatFilterEdit : public QLineEdit, public PanelControl {
  Q_OBJECT
 public:
  explicit FlatFilterEdit(QWidget* parent = nullptr);
  FilterControlKind kind() const override { return FilterControlKind::FlatEdit; }
  Variant value() const override { return text(); }
  void setValue(const Variant& value) override { setText(variantText(value)); }
  PanelControlEvents events;

 protected:
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
};

// Delete and Backspace select nothing.
class BASE_PACKAGE FlatFilterDropDown : public QComboBox, public PanelControl {
  Q_OBJECT
 public:
  explicit FlatFilterDropDown(QWidget* parent = nullptr);
  FilterControlKind kind() const override { return FilterControlKind::FlatDropDown; }
  Variant value() const override { return currentIndex(); }
  void setValue(const Variant& value) override;
  // The selected position is kept as far as the items reach.
  void setItems(const QStringList& items);
  PanelControlEvents events;

 protected:
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
};

// Keeps a key and shows a text of its record, which the server is asked for by "Id". The button, Alt+Down and any
// typed character open the lookup form; Delete and Backspace take the key away.
class BASE_PACKAGE EnhancedFilterDropDown : public QLineEdit, public PanelControl, public IFieldFilterIntf {
  Q_OBJECT
 public:
  EnhancedFilterDropDown(int lookupForm, const QString& displayField, QWidget* parent = nullptr);
  FilterControlKind kind() const override { return FilterControlKind::EnhancedDropDown; }
  Variant value() const override { return key_; }
  void setValue(const Variant& value) override;
  void openLookup();

  void SetSelectorForm(QObject*) override {}
  bool ProcessSelectedRecords(const TSelectionList& selection, ShowOption options) override;
  void SelectorFormSaved(QObject*, const QString&) override {}
  PanelControlEvents events;

 protected:
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  QString displayTextOf(const QString& key) const;

  int lookupForm_;
  QString displayField_;
  QString key_;
};

}  // namespace kalvor
