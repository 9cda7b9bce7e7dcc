// Starting other programs and opening documents for the user.
#pragma once

#include <QString>

#include "layer_export.h"

namespace kalvor {

// Starts the application with the words of the command line (double quotes keep together) in the working folder;
// without an application the first word is the program. A first word that is the application's own name, as some
// systems want it, is no argument. wait = until it ends, however it ends. False: it could not be started or waited
// for; that is logged and shown. showWindow is the state of its window where the system gives windows one; here it
// is not.
KALVOR_RULES bool ExecuteProcess(const QString& application, const QString& commandLine, const QString& workingFolder,
                                 bool wait, int showWindow);

// Opens the document by the desktop's opener, or starts the program, and waits for its end while the interface goes
// on. The user is told why it could not be opened.
KALVOR_RULES void ShellExecute_AndWait(const QString& documentOrProgram);

// Gives the command to the command interpreter and does not wait. hidden = without any output. DataError when the
// interpreter cannot be started.
KALVOR_RULES void ExecuteShellCommand(const QString& command, bool hidden);

}  // namespace kalvor
