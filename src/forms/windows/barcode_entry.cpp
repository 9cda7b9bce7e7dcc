#include "forms/windows/barcode_entry.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QPushButton>

namespace kalvor {

BarcodeEntry::BarcodeEntry(Scanned scanned, QWidget* parent)
    : QDialog(parent), scanned_(std::move(scanned)), code_(new QLineEdit), quantity_(new QLineEdit), kind_(new QComboBox)
{
  setObjectName(QStringLiteral("barcodeEntry"));
  setWindowTitle(QStringLiteral("Баркод"));
  code_->setObjectName(QStringLiteral("barcode"));
  quantity_->setObjectName(QStringLiteral("barcodeQuantity"));
  kind_->addItem(QStringLiteral("Баркод"), int(OwnBarcode));
  kind_->addItem(QStringLiteral("Номер на контрагент"), int(ContragentCode));
  auto* rows = new QFormLayout(this);
  rows->addRow(QStringLiteral("&Код:"), code_);
  rows->addRow(QStringLiteral("К&оличество:"), quantity_);
  rows->addRow(QStringLiteral("&Вид:"), kind_);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
  buttons->button(QDialogButtonBox::Ok)->setText(QStringLiteral("Ok"));
  buttons->button(QDialogButtonBox::Cancel)->setText(QStringLiteral("Отказ"));
  connect(buttons, &QDialogButtonBox::accepted, this, &BarcodeEntry::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &BarcodeEntry::reject);
  rows->addRow(buttons);
}

void BarcodeEntry::start()
{
  code_->clear();
  quantity_->setText(QStringLiteral("1"));
  show();
  raise();
  activateWindow();
  code_->setFocus();
}

void BarcodeEntry::accept()
{
  const QString code = code_->text().trimmed();
  bool number = false;
  const double quantity = QString(quantity_->text()).replace(u',', u'.').toDouble(&number);
  if (code.isEmpty()) {
    code_->setFocus();
    return;
  }
  if (!number) {
    quantity_->setFocus();
    quantity_->selectAll();
    return;
  }
  QDialog::accept();
  scanned_(code, quantity, kind_->currentData().toInt());
}

}  // namespace kalvor
