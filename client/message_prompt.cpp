#include "message_prompt.h"

#include <QApplication>
#include <QFileDialog>
#include <QMessageBox>
#include <QPushButton>
#include <QRegularExpression>

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

// "Text Files (*.txt)|*.txt|All Files (*.*)|*.*" as the toolkit writes it. Whoever opens a spreadsheet may have either
// kind of it.
QString fileTypes(const QString& pattern, bool forSaving)
{
  const QStringList parts = pattern.split(u'|');
  QStringList types;
  for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
    QString masks = QString(parts[i + 1]).replace(u';', u' ');
    if (!forSaving && masks == u"*.xls") {
      masks += QStringLiteral(" *.xlsx");
    }
    types.append(parts[i].section(u'(', 0, 0).trimmed() + QStringLiteral(" (") + masks.replace(QStringLiteral("*.*"), QStringLiteral("*")) + u')');
  }
  return parts.size() < 2 ? pattern : types.join(QStringLiteral(";;"));
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
    if (buttons.contains(row.button)) {
      box.addButton(row.standard)->setText(QString::fromUtf16(row.text));
      // Enter takes the first of them as they were asked for.
      if (row.button == buttons.first())
        box.setDefaultButton(row.standard);
    }
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
  return chooseFileIn({}, title, pattern, forSaving);
}

QString MessagePrompt::chooseFileIn(const QString& folder, const QString& title, const QString& pattern, bool forSaving)
{
  QWidget* parent = QApplication::activeModalWidget() ? QApplication::activeModalWidget() : QApplication::activeWindow();
  QFileDialog dialog(parent, title, folder, fileTypes(pattern, forSaving));
  dialog.setAcceptMode(forSaving ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
  dialog.setFileMode(forSaving ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
  static const QRegularExpression extension(QStringLiteral("\\(\\*\\.(\\w+)"));
  dialog.setDefaultSuffix(extension.match(pattern).captured(1));
  return dialog.exec() == QDialog::Accepted ? dialog.selectedFiles().value(0) : QString();
}

}  // namespace kalvor
