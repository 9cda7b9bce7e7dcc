#include "business/base_quantity.h"

#include "business/sale_records.h"

namespace kalvor {
namespace {

constexpr QLatin1StringView baseSuffix("_base");

TField* ratioOf(const TField* field) { return field->DataSet()->FindField(u"QtyPerUnitOfMeasure"); }

}  // namespace

void CalcBaseQuantity(TField* quantity, bool& guard, const QString& targetName)
{
  if (guard)
    return;
  const GuardScope scope(guard, false);
  raisingLogged(QStringLiteral("TfEdPurchase.ContragentFieldOnChange"), [&] {
    const QString name = targetName.isEmpty() ? quantity->FieldName() + baseSuffix : targetName;
    TField* target = quantity->DataSet()->FindField(name);
    const TField* ratio = ratioOf(quantity);
    if (target && ratio)
      target->SetAsFloat(static_cast<double>(Real(quantity->AsFloat()) * ratio->AsFloat()));
  });
}

void CalcQuantyFromBase(TField* base)
{
  TField* target = base->DataSet()->FindField(base->FieldName().chopped(qMin<qsizetype>(
      baseSuffix.size(), base->FieldName().size())));
  const TField* ratio = ratioOf(base);
  if (!target || !ratio)
    return;
  const Real units = ratio->AsFloat();
  target->SetAsFloat(units == 0 ? 0 : static_cast<double>(base->AsFloat() / units));
}

}  // namespace kalvor
