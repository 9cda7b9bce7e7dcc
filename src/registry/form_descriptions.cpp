#include "registry/form_descriptions.h"

#include "forms/messages.h"
#include "platform/ports.h"
#include "session/dm.h"
#include "session/error_log.h"

namespace kalvor {

namespace {

struct FormDescriptionObject : QObject {
  explicit FormDescriptionObject(TFormData description) : data(std::move(description)) {}
  TFormData data;
};

QString descriptionText(const VariantArray& row, int column)
{
  return variantText(row.value(column));
}

}  // namespace

TFormData formDataFromRow(const VariantArray& row)
{
  TFormData data;
  data.Caption = descriptionText(row, 0);
  data.ClassName = descriptionText(row, 1);
  data.CaptionFields = descriptionText(row, 2);
  data.IntegerValue = row.value(4).toLongLong();
  data.TextValue = descriptionText(row, 5);
  data.BaseTable = descriptionText(row, 6);
  data.DsIndex = row.value(7).toInt();
  data.FormFilter = descriptionText(row, 8);
  data.OrderBy = descriptionText(row, 9);
  data.LineColors = descriptionText(row, 10);
  return data;
}

const TFormData* cachedFormData(const QString& formId, int dsIndex)
{
  if (!DM || !DM->FormList) {
    return nullptr;
  }
  for (const RegisteredForm& entry : *DM->FormList) {
    const auto* description = dynamic_cast<const FormDescriptionObject*>(entry.object.get());
    if (description && entry.text == formId && (dsIndex <= 0 || description->data.DsIndex == dsIndex)) {
      return &description->data;
    }
  }
  return nullptr;
}

const TFormData* GetFromDataObject(const QString& formId, int dsIndex)
{
  if (const TFormData* known = cachedFormData(formId, dsIndex)) {
    return known;
  }
  return raisingLogged(QStringLiteral("uKalvorUtils.GetFromDataObject"), [&]() -> const TFormData* {
    if (!DM) {
      return nullptr;
    }
    constexpr int rowsArgument = 2;
    VariantArray arguments{formId, dsIndex, Variant()};
    const int count = DM->ConBroker->Call(QStringLiteral("GetFormsDescription"), arguments).toInt();
    const VariantArray rows = arguments.value(rowsArgument).toList();
    if (count <= 0 || rows.isEmpty()) {
      showError(formId + u' ' + _err_NoRegisteredForm);
      return nullptr;
    }
    if (!DM->FormList) {
      DM->FormList = std::make_unique<RegisteredForms>();
    }
    auto description = std::make_unique<FormDescriptionObject>(formDataFromRow(rows.first().toList()));
    const TFormData* data = &description->data;
    DM->FormList->push_back({formId, std::move(description)});
    return data;
  });
}

QString GetFormCaption(const QString& formId)
{
  const TFormData* known = cachedFormData(formId, 0);
  return known ? known->Caption : QString();
}

}  // namespace kalvor
