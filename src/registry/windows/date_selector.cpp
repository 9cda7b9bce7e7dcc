#include "registry/windows/date_selector.h"

#include <QApplication>
#include <QCalendarWidget>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPointer>
#include <QScreen>
#include <QTableView>
#include <QVBoxLayout>
#include <algorithm>

#include "data/client_dataset.h"
#include "data/regional.h"
#include "platform/ports.h"
#include "widgets/data_control.h"

namespace kalvor {

namespace {

struct CalendarStep {
  int key;
  int days;
};
constexpr CalendarStep calendarSteps[] = {
    {Qt::Key_Left, -1}, {Qt::Key_Right, 1}, {Qt::Key_Up, -7}, {Qt::Key_Down, 7}};

}  // namespace

TfDateSelectorForm::TfDateSelectorForm(QWidget* control, QDate start, TakeDate take)
    : QFrame(control, Qt::Popup | Qt::FramelessWindowHint), calendar_(new QCalendarWidget(this)), take_(std::move(take))
{
  setObjectName(QStringLiteral("TfDateSelectorForm"));
  setAccessibleName(QStringLiteral("Календар"));
  setAttribute(Qt::WA_DeleteOnClose);
  setFrameStyle(QFrame::StyledPanel);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(1, 1, 1, 1);
  layout->addWidget(calendar_);
  calendar_->setLocale(QLocale(QLocale::Bulgarian, QLocale::Bulgaria));
  calendar_->setFirstDayOfWeek(Qt::Monday);
  calendar_->setVerticalHeaderFormat(QCalendarWidget::NoVerticalHeader);
  calendar_->setGridVisible(false);
  setDate(start.isValid() ? start : systemClock().today());
  connect(calendar_, &QCalendarWidget::activated, this, [this] { takeDate(); });
  for (QWidget* part : calendar_->findChildren<QWidget*>()) {
    part->installEventFilter(this);
  }
  setFocusProxy(calendar_->findChild<QTableView*>());
  placeUnder(control);
}

QDate TfDateSelectorForm::date() const
{
  return calendar_->selectedDate();
}

void TfDateSelectorForm::setDate(QDate date)
{
  calendar_->setSelectedDate(date);
}

void TfDateSelectorForm::takeDate()
{
  const QDate chosen = date();
  const TakeDate take = std::exchange(take_, {});
  const QPointer<QWidget> control = parentWidget();
  close();
  if (take) {
    attempt(control, [&] { take(chosen); });
  }
}

void TfDateSelectorForm::placeUnder(const QWidget* control)
{
  adjustSize();
  QPoint corner = control->mapToGlobal(QPoint(0, control->height()));
  if (const QScreen* screen = control->screen()) {
    const QRect room = screen->availableGeometry();
    corner.setX(std::min(corner.x(), room.right() - width() + 1));
    if (corner.y() + height() > room.bottom() + 1) {
      corner.setY(control->mapToGlobal(QPoint(0, 0)).y() - height());
    }
  }
  move(corner);
}

bool TfDateSelectorForm::calendarKey(int key)
{
  if (key == Qt::Key_Escape) {
    close();
    return true;
  }
  if (key == Qt::Key_Return || key == Qt::Key_Enter) {
    takeDate();
    return true;
  }
  for (const CalendarStep& step : calendarSteps) {
    if (step.key == key) {
      setDate(date().addDays(step.days));
      return true;
    }
  }
  return false;
}

bool TfDateSelectorForm::eventFilter(QObject* watched, QEvent* event)
{
  if (event->type() == QEvent::KeyPress && calendarKey(static_cast<QKeyEvent*>(event)->key())) {
    return true;
  }
  return QFrame::eventFilter(watched, event);
}

void TfDateSelectorForm::focusOutEvent(QFocusEvent* event)
{
  QFrame::focusOutEvent(event);
  if (!isAncestorOf(QApplication::focusWidget())) {
    close();
  }
}

TfDateSelectorForm* showDateSelector(QWidget* control, TField* field)
{
  auto* form = new TfDateSelectorForm(control, field->AsDateTime().date(), [field](QDate date) {
    if (!field->DataSet()->IsEditing()) {
      field->DataSet()->Edit();
    }
    field->SetValue(date);
  });
  form->show();
  form->setFocus();
  return form;
}

TfDateSelectorForm* showDateSelector(QLineEdit* edit)
{
  const auto start = parseDate(edit->text());
  auto* form = new TfDateSelectorForm(edit, start.value_or(QDate()), [edit](QDate date) {
    edit->setText(date.toString(QStringLiteral("dd/MM/yyyy")));
  });
  form->show();
  form->setFocus();
  return form;
}

}  // namespace kalvor
