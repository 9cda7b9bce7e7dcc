#include "message_prompt.h"

#include <QApplication>
#include <QFileDialog>
#include <QMessageBox>
#include <QPushButton>

namespace kalvor {

namespace {

struct KindRow {
  PromptKind kind;
  QMessageBox::Icon icon;
  const char16_t* title;
};
constexpr KindRow kindRows[] = {
    {PromptKind::Plain, QMessageBox::NoIcon, u"Калвор"},
    {PromptKind::Information, QMessageBox::Information, u"Съобщение"},
    {PromptKind::Confirmation, QMessageBox::Question, u"Потвърждение"},
    {PromptKind::Warning, QMessageBox::Warning, u"Внимание"},
    {PromptKind::Error, QMessageBox::Critical, u"Грешка"},
};

struct ButtonRow {
  PromptButton button;
  QMessageBox::StandardButton standard;
  const char16_t* text;
};
constexpr ButtonRow buttonRows[] = {
    {PromptButton::Ok, QMessageBox::Ok, u"Ok"},
    {PromptButton::Yes, QMessageBox::Yes, u"&Да"},
    {PromptButton::No, QMessageBox::No, u"&Не"},
    {PromptButton::YesToAll, QMessageBox::YesToAll, u"Да за &всички"},
    {PromptButton::Cancel, QMessageBox::Cancel, u"&Отказ"},
};

// The server's and the rules' texts break lines as CR LF, LF CR or LF; a box wants LF alone.
QString plainLineBreaks(QString text)
{
  return text.replace(QLatin1String("\r\n"), QLatin1String("\n")).replace(QLatin1String("\n\r"), QLatin1String("\n"))
      .remove(u'\r');
}

}  // namespace

PromptButton MessagePrompt::message(PromptKind kind, const QString& text, const QList<PromptButton>& buttons)
{
  QMessageBox box(QApplication::activeModalWidget() ? QApplication::activeModalWidget()
                                                    : QApplication::activeWindow());
  for (const KindRow& row : kindRows)
    if (row.kind == kind) {
      box.setIcon(row.icon);
      box.setWindowTitle(QString::fromUtf16(row.title));
    }
  box.setTextFormat(Qt::PlainText);
  box.setText(plainLineBreaks(text));
  for (const ButtonRow& row : buttonRows)
    if (buttons.contains(row.button))
      box.addButton(row.standard)->setText(QString::fromUtf16(row.text));
  const int overrides = QApplication::overrideCursor() ? 1 : 0;
  if (overrides)
    QApplication::setOverrideCursor(Qt::ArrowCursor);
  const int answer = box.exec();
  if (overrides)
    QApplication::restoreOverrideCursor();
  for (const ButtonRow& row : buttonRows)
    if (row.standard == answer && buttons.contains(row.button))
      return row.button;
  return buttons.contains(PromptButton::Cancel) ? PromptButton::Cancel
         : buttons.contains(PromptButton::No)   ? PromptButton::No
                                                : PromptButton::Ok;
}

void MessagePrompt::setWaitCursor(bool on)
{
  if (on)
    QApplication::setOverrideCursor(Qt::WaitCursor);
  else
    QApplication::restoreOverrideCursor();
}

void MessagePrompt::processMessages()
{
  QApplication::processEvents();
}

QString MessagePrompt::chooseFile(const QString& title, const QString& pattern, bool forSaving)
{
  QWidget* parent = QApplication::activeWindow();
  return forSaving ? QFileDialog::getSaveFileName(parent, title, {}, pattern)
                   : QFileDialog::getOpenFileName(parent, title, {}, pattern);
}

}  // namespace kalvor
