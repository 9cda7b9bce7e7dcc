#include "registry/selector.h"

#include <QScopedValueRollback>

#include "filters/filter_expression.h"
#include "filters/selector_macros.h"
#include "registry/selector_conditions.h"
#include "registry/selector_lookup.h"
#include "session/error_log.h"

namespace kalvor {
namespace {

const QString typedTextMacro = QStringLiteral("<#Param(OwnerValue)");
const QString selectorContext = QStringLiteral("TSelectorButton.Create");

// The control with what is being searched for in place of what stands in it.
class SearchedControl : public SelectorControl {
 public:
  SearchedControl(const SelectorControl* control, TField* field, const QString& text)
    : control_(control), field_(field), text_(text)
  {
  }
  QString Text() const override { return text_; }
  TField* Field() const override { return control_ ? control_->Field() : field_; }
  bool ReadOnly() const override { return control_ && control_->ReadOnly(); }

 private:
  const SelectorControl* control_;
  TField* field_;
  QString text_;
};

// Rows of an item's filter that compare with what stands in the control.
QList<int> rowsOnTypedText(const TSelectorItem& item)
{
  QList<int> rows;
  const FilterArray written = BuildFilterFromStr(item.Filter);
  for (int row = 0; row < written.size(); ++row)
    if (variantText(written[row].value).contains(typedTextMacro))
      rows.append(row);
  return rows;
}

// Leaving a field takes the only record silently: one that merely holds the text somewhere would be a surprise.
void lookForBeginnings(FilterArray& filter, const QList<int>& rows)
{
  for (const int row : rows) {
    const QString text = variantText(filter[row].value);
    const bool like = filter[row].op.trimmed().compare(QLatin1String("LIKE"), Qt::CaseInsensitive) == 0;
    if (like && !text.isEmpty() && !text.contains(u'%') && !text.contains(u'*'))
      filter[row].value = text + u'%';
  }
}

}  // namespace

SelectorControl::~SelectorControl() = default;

TSelector::TSelector(QObject* owner, SelectorControl* control, const QString& description, TClientDataSet* dataSet)
  : Description(description), Control(control), Owner(owner), DataSet(dataSet)
{
  raisingLogged(selectorContext, [this] {
    takeControl();
    Items = getSelectorItemsByDescription(Description);
  });
}

TSelector::TSelector(QObject* owner, TField* field, const QString& description, TClientDataSet* dataSet)
  : Description(description), FieldName(field ? field->FieldName() : QString()), Owner(owner), DataSet(dataSet),
    Field(field)
{
  raisingLogged(selectorContext, [this] { Items = getSelectorItemsByDescription(Description); });
}

TSelector::~TSelector() = default;

IBaseIntf* TSelector::form() const
{
  return dynamic_cast<IBaseIntf*>(Owner);
}

void TSelector::takeControl()
{
  ReadOnly = GetReadOnlyByControl();
  Field = GetSelectorFieldByControlOrName();
  if (Field)
    FieldName = Field->FieldName();
}

bool TSelector::GetReadOnlyByControl() const
{
  return Control && Control->ReadOnly();
}

TField* TSelector::GetSelectorFieldByControl() const
{
  return Control ? Control->Field() : nullptr;
}

TField* TSelector::GetSelectorFieldByControlOrName() const
{
  if (TField* field = GetSelectorFieldByControl())
    return field;
  return DataSet && !FieldName.isEmpty() ? DataSet->FindField(FieldName) : nullptr;
}

// --- Running -------------------------------------------------------------------------------------------------

bool TSelector::startRun()
{
  takeControl();
  IBaseIntf* baseForm = form();
  if (Field && baseForm && baseForm->SetSelectorAction(Field) < 0)
    return false;
  if (DataSet && DataSet->Active() && DataSet->IsEmpty() && baseForm && !ReadOnly)
    DataSet->Insert();
  return true;
}

FilterArray TSelector::itemFilter(const QString& text) const
{
  return BuildSelectorFilter(text, DataSet, Control, Owner);
}

int TSelector::openItem(const TSelectorItem& item, TField* sender, const QString& filterText, bool showAlways)
{
  FilterArray filter = itemFilter(filterText.isEmpty() ? item.Filter : filterText);
  if (!showAlways)
    lookForBeginnings(filter, rowsOnTypedText(item));
  const FilterArray publicFilter = itemFilter(item.PublicFilter);
  const ShowOption options = ReadOnly ? item.Options | so_CannotSelect : item.Options;
  bool flag = false;
  return GetSelector(item.FormId, item.SourceFields, item.TargetFields, DataSet, filter, publicFilter, showAlways, flag,
                     sender == nullptr, options, {}, Owner, FieldName);
}

int TSelector::Execute(TField* sender, const QString& filterText)
{
  if (!startRun())
    return SelectorOpened;
  const int index = GetIndex();
  if (index < 0)
    return SelectorOpened;
  if (const IBaseIntf* baseForm = form(); baseForm && baseForm->ifInCopyData())
    return Fill(sender, true) ? SelectorChosen : SelectorNotChosen;
  const TSelectorItem item = Items[index];
  return openItem(item, sender, filterText, true);
}

bool TSelector::fillItem(const TSelectorItem& item, bool exactMatch)
{
  FilterArray filter = itemFilter(item.Filter);
  if (exactMatch && !filter.isEmpty() &&
      filter.first().op.trimmed().compare(QLatin1String("LIKE"), Qt::CaseInsensitive) == 0)
    filter.first().op = QStringLiteral("=");
  bool flag = false;
  return FillSelectorFields(item.FormId, item.SourceFields, item.TargetFields, DataSet, filter,
                            itemFilter(item.PublicFilter), flag, Owner);
}

bool TSelector::Fill(TField*, bool exactMatch)
{
  const int index = GetIndex();
  if (index < 0)
    return false;
  const TSelectorItem item = Items[index];
  return fillItem(item, exactMatch);
}

int TSelector::FillControl(SelectorControl* control)
{
  const QScopedValueRollback<SelectorControl*> current(Control, control);
  const int index = GetIndex();
  if (index < 0)
    return SelectorOpened;
  const TSelectorItem item = Items[index];
  bool flag = false;
  return GetControlSelector(item.FormId, item.SourceFields, itemFilter(item.Filter), itemFilter(item.PublicFilter),
                            true, flag, item.Options, {}, Owner);
}

TSelector::SearchResult TSelector::Search(TField* sender, const QString& text)
{
  return searchFor(sender, text, !text.isEmpty(), text.isEmpty());
}

TSelector::SearchResult TSelector::FillExactly(TField* sender, const QString& text)
{
  SearchedControl searched(Control, sender, text);
  const QScopedValueRollback<SelectorControl*> current(Control, &searched);
  if (!startRun())
    return SearchResult::NotRun;
  const int index = GetIndex();
  if (index < 0)
    return SearchResult::NotRun;
  const TSelectorItem item = Items[index];
  return fillItem(item, true) ? SearchResult::Filled : SearchResult::NotChosen;
}

TSelector::SearchResult TSelector::FillOrChoose(TField* sender)
{
  return searchFor(sender, QString(), false, false);
}

TSelector::SearchResult TSelector::searchFor(TField* sender, const QString& text, bool exactFirst, bool showAlways)
{
  SearchedControl searched(Control, sender, text);
  const QScopedValueRollback<SelectorControl*> current(Control, &searched);
  if (!startRun())
    return SearchResult::NotRun;
  const int index = GetIndex();
  if (index < 0)
    return SearchResult::NotRun;
  const TSelectorItem item = Items[index];
  if (const IBaseIntf* baseForm = form(); baseForm && baseForm->ifInCopyData())
    return fillItem(item, true) ? SearchResult::Filled : SearchResult::NotRun;
  if (exactFirst && fillItem(item, true))
    return SearchResult::Filled;
  const int result = openItem(item, sender, QString(), showAlways);
  return result == SelectorChosen ? SearchResult::Filled : SearchResult::NotChosen;
}

// --- While typing --------------------------------------------------------------------------------------------

std::optional<LookupQuestion> TSelector::MatchQuestion(SelectorControl* control, const QString& text)
{
  SearchedControl searched(control, Field, text);
  const QScopedValueRollback<SelectorControl*> current(Control, &searched);
  takeControl();
  IBaseIntf* baseForm = form();
  if (ReadOnly || (baseForm && (baseForm->ifInCopyData() || (Field && baseForm->SetSelectorAction(Field) < 0))))
    return std::nullopt;
  const int index = GetIndex();
  if (index < 0)
    return std::nullopt;
  const TSelectorItem& item = Items[index];
  LookupQuestion question;
  question.itemIndex = index;
  question.formId = item.FormId;
  question.text = text;
  const QStringList targets = selectorFieldNames(item.TargetFields);
  for (qsizetype i = 0; i < targets.size(); ++i)
    if (targets[i].compare(FieldName, Qt::CaseInsensitive) == 0)
      question.shownField = selectorFieldNames(item.SourceFields).value(i);
  question.filter = itemFilter(item.Filter);
  question.publicFilter = itemFilter(item.PublicFilter);
  question.typedRows = rowsOnTypedText(item);
  return question;
}

bool TSelector::TakeMatch(const LookupQuestion& question, const LookupMatches& matches, int row)
{
  if (row < 0 || row >= matches.rows.size() || GetIndex() != question.itemIndex)
    return false;
  const TSelectorItem item = Items[question.itemIndex];
  return TakeSelectorRecord(item.SourceFields, item.TargetFields, DataSet, matches.columns, matches.rows[row], Owner,
                            FieldName);
}

// --- Conditions ----------------------------------------------------------------------------------------------

bool TSelector::CheckCondition(const FilterArray& condition, TClientDataSet* dataSet, QObject* owner) const
{
  return kalvor::CheckCondition(condition, dataSet, owner, Control, ReturnFilterFieldValue);
}

int TSelector::GetIndex() const
{
  return GetSelectorIndexFromCondition(Items, DataSet, Owner, Control, ReturnFilterFieldValue);
}

}  // namespace kalvor
