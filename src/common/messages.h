// Messages of the common routines that other parts name too.
#pragma once

#include <QString>

namespace kalvor {

inline const QString _err_UnableToSaveUserSettings =
    QStringLiteral("Грешка при запис на настойките на потребетеля !");

}  // namespace kalvor
