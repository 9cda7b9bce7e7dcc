#include "common/processes.h"

#include <QFileInfo>

#include "platform/ports.h"
#include "platform/process.h"
#include "session/error_log.h"

namespace kalvor {
namespace {

const QString _err_CreateProcess = QStringLiteral("Грешка при създаване на процес");
const QString _err_WaitForProcess =
    QStringLiteral("Грешка при приключване на процес!\r\nКод на грешката: [%1]\r\nПриложение: [%2]\r\n"
                   "Параметри: [%3]\r\nДиректория: [%4]");

bool namesProgram(const QString& word, const QString& program)
{
  return word == program || QFileInfo(word).fileName() == QFileInfo(program).fileName() ||
         word == QFileInfo(program).completeBaseName();
}

ProcessCommand processCommandOf(const QString& application, const QString& commandLine, const QString& folder)
{
  QStringList words = commandLineWords(commandLine);
  QString program = application.trimmed();
  if (!words.isEmpty() && (program.isEmpty() || namesProgram(words.constFirst(), program))) {
    const QString first = words.takeFirst();
    program = program.isEmpty() ? first : program;
  }
  return {program, words, folder};
}

QString noSuchFileText() { return qt_error_string(ENOENT); }

}  // namespace

bool ExecuteProcess(const QString& application, const QString& commandLine, const QString& workingFolder, bool wait,
                    int /*showWindow*/)
{
  QString message;
  const bool done = loggingErrors(QStringLiteral("ExecuteNewProcess"), [&] {
    const ProcessCommand command = processCommandOf(application, commandLine, workingFolder);
    const ProcessOutcome outcome = wait ? runProcess(command) : startProcess(command);
    if (outcome.end == ProcessEnd::NotStarted)
      message = _err_CreateProcess;
    else if (outcome.end == ProcessEnd::WaitFailed)
      message = _err_WaitForProcess.arg(QString::number(outcome.waitCode), application, commandLine, workingFolder);
    if (!message.isEmpty())
      throw DataError(message);
  });
  if (!message.isEmpty())
    showError(message);
  return done;
}

void ShellExecute_AndWait(const QString& documentOrProgram)
{
  const ProcessCommand command = openingCommand(documentOrProgram);
  if (command.program.isEmpty())
    return showError(noSuchFileText());
  const ProcessOutcome outcome = runProcess(command, [] { userPrompt().processMessages(); });
  if (outcome.end == ProcessEnd::NotStarted)
    showError(outcome.error);
  else if (!command.arguments.isEmpty() && outcome.exitCode != 0)
    showError(QStringLiteral("Документът %1 не може да бъде отворен.").arg(documentOrProgram));
}

void ExecuteShellCommand(const QString& command, bool hidden)
{
  const ProcessCommand interpreter = interpreterCommand(command);
  const ProcessOutcome outcome =
      startProcess(interpreter, hidden ? ProcessStreams::Discarded : ProcessStreams::Inherited);
  if (outcome.end == ProcessEnd::NotStarted)
    throw DataError(QStringLiteral("Командният интерпретатор %1 не може да бъде стартиран: %2")
                        .arg(interpreter.program, outcome.error));
}

}  // namespace kalvor
