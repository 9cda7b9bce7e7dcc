#include "forms/windows/record_layout.h"

#include <QGridLayout>
#include <QLabel>
#include <QVBoxLayout>
#include <algorithm>

#include "forms/field_metadata.h"
#include "widgets/db_check_box.h"
#include "widgets/db_combo_box.h"
#include "widgets/db_date_edit.h"
#include "widgets/db_memo.h"
#include "widgets/theme.h"

namespace kalvor {

namespace {

constexpr int memoTextSize = 300;   // longer texts get several lines
constexpr int memoLines = 3;
constexpr int lineHeight = 28;
constexpr int textWidth = 250;      // least of a control that grows with its column
constexpr int joinedWidth = 120;
constexpr int codeWidth = 120;      // of a code whose name stands beside it
constexpr int widestCaption = 190;

const QString pageTitles[] = {QStringLiteral("Основни данни"), QStringLiteral("Допълнителни данни"),
                              QStringLiteral("Други данни")};

QString pageTitle(int page)
{
  constexpr int last = int(std::size(pageTitles)) - 1;
  return page <= last ? pageTitles[page] : QStringLiteral("%1 %2").arg(pageTitles[last]).arg(page - last + 1);
}

// Width of a control by what its field holds; 0 = as wide as the column.
int controlWidth(const TField* field)
{
  struct TextWidth {
    int size;
    int width;
  };
  static constexpr TextWidth textWidths[] = {{3, 80}, {16, 150}, {24, 200}, {40, 280}};
  if (isDateType(field->FieldDataType())) {
    return field->FieldDataType() == DataType::Date ? 140 : 180;
  }
  if (hasFlag(field, ffOption)) {
    return 200;
  }
  if (isNumericType(field->FieldDataType())) {
    return 150;
  }
  for (const TextWidth& step : textWidths) {
    if (field->Size() > 0 && field->Size() <= step.size) {
      return step.width;
    }
  }
  return 0;
}

bool isLongText(const TField* field)
{
  const DataType type = field->FieldDataType();
  return type == DataType::Memo || type == DataType::WideMemo || (isTextType(type) && field->Size() > memoTextSize);
}

// Fields that the look-up of a field fills, in lower case: the fourth part of every item of its description.
QStringList lookupTargets(const FieldDescription& description)
{
  constexpr int targetsPart = 3;
  QStringList targets;
  for (const QString& item : description.text(FieldColumn::SelectorDesc).split(u'$', Qt::SkipEmptyParts)) {
    targets += item.section(u';', targetsPart, targetsPart).toLower().split(u',', Qt::SkipEmptyParts);
  }
  return targets;
}

bool isLookup(const TField* field)
{
  return hasFlag(field, ffLookup) || hasFlag(field, ffControlLookup) || hasFlag(field, ffSeries);
}

}  // namespace

QList<RecordLayoutItem> recordLayoutItems(const TClientDataSet& dataSet, const VariantArray& descriptions)
{
  QList<RecordLayoutItem> items;
  QStringList targets;  // of the look-up just before
  for (TField* field : dataSet.Fields()) {
    if (!field->Visible || field->FieldKind() == FieldValueKind::Aggregate) {
      continue;
    }
    const bool joined = hasFlag(field, ffReadOnly) && targets.contains(field->FieldName().toLower());
    if (joined && !items.isEmpty() && items.last().beside.isEmpty()) {
      items.last().beside.append(field);
      continue;
    }
    targets = isLookup(field) ? lookupTargets(descriptionOf(field, descriptions)) : QStringList();
    items.append({field, {}, isLongText(field)});
  }
  return items;
}

RecordLayout::RecordLayout(TClientDataSet& dataSet, QList<RecordLayoutItem> items, int rowsPerColumn)
    : dataSet_(dataSet), items_(std::move(items)), rowsPerColumn_(rowsPerColumn)
{
}

void RecordLayout::build(QTabWidget& pages)
{
  const QFontMetrics metrics(pages.font());
  for (const RecordLayoutItem& item : items_) {
    captionWidth_ = std::max(captionWidth_, metrics.horizontalAdvance(item.field->DisplayLabel + QStringLiteral(" *")));
  }
  captionWidth_ = std::min(captionWidth_ + spacing::tight, widestCaption);

  QList<RecordLayoutItem> lines, wide;
  int room = 2 * rowsPerColumn_;
  const auto finishPage = [&] {
    addPage(pages, std::exchange(lines, {}), std::exchange(wide, {}));
    room = 2 * rowsPerColumn_;
  };
  for (const RecordLayoutItem& item : items_) {
    const int needed = item.wide ? 2 * memoLines : 1;
    if (room < needed) {
      finishPage();
    }
    room -= needed;
    (item.wide ? wide : lines).append(item);
  }
  if (!lines.isEmpty() || !wide.isEmpty()) {
    finishPage();
  }
}

void RecordLayout::addPage(QTabWidget& pages, const QList<RecordLayoutItem>& lines, const QList<RecordLayoutItem>& wide)
{
  auto* page = new QWidget(&pages);
  auto* whole = new QVBoxLayout(page);
  whole->setContentsMargins(spacing::wide, spacing::wide, spacing::wide, spacing::normal);
  whole->setSpacing(spacing::normal);
  auto* columns = new QHBoxLayout;
  columns->setSpacing(2 * spacing::wide);
  whole->addLayout(columns);

  const qsizetype perColumn = lines.size() <= rowsPerColumn_ ? lines.size() : (lines.size() + 1) / 2;
  for (qsizetype first = 0; first < lines.size(); first += perColumn) {
    auto* grid = new QGridLayout;
    grid->setHorizontalSpacing(spacing::normal);
    grid->setVerticalSpacing(spacing::tight + 2);
    grid->setColumnMinimumWidth(0, captionWidth_);
    grid->setColumnStretch(1, 1);
    for (qsizetype i = first; i < std::min(first + perColumn, lines.size()); ++i) {
      addLine(page, *grid, int(i - first), lines[i]);
    }
    grid->setRowStretch(int(perColumn), 1);
    columns->addLayout(grid, 1);
  }
  auto* below = new QGridLayout;
  below->setHorizontalSpacing(spacing::normal);
  below->setColumnMinimumWidth(0, captionWidth_);
  below->setColumnStretch(1, 1);
  for (int row = 0; row < int(wide.size()); ++row) {
    addLine(page, *below, row, wide[row]);
  }
  whole->addLayout(below);
  whole->addStretch(1);
  pages.addTab(page, pageTitle(pages.count()));
}

void RecordLayout::addLine(QWidget* page, QGridLayout& grid, int row, const RecordLayoutItem& item)
{
  auto* label = new QLabel(item.field->DisplayLabel, page);
  label->setObjectName(QStringLiteral("lbl") + item.field->FieldName());
  QWidget* control = makeControl(page, item.field, false, !item.beside.isEmpty());
  label->setBuddy(control);
  grid.addWidget(label, row, 0, item.wide ? Qt::AlignTop : Qt::AlignVCenter);
  if (item.wide) {
    grid.addWidget(control, row, 1);
    return;
  }
  auto* cell = new QHBoxLayout;
  cell->setSpacing(spacing::tight);
  cell->addWidget(control);
  for (TField* joined : item.beside) {
    QWidget* shown = makeControl(page, joined, true, false);
    shown->setToolTip(joined->DisplayLabel);
    shown->setAccessibleName(joined->DisplayLabel);
    cell->addWidget(shown, 1);
  }
  if (item.beside.isEmpty() && controlWidth(item.field) > 0) {
    cell->addStretch(1);
  }
  grid.addLayout(cell, row, 1);
  grid.setRowMinimumHeight(row, lineHeight);
}

void RecordLayout::bind(QWidget* control, TField* field)
{
  DataControl* bound = DataControl::of(control);
  bound->setDataSet(&dataSet_);
  bound->setDataField(field->FieldName());
}

QWidget* RecordLayout::makeControl(QWidget* page, TField* field, bool beside, bool codeOnly)
{
  QWidget* control = nullptr;
  if (hasFlag(field, ffYesNo)) {
    control = new TDBCheckBox(page);
  } else if (hasFlag(field, ffOption)) {
    control = new TDBComboBox(page);
  } else if (isLongText(field)) {
    auto* memo = new TDBMemo(page);
    memo->setFixedHeight(memoLines * memo->fontMetrics().lineSpacing() + spacing::wide);
    control = memo;
  } else if (isDateType(field->FieldDataType()) && field->FieldDataType() != DataType::Time) {
    control = new TDBDateEdit(page);
  } else if (hasFlag(field, ffSeries)) {
    control = new TDBFlatEdit(page);  // the edit through which a field gets its number from a series
  } else {
    control = new TDBEdit(page);
  }
  control->setObjectName(QStringLiteral("edt") + field->FieldName());
  if (const int width = controlWidth(field); width > 0 && !beside) {
    control->setFixedWidth(codeOnly ? std::min(width, codeWidth) : width);
  } else if (!isLongText(field) && !hasFlag(field, ffYesNo)) {
    control->setMinimumWidth(beside ? joinedWidth : textWidth);
  }
  if (beside) {
    control->setFocusPolicy(Qt::ClickFocus);
  } else {
    if (lastControl_) {
      QWidget::setTabOrder(lastControl_, control);
    }
    lastControl_ = control;
  }
  bind(control, field);
  return control;
}

}  // namespace kalvor
