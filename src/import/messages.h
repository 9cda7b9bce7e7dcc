// Texts of an import, by the names under which the system knows them.
#pragma once

#include <QString>

namespace kalvor {

// --- Choosing a filter and a file -------------------------------------------------------------------------
inline const QString _err_NotRegistredDP = QStringLiteral("Няма регистриран импортен филтър");
inline const QString _que_SelectImportData = QStringLiteral("Моля, изберете файл с данни за импортиране");
inline const QString importFilterBoxTitle = QStringLiteral("Избор на импортен филтър");
inline const QString importFilterNotAssigned = QStringLiteral("Import Filter Object not assigned!");

// --- Reading ----------------------------------------------------------------------------------------------
inline const QString _err_OpenFile = QStringLiteral("Грешка при отваряне на файл.");
inline const QString _err_FileNotOpened = QStringLiteral("Файлът не е отворен!");
inline const QString _err_EndOfFile = QStringLiteral("Достигнат е края на файла!");
inline const QString _err_FillImportLine = QStringLiteral("Грешка при извличане на данни.");
inline const QString _err_SelectorDescr = QStringLiteral("Грешно описание на полетата за избор");
inline const QString _err_SelectorMultiRec =
    QStringLiteral("Броят записи, отговарящи на посочения критерий, е повече от 1!");
inline const QString _err_RecNotFound =
    QStringLiteral("Не са намерени записи отговарящи на посочения критерий.");
inline const QString _err_ExcelConnection = QStringLiteral("Не може да се установи връзка с MS Excel!");
inline const QString _err_ConditionValue = QStringLiteral("Некоректна стойност за условие: ");  // the value
inline const QString _err_LineTooLong = QStringLiteral("Редът е твърде дълъг.");
inline const QString importRowNumber = QStringLiteral("Ред No: ");    // the number follows
inline const QString importConditions = QStringLiteral("Филтър: ");    // a lookup's conditions follow

// --- The run ----------------------------------------------------------------------------------------------
inline const QString _que_CancelImport = QStringLiteral("Прекъсване на обработката?");
inline const QString _inf_CancelImport = QStringLiteral("Прекъсване на импорта на данни");
inline const QString _err_SaveImportData = QStringLiteral("Грешка при запис на импортираните данни");
inline const QString _err_FinishDoc = QStringLiteral("Грешка при обработка на документ.");
inline const QString _inf_OperationSuccess = QStringLiteral("Операцията приключи успешно.");
inline const QString _inf_OperationError = QStringLiteral("Операцията приключи с грешки.");

// --- Progress window --------------------------------------------------------------------------------------
inline const QString _str_ImportData = QStringLiteral("Import на данни");
inline const QString _str_ExportData = QStringLiteral("Export на данни");
inline const QString _err_ErrorCode = QStringLiteral("Код на грешката: ");
inline const QString _err_CommonError = QStringLiteral("Грешка: ");
inline const QString _que_ContinueImport = QStringLiteral("Желаете ли да продължите с импорта на данни?");
inline const QString _inf_ServerMessage = QStringLiteral("[%s] Съобщение от сървъра: ");  // the time

}  // namespace kalvor
