// Named values in a tree of keys, one tree for the user and one for the machine: the system's registry where there
// is one, settings files elsewhere.
#pragma once

#include <QVariant>

#include "layer_export.h"

namespace kalvor {

enum class RegistryRoot : quint8 { CurrentUser, LocalMachine };

// Keys are named by paths with "\" between their names; a "\" at either end means nothing. Names of keys and values
// match without regard to case. The empty value name is the key's own value.
class KALVOR_PLATFORM RegistryStore {
 public:
  virtual ~RegistryStore();

  virtual bool keyExists(RegistryRoot root, const QString& key) const = 0;
  // Invalid when key or value is missing. What was written, or its text.
  virtual QVariant value(RegistryRoot root, const QString& key, const QString& name) const = 0;

  // The writers raise DataError when the store cannot be written.
  virtual void createKey(RegistryRoot root, const QString& key) = 0;
  // Text, 32-bit integer or double; makes the key with its parents.
  virtual void setValue(RegistryRoot root, const QString& key, const QString& name, const QVariant& value) = 0;
  virtual void deleteValue(RegistryRoot root, const QString& key, const QString& name) = 0;  // a missing one: nothing
  // With all keys below it. False: there is no such key, or the path is empty.
  virtual bool deleteKey(RegistryRoot root, const QString& key) = 0;
};

// The store in use. At first the system's registry, or the files kalvor/registry.ini in the user's configuration
// folder and registry.ini in the system settings folder, looked up at every use. Any thread may use it. Installing
// null puts that back; not owned.
KALVOR_PLATFORM RegistryStore& registryStore();
KALVOR_PLATFORM void installRegistryStore(RegistryStore* store);

}  // namespace kalvor
