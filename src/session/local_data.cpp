#include "session/local_data.h"

namespace kalvor {

TLocalData LocalData;
TAutoLoginData AutoLoginData;
bool doExit = false;
QString KalvorClientINIFileName;

}  // namespace kalvor
