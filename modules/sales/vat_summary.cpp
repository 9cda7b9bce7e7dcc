#include "vat_summary.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QTableWidget>

#include "data/regional.h"
#include "session/local_data.h"
#include "widgets/theme.h"

namespace kalvor {

namespace {

struct AmountColumn {
  const char16_t* title;
  double TVATGroupInfo::* ofGroup;
  double TVATTotals::* ofDocument;
  bool local;
};
constexpr AmountColumn columns[] = {
    {u"Основа", &TVATGroupInfo::CRN_TotalValue, &TVATTotals::CRN_TotalValue, false},
    {u"ДДС", &TVATGroupInfo::CRN_VATValue, &TVATTotals::CRN_VATValue, false},
    {u"Общо", &TVATGroupInfo::CRN_TotalVAT, &TVATTotals::CRN_TotalVAT, false},
    {u"Основа", &TVATGroupInfo::TotalValue, &TVATTotals::TotalValue, true},
    {u"ДДС", &TVATGroupInfo::VATValue, &TVATTotals::VATValue, true},
    {u"Общо", &TVATGroupInfo::TotalVAT, &TVATTotals::TotalVAT, true},
};
constexpr int firstAmount = 1;
constexpr int groupWidth = 160;
constexpr int amountWidth = 120;
constexpr int visibleRows = 3;

QTableWidgetItem* cell(const QString& text, bool amount, bool bold)
{
  auto* item = new QTableWidgetItem(text);
  item->setFlags(Qt::ItemIsEnabled);
  item->setTextAlignment(Qt::AlignVCenter | (amount ? Qt::AlignRight : Qt::AlignLeft));
  QFont font;
  font.setBold(bold);
  item->setFont(font);
  return item;
}

}  // namespace

VatSummary::VatSummary(QWidget* parent)
    : QWidget(parent), totals_(LocalData.PrecisionAmount), table_(new QTableWidget(this))
{
  setObjectName(QStringLiteral("vatSummary"));
  table_->setAccessibleName(QStringLiteral("ДДС по групи"));
  table_->setColumnCount(firstAmount + int(std::size(columns)));
  table_->setFocusPolicy(Qt::NoFocus);
  table_->setSelectionMode(QAbstractItemView::NoSelection);
  table_->setFrameShape(QFrame::NoFrame);
  table_->setShowGrid(false);
  table_->verticalHeader()->hide();
  table_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  const int line = textLineHeight(fontMetrics());
  table_->verticalHeader()->setDefaultSectionSize(line);
  table_->horizontalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  table_->setColumnWidth(0, groupWidth);
  for (int column = firstAmount; column < table_->columnCount(); ++column) {
    table_->setColumnWidth(column, amountWidth);
  }
  table_->horizontalHeader()->setDefaultAlignment(Qt::AlignRight | Qt::AlignVCenter);
  table_->setFixedHeight(line * visibleRows + table_->horizontalHeader()->sizeHint().height());
  setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(spacing::normal, spacing::tight, spacing::normal, spacing::tight);
  row->addWidget(table_);
}

void VatSummary::setTotals(const TVATTotals& totals, const QString& currency)
{
  totals_ = totals;
  currency_ = currency;
  if (isVisible()) {
    fillTable();
  }
}

void VatSummary::showEvent(QShowEvent* event)
{
  fillTable();
  QWidget::showEvent(event);
}

void VatSummary::fillTable()
{
  const TVATTotals& totals = totals_;
  const QString& currency = currency_;
  QStringList titles{QStringLiteral("ДДС група")};
  for (int i = 0; i < int(std::size(columns)); ++i) {
    const QString unit = columns[i].local ? LocalData.Currency_LCY : currency;
    titles.append(unit.isEmpty() ? QStringView(columns[i].title).toString() : QStringLiteral("%1, %2").arg(QStringView(columns[i].title), unit));
    table_->setColumnHidden(firstAmount + i, columns[i].local && currency.isEmpty());
  }
  table_->setHorizontalHeaderLabels(titles);
  table_->horizontalHeaderItem(0)->setTextAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  const QString picture = QStringLiteral("#,##0.") + QString(LocalData.PrecisionAmount, u'0');
  const auto& groups = totals.groups();
  table_->setRowCount(int(groups.size()) + 1);
  const auto fill = [this, &picture](int row, const QString& name, bool bold, const auto& amountOf) {
    table_->setItem(row, 0, cell(name, false, bold));
    for (int i = 0; i < int(std::size(columns)); ++i) {
      table_->setItem(row, firstAmount + i,
                      cell(formatNumber(amountOf(columns[i]), picture), true, bold));
    }
  };
  for (int i = 0; i < groups.size(); ++i) {
    fill(i, groups[i].name, false, [&](const AmountColumn& column) { return groups[i].info.*column.ofGroup; });
  }
  fill(int(groups.size()), QStringLiteral("Общо"), true,
       [&](const AmountColumn& column) { return totals.*column.ofDocument; });
}

}  // namespace kalvor
