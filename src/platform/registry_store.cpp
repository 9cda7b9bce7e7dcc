#include "platform/registry_store.h"

#include <QSettings>
#include <QStandardPaths>

#include "data/data_error.h"
#include "platform/system.h"

namespace kalvor {
namespace {

#ifndef Q_OS_WIN
// A key is a group, marked so that it lasts without values; a value is an entry of the group. The sign before a
// value's name keeps it apart from the mark and lets the empty name be.
constexpr QChar registryValueSign = u'=';
const QString registryKeyMark = QStringLiteral("key");

// QSettings reads "/" and "\" as separators of groups.
QString escapedName(QString name)
{
  return name.replace(u'%', QLatin1String("%25")).replace(u'/', QLatin1String("%2F"))
      .replace(u'\\', QLatin1String("%5C"));
}

// The spelling that is there already, else the given one.
QString knownSpelling(const QStringList& known, const QString& name)
{
  for (const QString& spelling : known)
    if (spelling.compare(name, Qt::CaseInsensitive) == 0)
      return spelling;
  return name;
}

class StandardRegistry : public RegistryStore {
 public:
  bool keyExists(RegistryRoot root, const QString& key) const override
  {
    QSettings settings(fileOf(root), QSettings::IniFormat);
    return enterKey(settings, key);
  }

  QVariant value(RegistryRoot root, const QString& key, const QString& name) const override
  {
    QSettings settings(fileOf(root), QSettings::IniFormat);
    if (!enterKey(settings, key))
      return {};
    const QVariant stored = settings.value(entryOf(settings, name));
    // The file gives a text with commas back as a list.
    return stored.typeId() == QMetaType::QStringList ? stored.toStringList().join(u',') : stored;
  }

  void createKey(RegistryRoot root, const QString& key) override
  {
    changeKey(root, key, [](QSettings&) {});
  }

  void setValue(RegistryRoot root, const QString& key, const QString& name, const QVariant& value) override
  {
    changeKey(root, key, [&](QSettings& settings) { settings.setValue(entryOf(settings, name), value); });
  }

  void deleteValue(RegistryRoot root, const QString& key, const QString& name) override
  {
    if (keyExists(root, key))
      changeKey(root, key, [&](QSettings& settings) { settings.remove(entryOf(settings, name)); });
  }

  bool deleteKey(RegistryRoot root, const QString& key) override
  {
    if (namesOf(key).isEmpty() || !keyExists(root, key))
      return false;
    QSettings settings(fileOf(root), QSettings::IniFormat);
    enterKey(settings, key);
    settings.remove(QString());
    write(settings);
    return true;
  }

 private:
  static QStringList namesOf(const QString& key) { return key.split(u'\\', Qt::SkipEmptyParts); }

  static QString entryOf(const QSettings& settings, const QString& name)
  {
    return knownSpelling(settings.childKeys(), registryValueSign + escapedName(name));
  }

  // Goes to the group of the key; false when the key does not exist.
  static bool enterKey(QSettings& settings, const QString& key)
  {
    for (const QString& name : namesOf(key)) {
      const QString group = knownSpelling(settings.childGroups(), escapedName(name));
      if (!settings.childGroups().contains(group))
        return false;
      settings.beginGroup(group);
    }
    return true;
  }

  template <class Change>
  void changeKey(RegistryRoot root, const QString& key, Change change)
  {
    QSettings settings(fileOf(root), QSettings::IniFormat);
    for (const QString& name : namesOf(key)) {
      settings.beginGroup(knownSpelling(settings.childGroups(), escapedName(name)));
      settings.setValue(registryKeyMark, 1);
    }
    change(settings);
    write(settings);
  }

  static void write(QSettings& settings)
  {
    settings.sync();
    if (settings.status() != QSettings::NoError)
      throw DataError(QStringLiteral("Настройките във файла %1 не могат да бъдат записани.").arg(settings.fileName()));
  }

  static QString fileOf(RegistryRoot root)
  {
    if (root == RegistryRoot::LocalMachine)
      return systemSettingsFolder() + QStringLiteral("registry.ini");
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           QStringLiteral("/kalvor/registry.ini");
  }
};
#else
class StandardRegistry : public RegistryStore {
 public:
  bool keyExists(RegistryRoot root, const QString& key) const override
  {
    const QSettings settings(pathOf(root, key), QSettings::NativeFormat);
    return !settings.childKeys().isEmpty() || !settings.childGroups().isEmpty();
  }
  QVariant value(RegistryRoot root, const QString& key, const QString& name) const override
  {
    return QSettings(pathOf(root, key), QSettings::NativeFormat).value(entryOf(name));
  }
  void createKey(RegistryRoot, const QString&) override {}
  void setValue(RegistryRoot root, const QString& key, const QString& name, const QVariant& value) override
  {
    QSettings settings(pathOf(root, key), QSettings::NativeFormat);
    settings.setValue(entryOf(name), value);
    settings.sync();
    if (settings.status() != QSettings::NoError)
      throw DataError(QStringLiteral("Ключът %1 не може да бъде записан в регистрите.").arg(key));
  }
  void deleteValue(RegistryRoot root, const QString& key, const QString& name) override
  {
    QSettings(pathOf(root, key), QSettings::NativeFormat).remove(entryOf(name));
  }
  bool deleteKey(RegistryRoot root, const QString& key) override
  {
    if (!keyExists(root, key))
      return false;
    QSettings(pathOf(root, key), QSettings::NativeFormat).remove(QString());
    return true;
  }

 private:
  static QString entryOf(const QString& name) { return name.isEmpty() ? QStringLiteral("Default") : name; }
  static QString pathOf(RegistryRoot root, const QString& key)
  {
    const QString names = key.split(u'\\', Qt::SkipEmptyParts).join(u'\\');
    return (root == RegistryRoot::CurrentUser ? QStringLiteral("HKEY_CURRENT_USER\\")
                                              : QStringLiteral("HKEY_LOCAL_MACHINE\\")) + names;
  }
};
#endif

RegistryStore* installedRegistry = nullptr;

}  // namespace

RegistryStore::~RegistryStore() = default;

RegistryStore& registryStore()
{
  static StandardRegistry standard;
  return installedRegistry ? *installedRegistry : standard;
}

void installRegistryStore(RegistryStore* store) { installedRegistry = store; }

}  // namespace kalvor
