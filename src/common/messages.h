// Messages of the common routines that other parts name too.
#pragma once

#include <QString>

namespace kalvor {

inline const QString _err_UnableToSaveUserSettings =
    QStringLiteral("Грешка при запис на настойките на потребетеля !");

// --- Files of records and of grids ------------------------------------------------------------------------
inline const QString _inf_EnterFileName = QStringLiteral("Въведете име на файл");
inline const QString _inf_DataSaved = QStringLiteral("Данните са записани успешно!");
inline const QString _err_SaveData = QStringLiteral("Грешка при запис на данните!");
inline const QString _inf_GridSaved = QStringLiteral("Данните са записани успешно !");
inline const QString _err_GridExport = QStringLiteral("Грешка при експортиране на данни");

}  // namespace kalvor
