#include "server/pricing/line_units.h"

#include <QHash>
#include <algorithm>

#include "server/pricing/exact_amount.h"

namespace kalvor::server {

namespace {

qint64 withoutSign(qint64 amount) { return amount < 0 ? -amount : amount; }

// amount * times / over, half away from zero; 0 when it is beyond counting.
qint64 scaledProduct(qint64 amount, qint64 times, qint64 over)
{
  return ExactAmount(amount).multiply(times, over).roundedMillionths(6).value_or(0);
}

QHash<QString, qint64> measuresOf(Connection& db, const QString& companyId, const QString& itemId)
{
  QHash<QString, qint64> measures;
  auto rows = db.prepare(QStringLiteral(
      "SELECT Measure_Id, QtyPerUnitOfMeasure FROM N_ItemMeasure WHERE Comp_Id = ? AND Item_Id = ?"));
  rows->bind(0, companyId);
  rows->bind(1, itemId);
  while (rows->step()) {
    if (rows->integer(1) > 0) {
      measures.insert(rows->text(0).toCaseFolded(), rows->integer(1));
    }
  }
  return measures;
}

}  // namespace

LineUnits lineUnits(Connection& db, const QString& companyId, const PricedItem& item, const LineRequest& request)
{
  LineUnits units;
  units.measureId = request.measureId.isEmpty() ? item.measureId : request.measureId;
  units.quantity = withoutSign(request.quantity);
  units.baseQuantity = units.quantity;
  if (units.measureId.compare(item.measureId, Qt::CaseInsensitive) == 0) {
    return units;
  }
  const qint64 base = withoutSign(request.baseQuantity);
  const qint64 stated = units.quantity > 0 && base > 0 ? scaledProduct(amountScale, base, units.quantity) : 0;
  const auto measures = measuresOf(db, companyId, item.id);
  const qint64 known = measures.value(units.measureId.toCaseFolded());
  units.perMeasure = known > 0 ? known : stated > 0 ? stated : amountScale;
  // Both quantities arrive rounded to millionths.
  const auto agrees = [&](qint64 factor) {
    return withoutSign(scaledProduct(units.quantity, factor, amountScale) - base) <= 1;
  };
  const bool ofAnother = agrees(amountScale) || std::any_of(measures.cbegin(), measures.cend(), agrees);
  if (stated > 0 && !agrees(units.perMeasure) && !ofAnother) {
    units.perMeasure = stated;
  }
  if (stated > 0 && agrees(units.perMeasure)) {
    units.answered = units.perMeasure;
  }
  units.baseQuantity = scaledProduct(units.quantity, units.perMeasure, amountScale);
  return units;
}

}  // namespace kalvor::server
