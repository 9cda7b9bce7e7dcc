#include "widgets/db_edit.h"

#include <QKeyEvent>
#include <QPainter>

#include "data/regional.h"
#include "widgets/field_validator.h"
#include "widgets/theme.h"

namespace kalvor {
namespace {

constexpr int textInset = 2;  // beside what the toolkit leaves

}  // namespace

DataEdit::DataEdit(QWidget* parent) : QLineEdit(parent), DataControl(this), validator_(new FieldValidator(this))
{
  setValidator(validator_);
  setTextMargins(textInset, 0, textInset, 0);
  QLineEdit::setReadOnly(true);
  connect(this, &QLineEdit::textEdited, this, &DataEdit::textTyped);
}

void DataEdit::setButtonRoom(int pixels)
{
  setTextMargins(textMargins().left(), 0, qMax(pixels, textMargins().left()), 0);
  buttonRoom_ = pixels;
}

void DataEdit::textTyped()
{
  const QString typed = text();
  const int position = cursorPosition();
  if (beginChange() && text() != typed) {
    setText(typed);
    setCursorPosition(position);
  }
}

void DataEdit::showField()
{
  const TField* bound = field();
  validator_->setKind(typedKind(bound));
  const QString shown = !bound ? QString() : hasFocus() && canModify() ? bound->EditText() : bound->DisplayText();
  if (shown == text()) {
    return;
  }
  const bool wholeSelected = hasFocus() && !text().isEmpty() && selectedText() == text();
  setText(shown);
  if (wholeSelected) {
    selectAll();
  } else if (!hasFocus()) {
    setCursorPosition(0);
  }
}

void DataEdit::storeField()
{
  field()->SetEditText(textToStore());
}

void DataEdit::updateAccess()
{
  const TField* bound = field();
  const TypedKind kind = typedKind(bound);
  validator_->setKind(kind);
  if (isReadOnly() == canModify()) {
    QLineEdit::setReadOnly(!canModify());
  }
  setAlignment((kind == TypedKind::Integer || kind == TypedKind::Real ? Qt::AlignRight : Qt::AlignLeft) |
               Qt::AlignVCenter);
  constexpr int toolkitLimit = 32767;
  const bool limited = kind == TypedKind::Text && bound && isTextType(bound->FieldDataType()) && bound->Size() > 0 &&
                       !bound->OnGetText && !bound->OnSetText;
  if (const int limit = limited ? bound->Size() : toolkitLimit; limit != maxLength()) {
    setMaxLength(limit);  // which would drop the selection
  }
  applyBackground({QPalette::Base});
}

void DataEdit::keyPressEvent(QKeyEvent* event)
{
  switch (event->key()) {
    case Qt::Key_Escape:
      if (isPending()) {
        revert();
        selectAll();
        event->accept();
      } else {
        event->ignore();  // the form's
      }
      return;
    case Qt::Key_Return:
    case Qt::Key_Enter:
      if (!commit()) {
        event->accept();
        return;
      }
      break;
    default: break;
  }
  const QChar comma = regionalFormat().decimalSeparator;
  if (validator_->kind() == TypedKind::Real && event->text() == QLatin1String(".") && comma != u'.') {
    QKeyEvent withComma(QEvent::KeyPress, event->key(), event->modifiers(), QString(comma));
    QLineEdit::keyPressEvent(&withComma);
    return;
  }
  QLineEdit::keyPressEvent(event);
}

void DataEdit::focusInEvent(QFocusEvent* event)
{
  if (!isPending()) {
    updateAccess();
    showField();
  }
  QLineEdit::focusInEvent(event);
}

void DataEdit::focusOutEvent(QFocusEvent* event)
{
  QLineEdit::focusOutEvent(event);
  commitOnLeave(event->reason());
  if (!isPending()) {
    showField();
  }
}

TDBFlatEdit::TDBFlatEdit(QWidget* parent) : DataEdit(parent)
{
  setFrame(false);
}

void TDBFlatEdit::paintEvent(QPaintEvent* event)
{
  DataEdit::paintEvent(event);
  QPainter painter(this);
  const QColor line = isRefused() ? theme().invalidLine : hasFocus() ? theme().accent : theme().line;
  painter.fillRect(0, height() - 1, width(), 1, line);
}

}  // namespace kalvor
