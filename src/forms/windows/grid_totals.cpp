#include "forms/windows/grid_totals.h"

#include <QRegularExpression>

#include "widgets/db_grid_ex.h"

namespace kalvor {

QString aggregatedField(const QString& expression)
{
  static const QRegularExpression single(QStringLiteral("^\\s*SUM\\s*\\(\\s*(\\w+)\\s*\\)\\s*$"),
                                         QRegularExpression::CaseInsensitiveOption);
  return single.match(expression).captured(1);
}

GridTotals::GridTotals(TDBGridEx* grid) : QObject(grid), grid_(grid)
{
  setDataSet(grid->dataSet());
  refresh();
}

void GridTotals::refresh()
{
  TClientDataSet* dataSet = grid_->dataSet();
  if (!dataSet || !dataSet->Active() || dataSet->ControlsDisabled()) {
    return;
  }
  bool any = false;
  for (const TField* field : dataSet->Fields()) {
    const QString column =
        field->FieldKind() == FieldValueKind::Aggregate ? aggregatedField(field->Expression) : QString();
    if (!column.isEmpty() && grid_->columnVisible(column)) {
      any = true;
      grid_->setFooterText(column, field->AggregateText());
    }
  }
  grid_->setFooterVisible(any);
}

void GridTotals::dataEvent(DataEvent event, TField*)
{
  switch (event) {
    case DataEvent::ActiveChange:
    case DataEvent::LayoutChange:
    case DataEvent::DataSetChange:
    case DataEvent::StateChange: refresh(); break;
    default: break;
  }
}

}  // namespace kalvor
