#include "session/windows/change_password.h"

#include <QApplication>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include "forms/messages.h"
#include "platform/ports.h"
#include "registry/windows/form_registry.h"
#include "session/dm.h"
#include "session/error_log.h"
#include "session/password_digest.h"
#include "widgets/theme.h"

namespace kalvor {
namespace {

constexpr int passwordWidth = 220;

QLineEdit* passwordBox(const char* name)
{
  auto* box = new QLineEdit;
  box->setObjectName(QLatin1String(name));
  box->setEchoMode(QLineEdit::Password);
  box->setStyleSheet(QStringLiteral("lineedit-password-character: %1").arg(int(u'•')));
  box->setMinimumWidth(passwordWidth);
  return box;
}

QLabel* passwordLabel(const char16_t* text, QLineEdit* box)
{
  auto* label = new QLabel(QString::fromUtf16(text));
  label->setBuddy(box);
  box->setAccessibleName(label->text());
  return label;
}

}  // namespace

TfChangePass::TfChangePass(QWidget* parent)
    : TfBaseCommon(parent), ebxOldPass(passwordBox("ebxOldPass")), ebxNewPass(passwordBox("ebxNewPass")),
      ebxConfirmPass(passwordBox("ebxConfirmPass")), btnOk(new QPushButton(QStringLiteral("Запази"))),
      btnCancel(new QPushButton(QStringLiteral("Отказ"))), userCode_(LocalData.UserId)
{
  build();
}

void TfChangePass::build()
{
  setObjectName(QStringLiteral("fChangePass"));
  setWindowTitle(QStringLiteral("Смяна на парола"));
  lbOldPass = passwordLabel(u"Стара порола:", ebxOldPass);
  lbOldPass->setObjectName(QStringLiteral("lbOldPass"));
  auto* fields = new QGridLayout;
  fields->setHorizontalSpacing(spacing::wide);
  fields->setVerticalSpacing(spacing::normal);
  const std::pair<QLabel*, QLineEdit*> rows[] = {
      {lbOldPass, ebxOldPass},
      {passwordLabel(u"Нова парола:", ebxNewPass), ebxNewPass},
      {passwordLabel(u"Нова парола (проверка):", ebxConfirmPass), ebxConfirmPass}};
  int line = 0;
  for (const auto& [label, box] : rows) {
    fields->addWidget(label, line, 0);
    fields->addWidget(box, line++, 1);
  }

  btnOk->setObjectName(QStringLiteral("btnOk"));
  btnOk->setDefault(true);
  btnCancel->setObjectName(QStringLiteral("btnCancel"));
  btnCancel->setAutoDefault(false);
  auto* buttons = new QHBoxLayout;
  buttons->setSpacing(spacing::normal);
  buttons->addStretch();
  buttons->addWidget(btnOk);
  buttons->addWidget(btnCancel);

  auto* all = new QVBoxLayout(this);
  all->setContentsMargins(spacing::wide, spacing::wide, spacing::wide, spacing::wide);
  all->setSpacing(spacing::wide);
  all->addLayout(fields);
  all->addLayout(buttons);
  all->setSizeConstraint(QLayout::SetFixedSize);
  connect(btnOk, &QPushButton::clicked, this, &TfChangePass::btnOkClick);
  connect(btnCancel, &QPushButton::clicked, this, &QDialog::reject);
}

void TfChangePass::showEvent(QShowEvent* event)
{
  lbOldPass->hide();
  ebxOldPass->hide();
  ebxNewPass->setFocus();
  TfBaseCommon::showEvent(event);
}

int TfChangePass::DoShowForm(int formId, ShowOption options)
{
  prepare(formId, options, bsDialog);
  setParent(QApplication::activeWindow(), windowFlags());
  setAttribute(Qt::WA_DeleteOnClose);
  show();
  raise();
  activateWindow();
  return 0;
}

int TfChangePass::DoShowForm(int formId, ShowOption options, const TDialogParams& params)
{
  return TfBaseCommon::DoShowForm(formId, options, params);
}

void TfChangePass::takeParams(const TDialogParams& params)
{
  if (const Variant user = params.Values.value(0); !isNull(user))
    userCode_ = variantText(user);
}

bool TfChangePass::ChangeUserPassword(const QString& newPassword)
{
  const WaitCursorScope waiting;
  VariantArray arguments{userCode_, passwordDigest(newPassword)};
  const Variant result = DM->ConBroker->Call(QStringLiteral("ChangePassword"), arguments);
  return !isNull(result) && result.toInt() == 0;
}

void TfChangePass::btnOkClick()
{
  try {
    if (ebxNewPass->text().trimmed() != ebxConfirmPass->text().trimmed())
      throw DataError(_err_PassDif);
    if (!ChangeUserPassword(ebxNewPass->text()))
      throw DataError(_err_ChangePass);
    newPassword_ = ebxNewPass->text().trimmed();
    accept();
  } catch (const std::exception& error) {
    LogError(errorText(error), QStringLiteral("TfChangePass.btnOkClick"));
    showError(errorText(error));
    ebxNewPass->setFocus();
    ebxNewPass->selectAll();
  }
}

}  // namespace kalvor
