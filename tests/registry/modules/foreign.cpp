#include "registry/windows/form_registry.h"

extern "C" Q_DECL_EXPORT const char* kalvorModuleVersion()
{
  return "0.0.0-other";
}

namespace {
const struct Registration {
  Registration() { kalvor::RegisterFormClass({QStringLiteral("TfForeign"), {}}); }
} registration;
}  // namespace
