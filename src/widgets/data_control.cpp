#include "widgets/data_control.h"

#include <QCoreApplication>
#include <QMessageBox>
#include <QTimer>

#include "widgets/theme.h"

namespace kalvor {
namespace {

void showMessageBox(QWidget* control, const QString& message)
{
  QMessageBox box(QMessageBox::Critical, QCoreApplication::applicationName(), message, QMessageBox::Ok,
                  control ? control->window() : nullptr);
  box.exec();
}

ControlMessageHandler& messageHandler()
{
  static ControlMessageHandler handler = showMessageBox;
  return handler;
}

struct Refusal {
  bool happened = false;
  QString message;  // empty: somebody has told the user already
};

Refusal runCaught(const std::function<void()>& work)
{
  try {
    work();
    return {};
  } catch (const SilentAbort&) {
    return {true, {}};
  } catch (const DataError& error) {
    return {true, error.message()};
  } catch (const std::exception& error) {
    return {true, QString::fromUtf8(error.what())};
  }
}

bool isEditableKind(FieldValueKind kind)
{
  return kind == FieldValueKind::Data || kind == FieldValueKind::InternalCalculated;
}

}  // namespace

ControlMessageHandler setControlMessageHandler(ControlMessageHandler handler)
{
  return std::exchange(messageHandler(), handler ? std::move(handler) : showMessageBox);
}

void reportControlMessage(QWidget* control, const QString& message)
{
  if (!message.isEmpty()) {
    messageHandler()(control, message);
  }
}

bool attempt(QWidget* control, const std::function<void()>& work)
{
  const Refusal refusal = runCaught(work);
  if (refusal.happened) {
    reportControlMessage(control, refusal.message);
  }
  return !refusal.happened;
}

TField* FieldBinding::field() const
{
  // Looked up each time: closing and opening with the controls disabled may replace the fields unseen.
  return dataSet() && dataSet()->Active() && !fieldName_.isEmpty() ? dataSet()->FindField(fieldName_) : nullptr;
}

bool FieldBinding::canModify() const
{
  const TField* bound = field();
  return bound && !bound->ReadOnly && isEditableKind(bound->FieldKind()) && dataSet()->CanModify();
}

void FieldBinding::dataEvent(DataEvent event, TField* changed)
{
  listener_(event, changed);
}

DataControl::DataControl(QWidget* widget)
    : widget_(widget), binding_([this](DataEvent event, TField* field) { dataEvent(event, field); })
{
}

DataControl::~DataControl() = default;

DataControl* DataControl::of(QObject* object)
{
  return dynamic_cast<DataControl*>(object);
}

void DataControl::setDataSet(TClientDataSet* dataSet)
{
  binding_.setDataSet(dataSet);
  refresh();
}

void DataControl::setDataField(const QString& name)
{
  binding_.setFieldName(name);
  refresh();
}

void DataControl::setReadOnly(bool on)
{
  readOnly_ = on;
  updateAccess();
}

bool DataControl::canModify() const
{
  return !readOnly_ && binding_.canModify();
}

void DataControl::setReadOnlyColor(const QColor& color)
{
  readOnlyColor_ = color;
  updateAccess();
}

QColor DataControl::backgroundColor() const
{
  if (refused_) {
    return theme().invalid;
  }
  if (!readOnly_) {
    return {};
  }
  return readOnlyColor_.isValid() ? readOnlyColor_ : theme().readOnly;
}

void DataControl::applyBackground(const QList<QPalette::ColorRole>& roles)
{
  const QColor wanted = backgroundColor();
  if (wanted == shownBackground_) {
    return;
  }
  shownBackground_ = wanted;
  QPalette colors;
  if (wanted.isValid()) {
    for (const QPalette::ColorRole role : roles) {
      colors.setColor(role, wanted);
    }
  }
  widget_->setPalette(colors);
}

void DataControl::refresh()
{
  modified_ = false;
  refused_ = false;
  updateAccess();
  showField();
}

void DataControl::revert()
{
  refresh();
}

void DataControl::dataEvent(DataEvent event, TField* changed)
{
  if (starting_ || storing_) {
    return;  // what this control does shows when it is done
  }
  switch (event) {
    case DataEvent::UpdateRecord:
      if (modified_) {
        storeOrThrow();
      }
      break;
    case DataEvent::FocusControl:
      if (changed && changed == field()) {
        widget_->setFocus(Qt::OtherFocusReason);
      }
      break;
    case DataEvent::RecordChange:
      if (changed && changed != field()) {
        break;
      }
      [[fallthrough]];
    case DataEvent::DataSetChange:
      // What is being typed outlives changes of the record around it, until the edit itself ends.
      if (changed || !modified_ || !dataSet()->IsEditing()) {
        refresh();
      }
      break;
    case DataEvent::StateChange:
      if (modified_ && !dataSet()->IsEditing()) {
        refresh();
      } else {
        updateAccess();
      }
      break;
    default: refresh(); break;
  }
}

bool DataControl::beginChange()
{
  if (modified_) {
    if (std::exchange(refused_, false)) {
      updateAccess();
    }
    return true;
  }
  modified_ = true;
  starting_ = true;
  const Refusal refusal = runCaught([this] {
    if (!canModify()) {
      throw SilentAbort();
    }
    if (!dataSet()->IsEditing()) {
      dataSet()->Edit();
    }
  });
  starting_ = false;
  // A handler may have cancelled the edit, or closed the dataset, without a word.
  if (refusal.happened || !canModify() || !dataSet()->IsEditing()) {
    refresh();
    reportControlMessage(widget_, refusal.message);
    return false;
  }
  return true;
}

bool DataControl::changeNow()
{
  return beginChange() && commit();
}

void DataControl::storeOrThrow()
{
  const auto bound = [this] { return field(); };
  const Variant before = bound() ? bound()->Value() : Variant();
  storing_ = true;
  try {
    if (bound()) {
      storeField();
    }
  } catch (...) {
    storing_ = false;
    // The value may have arrived and a rule that follows it have failed: then nothing is pending here.
    refused_ = bound() && bound()->Value() == before;
    if (refused_) {
      updateAccess();
    } else {
      refresh();
    }
    throw;
  }
  storing_ = false;
  refresh();
}

void DataControl::tellRefusal(const QString& message, Telling when)
{
  if (telling_) {
    return;
  }
  telling_ = true;
  // The toolkit is in the middle of moving the focus; taking it back and talking come after that.
  QTimer::singleShot(0, widget_, [this, message, when] {
    telling_ = false;
    if (when == Telling::AfterFocusMoved) {
      if (refused_) {
        widget_->setFocus(Qt::OtherFocusReason);
      }
      reportControlMessage(widget_, message);
    }
  });
  if (when == Telling::Now) {
    reportControlMessage(widget_, message);
  }
}

bool DataControl::commit()
{
  if (!modified_) {
    return true;
  }
  const Refusal refusal = runCaught([this] { storeOrThrow(); });
  if (refusal.happened) {
    tellRefusal(refusal.message, Telling::Now);
  }
  return !refusal.happened;
}

void DataControl::commitOnLeave(Qt::FocusReason reason)
{
  // A menu, a pop-up or another window is no leaving: the user comes back to the text.
  if (!modified_ || reason == Qt::PopupFocusReason || reason == Qt::ActiveWindowFocusReason ||
      reason == Qt::MenuBarFocusReason) {
    return;
  }
  const Refusal refusal = runCaught([this] { storeOrThrow(); });
  if (refusal.happened) {
    tellRefusal(refusal.message, Telling::AfterFocusMoved);
  }
}

}  // namespace kalvor
