// Single-line edits bound to a field.
#pragma once

#include <QLineEdit>

#include "widgets/data_control.h"

namespace kalvor {

class FieldValidator;

// What the plain and the flat edit share. Numbers stand right; a typed "." is the decimal comma; characters
// that the data type has no use for are not taken; the length is the field's.
class KALVOR_WIDGETS DataEdit : public QLineEdit, public DataControl {
  Q_OBJECT
  Q_PROPERTY(QString dataSetName READ dataSetName WRITE setDataSetName)
  Q_PROPERTY(QString dataField READ dataField WRITE setDataField)
  Q_PROPERTY(bool readOnly READ readOnly WRITE setReadOnly)
 public:
  explicit DataEdit(QWidget* parent = nullptr);

  void setReadOnly(bool on) { DataControl::setReadOnly(on); }
  bool readOnly() const { return DataControl::readOnly(); }
  // Keeps text out of the right edge, where a button stands. 0 gives it back.
  void setButtonRoom(int pixels);
  int buttonRoom() const { return buttonRoom_; }

 protected:
  void showField() override;
  void storeField() override;
  void updateAccess() override;
  void keyPressEvent(QKeyEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  virtual QString textToStore() const { return text(); }

 private:
  void textTyped();

  FieldValidator* validator_;
  int buttonRoom_ = 0;
};

class KALVOR_WIDGETS TDBEdit : public DataEdit {
  Q_OBJECT
 public:
  using DataEdit::DataEdit;
};

// The flat style: one thin line below, no frame.
class KALVOR_WIDGETS TDBFlatEdit : public DataEdit {
  Q_OBJECT
 public:
  explicit TDBFlatEdit(QWidget* parent = nullptr);

 protected:
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace kalvor
