#include "import/import_mapping.h"

#include <algorithm>

#include "data/data_error.h"

namespace kalvor {
namespace {

enum MappingItem : int { mapKind, mapKey, mapTarget, mapRange, mapDefault, mapLinks, mapQuery, mapTable, mapConditions };

constexpr int firstFreeColumn = 900;

// The items of a description; more than the format knows stay as they are.
class DescriptionText {
 public:
  explicit DescriptionText(const QString& description) : items_(description.split(u'|')) {}
  QString item(MappingItem index) const { return items_.value(index); }
  void set(MappingItem index, const QString& text)
  {
    if (text.contains(u'|'))
      throw DataError(QStringLiteral("Стойността не може да съдържа „|“: ") + text);
    while (items_.size() <= index)
      items_.append(QString());
    items_[index] = text;
  }
  QString text() const
  {
    qsizetype count = items_.size();
    while (count > 0 && items_[count - 1].isEmpty())
      --count;
    return items_.first(count).join(u'|');
  }

 private:
  QStringList items_;
};

bool isLookupEntry(const DescriptionText& description) { return description.item(mapKind) == u"2"; }

QStringList fieldNames(const QString& list)
{
  QStringList names;
  for (const QString& name : list.split(u','))
    names.append(name.trimmed());
  return names;
}

QString listName(const QString& links, int index) { return links.section(u';', index, index).trimmed(); }

QList<ImportLookupText::Condition> conditionTexts(const QString& text)
{
  QList<ImportLookupText::Condition> conditions;
  for (const QString& part : text.split(u';')) {
    const QStringList items = part.split(u'#');
    if (!part.trimmed().isEmpty())
      conditions.append({items.value(0), items.value(1), items.value(2), items.value(3), items.value(4)});
  }
  return conditions;
}

QString conditionItem(const QString& text)
{
  const QString item = text.trimmed();
  for (const QChar sign : {u'#', u';', u'|'})
    if (item.contains(sign))
      throw DataError(QStringLiteral("Условието не може да съдържа „%1“: %2").arg(sign).arg(item));
  return item;
}

QString shortField(const QString& name) { return name.section(u'.', -1); }

QString lookupSummary(const ImportLookupText& lookup, int targetIndex)
{
  QStringList conditions;
  for (const ImportLookupText::Condition& condition : lookup.conditions) {
    const bool literal = condition.value.contains(u'@');
    const QString value = literal ? u'„' + QString(condition.value).remove(condition.value.indexOf(u'@'), 1) + u'“'
                                  : QStringLiteral("колона ") + condition.value.trimmed();
    conditions.append(shortField(condition.field) + u' ' + condition.op + u' ' + value);
  }
  return lookup.table + u'.' + fieldNames(lookup.sourceFields).value(targetIndex) + QStringLiteral(" при ") +
         conditions.join(QStringLiteral(" и "));
}

QString conditionColumns(const ImportLookupText& lookup)
{
  QStringList columns;
  for (const ImportLookupText::Condition& condition : lookup.conditions)
    if (!condition.value.contains(u'@'))
      columns.append(condition.value.trimmed());
  return columns.join(u',');
}

bool sameField(const QString& a, const QString& b) { return a.compare(b, Qt::CaseInsensitive) == 0; }

// The rows that the entries of one part make, in their order.
QList<ImportMappingRow> entryRows(const ImportText& text, ImportSection part)
{
  QList<ImportMappingRow> rows;
  const QList<ImportTextEntry> entries = text.entries(part);
  for (int i = 0; i < entries.size(); ++i) {
    const DescriptionText description(entries[i].value());
    ImportMappingRow row;
    row.part = part;
    row.entry = i;
    row.key = description.item(mapKey) == u"1";
    row.range = description.item(mapRange);
    row.column = entries[i].name().trimmed();
    if (description.item(mapKind) == u"1") {
      row.field = description.item(mapTarget);
      row.defaultText = description.item(mapDefault);
      rows.append(row);
    } else if (isLookupEntry(description)) {
      const ImportLookupText lookup = importLookupText(text, part, i);
      const QStringList targets = fieldNames(lookup.targetFields);
      row.isLookup = true;
      row.column = conditionColumns(lookup);
      for (int target = 0; target < targets.size(); ++target) {
        row.field = targets[target];
        row.lookup = lookupSummary(lookup, target);
        rows.append(row);
      }
    }
  }
  return rows;
}

int freeColumn(const ImportText& text)
{
  int column = firstFreeColumn;
  for (const ImportSection part : {ImportSection::Master, ImportSection::Detail})
    for (const ImportTextEntry& entry : text.entries(part))
      column = std::max(column, entry.name().trimmed().toInt() + 1);
  return column;
}

QString checkedColumn(const QString& text)
{
  bool isNumber = false;
  const QString column = text.trimmed();
  if (column.toInt(&isNumber) < 1 || !isNumber)
    throw DataError(QStringLiteral("Колоната е номер от 1 нагоре: ") + column);
  return column;
}

// How many lookups name the list.
int listUses(const ImportText& text, const QString& name)
{
  int uses = 0;
  for (const ImportSection part : {ImportSection::Master, ImportSection::Detail, ImportSection::Fallbacks})
    for (const ImportTextEntry& entry : text.entries(part)) {
      const QString links = DescriptionText(entry.value()).item(mapLinks);
      uses += sameField(listName(links, 0), name) || sameField(listName(links, 1), name) ? 1 : 0;
    }
  return uses;
}

QString freshListName(const ImportText& text, const QString& beginning)
{
  int number = 1;
  while (!text.value(ImportSection::LinkFields, beginning + QString::number(number)).isEmpty())
    ++number;
  return beginning + QString::number(number);
}

// Gives the name under which the list holds these fields.
QString putList(ImportText& text, const QString& name, const QString& fields, const QString& beginning)
{
  const QString wanted = fieldNames(fields).join(u',');
  if (wanted.contains(u'='))
    throw DataError(QStringLiteral("Името на поле не може да съдържа „=“: ") + wanted);
  if (!name.isEmpty() && fieldNames(text.value(ImportSection::LinkFields, name)).join(u',') == wanted)
    return name;
  const QString target = name.isEmpty() || listUses(text, name) > 1 ? freshListName(text, beginning) : name;
  text.setValue(ImportSection::LinkFields, target, wanted);
  return target;
}

}  // namespace

ImportLookupText importLookupText(const ImportText& text, ImportSection part, int entry)
{
  ImportLookupText lookup;
  const ImportTextEntry source = text.entries(part).value(entry);
  const DescriptionText description(source.value());
  lookup.column = source.name().trimmed();
  lookup.key = description.item(mapKey) == u"1";
  lookup.range = description.item(mapRange);
  lookup.fallback = description.item(mapDefault);
  lookup.query = description.item(mapQuery);
  lookup.table = description.item(mapTable);
  lookup.sourceList = listName(description.item(mapLinks), 0);
  lookup.targetList = listName(description.item(mapLinks), 1);
  lookup.sourceFields = text.value(ImportSection::LinkFields, lookup.sourceList);
  lookup.targetFields = text.value(ImportSection::LinkFields, lookup.targetList);
  lookup.conditions = conditionTexts(description.item(mapConditions));
  return lookup;
}

void putImportLookup(ImportText& text, ImportSection part, int entry, const ImportLookupText& lookup)
{
  ImportText changed = text;
  const ImportTextEntry old = text.entries(part).value(entry);
  DescriptionText description(old.value());
  if (!isLookupEntry(description))
    description = DescriptionText(QString());
  if (fieldNames(lookup.sourceFields).size() != fieldNames(lookup.targetFields).size())
    throw DataError(QStringLiteral("Полетата, които се вземат, и тези, които се попълват, трябва да са равен брой."));
  QStringList conditions;
  for (const ImportLookupText::Condition& condition : lookup.conditions) {
    const QString value = conditionItem(condition.value);
    if (!value.contains(u'@'))
      checkedColumn(value);
    QStringList items{conditionItem(condition.field), conditionItem(condition.op), conditionItem(condition.type), value};
    if (!condition.conjunction.trimmed().isEmpty())
      items.append(conditionItem(condition.conjunction));
    conditions.append(items.join(u'#'));
  }
  const QString sourceList = putList(changed, lookup.sourceList, lookup.sourceFields, QStringLiteral("Source"));
  const QString targetList = putList(changed, lookup.targetList, lookup.targetFields, QStringLiteral("Target"));
  const QString column = checkedColumn(lookup.column);
  description.set(mapKind, QStringLiteral("2"));
  description.set(mapKey, lookup.key ? QStringLiteral("1") : QStringLiteral("0"));
  description.set(mapRange, lookup.range.trimmed());
  description.set(mapDefault, lookup.fallback.trimmed());
  description.set(mapLinks, sourceList + u';' + targetList);
  description.set(mapQuery, lookup.query.trimmed());
  description.set(mapTable, lookup.table.trimmed());
  description.set(mapConditions, conditions.join(u';'));
  changed.setEntry(part, entry, column + u'=' + description.text());
  text = changed;
}

QList<ImportMappingRow> importMapping(const ImportText& text, const QList<ImportFormField>& fields)
{
  QList<ImportMappingRow> rows;
  for (const ImportSection part : {ImportSection::Master, ImportSection::Detail}) {
    QList<ImportMappingRow> written = entryRows(text, part);
    for (const ImportFormField& field : fields) {
      if (field.part != part)
        continue;
      bool found = false;
      for (qsizetype i = 0; i < written.size();) {
        if (!sameField(written[i].field, field.name)) {
          ++i;
          continue;
        }
        ImportMappingRow row = written.takeAt(i);
        row.caption = field.caption.isEmpty() ? field.name : field.caption;
        row.required = field.required;
        rows.append(row);
        found = true;
      }
      if (!found && field.visible) {
        ImportMappingRow row;
        row.part = part;
        row.field = field.name;
        row.caption = field.caption.isEmpty() ? field.name : field.caption;
        row.required = field.required;
        rows.append(row);
      }
    }
    rows += written;
  }
  return rows;
}

void putImportMapping(ImportText& text, const ImportMappingRow& row)
{
  const ImportTextEntry old = text.entries(row.part).value(row.entry);
  DescriptionText description(old.value());
  const QString key = row.key ? QStringLiteral("1") : QStringLiteral("0");
  if (row.isLookup) {
    if (row.key != (description.item(mapKey) == u"1"))
      description.set(mapKey, key);
    text.setEntry(row.part, row.entry, old.name() + u'=' + description.text());
    return;
  }
  const QString column = row.column.trimmed();
  const QString defaultText = row.defaultText.trimmed();
  if (column.isEmpty() && defaultText.isEmpty()) {
    text.removeEntry(row.part, row.entry);
    return;
  }
  const QString position = column.isEmpty() ? QString::number(freeColumn(text)) : checkedColumn(column);
  description.set(mapKind, QStringLiteral("1"));
  description.set(mapTarget, row.field);
  description.set(mapRange, row.range.trimmed());
  description.set(mapDefault, defaultText);
  if (row.key != (description.item(mapKey) == u"1") || description.item(mapKey).isEmpty())
    description.set(mapKey, key);
  text.setEntry(row.part, row.entry, position + u'=' + description.text());
}

}  // namespace kalvor
