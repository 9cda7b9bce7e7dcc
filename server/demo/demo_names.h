// Names, places and identification numbers as they are met in Bulgaria; all people and firms are made up.
#pragma once

#include <QStringList>

#include "layer_export.h"
#include "server/demo/demo_random.h"

namespace kalvor::server {

struct DemoPlace {
  const char16_t* town;
  const char16_t* postCode;
  const char16_t* phoneCode;
};

KALVOR_SERVER QString demoPersonName(DemoRandom& random);
KALVOR_SERVER QString demoFirmName(DemoRandom& random);
KALVOR_SERVER const DemoPlace& demoPlace(DemoRandom& random);
KALVOR_SERVER QString demoAddress(DemoRandom& random);

// A unified identification code of nine digits with its check digit.
KALVOR_SERVER QString demoBulstat(DemoRandom& random);

// The check digit of the first eight digits.
KALVOR_SERVER int bulstatCheckDigit(QStringView digits);

// The text in Latin letters, lower case, as in an e-mail address; what has no letter is left out.
KALVOR_SERVER QString demoLatin(const QString& text);

}  // namespace kalvor::server
