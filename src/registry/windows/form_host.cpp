#include "registry/windows/form_host.h"

#include <QApplication>
#include <QMdiSubWindow>

namespace kalvor {

namespace {

FormHost* installedFormHost = nullptr;

QWidget* formWithin(QWidget* window)
{
  if (auto* sub = qobject_cast<QMdiSubWindow*>(window)) {
    return sub->widget();
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
  window->resize(wanted.boundedTo(area->viewport()->size().isEmpty() ? wanted : area->viewport()->size()));
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
  if (area && (!top || top == area->window())) {
    return formWithin(area->activeSubWindow());
  }
  return top;
}

}  // namespace kalvor
