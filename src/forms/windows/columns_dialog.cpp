#include "forms/windows/columns_dialog.h"

#include <QColorDialog>
#include <QComboBox>
#include <QFormLayout>
#include <QLabel>
#include <QListWidget>
#include <QPainter>
#include <QPushButton>
#include <QSpinBox>
#include <QTabWidget>
#include <QVBoxLayout>

#include "forms/form_settings.h"
#include "forms/windows/grid_view_store.h"
#include "platform/ports.h"
#include "session/dm.h"
#include "session/error_log.h"
#include "session/settings_document.h"
#include "widgets/db_grid_ex.h"
#include "widgets/theme.h"

namespace kalvor {

namespace {

constexpr int columnIndexRole = Qt::UserRole;
constexpr QSize columnListSize(300, 320);

struct NamedColor {
  const char16_t* caption;
  QRgb color;
};
constexpr NamedColor offeredColors[] = {
    {u"Бяло", 0xffffff},        {u"Кремаво", 0xfffbf0},    {u"Жълто", 0xffff00},  {u"Бледозелено", 0xc0dcc0},
    {u"Небесносиньо", 0xa6caf0}, {u"Сребристо", 0xc0c0c0}, {u"Сиво", 0x808080},   {u"Циан", 0x00ffff},
    {u"Ярко зелено", 0x00ff00}, {u"Розово", 0xff00ff},     {u"Червено", 0xff0000}, {u"Синьо", 0x0000ff},
    {u"Зелено", 0x008000},      {u"Кафяво", 0x800000},     {u"Тъмносиньо", 0x000080}, {u"Маслинено", 0x808000},
    {u"Лилаво", 0x800080},      {u"Синьозелено", 0x008080}, {u"Черно", 0x000000}};
const QString defaultColorText = QStringLiteral("По подразбиране");
const QString otherColorText = QStringLiteral("Друг…");

QIcon swatch(const QColor& color)
{
  QPixmap picture(16, 16);
  picture.fill(color.isValid() ? color : QColor(Qt::transparent));
  QPainter painter(&picture);
  painter.setPen(theme().line);
  painter.drawRect(0, 0, 15, 15);
  return QIcon(picture);
}

struct CaptionedColumn : QListWidgetItem {
  using QListWidgetItem::QListWidgetItem;
  bool operator<(const QListWidgetItem& other) const override
  {
    return QString::localeAwareCompare(text(), other.text()) < 0;
  }
};

}  // namespace

TfColumnsProps::TfColumnsProps(int formId, TDBGrid* grid, QWidget* parent)
    : QDialog(parent), pcColumns(new QTabWidget), clbColumns(new QListWidget), speSize(new QSpinBox),
      cbxColor(new QComboBox), speFixed(new QSpinBox), btnOk(new QPushButton(QStringLiteral("Ok"))),
      btnCancel(new QPushButton(QStringLiteral("Отказ"))), formId_(formId), grid_(grid)
{
  build();
  fill();
}

void TfColumnsProps::build()
{
  setObjectName(QStringLiteral("fColumnsProps"));
  setWindowTitle(QStringLiteral("Видими колони"));
  const std::pair<QWidget*, const char*> names[] = {
      {pcColumns, "pcColumns"}, {clbColumns, "clbColumns"}, {speSize, "speSize"}, {cbxColor, "cbxColor"},
      {speFixed, "speFixed"},   {btnOk, "btnOk"},           {btnCancel, "btnCancel"}};
  for (const auto& [control, name] : names) {
    control->setObjectName(QLatin1String(name));
  }
  clbColumns->setMinimumSize(columnListSize);
  clbColumns->setAccessibleName(windowTitle());
  speSize->setRange(-1, 500);
  speFixed->setRange(0, 100);
  cbxColor->addItem(swatch(QColor()), defaultColorText, QColor());
  for (const NamedColor& row : offeredColors) {
    cbxColor->addItem(swatch(QColor(row.color)), QString::fromUtf16(row.caption), QColor(row.color));
  }
  cbxColor->addItem(otherColorText);

  auto* fields = new QFormLayout;
  fields->setHorizontalSpacing(spacing::wide);
  fields->setVerticalSpacing(spacing::normal);
  fields->setFieldGrowthPolicy(QFormLayout::FieldsStayAtSizeHint);
  const std::pair<QWidget*, const char16_t*> rows[] = {
      {speSize, u"Размер:"}, {cbxColor, u"Цвят:"}, {speFixed, u"Брой фиксирани колони"}};
  for (const auto& [control, text] : rows) {
    control->setAccessibleName(QString::fromUtf16(text));
    fields->addRow(QString::fromUtf16(text), control);
  }
  auto* page = new QWidget;
  auto* inside = new QVBoxLayout(page);
  inside->setContentsMargins(spacing::wide, spacing::wide, spacing::wide, spacing::wide);
  inside->setSpacing(spacing::wide);
  inside->addWidget(clbColumns, 1);
  inside->addLayout(fields);
  pcColumns->addTab(page, QStringLiteral("Настройка"));

  auto* buttons = new QHBoxLayout;
  buttons->setSpacing(spacing::normal);
  buttons->addStretch();
  buttons->addWidget(btnOk);
  buttons->addWidget(btnCancel);
  btnOk->setDefault(true);
  btnCancel->setAutoDefault(false);
  auto* all = new QVBoxLayout(this);
  all->setSpacing(spacing::wide);
  all->addWidget(pcColumns);
  all->addLayout(buttons);

  connect(clbColumns, &QListWidget::currentRowChanged, this, &TfColumnsProps::showSelected);
  connect(speSize, &QSpinBox::valueChanged, this, &TfColumnsProps::sizeChanged);
  connect(cbxColor, &QComboBox::activated, this, &TfColumnsProps::colorChosen);
  connect(btnOk, &QPushButton::clicked, this, &TfColumnsProps::btnOkClick);
  connect(btnCancel, &QPushButton::clicked, this, &QDialog::reject);
  clbColumns->setFocus();
}

void TfColumnsProps::fill()
{
  for (const GridColumn& column : grid_->columns()) {
    const TField* field = grid_->datasetModel()->fieldAt(grid_->datasetModel()->columnOf(column.fieldName));
    if (!field || (!field->Visible && !column.visible)) {
      continue;
    }
    auto* item = new CaptionedColumn(field->DisplayLabel, clbColumns);
    item->setData(columnIndexRole, int(columns_.size()));
    item->setCheckState(column.visible ? Qt::Checked : Qt::Unchecked);
    const int size = grid_->columnCharacters(column.fieldName);
    columns_.append({column.fieldName, size, size, column.color});
  }
  clbColumns->sortItems();
  const auto* enhanced = qobject_cast<TDBGridEx*>(grid_);
  startFixed_ = enhanced ? enhanced->fixedColumns() : 0;
  speFixed->setValue(startFixed_);
  speFixed->setEnabled(enhanced != nullptr);
  clbColumns->setCurrentRow(0);
}

TfColumnsProps::Column* TfColumnsProps::selected()
{
  const QListWidgetItem* item = clbColumns->currentItem();
  return item ? &columns_[item->data(columnIndexRole).toInt()] : nullptr;
}

void TfColumnsProps::showSelected()
{
  const Column* column = selected();
  speSize->setEnabled(column != nullptr);
  cbxColor->setEnabled(column != nullptr);
  if (column) {
    const QSignalBlocker quiet(speSize);
    speSize->setValue(column->size);
    showColor(column->color);
  }
}

void TfColumnsProps::showColor(const QColor& color)
{
  int index = 0;
  for (int i = 1; color.isValid() && i < cbxColor->count(); ++i) {
    const QColor offered = cbxColor->itemData(i).value<QColor>();
    if (offered.isValid() && offered.rgb() == color.rgb()) {
      index = i;
    }
  }
  if (color.isValid() && index == 0) {
    index = cbxColor->count() - 1;
    cbxColor->insertItem(index, swatch(color), color.name(), color);
  }
  cbxColor->setCurrentIndex(index);
}

void TfColumnsProps::sizeChanged(int size)
{
  if (Column* column = selected()) {
    column->size = size;
  }
}

void TfColumnsProps::colorChosen(int index)
{
  Column* column = selected();
  if (!column) {
    return;
  }
  if (index < cbxColor->count() - 1) {
    column->color = cbxColor->itemData(index).value<QColor>();
    return;
  }
  if (const QColor color = QColorDialog::getColor(column->color, this); color.isValid()) {
    column->color = color;
  }
  showColor(column->color);
}

bool TfColumnsProps::isChecked(const Column& column) const
{
  for (int row = 0; row < clbColumns->count(); ++row) {
    const QListWidgetItem* item = clbColumns->item(row);
    if (columns_.at(item->data(columnIndexRole).toInt()).fieldName == column.fieldName) {
      return item->checkState() == Qt::Checked;
    }
  }
  return false;
}

bool TfColumnsProps::anyChecked() const
{
  return std::any_of(columns_.begin(), columns_.end(), [this](const Column& column) { return isChecked(column); });
}

void TfColumnsProps::DoShowGrig()
{
  for (const Column& column : std::as_const(columns_)) {
    if (column.size != column.startSize) {
      const TField* field = grid_->datasetModel()->fieldAt(grid_->datasetModel()->columnOf(column.fieldName));
      grid_->setColumnCharacters(column.fieldName, column.size > 0 || !field ? column.size : GetColSize(field));
    }
    grid_->setColumnColor(column.fieldName, column.color);
    grid_->setColumnVisible(column.fieldName, isChecked(column));
  }
  if (auto* enhanced = qobject_cast<TDBGridEx*>(grid_)) {
    enhanced->setFixedColumns(speFixed->value());
  }
}

void TfColumnsProps::btnOkClick()
{
  if (!columns_.isEmpty() && !anyChecked()) {
    showInformation(QStringLiteral("Поне една колона трябва да е видима."));
    clbColumns->setFocus();
    return;
  }
  try {
    DoShowGrig();
    if (QDomDocument* document = DM ? DM->userSettingsDocument() : nullptr) {
      SaveGridView(*document, formId_, gridTag(grid_), grid_);
      if (speFixed->value() != startFixed_) {
        SaveNodeToXml(*document, formSettingsGroup(formId_),
                      {fixedColumnsKey + u'=' + QString::number(speFixed->value())}, false);
      }
    }
    accept();
  } catch (const std::exception& error) {
    showError(errorText(error));
  }
}

int TfColumnsProps::DoShowColumns()
{
  return exec() == Accepted ? 1 : 2;
}

}  // namespace kalvor
