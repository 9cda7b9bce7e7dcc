// The sales module: what it brings to the registry.
#include "registry/windows/form_registry.h"
#include "registry/windows/module_libraries.h"
#include "sale_invoices.h"

KALVOR_MODULE

KALVOR_REGISTER_FORMS
{
  using namespace kalvor;
  RegisterFormClass(formClass<TfBrSaleInvoice>());
  RegisterFormClass(formClass<TfEdSaleInvoice>());
  RegisterFormClass(formClass<TfBrSaleLine>());
}
