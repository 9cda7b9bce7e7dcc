#include "forms/windows/field_rules.h"

namespace kalvor {

bool FieldRules::attach(TClientDataSet* dataSet, const QList<FieldRule>& rules)
{
  if (tables_.contains(dataSet)) {
    return false;
  }
  tables_[dataSet].rules = rules;
  for (const FieldRule& rule : rules) {
    TField* field = dataSet->FindField(rule.field);
    if (!field) {
      continue;
    }
    field->OnChange = [this, dataSet, name = rule.field, previous = field->OnChange](TField* changedField) {
      if (previous) {
        previous(changedField);
      }
      changed(dataSet, name);
    };
  }
  return true;
}

void FieldRules::changed(const TClientDataSet* dataSet, const QString& name)
{
  if (form_.isFillingDefaults()) {
    return;
  }
  QStringList& waiting = tables_[dataSet].waiting;
  if (form_.isPuttingChoice()) {
    waiting.append(name);
    return;
  }
  waiting = {name};  // what a refused choice left behind does not count
  runWaiting(dataSet);
}

void FieldRules::runWaiting(const TClientDataSet* dataSet)
{
  const auto table = tables_.find(dataSet);
  if (table == tables_.end()) {
    return;
  }
  const QStringList fields = std::exchange(table->waiting, {});
  const FieldRule::Others other = [&fields](QStringView name) { return fields.contains(name, Qt::CaseInsensitive); };
  const QList<FieldRule> rules = table->rules;
  for (const FieldRule& rule : rules) {
    if (other(rule.field)) {
      rule.apply(other);
    }
  }
}

}  // namespace kalvor
