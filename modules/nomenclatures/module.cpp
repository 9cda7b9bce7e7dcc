// The nomenclatures module: what it brings to the registry.
#include "edit_grids.h"
#include "item_groups.h"
#include "nomenclatures.h"
#include "registry/windows/form_registry.h"
#include "registry/windows/module_libraries.h"

KALVOR_MODULE

KALVOR_REGISTER_FORMS
{
  using namespace kalvor;
  RegisterFormClass(formClass<TfBrContragent>());
  RegisterFormClass(formClass<TfEdContragent>());
  RegisterFormClass(formClass<TfBrItem>());
  RegisterFormClass(formClass<TfEdItem>());
  RegisterFormClass(formClass<TfBrNomenclature>());
  RegisterFormClass(formClass<TfEdNomenclature>());
  RegisterFormClass(formClass<TfEdItemGroups>());
  RegisterFormClass(formClass<TfEdMeasures>());
  RegisterFormClass(formClass<TfEdCurrencies>());
  RegisterFormClass(formClass<TfEdPaymentTerms>());
  RegisterFormClass(formClass<TfEdItemPrices>());
}
