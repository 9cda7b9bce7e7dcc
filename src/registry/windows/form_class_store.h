// The list of registered form classes. On the heap and never freed with a module, since modules register into it
// while they load and leave while the program ends.
#pragma once

#include <list>

#include "registry/windows/form_registry.h"

namespace kalvor {

class FormClassStore {
 public:
  static FormClassStore& instance();

  void add(const FormClass& formClass);
  void clear() { classes_.clear(); }
  const FormClass* find(const QString& className) const;
  QStringList names() const;

  // Classes that came since the mark, for a module that turns out not to fit or is unloaded.
  QStringList namesSince(qsizetype mark) const { return names().mid(mark); }
  qsizetype mark() const { return qsizetype(classes_.size()); }
  void remove(const QStringList& classNames);

 private:
  std::list<FormClass> classes_;  // entries keep their place: callers hold pointers to them
};

}  // namespace kalvor
