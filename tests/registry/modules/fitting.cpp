#include "registry/windows/form_registry.h"
#include "registry/windows/module_libraries.h"

KALVOR_MODULE

namespace {
QWidget* nothing(QWidget*)
{
  return nullptr;
}
const struct Registration {
  Registration() { kalvor::RegisterFormClass({QStringLiteral("TfStatic"), nothing}); }
} registration;
}  // namespace

KALVOR_REGISTER_FORMS
{
  kalvor::RegisterFormClass({QStringLiteral("TfEntry"), nothing});
}
