// Form modules: libraries "*.bpl" next to the program, loaded at start and kept loaded.
#pragma once

#include <QLibrary>
#include <QStringList>
#include <memory>
#include <vector>

#include "layer_export.h"

// A module says which library version it was built for (KALVOR_MODULE, once in a module) and may have an entry that
// registers its classes (KALVOR_REGISTER_FORMS { ... }); static FormClassRegistration objects do as well.
#define KALVOR_LIBRARY_VERSION "0.1.0"
#define KALVOR_MODULE extern "C" Q_DECL_EXPORT const char* kalvorModuleVersion() { return KALVOR_LIBRARY_VERSION; }
#define KALVOR_REGISTER_FORMS extern "C" Q_DECL_EXPORT void registerForms()

namespace kalvor {

class BASE_PACKAGE ModuleLibraries {
 public:
  ModuleLibraries();
  ~ModuleLibraries();  // leaves them loaded

  // Loads every "*.bpl" of the folder that is not loaded yet and whose name without the extension occurs in
  // allowedNames. One that does not load, or was built for another version, is skipped with a line in the error log.
  void load(const QString& folder, const QString& allowedNames);
  void unload();               // in reverse order, with their form classes
  QStringList loaded() const;  // full paths, in load order

 private:
  struct Module;
  void loadModule(const QString& path);
  std::vector<std::unique_ptr<Module>> modules_;
};

// Full paths of the libraries in this process, sorted without regard to case.
BASE_PACKAGE QStringList loadedLibraryPaths();

}  // namespace kalvor
