// The "..." button of a lookup field, inside the right edge of its edit.
#pragma once

#include <QLineEdit>
#include <functional>
#include <memory>
#include <optional>

#include "registry/selector.h"
#include "widgets/edit_button.h"

namespace kalvor {

// An edit as the control of a selector, and how its button or key runs that.
class BASE_PACKAGE EditSelectorControl : public SelectorControl {
 public:
  // How a run goes; empty = TSelector::Execute.
  using Runner = std::function<int(TSelector& selector, SelectorControl* control)>;

  // A selector that others share; it outlives every run.
  EditSelectorControl(QLineEdit* edit, TSelector* selector, Runner runner = {});
  // A selector of its own. TELException with "TSelectorButton.Create".
  EditSelectorControl(QLineEdit* edit, QObject* owner, const QString& description, TClientDataSet* dataSet);

  TSelector* selector() const { return selector_; }
  // The text is what is searched for; the edit shows its field's value again before the lookup opens, so that leaving
  // the lookup leaves the record as it was. Errors are told to the user.
  void run();
  void putTextBack();  // what was typed and not written

  QString Text() const override;
  TField* Field() const override;
  bool ReadOnly() const override;

 private:
  QLineEdit* edit_;
  std::unique_ptr<TSelector> own_;
  TSelector* selector_;
  Runner runner_;
  std::optional<QString> searched_;
};

// Caption "...", no tab stop, beside the edit in the same parent; a click, or Alt+Down in the edit, runs the selector.
class BASE_PACKAGE TSelectorButton : public EditButton {
  Q_OBJECT
 public:
  TSelectorButton(QLineEdit* edit, TSelector* selector, EditSelectorControl::Runner runner = {});
  TSelectorButton(QLineEdit* edit, QObject* owner, const QString& description, TClientDataSet* dataSet);
  TSelector* selector() const { return control_.selector(); }

 private:
  void prepare(QLineEdit* edit);

  EditSelectorControl control_;
};

// The calendar button of a data-bound edit, or of a drop-down, of a date field: same place and keys.
class BASE_PACKAGE TDateSelectorButton : public EditButton {
  Q_OBJECT
 public:
  explicit TDateSelectorButton(QWidget* control);
};

}  // namespace kalvor
