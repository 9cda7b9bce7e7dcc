#include "forms/form_rights.h"

#include "filters/filter_expression.h"
#include "filters/filter_macros.h"
#include "session/error_log.h"

namespace kalvor {
namespace {

struct RightColumnRow {
  const char16_t* column;
  bool TFormRights::*right;
};
constexpr RightColumnRow rightColumns[] = {
    {u"ReadRight", &TFormRights::ReadRight},     {u"EditRight", &TFormRights::EditRight},
    {u"InsertRight", &TFormRights::InsertRight}, {u"DeleteRight", &TFormRights::DeleteRight},
    {u"FinishRight", &TFormRights::FinishRight}, {u"PrintRight", &TFormRights::PrintRight},
    {u"ExportRight", &TFormRights::ExportRight}, {u"EditPropsRight", &TFormRights::EditPropsRight},
    {u"AnnulRight", &TFormRights::AnnulRight},
};

TFormRights rightsOfCurrentRow(const TClientDataSet& dataSet)
{
  TFormRights rights;
  for (const RightColumnRow& row : rightColumns)
    if (const TField* field = dataSet.FindField(QStringView(row.column)))
      rights.*row.right = field->AsInteger() == 1;
  if (const TField* field = dataSet.FindField(u"SecurityFilter"))
    rights.SecurityFilter = BuildFilterFromStr(field->AsString(), ConvertSimleParamFilterValues);
  return rights;
}

}  // namespace

TFormRights TFormRights::all(bool allowed)
{
  TFormRights rights;
  for (const RightColumnRow& row : rightColumns)
    rights.*row.right = allowed;
  return rights;
}

bool isAdministrator(const QString& userCode)
{
  return userCode.toUpper() == QLatin1String("SUPERVSR");
}

TFormRights loadFormRights(int formId, bool defaultRight, const QString& userCode, TClientDataSet* rightsDataSet)
{
  if (isAdministrator(userCode))
    return TFormRights::all(true);
  TFormRights rights = TFormRights::all(false);
  loggingErrors(QStringLiteral("SetForm_IDRights"), [&] {
    if (rightsDataSet && rightsDataSet->Active() && rightsDataSet->Locate(QStringLiteral("FormId"), formId))
      rights = rightsOfCurrentRow(*rightsDataSet);
    else
      rights = TFormRights::all(defaultRight);
  });
  return rights;
}

StateChangeRefusal checkStateChange(DataSetState state, const TFormRights& rights, bool mayEdit, bool mayInsert)
{
  switch (state) {
    case DataSetState::Edit:
      if (!rights.EditRight)
        return StateChangeRefusal::CancelAllChanges;
      return mayEdit ? StateChangeRefusal::None : StateChangeRefusal::CancelEdit;
    case DataSetState::SetKey:
      return rights.EditRight ? StateChangeRefusal::None : StateChangeRefusal::CancelAllChanges;
    case DataSetState::Insert:
      return rights.InsertRight && mayInsert ? StateChangeRefusal::None : StateChangeRefusal::CancelInsert;
    default: return StateChangeRefusal::None;
  }
}

}  // namespace kalvor
