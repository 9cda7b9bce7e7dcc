#include "registry/windows/form_registry.h"

#include <QCoreApplication>
#include <QPointer>

#include "forms/windows/base_form.h"
#include "platform/ports.h"
#include "platform/system.h"
#include "registry/windows/module_libraries.h"
#include "session/error_log.h"

namespace kalvor {

namespace {

ModuleLibraries& dynamicModules()
{
  static auto* const modules = new ModuleLibraries;
  return *modules;
}

int showDialogForm(IBaseCommonIntf& dialog, int formId, ShowOption options, const TDialogParams* params)
{
  dialog.SetFormRights(formId, false);
  return params ? dialog.DoShowForm(formId, options, *params) : dialog.DoShowForm(formId, options);
}

}  // namespace

int RequestForm(int formId, ShowOption options, const FilterArray& callerFilter, const FilterArray& publicFilter,
                const ParameterArray& parameter, TSelectionList& selection, const TDefaultValues& defaults,
                QObject* owner, QObject* caller, const TDialogParams* dialogParams)
{
  QPointer<QWidget> form;
  try {
    const TFormData* description = GetFromDataObject(QString::number(formId), 0);
    const FormClass* formClass = description ? GetRegisterFormClass(description->ClassName) : nullptr;
    if (!formClass || !formClass->create) {
      return 0;
    }
    form = formClass->create(nullptr);
    if (auto* base = dynamic_cast<IBaseIntf*>(form.data())) {
      base->SetFormRights(formId, false);
      base->SetFormOwner(owner ? owner : QCoreApplication::instance());
      if (caller) {
        base->SetFormCaller(caller);
      }
      if (auto* ownerForm = qobject_cast<TfBase*>(owner)) {
        ownerForm->adoptOpenedForm(form);
      }
      return base->DoShowForm(formId, options, callerFilter, publicFilter, selection, defaults, parameter);
    }
    int result = 0;
    if (auto* dialog = dynamic_cast<IBaseCommonIntf*>(form.data())) {
      result = showDialogForm(*dialog, formId, options, dialogParams);
    }
    if (form && form->isHidden()) {
      delete form.data();
    }
    return result;
  } catch (const SilentAbort&) {
    // The user was told where it happened.
  } catch (const DataError& error) {
    showError(error.message());
  } catch (const std::exception& error) {
    LogError(errorText(error), QStringLiteral("RequestForm"));
    showError(errorText(error));
  }
  delete form.data();
  return 0;
}

int RequestForm(int formId, ShowOption options, const FilterArray& callerFilter, QObject* owner)
{
  TSelectionList selection;
  return RequestForm(formId, options, callerFilter, {}, {}, selection, {}, owner, nullptr);
}

void BuildDynamicFormMenu(QMenuBar*, const QString& allowedNames)
{
  dynamicModules().load(hostProgramFolder(), allowedNames);
}

void UnloadDynamicPackige()
{
  dynamicModules().unload();
}

}  // namespace kalvor
