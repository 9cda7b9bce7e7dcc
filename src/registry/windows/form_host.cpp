#include "registry/windows/form_host.h"

#include <QApplication>

#include "registry/form_interfaces.h"

namespace kalvor {

namespace {

FormHost* installedFormHost = nullptr;

// The form in a sub-window or a dialog around it; the window itself when it holds none.
QWidget* formWithin(QWidget* window)
{
  if (auto* sub = qobject_cast<QMdiSubWindow*>(window)) {
    return sub->widget();
  }
  for (QWidget* child : window ? window->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly) : QWidgetList()) {
    if (dynamic_cast<IBaseIntf*>(child)) {
      return child;
    }
  }
  return window;
}

}  // namespace

FormHost::~FormHost() = default;

FormHost* formHost()
{
  return installedFormHost;
}

void installFormHost(FormHost* host)
{
  installedFormHost = host;
}

void adoptChildWindow(QWidget* form)
{
  QMdiArea* area = installedFormHost ? installedFormHost->childArea() : nullptr;
  if (!area) {
    form->setParent(nullptr, Qt::Window);
    form->setAttribute(Qt::WA_DeleteOnClose);
    return;
  }
  const QSize wanted = form->size();
  QMdiSubWindow* window = area->addSubWindow(form);
  window->setAttribute(Qt::WA_DeleteOnClose);
  window->setWindowIcon(form->windowIcon());
  const QMargins frame = window->contentsMargins();
  const QSize whole = wanted.grownBy(frame);
  const QSize room = area->viewport()->size();
  window->resize(room.isEmpty() ? whole : whole.boundedTo(room));
}

void cascadeChildWindow(QMdiSubWindow* window)
{
  constexpr int stepDown = 29;
  constexpr int stepRight = 22;
  const auto before = int(window->mdiArea()->subWindowList().size()) - 1;
  window->move(before * stepRight, before * stepDown);
}

void fitChildWindow(QMdiSubWindow* window)
{
  if (window->isMaximized()) {
    return;
  }
  const QSize space = window->mdiArea()->viewport()->size();
  const QSize room(space.width() - window->x(), space.height() - window->y());
  window->resize(window->size().boundedTo(room).expandedTo(window->minimumSizeHint()).boundedTo(space));
  window->move(qMax(0, qMin(window->x(), space.width() - window->width())),
               qMax(0, qMin(window->y(), space.height() - window->height())));
}

QWidget* windowOf(QWidget* form)
{
  for (QWidget* widget = form; widget; widget = widget->parentWidget()) {
    if (qobject_cast<QMdiSubWindow*>(widget) || widget->isWindow()) {
      return widget;
    }
  }
  return form;
}

void activateForm(QWidget* form)
{
  QWidget* window = windowOf(form);
  if (auto* sub = qobject_cast<QMdiSubWindow*>(window)) {
    if (QMdiArea* area = sub->mdiArea()) {
      area->setActiveSubWindow(sub);
    }
  }
  window->raise();
  window->activateWindow();
}

QWidget* activeFormWidget()
{
  QMdiArea* area = installedFormHost ? installedFormHost->childArea() : nullptr;
  QWidget* top = QApplication::activeWindow();
  const bool inArea = area && (!top || top == area->window());
  return formWithin(inArea ? area->activeSubWindow() : top);
}

}  // namespace kalvor
