// The session context that the whole client reads.
#pragma once

#include <QDateTime>
#include <QString>

#include "layer_export.h"

namespace kalvor {

struct TLocalData {
  QString UserId;         // the user code (the log-in name)
  QString UserName;       // text of the user box at log-in
  QString EmployeeName;
  QString BGroupId;       // business group (object)
  QString BGroupName;
  QString CompanyId;
  QString CompanyName;
  QString ServerText;     // fifth argument of LogIn, as the server left it
  QString ServerName;
  QString unusedText;     // keeps the record's order
  QDateTime LoginTime;
  QString prn;
  double NewQty = 0;
  QString ConnectionString;
  quint8 CheckBulstat = 0;
  quint8 CheckTaxNo = 0;
  quint8 PrecisionAmount = 2;
  quint8 PrecisionPrice = 2;
  QString Currency_LCY;
  QString FPName;
  QString FPType;
  bool ChangeCalculation = false;
};

struct TAutoLoginData {
  QString User, BGroup, Company, Action, TransferFile;
};

KALVOR_RULES extern TLocalData LocalData;
KALVOR_RULES extern TAutoLoginData AutoLoginData;
KALVOR_RULES extern bool doExit;                     // the user cancelled the log-in dialog
KALVOR_RULES extern QString KalvorClientINIFileName; // host program's name with ".ini"

}  // namespace kalvor
