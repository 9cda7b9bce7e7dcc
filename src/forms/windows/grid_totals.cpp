#include "forms/windows/grid_totals.h"

#include <QRegularExpression>

#include "widgets/db_grid_ex.h"
#include "widgets/grid_footer.h"

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
  selectionTimer_.setSingleShot(true);  // a range of marks grows in many steps
  selectionTimer_.setInterval(0);
  connect(&selectionTimer_, &QTimer::timeout, this, &GridTotals::refreshSelection);
  connect(grid, &TDBGrid::marksChanged, &selectionTimer_, qOverload<>(&QTimer::start));
  connect(grid, &TDBGrid::columnEntered, this, [this] {
    if (grid_->hasMarks()) {
      selectionTimer_.start();
    }
  });
  refresh();
}

void GridTotals::refresh()
{
  TClientDataSet* dataSet = grid_->dataSet();
  if (!dataSet || !dataSet->Active() || dataSet->ControlsDisabled()) {
    return;
  }
  anyTotal_ = false;
  for (const TField* field : dataSet->Fields()) {
    const QString column =
        field->FieldKind() == FieldValueKind::Aggregate ? aggregatedField(field->Expression) : QString();
    if (!column.isEmpty() && grid_->columnVisible(column)) {
      anyTotal_ = true;
      grid_->setFooterText(column, field->AggregateText());
    }
  }
  showFooter();
  if (grid_->hasMarks()) {
    selectionTimer_.start();
  }
}

void GridTotals::showFooter()
{
  const bool wanted = anyTotal_ || !grid_->footer()->status().isEmpty();
  if (wanted != grid_->footerVisible()) {
    grid_->setFooterVisible(wanted);
  }
}

namespace {

bool isSummed(const TField* field)
{
  return field && isNumericType(field->FieldDataType()) && !field->OnGetText;
}

QString selectionText(const TDBGrid& grid)
{
  const TClientDataSet* dataSet = grid.dataSet();
  const QList<Bookmark> marked = dataSet && dataSet->Active() ? grid.markedRecords() : QList<Bookmark>();
  if (marked.size() < 2) {
    return {};
  }
  QString text = QStringLiteral("Избрани редове: %1").arg(marked.size());
  if (const TField* field = grid.selectedField(); isSummed(field)) {
    double sum = 0;
    for (const Bookmark record : marked) {
      sum += field->ValueAt(dataSet->RowOfBookmark(record)).toDouble();
    }
    text += QStringLiteral("     Сума „%1“: %2").arg(field->DisplayLabel, field->FormatValue(sum));
  }
  return text;
}

}  // namespace

void GridTotals::refreshSelection()
{
  grid_->setFooterStatus(selectionText(*grid_));
  showFooter();
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
