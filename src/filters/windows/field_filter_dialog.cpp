#include "filters/windows/field_filter_dialog.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <algorithm>

#include "data/client_dataset.h"
#include "filters/filter_expression.h"
#include "filters/selector_macros.h"
#include "filters/windows/table_filter.h"
#include "forms/field_metadata.h"
#include "forms/form_settings.h"
#include "platform/ports.h"
#include "registry/windows/date_selector.h"
#include "registry/windows/selector_button.h"
#include "session/dm.h"
#include "session/error_log.h"
#include "session/ini_options.h"
#include "session/local_settings_file.h"
#include "session/settings_document.h"
#include "widgets/edit_button.h"
#include "widgets/theme.h"

namespace kalvor {

namespace {

constexpr int valueWidth = 420;
const QString yesText = QStringLiteral("Да");
const QString noText = QStringLiteral("Не");

QStringList filterSettings(int formId)
{
  QStringList lines;
  if (const QDomDocument* document = DM ? DM->userSettingsDocument() : nullptr) {
    GetNodeFromXml(*document, formSettingsGroup(formId), lines);
  }
  return lines;
}

bool storedSwitch(const QStringList& lines, const QString& name, bool otherwise)
{
  return hasLine(lines, name) ? valueOfLine(lines, name) == settingText(true) : otherwise;
}

bool isWild(QChar character)
{
  return character == u'*' || character == u'%';
}

QString hintFor(const TField* field, bool fullMatch)
{
  if (isDateType(field->FieldDataType())) {
    return QStringLiteral("15.01.2026, 01.01.2026..31.01.2026, >=-1м (от месец насам), -7д..+0д");
  }
  if (isNumericType(field->FieldDataType())) {
    return QStringLiteral("100, 10..20, >=50, <>0, 5|7 (едно от двете)");
  }
  return fullMatch ? QStringLiteral("С* започва със С, *ООД завършва на ООД, А|Б едно от двете, А..Б от А до Б, = празно")
                   : QStringLiteral("Търси се навсякъде в текста. За С*, А|Б, А..Б и = изберете „Пълно съвпадение“.");
}

// Different texts of the column among the records that are here already.
QStringList knownValues(const TField* field)
{
  constexpr qsizetype mostRecords = 500;
  constexpr qsizetype mostValues = 50;
  QStringList texts;
  const qsizetype records = std::min(field->DataSet()->RecordCount(), mostRecords);
  for (qsizetype row = 0; row < records && texts.size() < mostValues; ++row) {
    const QString text = field->FormatValue(field->ValueAt(row));
    if (!text.isEmpty() && !texts.contains(text)) {
      texts.append(text);
    }
  }
  if (isTextType(field->FieldDataType())) {
    std::sort(texts.begin(), texts.end(),
              [](const QString& a, const QString& b) { return QString::localeAwareCompare(a, b) < 0; });
  }
  return texts;
}

}  // namespace

QString containsCriterion(const QString& text)
{
  QString criterion = text;
  if (criterion.isEmpty() || !isWild(criterion.front())) {
    criterion.prepend(u'*');
  }
  if (text.isEmpty() || !isWild(text.back())) {
    criterion.append(u'*');
  }
  return criterion;
}

struct TfFilterFields::Private {
  enum class Kind { Plain, Selector, Options, YesNo, Date };

  IBaseIntf* owner;
  int formId;
  TField* field;
  FieldDescription description;
  Kind kind = Kind::Plain;
  QAction* tableFilterAction;
  QComboBox* value = nullptr;
  QCheckBox* addToFilter = nullptr;
  QCheckBox* fullMatch = nullptr;
  TSelectorButton* selectorButton = nullptr;
  bool ownerHeld = false;

  static Kind kindOf(const TField* field)
  {
    struct Row {
      FieldFlag flag;
      Kind kind;
    };
    static constexpr Row rows[] = {
        {ffLookup, Kind::Selector}, {ffOption, Kind::Options}, {ffYesNo, Kind::YesNo}, {ffDate, Kind::Date}};
    for (const Row& row : rows) {
      if (hasFlag(field, row.flag)) {
        return row.kind;
      }
    }
    return Kind::Plain;
  }
};

TfFilterFields::TfFilterFields(IBaseIntf* owner, int formId, TField* field, const VariantArray& description,
                               const QString& startValue, const QString& title, QAction* tableFilterAction,
                               QWidget* parent)
    : QDialog(parent), d(std::make_unique<Private>())
{
  d->owner = owner;
  d->formId = formId;
  d->field = field;
  d->description = FieldDescription(Variant(description));
  d->kind = Private::kindOf(field);
  d->tableFilterAction = tableFilterAction;
  setObjectName(QStringLiteral("TfFilterFields"));
  setWindowTitle(QStringLiteral("Филтриране по поле"));

  auto* caption = new QLabel(title, this);
  QFont bold = caption->font();
  bold.setBold(true);
  caption->setFont(bold);
  d->value = new QComboBox(this);
  d->value->setObjectName(QStringLiteral("cbValue"));
  d->value->setMinimumWidth(valueWidth);
  d->value->setAccessibleName(title);
  caption->setBuddy(d->value);
  auto* hint = new QLabel(hintFor(field, false), this);
  hint->setWordWrap(true);
  QPalette quiet = hint->palette();
  quiet.setColor(QPalette::WindowText, theme().quietText);
  hint->setPalette(quiet);
  d->addToFilter = new QCheckBox(QStringLiteral("&Добави към филтър"), this);
  d->addToFilter->setObjectName(QStringLiteral("chkAddToFilter"));
  d->fullMatch = new QCheckBox(QStringLiteral("&Пълно съвпадение"), this);
  d->fullMatch->setObjectName(QStringLiteral("chkFullMatch"));
  connect(d->fullMatch, &QCheckBox::toggled, hint, [hint, field](bool on) { hint->setText(hintFor(field, on)); });
  const bool typed = d->kind != Private::Kind::Options && d->kind != Private::Kind::YesNo;
  d->fullMatch->setVisible(typed && isTextType(field->FieldDataType()));
  hint->setVisible(typed);

  auto* buttons = new QDialogButtonBox(this);
  QPushButton* ok = buttons->addButton(QStringLiteral("Ok"), QDialogButtonBox::AcceptRole);
  ok->setObjectName(QStringLiteral("btnOK"));
  ok->setDefault(true);
  buttons->addButton(QStringLiteral("Отказ"), QDialogButtonBox::RejectRole)->setObjectName(QStringLiteral("btnCancel"));
  QPushButton* table = buttons->addButton(QStringLiteral("Табл. филтър..."), QDialogButtonBox::ResetRole);
  table->setObjectName(QStringLiteral("btnTable"));
  table->setVisible(tableFilterAction != nullptr);
  connect(ok, &QPushButton::clicked, this, [this] { btnOKClick(); });
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  connect(table, &QPushButton::clicked, this, [this] { btnTableClick(); });

  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(spacing::wide, spacing::wide, spacing::wide, spacing::wide);
  column->setSpacing(spacing::normal);
  for (QWidget* line : std::initializer_list<QWidget*>{caption, d->value, hint, d->addToFilter, d->fullMatch}) {
    column->addWidget(line);
  }
  column->addSpacing(spacing::normal);
  column->addWidget(buttons);

  // The value editor by kind.
  if (d->kind == Private::Kind::Options) {
    d->value->addItems(d->description.options());
  } else if (d->kind == Private::Kind::YesNo) {
    d->value->addItems({yesText, noText});
  } else {
    d->value->addItems(knownValues(field));
    d->value->setEditable(true);
    d->value->setInsertPolicy(QComboBox::NoInsert);
    d->value->setCompleter(nullptr);
    if (d->kind == Private::Kind::Selector && !d->description.isNull(FieldColumn::SelectorDesc)) {
      d->selectorButton = new TSelectorButton(d->value->lineEdit(), this,
                                              d->description.text(FieldColumn::SelectorDesc), field->DataSet());
      d->selectorButton->selector()->FieldName = field->FieldName();
      RemoveSelectorFilterLinesWithFieldRels(*d->selectorButton->selector());
      d->value->lineEdit()->setTextMargins(0, 0, d->selectorButton->width(), 0);
    }
    if (d->kind == Private::Kind::Date && (field->FieldDataType() == DataType::Date ||
                                           field->FieldDataType() == DataType::DateTime)) {
      auto* button = new EditButton(d->value->lineEdit());
      button->setObjectName(QStringLiteral("btn_") + field->FieldName());
      button->setIcon(icon(QStringLiteral("view-calendar")));
      connect(button, &QAbstractButton::clicked, this, [this] { showDateSelector(d->value->lineEdit()); });
    }
  }
  setValue(d->kind == Private::Kind::YesNo     ? (startValue == QLatin1String("1") ? yesText : noText)
           : d->kind == Private::Kind::Options ? optionText(d->description.options(), startValue)
                                               : startValue);
}

TfFilterFields::~TfFilterFields()
{
  releaseOwner();
}

void TfFilterFields::releaseOwner()
{
  if (std::exchange(d->ownerHeld, false)) {
    d->owner->SetActiveSelector(nullptr);
  }
}

void TfFilterFields::DoShowFieldFilter()
{
  d->owner->SetActiveSelector(this);
  d->ownerHeld = true;
  const QStringList lines = filterSettings(d->formId);
  d->addToFilter->setChecked(storedSwitch(lines, QStringLiteral("AddToFilter"), true));
  d->fullMatch->setChecked(storedSwitch(lines, QStringLiteral("FullMatch"), false));
  d->value->setFocus();
  if (d->value->lineEdit()) {
    d->value->lineEdit()->selectAll();
  }
  exec();
}

QString TfFilterFields::value() const
{
  return d->value->currentText();
}

void TfFilterFields::setValue(const QString& text)
{
  if (d->value->isEditable()) {
    d->value->setEditText(text);
  } else {
    d->value->setCurrentIndex(std::max(d->value->findText(text), 0));
  }
}

QString TfFilterFields::criterion() const
{
  switch (d->kind) {
    case Private::Kind::Options: return QString::number(d->value->currentIndex());
    case Private::Kind::YesNo: return value() == yesText ? QStringLiteral("1") : QStringLiteral("0");
    default: break;
  }
  const DataType type = d->field->FieldDataType();
  const bool text = type == DataType::String || type == DataType::WideString;
  return text && !d->fullMatch->isChecked() ? containsCriterion(value()) : value();
}

void TfFilterFields::btnOKClick()
{
  if (QDomDocument* document = DM ? DM->userSettingsDocument() : nullptr) {
    SaveNodeToXml(*document, formSettingsGroup(d->formId),
                  {QStringLiteral("AddToFilter=") + settingText(d->addToFilter->isChecked()),
                   QStringLiteral("FullMatch=") + settingText(d->fullMatch->isChecked())},
                  false);
  }
  try {
    FilterArray filter;
    if (!BuildFilter(d->field, criterion(), QString(), filter)) {
      d->value->setFocus();
      return;
    }
    d->owner->SetPblFilter(filter, {}, d->addToFilter->isChecked());
    accept();
  } catch (const SilentAbort&) {
    // The user was told.
  } catch (const DataError& error) {
    showError(error.message());
    d->value->setFocus();
  }
}

void TfFilterFields::btnTableClick()
{
  reject();
  releaseOwner();
  if (d->tableFilterAction) {
    FieldCaption = d->description.text(FieldColumn::Caption);
    if (FieldCaption.isEmpty()) {
      FieldCaption = d->field->DisplayLabel;
    }
    fieldValue = value();
    d->tableFilterAction->trigger();
  }
}

TSelector* TfFilterFields::selector() const
{
  return d->selectorButton ? d->selectorButton->selector() : nullptr;
}

void TfFilterFields::ExecuteSelector()
{
  if (d->selectorButton) {
    d->selectorButton->click();
  }
}

void TfFilterFields::SetSelectorForm(QObject*) {}
void TfFilterFields::SelectorFormSaved(QObject*, const QString&) {}

bool TfFilterFields::ProcessSelectedRecords(const TSelectionList& selection, ShowOption)
{
  const TSelectorItem item = selector() ? selector()->Items.value(selector()->GetIndex()) : TSelectorItem();
  const QString chosen = chosenFilterValue(selection, item.SourceFields, item.TargetFields, d->field->FieldName());
  if (!chosen.isEmpty()) {
    setValue(chosen);
  }
  return !chosen.isEmpty();
}

}  // namespace kalvor
