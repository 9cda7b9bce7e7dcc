// Starting and ending the client.
#pragma once

#include <QApplication>
#include <QStringList>

#include "session/trusted_servers.h"
#include "widgets/theme.h"

namespace kalvor {

// What stands on the command line. Our own switches are taken out; the rest is the session's ("-u USER -p PASSWORD
// -c COMPANY -b OBJECT -a ACTION -f FOLDER", by which it logs in without a dialog).
struct ClientArguments {
  QStringList rest;
  QString server;  // --server HOST[:PORT]: kept as the user's choice
  Encryption encryption = Encryption::ByAddress;  // --tls, --plaintext: kept for that server
  QString fingerprint;  // --fingerprint AB:CD:...: the certificate that the server must have
  ThemeMode theme = ThemeMode::FollowSystem;  // --dark, --light
};
ClientArguments clientArguments(int argc, char** argv);

// Whether an action was given ("-a"), which runs without a person.
bool isUnattended(const ClientArguments& arguments);

// Connects, logs in, shows the main window, and runs until it is closed; the exit code.
int runClient(QApplication& application, const ClientArguments& arguments);

}  // namespace kalvor
