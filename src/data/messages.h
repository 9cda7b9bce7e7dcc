// What datasets tell the user.
#pragma once

#include <QString>

namespace kalvor {

inline constexpr char16_t errDataSetClosed[] = u"Наборът от данни не е отворен!";
inline constexpr char16_t errDataSetOpen[] = u"Наборът от данни е отворен!";
inline constexpr char16_t errDataSetEmpty[] = u"Няма запис за тази операция!";
inline constexpr char16_t errDataSetReadOnly[] = u"Данните са само за четене!";
inline constexpr char16_t errNotEditing[] = u"Данните не са в режим на редакция!";
inline constexpr char16_t errPendingChanges[] = u"Има незаписани промени!";
inline constexpr char16_t errNoFields[] = u"Наборът от данни няма полета!";
inline constexpr char16_t errNoProvider[] = u"Наборът от данни няма източник!";
inline constexpr char16_t errNoIndex[] = u"Не е зададена подредба по полета!";
inline constexpr char16_t errFieldNotFound[] = u"Полето '%1' не е намерено!";
inline constexpr char16_t errFieldExists[] = u"Вече има поле '%1'!";
inline constexpr char16_t errFieldReadOnly[] = u"Полето '%1' е само за четене!";
inline constexpr char16_t errInvalidValue[] = u"'%2' е невалидна стойност за поле '%1'!";
inline constexpr char16_t errTextTooLong[] = u"Стойността на поле '%1' е %2 знака, а са позволени най-много %3!";
inline constexpr char16_t errFieldWithoutColumn[] = u"По полето '%1' не може да се подрежда, филтрира и сумира!";
inline constexpr char16_t errKeyValues[] = u"Броят на стойностите не отговаря на броя на полетата!";
inline constexpr char16_t errFileNotWritten[] = u"Файлът '%1' не може да бъде записан: %2";
inline constexpr char16_t errFileNotRead[] = u"Файлът '%1' не може да бъде прочетен: %2";
inline constexpr char16_t errPacketFields[] = u"Получените данни нямат полетата на набора!";

inline QString dataMessage(const char16_t* text)
{
  return QString::fromUtf16(text);
}

}  // namespace kalvor
