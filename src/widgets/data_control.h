// What every data-bound control has: a dataset, a field named in it, and the way a typed value goes there.
#pragma once

#include <QColor>
#include <QPointer>
#include <QWidget>
#include <functional>

#include "data/client_dataset.h"
#include "layer_export.h"

namespace kalvor {

// Shows a message about a control; called when a field refused what was typed into it.
using ControlMessageHandler = std::function<void(QWidget* control, const QString& message)>;
// The handler that was there before is returned. At first: a message box.
KALVOR_WIDGETS ControlMessageHandler setControlMessageHandler(ControlMessageHandler handler);
KALVOR_WIDGETS void reportControlMessage(QWidget* control, const QString& message);

// Runs work that a dataset may refuse: false when it threw. The message goes to the handler; SilentAbort has
// none. Nothing thrown leaves, so that it may stand in an event handler.
KALVOR_WIDGETS bool attempt(QWidget* control, const std::function<void()>& work);

// Follows one field of a dataset, named by text: the field may come and go with the dataset's layout.
class KALVOR_WIDGETS FieldBinding : public DataLink {
 public:
  using Listener = std::function<void(DataEvent event, TField* field)>;

  explicit FieldBinding(Listener listener) : listener_(std::move(listener)) {}
  void setFieldName(const QString& name) { fieldName_ = name; }
  const QString& fieldName() const { return fieldName_; }
  TField* field() const;  // null without dataset, when it has no such field, or when it is not open
  bool canModify() const;
  void dataEvent(DataEvent event, TField* field) override;

 private:
  Listener listener_;
  QString fieldName_;
};

// Base of the data-bound controls, beside the toolkit's own class. A control shows its field's value, takes
// the dataset to edit state with the first change by the user, and writes to the field when it is left, on
// Enter, and when the dataset posts. A refused value stays in the control, marked, until it is mended or
// taken back with Escape.
class KALVOR_WIDGETS DataControl {
 public:
  explicit DataControl(QWidget* widget);
  DataControl(const DataControl&) = delete;
  DataControl& operator=(const DataControl&) = delete;
  virtual ~DataControl();

  static DataControl* of(QObject* object);  // null when that is no data-bound control
  QWidget* controlWidget() const { return widget_; }

  void setDataSet(TClientDataSet* dataSet);
  TClientDataSet* dataSet() const { return binding_.dataSet(); }
  // The dataset's object name as a form designed in a file gives it; bindControls() looks it up.
  void setDataSetName(const QString& name) { dataSetName_ = name; }
  const QString& dataSetName() const { return dataSetName_; }
  void setDataField(const QString& name);
  const QString& dataField() const { return binding_.fieldName(); }
  TField* field() const { return binding_.field(); }

  void setReadOnly(bool on);
  bool readOnly() const { return readOnly_; }
  bool canModify() const;  // not read-only, and neither are the field and the dataset
  // Background while read-only; an invalid colour is the theme's, and of an editable control the palette's.
  void setReadOnlyColor(const QColor& color);
  QColor readOnlyColor() const { return readOnlyColor_; }

  bool isPending() const { return modified_; }  // holds something the field has not got yet
  bool isRefused() const { return refused_; }    // and the field would not take it
  // Writes to the field. False when it was refused: the message has been given, the text stays.
  bool commit();
  void revert();  // shows the field's value again

 protected:
  virtual void showField() = 0;   // from field() to the screen; the field may be null
  virtual void storeField() = 0;  // from the screen to field(); throws what the field throws
  virtual void updateAccess() = 0;  // canModify(), colours or the refused mark may have changed
  // Marks the control as changed by the user and takes the dataset to edit state; when that is refused, the
  // field's value is shown again and the message given.
  bool beginChange();
  // beginChange() and commit() in one, for controls whose change is complete at once.
  bool changeNow();
  // Gives the palette roles the background of the moment: refused, read-only, or the usual one.
  void applyBackground(const QList<QPalette::ColorRole>& roles);
  // Focus is leaving: commits; when that is refused the focus comes back before the message.
  void commitOnLeave(Qt::FocusReason reason);

 private:
  void dataEvent(DataEvent event, TField* field);
  void refresh();
  QColor backgroundColor() const;
  void storeOrThrow();
  enum class Telling : quint8 { Now, AfterFocusMoved };
  void tellRefusal(const QString& message, Telling when);

  QWidget* widget_;
  FieldBinding binding_;
  QString dataSetName_;
  QColor readOnlyColor_;
  QColor shownBackground_;
  bool readOnly_ = false;
  bool modified_ = false;
  bool refused_ = false;
  bool starting_ = false;  // the dataset is being taken to edit state for this control
  bool storing_ = false;
  bool telling_ = false;   // one action of the user, one message, however often it tried to write
};

// Binds every control and grid under root whose data set name is the object name of a dataset among the
// children of owner. Returns the names that were not found.
KALVOR_WIDGETS QStringList bindControls(QWidget* root, QObject* owner);

}  // namespace kalvor
