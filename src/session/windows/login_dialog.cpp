#include "session/windows/login_dialog.h"

#include <QApplication>
#include <QComboBox>
#include <QCompleter>
#include <QGridLayout>
#include <QIcon>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QShowEvent>
#include <QScopedValueRollback>
#include <QTimer>

#include "forms/messages.h"
#include "platform/ports.h"
#include "session/error_log.h"
#include "widgets/theme.h"

namespace kalvor {
namespace {

constexpr int loginListWidth = 280;  // a company's full name
constexpr int markSize = 64;
constexpr int loginMargin = spacing::wide + spacing::normal;

QLabel* fieldLabel(const char16_t* text, QWidget* field)
{
  auto* label = new QLabel(QString::fromUtf16(text));
  label->setBuddy(field);
  field->setAccessibleName(label->text());
  return label;
}

std::optional<QString> chosenId(const LoginList& list)
{
  return list.selected() < 0 ? std::nullopt : std::optional(list.selectedId());
}

void showList(QComboBox* box, const LoginList& list)
{
  box->clear();
  for (const LoginItem& item : list.items())
    box->addItem(item.text, item.store.Id);
  box->setCurrentIndex(list.selected());
}

}  // namespace

TfLogin::TfLogin(HostApplication& host, RemoteCalls& calls, SocketConnection& connection, QWidget* parent)
    : QDialog(parent), host_(host), calls_(calls), connection_(connection), lists_(calls)
{
  place = {connection.Address, connection.Port};
  build();
  connectControls();
}

TfLogin::~TfLogin() = default;

void TfLogin::build()
{
  setObjectName(QStringLiteral("fLogin"));
  setWindowTitle(QStringLiteral("Вход в системата"));
  cbCompany = new QComboBox;
  cbObject = new QComboBox;
  cbUser = new QComboBox;
  ebPassword = new QLineEdit;
  btnOk = new QPushButton(QStringLiteral("Ok"));
  btnCancel = new QPushButton(QStringLiteral("Отказ"));
  btnConnection = new QPushButton(QStringLiteral("Връзка"));

  cbUser->setEditable(true);
  cbUser->setInsertPolicy(QComboBox::NoInsert);
  // A code that is typed is taken as typed: suggestions are only offered.
  cbUser->completer()->setCompletionMode(QCompleter::PopupCompletion);
  cbUser->completer()->setCaseSensitivity(Qt::CaseSensitive);
  cbUser->setEditText(QStringLiteral("SUPERVSR"));
  ebPassword->setEchoMode(QLineEdit::Password);
  btnOk->setDefault(true);
  btnCancel->setAutoDefault(false);
  btnConnection->setAutoDefault(false);

  auto* fields = new QGridLayout;
  fields->setHorizontalSpacing(spacing::wide);
  fields->setVerticalSpacing(spacing::normal);
  fields->setColumnStretch(1, 1);
  const std::pair<const char16_t*, QWidget*> rows[] = {
      {u"Фирма", cbCompany}, {u"Обект", cbObject}, {u"Потребител", cbUser}, {u"Парола", ebPassword}};
  int row = 0;
  for (const auto& [text, field] : rows) {
    field->setMinimumWidth(loginListWidth);
    fields->addWidget(fieldLabel(text, field), row, 0);
    fields->addWidget(field, row++, 1);
  }

  auto* buttons = new QHBoxLayout;
  buttons->setSpacing(spacing::normal);
  buttons->addWidget(btnConnection);
  buttons->addStretch();
  buttons->addWidget(btnOk);
  buttons->addWidget(btnCancel);

  // The program's mark, where it has one.
  auto* head = new QHBoxLayout;
  head->setSpacing(loginMargin);
  if (const QIcon mark = QApplication::windowIcon(); !mark.isNull()) {
    auto* picture = new QLabel;
    picture->setPixmap(mark.pixmap(QSize(markSize, markSize), devicePixelRatioF()));
    head->addWidget(picture, 0, Qt::AlignTop);
  }
  head->addLayout(fields);

  auto* all = new QVBoxLayout(this);
  all->setContentsMargins(loginMargin, loginMargin, loginMargin, spacing::wide);
  all->setSpacing(loginMargin);
  all->addLayout(head);
  all->addLayout(buttons);
  all->setSizeConstraint(QLayout::SetFixedSize);

  const std::pair<QWidget*, const char*> inTabOrder[] = {
      {cbCompany, "cbCompany"}, {cbObject, "cbObject"},   {cbUser, "cbUser"},              {ebPassword, "ebPassword"},
      {btnOk, "btnOk"},         {btnCancel, "btnCancel"}, {btnConnection, "btnConnection"}};
  QWidget* before = nullptr;
  for (const auto& [control, name] : inTabOrder) {
    control->setObjectName(QString::fromLatin1(name));
    if (before)
      setTabOrder(before, control);
    before = control;
  }
  ebPassword->setFocus();
}

void TfLogin::connectControls()
{
  connect(cbCompany, &QComboBox::currentIndexChanged, this, &TfLogin::companyChanged);
  connect(cbObject, &QComboBox::currentIndexChanged, this, &TfLogin::objectChanged);
  connect(cbUser, &QComboBox::editTextChanged, this, [this] {
    if (!filling_)
      ebPassword->clear();
  });
  connect(btnOk, &QPushButton::clicked, this, &QDialog::accept);
  connect(btnCancel, &QPushButton::clicked, this, &QDialog::reject);
  connect(btnConnection, &QPushButton::clicked, this, &TfLogin::editConnection);
}

// The message waits for the event loop, so that it stands over the dialog and not in its way.
template <typename Action>
void TfLogin::tellingErrors(Action action)
{
  try {
    const WaitCursorScope waiting;
    action();
  } catch (const std::exception& error) {
    QTimer::singleShot(0, this, [text = errorText(error)] { showError(text); });
  }
  showLists();
}

void TfLogin::showEvent(QShowEvent* event)
{
  QDialog::showEvent(event);
  if (!event->spontaneous())
    LoadCombosFromIni();
}

void TfLogin::LoadCombosFromIni()
{
  tellingErrors([this] { lists_.LoadCombosFromIni(); });
}

void TfLogin::showLists()
{
  const QScopedValueRollback guard(filling_, true);
  const QString user = cbUser->currentText();
  showList(cbCompany, lists_.companies);
  showList(cbObject, lists_.objects);
  showList(cbUser, lists_.users);
  if (lists_.users.selected() < 0)
    cbUser->setEditText(user);
}

void TfLogin::companyChanged()
{
  if (filling_)
    return;
  lists_.companies.select(cbCompany->currentIndex());
  tellingErrors([this] { lists_.companyChanged(); });
}

void TfLogin::objectChanged()
{
  if (filling_)
    return;
  lists_.objects.select(cbObject->currentIndex());
  tellingErrors([this] { lists_.objectChanged(); });
}

LoginChoice TfLogin::choice() const
{
  LoginChoice choice;
  choice.company = chosenId(lists_.companies);
  choice.businessGroup = chosenId(lists_.objects);
  choice.companyText = cbCompany->currentText();
  choice.businessGroupText = cbObject->currentText();
  choice.userText = cbUser->currentText();
  const int user = cbUser->currentIndex();
  if (user >= 0 && cbUser->itemText(user) == choice.userText)
    choice.user = cbUser->itemData(user).toString();
  choice.password = ebPassword->text();
  return choice;
}

void TfLogin::editConnection()
{
  const ServerPlace edited = host_.editSettings(SettingsPages::ConnectionOnly, place);
  if (edited == place)
    return;
  place = edited;
  connection_.Address = place.address;
  connection_.Port = place.port;
  try {
    const WaitCursorScope waiting;
    calls_.Disconnect();
    calls_.Connect();
  } catch (const RpcError& error) {
    // Why a server is not trusted says more than that there is none.
    return showError(error.code() == RpcError::Untrusted ? error.message() : _inf_ServerNotFound);
  } catch (const std::exception&) {
    return showError(_inf_ServerNotFound);
  }
  LoadCombosFromIni();
}

void TfLogin::reject()
{
  QDialog::reject();
  host_.terminate();
}

}  // namespace kalvor
