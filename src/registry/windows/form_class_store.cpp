#include "registry/windows/form_class_store.h"

#include <algorithm>

namespace kalvor {

FormClassStore& FormClassStore::instance()
{
  static auto* const store = new FormClassStore;
  return *store;
}

void FormClassStore::add(const FormClass& formClass)
{
  if (!find(formClass.name)) {
    classes_.push_back(formClass);
  }
}

const FormClass* FormClassStore::find(const QString& className) const
{
  const auto found = std::find_if(classes_.begin(), classes_.end(),
                                  [&](const FormClass& entry) { return entry.name == className; });
  return found == classes_.end() ? nullptr : &*found;
}

QStringList FormClassStore::names() const
{
  QStringList names;
  for (const FormClass& entry : classes_) {
    names.append(entry.name);
  }
  return names;
}

void FormClassStore::remove(const QStringList& classNames)
{
  classes_.remove_if([&](const FormClass& entry) { return classNames.contains(entry.name); });
}

void RegisterFormClass(const FormClass& formClass)
{
  FormClassStore::instance().add(formClass);
}

void UnRegisterFormClass()
{
  FormClassStore::instance().clear();
}

const FormClass* GetRegisterFormClass(const QString& className)
{
  return FormClassStore::instance().find(className);
}

QStringList registeredFormClasses()
{
  return FormClassStore::instance().names();
}

}  // namespace kalvor
