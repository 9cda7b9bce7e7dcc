#include "registry/form_interfaces.h"

namespace kalvor {

ISelectorOwnerIntf::~ISelectorOwnerIntf() = default;
IBaseIntf::~IBaseIntf() = default;
IBaseCommonIntf::~IBaseCommonIntf() = default;
ITableFilterIntf::~ITableFilterIntf() = default;
IFieldFilterIntf::~IFieldFilterIntf() = default;
IMainFormIntf::~IMainFormIntf() = default;

TSelectorDependantFieldsArray IBaseIntf::GetSelectorDependantFields() const
{
  return {};
}

void IBaseIntf::SetDependantSelectorField(TField*, TSelector*) {}

namespace {
IMainFormIntf* installedMainForm = nullptr;
}

IMainFormIntf* mainForm()
{
  return installedMainForm;
}

void installMainForm(IMainFormIntf* form)
{
  installedMainForm = form;
}

}  // namespace kalvor
