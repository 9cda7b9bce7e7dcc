#include "registry/windows/module_libraries.h"

#include <QDir>
#include <QFileInfo>
#include <algorithm>

#include "registry/windows/form_class_store.h"
#include "session/error_log.h"

#ifdef Q_OS_LINUX
#include <link.h>
#endif

namespace kalvor {

struct ModuleLibraries::Module {
  QLibrary library;
  QStringList formClasses;
};

namespace {

constexpr qsizetype moduleExtensionLength = 4;

// What keeps a loaded module out; empty when it fits.
QString moduleMismatch(QLibrary& library)
{
  using VersionFunction = const char* (*)();
  const auto version = reinterpret_cast<VersionFunction>(library.resolve("kalvorModuleVersion"));
  if (!version) {
    return QStringLiteral("kalvorModuleVersion is missing");
  }
  const QByteArray builtFor = version();
  return builtFor == KALVOR_LIBRARY_VERSION
             ? QString()
             : QStringLiteral("built for version %1, this is %2")
                   .arg(QString::fromUtf8(builtFor), QStringLiteral(KALVOR_LIBRARY_VERSION));
}

void logSkippedModule(const QString& path, const QString& reason)
{
  LogError(path + QStringLiteral(": ") + reason, QStringLiteral("BuildDynamicFormMenu"));
}

}  // namespace

QStringList loadedLibraryPaths()
{
  QStringList paths;
#ifdef Q_OS_LINUX
  const auto collect = [](dl_phdr_info* info, size_t, void* data) {
    if (info->dlpi_name && *info->dlpi_name) {
      static_cast<QStringList*>(data)->append(QFileInfo(QFile::decodeName(info->dlpi_name)).absoluteFilePath());
    }
    return 0;
  };
  dl_iterate_phdr(collect, &paths);
#endif
  std::sort(paths.begin(), paths.end(),
            [](const QString& a, const QString& b) { return a.compare(b, Qt::CaseInsensitive) < 0; });
  return paths;
}

ModuleLibraries::ModuleLibraries() = default;
ModuleLibraries::~ModuleLibraries() = default;

void ModuleLibraries::load(const QString& folder, const QString& allowedNames)
{
  const QStringList already = loadedLibraryPaths();
  const QDir directory(folder);
  for (const QString& file : directory.entryList({QStringLiteral("*.bpl")}, QDir::Files, QDir::Unsorted)) {
    const QString path = directory.absoluteFilePath(file);
    if (!already.contains(path, Qt::CaseInsensitive) && allowedNames.contains(file.chopped(moduleExtensionLength))) {
      loadModule(path);
    }
  }
}

void ModuleLibraries::loadModule(const QString& path)
{
  FormClassStore& store = FormClassStore::instance();
  const qsizetype mark = store.mark();
  auto module = std::make_unique<Module>();
  module->library.setFileName(path);
  module->library.setLoadHints(QLibrary::ResolveAllSymbolsHint);
  if (!module->library.load()) {
    store.remove(store.namesSince(mark));
    logSkippedModule(path, module->library.errorString());
    return;
  }
  // Its static registrations have run by now: they go again when it does not fit.
  if (const QString mismatch = moduleMismatch(module->library); !mismatch.isEmpty()) {
    store.remove(store.namesSince(mark));
    module->library.unload();
    logSkippedModule(path, mismatch);
    return;
  }
  using RegisterFunction = void (*)();
  if (const auto entry = reinterpret_cast<RegisterFunction>(module->library.resolve("registerForms"))) {
    entry();
  }
  module->formClasses = store.namesSince(mark);
  modules_.push_back(std::move(module));
}

void ModuleLibraries::unload()
{
  while (!modules_.empty()) {
    FormClassStore::instance().remove(modules_.back()->formClasses);
    modules_.back()->library.unload();
    modules_.pop_back();
  }
}

QStringList ModuleLibraries::loaded() const
{
  QStringList paths;
  for (const auto& module : modules_) {
    paths.append(module->library.fileName());
  }
  return paths;
}

}  // namespace kalvor
