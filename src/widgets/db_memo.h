// Text of several lines bound to a field.
#pragma once

#include <QPlainTextEdit>

#include "widgets/data_control.h"

namespace kalvor {

// Enter begins a new line, Tab leaves. Otherwise as DataEdit.
class KALVOR_WIDGETS TDBMemo : public QPlainTextEdit, public DataControl {
  Q_OBJECT
  Q_PROPERTY(QString dataSetName READ dataSetName WRITE setDataSetName)
  Q_PROPERTY(QString dataField READ dataField WRITE setDataField)
  Q_PROPERTY(bool readOnly READ readOnly WRITE setReadOnly)
 public:
  explicit TDBMemo(QWidget* parent = nullptr);

  void setReadOnly(bool on) { DataControl::setReadOnly(on); }
  bool readOnly() const { return DataControl::readOnly(); }

 protected:
  void showField() override;
  void storeField() override;
  void updateAccess() override;
  void keyPressEvent(QKeyEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;

 private:
  bool showing_ = false;
};

}  // namespace kalvor
