#include "business/windows/change_calculation.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPushButton>

#include "business/messages.h"
#include "common/rounding.h"
#include "data/regional.h"
#include "platform/ports.h"
#include "widgets/theme.h"

namespace kalvor {

namespace {

constexpr int cashDecimals = 2;
constexpr qreal amountFontScale = 1.5;  // read from across the counter

QString cashText(double amount) { return QString::number(amount, 'f', cashDecimals); }

std::optional<double> cashAmount(const QLineEdit* edit)
{
  const auto number = parseNumber(edit->text().trimmed().replace(u'.', regionalFormat().decimalSeparator));
  return number ? std::optional(static_cast<double>(RoundUp(cashDecimals, *number))) : std::nullopt;
}

QLineEdit* amountEdit(QWidget* parent, const QString& name, bool readOnly)
{
  auto* edit = new QLineEdit(cashText(0), parent);
  edit->setObjectName(name);
  edit->setAlignment(Qt::AlignRight);
  edit->setReadOnly(readOnly);
  if (readOnly)
    edit->setFocusPolicy(Qt::NoFocus);
  QFont font = edit->font();
  font.setPointSizeF(font.pointSizeF() * amountFontScale);
  edit->setFont(font);
  return edit;
}

}  // namespace

TfChangeCalculation::TfChangeCalculation(QWidget* parent)
    : QDialog(parent),
      edTotal(amountEdit(this, QStringLiteral("edTotal"), true)),
      edCash(amountEdit(this, QStringLiteral("edCash"), false)),
      edChange(amountEdit(this, QStringLiteral("edChange"), true))
{
  setWindowTitle(QStringLiteral("Плащане в брой"));
  auto* buttons = new QDialogButtonBox(this);
  ok_ = buttons->addButton(QStringLiteral("Ok"), QDialogButtonBox::AcceptRole);
  buttons->addButton(QStringLiteral("Cancel"), QDialogButtonBox::RejectRole);
  connect(buttons, &QDialogButtonBox::accepted, this, &TfChangeCalculation::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  auto* form = new QFormLayout(this);
  form->setContentsMargins(spacing::wide, spacing::wide, spacing::wide, spacing::wide);
  form->setSpacing(spacing::normal);
  form->addRow(QStringLiteral("Сума:"), edTotal);
  form->addRow(QStringLiteral("В брой:"), edCash);
  form->addRow(QStringLiteral("Ресто:"), edChange);
  form->addRow(buttons);
  edCash->installEventFilter(this);
  edCash->setFocus();
  edCash->selectAll();
}

void TfChangeCalculation::setTotal(double amount) { edTotal->setText(cashText(amount)); }

double TfChangeCalculation::cash() const { return cashAmount(edCash).value_or(0); }

bool TfChangeCalculation::eventFilter(QObject* watched, QEvent* event)
{
  if (event->type() == QEvent::KeyPress) {
    const int key = static_cast<QKeyEvent*>(event)->key();
    if (key == Qt::Key_Return || key == Qt::Key_Enter) {
      if (calculate())
        ok_->setFocus(Qt::TabFocusReason);
      return true;
    }
  }
  return QDialog::eventFilter(watched, event);
}

bool TfChangeCalculation::calculate()
{
  const auto total = cashAmount(edTotal);
  const auto received = cashAmount(edCash);
  if (!total || !received) {
    showError(QStringLiteral("„%1“ не е сума.").arg((received ? edTotal : edCash)->text()));
    edCash->setFocus(Qt::OtherFocusReason);
    edCash->selectAll();
    return false;
  }
  edChange->setText(cashText(*received - *total));
  return true;
}

void TfChangeCalculation::accept()
{
  if (!calculate())
    return;
  if (*cashAmount(edCash) < *cashAmount(edTotal)) {
    showError(_err_CashLessThenTotal);
    edCash->setFocus(Qt::OtherFocusReason);
    edCash->selectAll();
    return;
  }
  QDialog::accept();
}

}  // namespace kalvor
