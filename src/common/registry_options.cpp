#include "common/registry_options.h"

#include "common/files.h"
#include "data/data_error.h"
#include "platform/registry_store.h"

namespace kalvor {
namespace {

const QString _err_DeleteRegistryKey = QStringLiteral("Не може да изтрие ключа от регистрите.");

enum class StoredForm : quint8 { Nothing, Flag, WholeNumber, Real, Characters };

// What stands for a missing value or key.
enum class WhenMissing : quint8 { False, MinusOne, EmptyText, Null, AsItWas };

struct RegistryTypeRule {
  RegistryType type;
  StoredForm form;
  WhenMissing value;
  WhenMissing key;
};
constexpr RegistryTypeRule registryTypeRules[] = {
    {RegistryType::Boolean, StoredForm::Flag, WhenMissing::False, WhenMissing::False},
    {RegistryType::Integer, StoredForm::WholeNumber, WhenMissing::MinusOne, WhenMissing::MinusOne},
    {RegistryType::SmallInt, StoredForm::WholeNumber, WhenMissing::MinusOne, WhenMissing::Null},
    {RegistryType::ShortInt, StoredForm::WholeNumber, WhenMissing::MinusOne, WhenMissing::Null},
    {RegistryType::Byte, StoredForm::WholeNumber, WhenMissing::AsItWas, WhenMissing::Null},
    {RegistryType::Single, StoredForm::Real, WhenMissing::MinusOne, WhenMissing::MinusOne},
    {RegistryType::Double, StoredForm::Real, WhenMissing::MinusOne, WhenMissing::MinusOne},
    {RegistryType::Text, StoredForm::Characters, WhenMissing::EmptyText, WhenMissing::EmptyText},
    {RegistryType::Other, StoredForm::Nothing, WhenMissing::AsItWas, WhenMissing::Null},
};

struct VariantForm {
  int metaType;
  StoredForm form;
};
constexpr VariantForm variantForms[] = {
    {QMetaType::Bool, StoredForm::Flag},         {QMetaType::Int, StoredForm::WholeNumber},
    {QMetaType::Short, StoredForm::WholeNumber}, {QMetaType::SChar, StoredForm::WholeNumber},
    {QMetaType::Char, StoredForm::WholeNumber},  {QMetaType::UChar, StoredForm::WholeNumber},
    {QMetaType::Float, StoredForm::Real},        {QMetaType::Double, StoredForm::Real},
    {QMetaType::QString, StoredForm::Characters},
};

RegistryRoot rootOf(bool currentUser) { return currentUser ? RegistryRoot::CurrentUser : RegistryRoot::LocalMachine; }

const RegistryTypeRule& ruleOf(RegistryType type)
{
  for (const RegistryTypeRule& rule : registryTypeRules)
    if (rule.type == type)
      return rule;
  Q_UNREACHABLE();
}

// Invalid when the value is not written.
Variant storedValue(const Variant& value)
{
  for (const VariantForm& known : variantForms) {
    if (known.metaType != value.typeId())
      continue;
    switch (known.form) {
      case StoredForm::Flag: return value.toBool() ? QStringLiteral("1") : QStringLiteral("0");
      case StoredForm::WholeNumber: return value.toInt();
      case StoredForm::Real: return value.toDouble();
      case StoredForm::Characters: return value.toString();
      case StoredForm::Nothing: break;
    }
  }
  return {};
}

// Invalid when what is stored has not that form.
Variant readAs(StoredForm form, const Variant& stored)
{
  bool ok = stored.isValid();
  Variant result;
  if (!ok || form == StoredForm::Nothing)
    return {};
  if (form == StoredForm::Flag)
    return stored.toString() == QLatin1String("1");
  if (form == StoredForm::Characters)
    return stored.toString();
  if (form == StoredForm::WholeNumber)
    result = stored.toInt(&ok);
  else
    result = stored.toDouble(&ok);
  return ok ? result : Variant();
}

void setMissing(WhenMissing missing, StoredForm form, Variant& value)
{
  switch (missing) {
    case WhenMissing::False: value = false; break;
    case WhenMissing::MinusOne: value = form == StoredForm::Real ? Variant(-1.0) : Variant(-1); break;
    case WhenMissing::EmptyText: value = QString(QLatin1String("")); break;
    case WhenMissing::Null: value = Variant(); break;
    case WhenMissing::AsItWas: break;
  }
}

}  // namespace

void SetRegistryOption(const QString& keyPath, const QString& valueName, const Variant& value, bool currentUser)
{
  const Variant stored = storedValue(value);
  if (stored.isValid())
    registryStore().setValue(rootOf(currentUser), keyPath, valueName, stored);
  else
    registryStore().createKey(rootOf(currentUser), keyPath);
}

void GetRegistryOption(const QString& keyPath, const QString& valueName, RegistryType type, Variant& value,
                       bool currentUser)
{
  const RegistryTypeRule& rule = ruleOf(type);
  const RegistryStore& store = registryStore();
  if (!store.keyExists(rootOf(currentUser), keyPath))
    return setMissing(rule.key, rule.form, value);
  const Variant read = readAs(rule.form, store.value(rootOf(currentUser), keyPath, valueName));
  if (read.isValid())
    value = read;
  else
    setMissing(rule.value, rule.form, value);
}

void DeleteRegistryOption(const QString& keyPath, const QString& valueName, bool currentUser)
{
  registryStore().deleteValue(rootOf(currentUser), keyPath, valueName);
}

void DeleteRegistryKey(const QString& keyPath, bool currentUser)
{
  bool deleted = false;
  try {
    deleted = registryStore().deleteKey(rootOf(currentUser), keyPath);
  } catch (const DataError&) {
    // The caller gets the one message for every reason.
  }
  if (!deleted)
    throw DataError(_err_DeleteRegistryKey);
}

void CheckRegKey(const QString& registryPath, QString& value)
{
  const bool currentUser = registryPath.contains(QLatin1String("HKEY_CURRENT_USER"));
  const QString path = registryPath.mid(registryPath.indexOf(u'\\') + 1);
  Variant read;
  GetRegistryOption(path.section(u'|', 0, 0), path.section(u'|', 1), RegistryType::Text, read, currentUser);
  value = read.toString();
}

QString IP_GetFileName(const QString& fileTemplate)
{
  if (fileTemplate.trimmed().isEmpty())
    return fileTemplate;
  QString name = fileTemplate;
  name.replace(QLatin1String("<#WINSYSDIR#>"), IP_GetWinSysDir());
  name.replace(QLatin1String("<#WINDIR#>"), IP_GetWinDir());
  const qsizetype start = name.indexOf(QLatin1String("<#"));
  const qsizetype end = start < 0 ? -1 : name.indexOf(QLatin1String("#>"), start + 2);
  if (end < 0)
    return name;
  QString value;
  CheckRegKey(name.mid(start + 2, end - start - 2), value);
  return value + name.remove(start, end + 2 - start);
}

}  // namespace kalvor
