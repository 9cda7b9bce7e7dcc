// Options of single values in the registry, and file names that refer to them.
#pragma once

#include <QString>

#include "data/variant.h"
#include "layer_export.h"

namespace kalvor {

// As what a value is read. ShortInt and Byte are the 8-bit integers with and without a sign.
enum class RegistryType : quint8 { Boolean, Integer, SmallInt, ShortInt, Byte, Single, Double, Text, Other };

// Key paths have "\" between their names. currentUser chooses HKEY_CURRENT_USER, else HKEY_LOCAL_MACHINE. DataError
// when the registry cannot be written.

// Makes the key when it is missing. Booleans are written as the texts "1" and "0", integers of up to 32 bits, floats
// and texts as they are; a value of any other type (a null one, too) is not written.
KALVOR_RULES void SetRegistryOption(const QString& keyPath, const QString& valueName, const Variant& value,
                                    bool currentUser);

// Never raises for what is missing; a stored text that is no number counts as missing where a number is read.
//
// | type                    | value missing  | key missing |
// |-------------------------|----------------|-------------|
// | Boolean                 | false          | false       |
// | Integer, Single, Double | -1             | -1          |
// | SmallInt, ShortInt      | -1             | null        |
// | Byte                    | left as it was | null        |
// | Text                    | ""             | ""          |
// | Other                   | left as it was | null        |
//
// A Boolean is true only for the text "1"; Other is never read. Integers arrive as int, floats as double.
KALVOR_RULES void GetRegistryOption(const QString& keyPath, const QString& valueName, RegistryType type,
                                    Variant& value, bool currentUser);

KALVOR_RULES void DeleteRegistryOption(const QString& keyPath, const QString& valueName, bool currentUser);
// With the keys below it. DataError "Не може да изтрие ключа от регистрите." also for a key that is not there.
KALVOR_RULES void DeleteRegistryKey(const QString& keyPath, bool currentUser);

// Reads the value of a registry path text: the root's name, "\", the key path, "|", the value name. Empty when it is
// missing. Without "|" it is the key's own value.
KALVOR_RULES void CheckRegKey(const QString& registryPath, QString& value);

// The template with "<#WINSYSDIR#>" and "<#WINDIR#>" replaced by those folders (without a separator at their end) and
// one marker "<#" registry path text "#>" cut out, the registry's value in front of the rest. A marker without end
// stays as it is.
KALVOR_RULES QString IP_GetFileName(const QString& fileTemplate);

}  // namespace kalvor
