// Starting other programs. None of these puts a shell between; a text is never interpreted but where it says so.
#pragma once

#include <QStringList>
#include <functional>

#include "layer_export.h"

namespace kalvor {

struct ProcessCommand {
  QString program;
  QStringList arguments;
  QString workingFolder;  // empty = the current one
};

// The words of a command line: blanks separate, double quotes keep together.
KALVOR_PLATFORM QStringList commandLineWords(const QString& commandLine);

enum class ProcessEnd : quint8 { Finished, NotStarted, WaitFailed };
struct ProcessOutcome {
  ProcessEnd end = ProcessEnd::Finished;
  int waitCode = 0;  // of a wait that failed
  int exitCode = 0;  // of a program that was waited for
  QString error;     // the system's text for what failed
};

enum class ProcessStreams : quint8 { Inherited, Discarded };

// Starts the program and does not wait for it.
KALVOR_PLATFORM ProcessOutcome startProcess(const ProcessCommand& command,
                                            ProcessStreams streams = ProcessStreams::Inherited);
// Starts the program and waits for its end, however long; whileWaiting, when given, is called about every 50 ms.
KALVOR_PLATFORM ProcessOutcome runProcess(const ProcessCommand& command,
                                          const std::function<void()>& whileWaiting = {});

// What opens the document or program: the program itself, without arguments, or the desktop's opener with the
// document. An empty program when the text names nothing that is there.
KALVOR_PLATFORM ProcessCommand openingCommand(const QString& documentOrProgram);
// The command interpreter that the environment names (COMSPEC, else SHELL, else /bin/sh), told to run the command.
KALVOR_PLATFORM ProcessCommand interpreterCommand(const QString& command);

}  // namespace kalvor
