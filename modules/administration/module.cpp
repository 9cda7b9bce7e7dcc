// The administration module: what it brings to the registry.
#include "administration.h"
#include "registry/windows/form_registry.h"
#include "registry/windows/module_libraries.h"

KALVOR_MODULE

KALVOR_REGISTER_FORMS
{
  using namespace kalvor;
  RegisterFormClass(formClass<TfBrUser>());
  RegisterFormClass(formClass<TfEdUser>());
  RegisterFormClass(formClass<TfEdUserRights>());
  RegisterFormClass(formClass<TfBrFormDescription>());
  RegisterFormClass(formClass<TfEdFormDescription>());
  RegisterFormClass(formClass<TfEdFieldDescriptions>());
  RegisterFormClass(formClass<TfEdSeries>());
}
