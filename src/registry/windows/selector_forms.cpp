// The lookup forms of selectors are forms of the registry.
#include "registry/selector_lookup.h"
#include "registry/windows/form_registry.h"

namespace kalvor {
namespace {

int requestLookupForm(int formId, ShowOption options, const FilterArray& callerFilter, const FilterArray& publicFilter,
                      TSelectionList& selection, const TDefaultValues& defaults, QObject* owner)
{
  return RequestForm(formId, options, callerFilter, publicFilter, {}, selection, defaults, owner, nullptr);
}

const bool lookupFormsInstalled = [] {
  selectorServices().RequestForm = requestLookupForm;
  return true;
}();

}  // namespace
}  // namespace kalvor
