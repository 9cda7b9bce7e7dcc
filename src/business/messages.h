// Texts of the sales and payment rules.
#pragma once

#include <QString>

namespace kalvor {

inline const QString _err_VATConfiguration = QStringLiteral("Грешка при извличане на настройки за ДДС!");
inline const QString _queReCalculateDiscount =
    QStringLiteral("При промяна на тип документ е възможно несъответствие на цени и отстъпки !\n\r"
                   "Жалаете ли повторно калкулиране на отстъпки за ред ?");
inline const QString _err_NotCashier = QStringLiteral("Няматe права за работа с каса!");
inline const QString _err_ContragentData = QStringLiteral("Грешка при извличане данни за контрагент !");
inline const QString _inf_AboveCreditLimit = QStringLiteral("Контрагента е с превишен кредитен лимит !");
inline const QString _inf_AboveExpireDebt = QStringLiteral("Контрагента е с просрочено задължение !");
inline const QString _inf_SaleBelowUnitCost =
    QStringLiteral("Опитвате се да продадете артикул на цена под неговата себестойност : ");
inline const QString _err_BelowUnitPrice = QStringLiteral("Грешка при проверка на себестойност на артикул ! ");
inline const QString _que_Continue = QStringLiteral("Жалаете да продъжите ?");
inline const QString _err_CashLessThenTotal =
    QStringLiteral("Въведеното количество е по-малко от количеството по фактура!");

}  // namespace kalvor
