#include "forms/windows/modal_form_dialog.h"

#include <QCloseEvent>
#include <QVBoxLayout>

#include "forms/windows/base_form.h"

namespace kalvor {

ModalFormDialog::ModalFormDialog(TfBase* form, QWidget* parent) : QDialog(parent), form_(form)
{
  setObjectName(QStringLiteral("modalForm"));
  setWindowTitle(form->windowTitle());
  connect(form, &QWidget::windowTitleChanged, this, &QWidget::setWindowTitle);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  const QSize wanted = form->size();
  layout->addWidget(form);
  resize(wanted);
}

ModalFormDialog::~ModalFormDialog()
{
  form_->hide();
  form_->setParent(nullptr);
}

void ModalFormDialog::reject()
{
  close();
}

void ModalFormDialog::closeEvent(QCloseEvent* event)
{
  if (form_->close()) {
    event->accept();
    done(form_->modalResult());
  } else {
    event->ignore();
  }
}

}  // namespace kalvor
