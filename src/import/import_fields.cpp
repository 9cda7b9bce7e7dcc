#include "import/import_fields.h"

#include "common/delimited_list.h"

namespace kalvor {
namespace {

// Items of a description, divided by "|".
enum DescriptionItem : int {
  itemKind, itemKey, itemTarget, itemRange, itemDefault, itemLinks, itemQuery, itemSource, itemConditions
};

QString descriptionItem(const QString& description, DescriptionItem item)
{
  return GetItemAtPos(description, QStringLiteral("|"), item);
}

ImportCondition readCondition(const QString& text, ConditionValues values)
{
  const QStringList items = text.split(u'#');
  ImportCondition condition;
  condition.field = items.value(0);
  condition.op = items.value(1);
  condition.typeCode = items.value(2).trimmed().toInt();
  condition.literal = items.value(3);
  condition.conjunction = items.value(4);
  if (values == ConditionValues::Given)
    return condition;
  if (const qsizetype at = condition.literal.indexOf(u'@'); at >= 0) {
    condition.literal.remove(at, 1);
  } else {
    condition.fromColumn = true;
    condition.column = condition.literal.trimmed().toInt();
  }
  return condition;
}

QStringList linkFieldList(const QString& text)
{
  const QString separator = QStringLiteral(",");
  QStringList fields;
  const int count = GetItemsCountInList(text, separator);
  for (int i = 0; i < count; ++i)
    fields.append(GetItemAtPos(text, separator, i).trimmed());
  return fields;
}

}  // namespace

ImportLookup importLookup(const QString& description, const TImportFilter& filter, ConditionValues values)
{
  constexpr int firstFallback = 1;
  ImportLookup lookup;
  lookup.isKey = descriptionItem(description, itemKey) == u"1";
  lookup.query = descriptionItem(description, itemQuery).trimmed().toInt();
  lookup.source = descriptionItem(description, itemSource);
  bool isNumber = false;
  lookup.fallback = descriptionItem(description, itemDefault).trimmed().toInt(&isNumber);
  if (!isNumber)
    lookup.fallback = firstFallback;

  const QString links = descriptionItem(description, itemLinks);
  const QString targets = filter.LinkFieldsDescr.value(GetItemAtPos(links, QStringLiteral(";"), 1).trimmed());
  lookup.sourceFields = filter.LinkFieldsDescr.value(GetItemAtPos(links, QStringLiteral(";"), 0).trimmed());
  lookup.targetFields = linkFieldList(targets);
  lookup.fieldsAgree = !targets.trimmed().isEmpty() && !lookup.sourceFields.trimmed().isEmpty() &&
                       linkFieldList(lookup.sourceFields).size() == lookup.targetFields.size();

  for (const QString& condition : descriptionItem(description, itemConditions).split(u';'))
    if (!condition.trimmed().isEmpty())
      lookup.conditions.append(readCondition(condition, values));
  return lookup;
}

QList<ImportField> importFields(const ImportEntries& entries, const TImportFilter& filter)
{
  QList<ImportField> fields;
  for (int i = 0; i < entries.count(); ++i) {
    const QString description = entries.value(i);
    const QString kind = descriptionItem(description, itemKind);
    ImportField field;
    field.position = entries.name(i).trimmed().toInt();
    field.isKey = descriptionItem(description, itemKey) == u"1";
    if (kind == u"1") {
      field.target = descriptionItem(description, itemTarget);
      field.defaultText = descriptionItem(description, itemDefault);
    } else if (kind == u"2") {
      field.kind = ImportField::Kind::Lookup;
      field.lookup = importLookup(description, filter, ConditionValues::FromRow);
    } else {
      continue;
    }
    fields.append(field);
  }
  return fields;
}

QString fallbackDescription(const ImportEntries& fallbacks, int index)
{
  // The "=" of an entry without a number is that of its condition.
  return fallbacks.name(index).contains(u'|') ? fallbacks.entries().value(index) : fallbacks.value(index);
}

}  // namespace kalvor
