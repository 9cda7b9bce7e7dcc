#include "import/windows/import_progress.h"

#include <QFormLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTextBlock>
#include <QTextEdit>
#include <QTime>
#include <QTimer>

#include "import/messages.h"
#include "session/import_log.h"
#include "widgets/theme.h"

namespace kalvor {

namespace {

constexpr int mostLines = 2000;
constexpr int breathMs = 50;
constexpr QSize collapsedSize(460, 150);
constexpr QSize expandedSize(640, 420);

TfImportProgress* currentProgress = nullptr;

}  // namespace

TfImportProgress::TfImportProgress(ProgressOf operation, QWidget* parent)
    : QDialog(parent), lblFile(new QLabel), lblCount(new QLabel), lblOperation(new QLabel), lblTime(new QLabel),
      pbProgress(new QProgressBar), reMessages(new QTextEdit), btnDetails(new QPushButton), btnCancel(new QPushButton),
      timer_(new QTimer(this))
{
  build(operation);
  started_.start();
  lastBreath_.start();
  connect(timer_, &QTimer::timeout, this, &TfImportProgress::showElapsed);
  timer_->start(500);
  showElapsed();
  currentProgress = this;
}

TfImportProgress::~TfImportProgress()
{
  if (currentProgress == this) {
    currentProgress = nullptr;
  }
}

TfImportProgress* TfImportProgress::current()
{
  return currentProgress;
}

void TfImportProgress::build(ProgressOf operation)
{
  setObjectName(QStringLiteral("fImportProgress"));
  setWindowTitle(QStringLiteral("Kalvor"));
  setWindowModality(Qt::ApplicationModal);
  lblOperation->setText(operation == ProgressOf::Import ? _str_ImportData : _str_ExportData);
  lblFile->setTextInteractionFlags(Qt::TextSelectableByMouse);
  reMessages->setObjectName(QStringLiteral("reMessages"));
  reMessages->setAccessibleName(QStringLiteral("Съобщения"));
  reMessages->setReadOnly(true);
  reMessages->setTabChangesFocus(true);
  reMessages->hide();
  btnDetails->setText(QStringLiteral("Детайли >>"));
  btnCancel->setText(QStringLiteral("Отказ"));
  btnDetails->setAutoDefault(false);
  btnCancel->setAutoDefault(false);
  connect(btnDetails, &QPushButton::clicked, this, &TfImportProgress::btnDetailsClick);
  connect(btnCancel, &QPushButton::clicked, this, &TfImportProgress::btnCancelClick);

  auto* state = new QHBoxLayout;
  state->addWidget(lblOperation);
  state->addStretch();
  state->addWidget(new QLabel(QStringLiteral("Записи:")));
  state->addWidget(lblCount);
  state->addSpacing(spacing::wide);
  state->addWidget(new QLabel(QStringLiteral("Време:")));
  state->addWidget(lblTime);
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(btnDetails);
  buttons->addStretch();
  buttons->addWidget(btnCancel);
  auto* all = new QVBoxLayout(this);
  all->setSpacing(spacing::normal);
  all->addWidget(lblFile);
  all->addLayout(state);
  all->addWidget(pbProgress);
  all->addWidget(reMessages, 1);
  all->addStretch();
  all->addLayout(buttons);
  resize(collapsedSize);
  btnCancel->setFocus();
}

// --- How far ---------------------------------------------------------------------------------------------------

void TfImportProgress::InitProgressBar(int count, const QString& file)
{
  pbProgress->setRange(0, std::max(count, 1));
  pbProgress->setValue(0);
  pbProgress->setFormat(QStringLiteral("%v"));
  lblCount->setText(QString::number(count));
  lblFile->setText(QStringLiteral("Файл: ") + file);
}

void TfImportProgress::UpdateProgressBar()
{
  // The count was an estimate: what comes after it makes the bar longer.
  if (pbProgress->value() == pbProgress->maximum()) {
    pbProgress->setMaximum(pbProgress->maximum() + 1);
  }
  pbProgress->setValue(pbProgress->value() + 1);
}

void TfImportProgress::setProgress(int done)
{
  pbProgress->setMaximum(std::max(pbProgress->maximum(), done));
  pbProgress->setValue(done);
}

void TfImportProgress::breathe()
{
  if (lastBreath_.elapsed() < breathMs) {
    return;
  }
  userPrompt().processMessages();
  lastBreath_.restart();
}

void TfImportProgress::showElapsed()
{
  lblTime->setText(QTime(0, 0).addMSecs(int(started_.elapsed() % 86'400'000)).toString(QStringLiteral("hh:mm:ss")));
}

void TfImportProgress::stopTimer()
{
  showElapsed();
  timer_->stop();
  btnCancel->setText(QStringLiteral("Затваряне"));
}

void TfImportProgress::stayForReading()
{
  setAttribute(Qt::WA_DeleteOnClose);
  hide();
  setWindowModality(Qt::NonModal);
  show();
}

void TfImportProgress::btnCancelClick()
{
  if (timer_->isActive()) {
    cancelRequested_ = true;
  } else {
    close();
  }
}

void TfImportProgress::reject()
{
  if (timer_->isActive()) {
    btnCancelClick();
  } else {
    QDialog::reject();
  }
}

void TfImportProgress::btnDetailsClick()
{
  detailsShown_ = !detailsShown_;
  reMessages->setVisible(detailsShown_);
  btnDetails->setText(detailsShown_ ? QStringLiteral("Детайли <<") : QStringLiteral("Детайли >>"));
  resize(detailsShown_ ? expandedSize : collapsedSize);
}

// --- What went wrong -------------------------------------------------------------------------------------------

void TfImportProgress::makeRoom()
{
  if (reMessages->document()->blockCount() >= mostLines) {
    reMessages->clear();
  }
}

void TfImportProgress::scrollToEnd()
{
  reMessages->moveCursor(QTextCursor::End);
  reMessages->ensureCursorVisible();
}

void TfImportProgress::AddMessage(const QString& text)
{
  makeRoom();
  reMessages->moveCursor(QTextCursor::End);
  if (!reMessages->document()->isEmpty()) {
    reMessages->insertPlainText(QStringLiteral("\n"));
  }
  reMessages->setCurrentCharFormat(QTextCharFormat());
  reMessages->insertPlainText(QString(text).remove(u'\r'));
  scrollToEnd();
}

PromptButton TfImportProgress::ErrMsgAnswer(int code, const QString& text)
{
  if (!reMessages->document()->isEmpty()) {
    AddMessage(QString());
  }
  AddMessage(_err_ErrorCode + QString::number(code));
  AddMessage(_err_CommonError + text);
  if (!detailsShown_) {
    btnDetailsClick();
  }
  if (yesToAll_) {
    return PromptButton::Yes;
  }
  const PromptButton answer =
      userPrompt().message(PromptKind::Error, text + QStringLiteral("\r\n") + _que_ContinueImport,
                           {PromptButton::Yes, PromptButton::No, PromptButton::YesToAll});
  yesToAll_ = answer == PromptButton::YesToAll;
  return answer;
}

void TfImportProgress::LogServerMsg(int code, const QString& text)
{
  AddMessage(QString());
  QTextCharFormat format;
  format.setFontWeight(QFont::Bold);
  format.setForeground(code < 0 ? QBrush(Qt::red) : code > 0 ? QBrush(Qt::darkGreen) : palette().text());
  reMessages->insertPlainText(QStringLiteral("\n"));
  reMessages->setCurrentCharFormat(format);
  const QString now = systemClock().now().toString(QStringLiteral("hh:mm:ss dd.MM.yy"));
  reMessages->insertPlainText(QString(_inf_ServerMessage).replace(QLatin1String("%s"), now));
  AddMessage(text.trimmed());
  if (code < 0) {
    if (!detailsShown_) {
      btnDetailsClick();
    }
    serverError_ = true;
    const TImportException logged(text, QStringLiteral("TfImportProgress.LogServerMsg"));
  }
}

}  // namespace kalvor
