// Texts that users see, by the names under which the system knows them.
#pragma once

#include <QString>

#include "layer_export.h"

namespace kalvor {

// --- Log-in and session -----------------------------------------------------------------------------------
inline const QString _err_NoCorectLoginData =
    QStringLiteral("Грешка при извличане на данни!\r\nМоля, проверете коректността на въведените данни!");

inline const QString _inf_ServerFound = QStringLiteral("Установена е връзка със сървъра");
inline const QString _inf_ServerNotFound = QStringLiteral("Не е установена връзка със сървъра");
inline const QString _err_PassDif = QStringLiteral("Невалидна стойност за поле \"Нова парола (проверка)\".");
inline const QString _err_ChangePass = QStringLiteral("Грешка при опит за промяна на парола!");

// --- Filters ----------------------------------------------------------------------------------------------
inline const QString _err_NotValidDate = QStringLiteral("Грешно въведена дата ");
inline const QString _err_NotIntegerValue = QStringLiteral("Въведената стойност трябва да е целочислена");
inline const QString _err_NotFloatValue = QStringLiteral("Въведената стойност трябва да е дробно число");

inline const QString _err_TblFilterOperator = QStringLiteral("Не валиден оператор");
inline const QString _err_TblFilterUnion = QStringLiteral("Не валиден съюз");
inline const QString _err_TblFilterMissingValueForExpression =
    QStringLiteral("Няма въведена стойност за логическото условие");
inline const QString _err_TblFilterOption = QStringLiteral("Няма такава стойност: %s");  // what was typed
inline const QString _inf_NoMatchesFound = QStringLiteral("Търсената стойност [%s] не е намерена!");
inline const QString _inf_SearchByField = QStringLiteral("Tърсене в");  // " [" caption "]"

// --- Rights; %s is the form identifier --------------------------------------------------------------------
inline const QString _err_ReadNotAllowed = QStringLiteral("Забранен е прегледа на данни за форма с код : %s");
inline const QString _err_EditNotAllowed = QStringLiteral("Забранена е редакцията на записа за форма с код : %s");
inline const QString _err_InsertNotAllowed = QStringLiteral("Забранено е добавянето на записи за форма с код : %s");
inline const QString _err_DeleteNotAllowed = QStringLiteral("Забранено е изтриването на записи за форма с код : %s");
inline const QString _err_ExportNotAllowed = QStringLiteral("Забранено е Export на данни за форма с код : %s");
inline const QString _inf_CallSystemAdministrator =
    QStringLiteral("Моля, обърнете се към системния администратор за отстраняване на проблема!");

// --- Base form --------------------------------------------------------------------------------------------
inline const QString _err_NoSQL_Found = QStringLiteral("В базата не е намерена SQL заявка за тази форма!");
inline const QString _inf_unAppliedRecords = QStringLiteral("Имате не записани записи !");
inline const QString _que_unSaveRecords =
    QStringLiteral("При опресняване на данните ще бъдат загубени незаписаните промени!\r\n"
                   "Желаете ли да се откажете от направените промени?");
inline const QString _err_selectField = QStringLiteral("Изберете поле");
inline const QString _err_NotFilterableField = QStringLiteral("Полето не е позволено за Филтриране !");

// --- Records ----------------------------------------------------------------------------------------------
inline const QString _err_SaveBeforeDelete =
    QStringLiteral("Моля запишете или откажете промените преди изтриването на записа!");
inline const QString _err_InvalidFieldValue = QStringLiteral("Некоректна стойност за поле: %s.");  // its caption
inline const QString _err_UnablaibleToGetAbsNoSerie =
    QStringLiteral("Грешка при извличане на серия за абсолютен номер!");
inline const QString _err_OperationAborted = QStringLiteral(" Операцията е прекратена !");
inline const QString _err_GetSerieData = QStringLiteral("Грешка при извличане на данни за генериране на номер.");
inline const QString _que_SaveDocumentChanges = QStringLiteral("Записът е в режим на редакция. Желаете ли запис?");
inline const QString _que_ConfirmDocumentDelete =
    QStringLiteral("Внимание!\n\rИзбраната от Вас операция ще изтрие документа!\n\r"
                   "Сигурни ли сте, че желаете да продължите?");
inline const QString _err_TblFilterField = QStringLiteral("Не валидно поле !");

// --- Registry ---------------------------------------------------------------------------------------------
inline const QString _err_NoRegisteredForm = QStringLiteral("Формата не е регистрирана в базата данни");

// A message with its %s filled in.
KALVOR_RULES QString withText(const QString& message, const QString& text);
// A refusal by rights: the message with the form's identifier, then whom to turn to.
KALVOR_RULES QString rightsRefusal(const QString& message, int formId);

}  // namespace kalvor
