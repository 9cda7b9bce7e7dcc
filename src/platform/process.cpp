#include "platform/process.h"

#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QUrl>

namespace kalvor {
namespace {

constexpr int waitSliceMs = 50;

void prepareProcess(QProcess& process, const ProcessCommand& command)
{
  process.setProgram(command.program);
  process.setArguments(command.arguments);
  process.setWorkingDirectory(command.workingFolder);
}

bool isAddress(const QString& text)
{
  const QString scheme = QUrl(text).scheme();
  return scheme.size() > 1;  // one letter is a drive
}

}  // namespace

QStringList commandLineWords(const QString& commandLine) { return QProcess::splitCommand(commandLine); }

ProcessOutcome startProcess(const ProcessCommand& command, ProcessStreams streams)
{
  QProcess process;
  prepareProcess(process, command);
  if (streams == ProcessStreams::Discarded) {
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
  }
  if (process.startDetached())
    return {};
  return {ProcessEnd::NotStarted, 0, 0, process.errorString()};
}

ProcessOutcome runProcess(const ProcessCommand& command, const std::function<void()>& whileWaiting)
{
  QProcess process;
  prepareProcess(process, command);
  process.setProcessChannelMode(QProcess::ForwardedChannels);
  process.setInputChannelMode(QProcess::ForwardedInputChannel);
  process.start();
  if (!process.waitForStarted(-1))
    return {ProcessEnd::NotStarted, 0, 0, process.errorString()};
  while (process.state() != QProcess::NotRunning) {
    const bool ended = process.waitForFinished(whileWaiting ? waitSliceMs : -1);
    if (ended || process.state() == QProcess::NotRunning)
      break;
    if (!whileWaiting || process.error() != QProcess::Timedout)
      return {ProcessEnd::WaitFailed, int(process.error()), 0, process.errorString()};
    whileWaiting();
  }
  return {ProcessEnd::Finished, 0, process.exitCode(), {}};
}

ProcessCommand openingCommand(const QString& documentOrProgram)
{
  const QFileInfo file(documentOrProgram);
  if (file.isFile() && file.isExecutable())
    return {file.absoluteFilePath(), {}, {}};
  QString document = documentOrProgram;
  if (file.exists()) {
    document = file.absoluteFilePath();
  } else if (!isAddress(documentOrProgram)) {
    if (documentOrProgram.contains(u'/'))
      return {};
    return {QStandardPaths::findExecutable(documentOrProgram), {}, {}};
  }
#ifdef Q_OS_WIN
  return {QStringLiteral("explorer.exe"), {document}, {}};
#else
  return {QStringLiteral("xdg-open"), {document}, {}};
#endif
}

ProcessCommand interpreterCommand(const QString& command)
{
  if (const QString interpreter = qEnvironmentVariable("COMSPEC"); !interpreter.isEmpty())
    return {interpreter, {QStringLiteral("/C"), command}, {}};
  const QString shell = qEnvironmentVariable("SHELL");
  return {shell.isEmpty() ? QStringLiteral("/bin/sh") : shell, {QStringLiteral("-c"), command}, {}};
}

}  // namespace kalvor
