#include "import/windows/request_import.h"

#include "forms/windows/base_edit.h"
#include "registry/windows/form_registry.h"
#include "session/error_log.h"

namespace kalvor {

bool RequestImport(int formId, const TImportFilter& filter, const QString& fileName, const QString& keyField,
                   const QString& keyValue, QString& error, ShowOption options, bool unattended, TfBase* form)
{
  const TFormData* description = GetFromDataObject(QString::number(formId), 0);
  const FormClass* formClass = description ? GetRegisterFormClass(description->ClassName) : nullptr;
  if (!formClass || !formClass->create) {
    error = QStringLiteral("Start lc_FormData.FormClass  is empty");
    LogError(error, QStringLiteral("uKalvorUtils.RequestForm"));
    return false;
  }
  if (form && filter.option(QStringLiteral("ONLY_LINES")) == u"1") {
    return form->ImportData(formId, filter, fileName, keyField, keyValue, error, ShowOption(so_ImportData) | so_DoNotShow,
                            unattended);
  }
  const std::unique_ptr<QWidget> created(formClass->create(nullptr));
  auto* fresh = qobject_cast<TfBase*>(created.get());
  if (!fresh) {
    error = QStringLiteral("Start AForm is nil !!");
    LogError(error, QStringLiteral("uKalvorUtils.RequestImport"));
    return false;
  }
  const bool ran = fresh->ImportData(formId, filter, fileName, keyField, keyValue, error, options, unattended);
  // What the run kept for its user to save has no user here.
  if (fresh->hasChanges()) {
    fresh->runGuarded(QStringLiteral("TfBase.acSaveExecute"), [fresh] { fresh->acSaveExecute(); });
  }
  return ran;
}

}  // namespace kalvor
