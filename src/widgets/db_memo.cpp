#include "widgets/db_memo.h"

#include <QKeyEvent>
#include <QScopedValueRollback>

namespace kalvor {

TDBMemo::TDBMemo(QWidget* parent) : QPlainTextEdit(parent), DataControl(this)
{
  setTabChangesFocus(true);
  QPlainTextEdit::setReadOnly(true);
  connect(this, &QPlainTextEdit::textChanged, this, [this] {
    if (showing_) {
      return;
    }
    const QString typed = toPlainText();
    const int position = textCursor().position();
    if (beginChange() && toPlainText() != typed) {
      const QScopedValueRollback<bool> quiet(showing_, true);
      setPlainText(typed);
      QTextCursor cursor = textCursor();
      cursor.setPosition(position);
      setTextCursor(cursor);
    }
  });
}

void TDBMemo::showField()
{
  // A memo has no short form for showing: the display text of blobs says only that there is a text.
  const TField* bound = field();
  const QString shown = bound ? bound->EditText() : QString();
  if (shown != toPlainText()) {
    const QScopedValueRollback<bool> quiet(showing_, true);
    setPlainText(shown);
  }
}

void TDBMemo::storeField()
{
  field()->SetEditText(toPlainText());
}

void TDBMemo::updateAccess()
{
  QPlainTextEdit::setReadOnly(!canModify());
  applyBackground({QPalette::Base});
}

void TDBMemo::keyPressEvent(QKeyEvent* event)
{
  if (event->key() == Qt::Key_Escape) {
    if (isPending()) {
      revert();
      event->accept();
    } else {
      event->ignore();
    }
    return;
  }
  QPlainTextEdit::keyPressEvent(event);
}

void TDBMemo::focusOutEvent(QFocusEvent* event)
{
  QPlainTextEdit::focusOutEvent(event);
  commitOnLeave(event->reason());
}

}  // namespace kalvor
