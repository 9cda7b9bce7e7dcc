#include "registry/windows/select_form.h"

#include <QGroupBox>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

#include "platform/ports.h"
#include "registry/form_descriptions.h"
#include "session/dm.h"
#include "session/error_log.h"
#include "widgets/theme.h"

namespace kalvor {

namespace {

constexpr int formIdRole = Qt::UserRole;
constexpr QSize formListSize(340, 300);

// Sorts as the user reads, not by code points.
struct CaptionItem : QListWidgetItem {
  using QListWidgetItem::QListWidgetItem;
  bool operator<(const QListWidgetItem& other) const override
  {
    return QString::localeAwareCompare(text(), other.text()) < 0;
  }
};

}  // namespace

TfSelectForm::TfSelectForm(int kind, QWidget* parent)
    : QDialog(parent), clbForms(new QListWidget), btnSelectAll(new QPushButton(QStringLiteral("Избери Всички"))),
      btnUnselectAll(new QPushButton(QStringLiteral("Откажи Всички"))),
      btnInverse(new QPushButton(QStringLiteral("Инверсно"))), btnOk(new QPushButton(QStringLiteral("Ok"))),
      btnCancel(new QPushButton(QStringLiteral("Отказ"))), kind_(StoredSettings(qBound(1, kind, 3)))
{
  build();
  loggingErrors(QStringLiteral("TfSelectForm.FormCreate"), [this] { fill(); });
}

void TfSelectForm::build()
{
  setObjectName(QStringLiteral("fSelectForm"));
  setWindowTitle(QStringLiteral("Форми"));
  auto* group = new QGroupBox(QStringLiteral("Избор на форми "));
  clbForms->setObjectName(QStringLiteral("clbForms"));
  clbForms->setAccessibleName(QStringLiteral("Избор на форми"));
  clbForms->setMinimumSize(formListSize);
  auto* checks = new QHBoxLayout;
  checks->setSpacing(spacing::normal);
  auto* inside = new QVBoxLayout(group);
  inside->addWidget(clbForms);
  inside->addLayout(checks);
  auto* buttons = new QHBoxLayout;
  buttons->setSpacing(spacing::normal);
  buttons->addStretch();
  auto* all = new QVBoxLayout(this);
  all->setSpacing(spacing::wide);
  all->addWidget(group);
  all->addLayout(buttons);

  struct Row {
    QPushButton* button;
    const char* name;
    QHBoxLayout* place;
    void (TfSelectForm::*click)();
  };
  const Row rows[] = {{btnSelectAll, "btnSelectAll", checks, &TfSelectForm::btnSelectAllClick},
                      {btnUnselectAll, "btnUnselectAll", checks, &TfSelectForm::btnUnselectAllClick},
                      {btnInverse, "btnInverse", checks, &TfSelectForm::btnInverseClick},
                      {btnOk, "btnOk", buttons, &TfSelectForm::btnOkClick},
                      {btnCancel, "btnCancel", buttons, &QDialog::reject}};
  for (const Row& row : rows) {
    row.button->setObjectName(QLatin1String(row.name));
    row.button->setAutoDefault(false);
    row.place->addWidget(row.button);
    connect(row.button, &QPushButton::clicked, this, row.click);
  }
  btnOk->setDefault(true);
  clbForms->setFocus();
}

void TfSelectForm::fill()
{
  const QDomDocument* document = DM ? DM->userSettingsDocument() : nullptr;
  if (!document) {
    return;
  }
  const WaitCursorScope wait;
  for (const int formId : formsWithSettings(*document, kind_)) {
    if (const TFormData* form = GetFromDataObject(QString::number(formId), 0)) {
      auto* item = new CaptionItem(form->Caption, clbForms);
      item->setData(formIdRole, formId);
      item->setCheckState(Qt::Unchecked);
    }
  }
  clbForms->sortItems();
  clbForms->setCurrentRow(0);
}

template <class Change>
void TfSelectForm::changeChecks(Change change)
{
  for (int row = 0; row < clbForms->count(); ++row) {
    QListWidgetItem* item = clbForms->item(row);
    item->setCheckState(change(item->checkState() == Qt::Checked) ? Qt::Checked : Qt::Unchecked);
  }
}

void TfSelectForm::btnSelectAllClick()
{
  changeChecks([](bool) { return true; });
}

void TfSelectForm::btnUnselectAllClick()
{
  changeChecks([](bool) { return false; });
}

void TfSelectForm::btnInverseClick()
{
  changeChecks([](bool checked) { return !checked; });
}

QList<int> TfSelectForm::checkedForms() const
{
  QList<int> forms;
  for (int row = 0; row < clbForms->count(); ++row) {
    if (clbForms->item(row)->checkState() == Qt::Checked) {
      forms.append(clbForms->item(row)->data(formIdRole).toInt());
    }
  }
  return forms;
}

void TfSelectForm::btnOkClick()
{
  for (const int formId : checkedForms()) {
    DeleteUserSettings(formId, kind_);
  }
  accept();
}

}  // namespace kalvor
