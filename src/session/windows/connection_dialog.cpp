#include "session/windows/connection_dialog.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>

#include "platform/ports.h"
#include "session/local_settings_file.h"
#include "widgets/theme.h"

namespace kalvor {
namespace {

constexpr int connectionMargin = spacing::wide + spacing::normal;

}  // namespace

ConnectionDialog::ConnectionDialog(const ServerPlace& current, QWidget* parent)
    : QDialog(parent), address_(new QLineEdit(current.address)), port_(new QSpinBox)
{
  setObjectName(QStringLiteral("connectionDialog"));
  setWindowTitle(QStringLiteral("Връзка със сървъра"));
  address_->setObjectName(QStringLiteral("serverAddress"));
  address_->setMinimumWidth(280);
  port_->setObjectName(QStringLiteral("serverPort"));
  port_->setRange(1, 65535);
  port_->setValue(current.port);

  auto* fields = new QFormLayout;
  fields->setHorizontalSpacing(spacing::wide);
  fields->setVerticalSpacing(spacing::normal);
  fields->addRow(QStringLiteral("Адрес"), address_);
  fields->addRow(QStringLiteral("Порт"), port_);

  auto* test = new QPushButton(QStringLiteral("Тест"));
  auto* ok = new QPushButton(QStringLiteral("Ok"));
  auto* leave = new QPushButton(QStringLiteral("Изход"));
  test->setObjectName(QStringLiteral("btnTest"));
  ok->setObjectName(QStringLiteral("btnOK"));
  leave->setObjectName(QStringLiteral("btnExit"));
  ok->setDefault(true);
  test->setAutoDefault(false);
  leave->setAutoDefault(false);
  auto* buttons = new QHBoxLayout;
  buttons->setSpacing(spacing::normal);
  buttons->addWidget(test);
  buttons->addStretch();
  buttons->addWidget(ok);
  buttons->addWidget(leave);

  auto* all = new QVBoxLayout(this);
  all->setContentsMargins(connectionMargin, connectionMargin, connectionMargin, spacing::wide);
  all->setSpacing(connectionMargin);
  all->addLayout(fields);
  all->addLayout(buttons);
  all->setSizeConstraint(QLayout::SetFixedSize);

  connect(test, &QPushButton::clicked, this, [this] {
    const bool found = TestConnection(quint16(port_->value()), address_->text().trimmed());
    userPrompt().message(PromptKind::Plain,
                         found ? QStringLiteral("Установена е връзка със сървъра")
                               : QStringLiteral("Не е установена връзка със сървъра"),
                         {PromptButton::Ok});
  });
  connect(ok, &QPushButton::clicked, this, &ConnectionDialog::accept);
  connect(leave, &QPushButton::clicked, this, &QDialog::reject);
}

ServerPlace ConnectionDialog::place() const
{
  return {address_->text().trimmed(), quint16(port_->value())};
}

bool ConnectionDialog::TestConnection(quint16 port, const QString& address)
{
  SocketConnection socket;
  socket.Address = address;
  socket.Port = port;
  ConnectionBroker broker(&socket);
  try {
    const WaitCursorScope waiting;
    broker.Connect();
  } catch (const DataError&) {
    return false;
  }
  return broker.Connected();
}

void ConnectionDialog::accept()
{
  const ServerPlace edited = place();
  if (SaveSectionToIni(QStringLiteral("Server"), {QStringLiteral("ServerPort=") + QString::number(edited.port),
                                                  QStringLiteral("ServerAddress=") + edited.address}))
    return QDialog::accept();
  showError(QStringLiteral("Настройките за връзка не могат да бъдат записани."));
}

ServerPlace editConnection(const ServerPlace& current, QWidget* parent)
{
  ConnectionDialog dialog(current, parent);
  return dialog.exec() == QDialog::Accepted ? dialog.place() : current;
}

}  // namespace kalvor
