// Starting and ending the client.
#pragma once

#include <QApplication>
#include <QStringList>

#include "widgets/theme.h"

namespace kalvor {

// What stands on the command line. Our own switches are taken out; the rest is the session's ("-u USER -p PASSWORD
// -c COMPANY -b OBJECT -a ACTION -f FOLDER", by which it logs in without a dialog).
struct ClientArguments {
  QStringList rest;
  QString server;  // --server HOST[:PORT]: kept as the user's choice
  ThemeMode theme = ThemeMode::FollowSystem;  // --dark, --light
};
ClientArguments clientArguments(int argc, char** argv);

// Connects, logs in, shows the main window, and runs until it is closed; the exit code.
int runClient(QApplication& application, const ClientArguments& arguments);

}  // namespace kalvor
