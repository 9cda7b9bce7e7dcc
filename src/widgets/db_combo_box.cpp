#include "widgets/db_combo_box.h"

#include <QKeyEvent>
#include <QPainter>
#include <QStyleOption>

#include "widgets/theme.h"

namespace kalvor {
namespace {

// Keys that leave the value as it is; the others are the list's and need a modifiable field.
bool passesReadOnly(const QKeyEvent* event)
{
  switch (event->key()) {
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Escape: return true;
    default: return event->key() >= Qt::Key_F1 && event->key() <= Qt::Key_F35 && event->key() != Qt::Key_F4;
  }
}

}  // namespace

DataComboBox::DataComboBox(QWidget* parent) : QComboBox(parent), DataControl(this)
{
  setFocusPolicy(Qt::StrongFocus);
  connect(this, &QComboBox::activated, this, [this] {
    if (!changeNow()) {
      revert();  // an item is chosen or it is not; there is no half-typed text to mend
    }
  });
}

void DataComboBox::setItems(const QStringList& items)
{
  const QSignalBlocker quiet(this);
  clear();
  addItems(items);
  showField();
}

QStringList DataComboBox::items() const
{
  QStringList result;
  for (int i = 0; i < count(); ++i) {
    result.append(itemText(i));
  }
  return result;
}

bool DataComboBox::keepsPosition() const
{
  const TField* bound = field();
  return bound && isIntegerType(bound->FieldDataType()) && !bound->OnGetText && !bound->OnSetText;
}

void DataComboBox::showField()
{
  const TField* bound = field();
  const QString shown = bound ? bound->DisplayText() : QString();
  int position = -1;
  if (bound && !bound->IsNull()) {
    const qint64 stored = keepsPosition() ? bound->AsInteger() : -1;
    position = !keepsPosition() ? findText(shown) : stored >= 0 && stored < count() ? int(stored) : -1;
  }
  setCurrentIndex(position);
  setPlaceholderText(position < 0 ? shown : QString());
  update();
}

void DataComboBox::storeField()
{
  if (keepsPosition()) {
    field()->SetAsInteger(currentIndex());
  } else {
    field()->SetEditText(currentText());
  }
}

void DataComboBox::updateAccess()
{
  applyBackground({QPalette::Base, QPalette::Button});
}

void DataComboBox::showPopup()
{
  if (canModify()) {
    QComboBox::showPopup();
  }
}

void DataComboBox::keyPressEvent(QKeyEvent* event)
{
  if (event->key() == Qt::Key_Escape || (!passesReadOnly(event) && !canModify())) {
    event->ignore();
    return;
  }
  QComboBox::keyPressEvent(event);
}

void DataComboBox::wheelEvent(QWheelEvent* event)
{
  event->ignore();  // scrolling a page must not change a document
}

TDBFlatComboBox::TDBFlatComboBox(QWidget* parent) : DataComboBox(parent)
{
  setFrame(false);
}

void TDBFlatComboBox::paintEvent(QPaintEvent* event)
{
  Q_UNUSED(event);
  QPainter painter(this);
  painter.fillRect(rect(), palette().color(isEnabled() ? QPalette::Active : QPalette::Disabled, QPalette::Base));
  painter.fillRect(0, height() - 1, width(), 1, hasFocus() ? theme().accent : theme().line);
  const int arrowWidth = height();
  const QRect textRect = rect().adjusted(spacing::tight, 0, -arrowWidth, 0);
  const QString shown = currentIndex() < 0 ? placeholderText() : currentText();
  painter.setPen(palette().color(isEnabled() ? QPalette::Active : QPalette::Disabled, QPalette::Text));
  painter.drawText(textRect, Qt::AlignLeft | Qt::AlignVCenter,
                   fontMetrics().elidedText(shown, Qt::ElideRight, textRect.width()));
  QStyleOption arrow;
  arrow.initFrom(this);
  arrow.rect = QRect(width() - arrowWidth, 0, arrowWidth, height()).adjusted(8, 8, -8, -8);
  style()->drawPrimitive(QStyle::PE_IndicatorArrowDown, &arrow, &painter, this);
}

}  // namespace kalvor
