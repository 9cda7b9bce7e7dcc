#include "registry/lookup_matches.h"

#include <algorithm>

#include "filters/filter_expression.h"
#include "forms/field_metadata.h"
#include "session/server_calls.h"

namespace kalvor {
namespace {

const QString likeOperator = QStringLiteral("LIKE");
const QLatin1String codeName("Code");
const QLatin1String nameName("Name");

// The question's filter with the field and the pattern where it compares with the text.
FilterArray comparedWith(const LookupQuestion& question, const QString& field, const QString& pattern)
{
  FilterArray filter = question.filter;
  for (const int row : question.typedRows) {
    if (!field.isEmpty())
      filter[row].field = field;
    filter[row].op = likeOperator;
    filter[row].value = pattern;
  }
  if (question.typedRows.isEmpty())
    filter = GetAllFilter({FilterRow{field, likeOperator, pattern, {}, {}}}, filter);
  return GetAllFilter(question.publicFilter, filter);
}

int columnNamed(const QStringList& columns, const QString& name)
{
  for (qsizetype i = 0; i < columns.size(); ++i)
    if (columns[i].compare(name, Qt::CaseInsensitive) == 0)
      return int(i);
  return -1;
}

void takeColumns(const QList<FieldDef>& fields, const QString& shownField, LookupMatches& matches)
{
  for (const FieldDef& field : fields)
    matches.columns.append(field.name);
  const int shown = columnNamed(matches.columns, shownField);
  const int code = columnNamed(matches.columns, codeName);
  matches.nameColumn = columnNamed(matches.columns, nameName);
  matches.codeColumn = shown >= 0 && shown != matches.nameColumn ? shown : code;
}

}  // namespace

QList<LookupAttempt> lookupAttempts(const LookupQuestion& question, const QString& codeField, const QString& nameField)
{
  QList<LookupAttempt> attempts;
  const auto add = [&](const QString& field, const QString& pattern) {
    const QString order = (field.isEmpty() ? question.filter[question.typedRows.first()].field : field);
    const LookupAttempt attempt{comparedWith(question, field, pattern), order + QLatin1String(" ASC")};
    if (!attempts.contains(attempt))
      attempts.append(attempt);
  };
  const QString beginning = question.text + u'%';
  const QString anywhere = u'%' + beginning;
  if (!question.typedRows.isEmpty())
    add(QString(), beginning);
  for (const QString& field : {codeField, nameField})
    if (!field.isEmpty())
      add(field, beginning);
  if (!nameField.isEmpty() || !question.typedRows.isEmpty())
    add(nameField, anywhere);
  return attempts;
}

LookupFinder::FormFields LookupFinder::fieldsOf(int formId)
{
  if (const auto known = fields_.constFind(formId); known != fields_.constEnd())
    return *known;
  VariantArray arguments{formId, 0, Variant()};
  calls_.Call(QStringLiteral("GetFieldsDescription"), arguments);
  FormFields fields;
  for (const Variant& row : arguments[2].toList()) {
    const FieldDescription description(row);
    if (description.fieldName().compare(codeName, Qt::CaseInsensitive) == 0)
      fields.code = description.filterName();
    else if (description.fieldName().compare(nameName, Qt::CaseInsensitive) == 0)
      fields.name = description.filterName();
  }
  fields_.insert(formId, fields);
  return fields;
}

// False: the server has no such form.
bool LookupFinder::takeRecords(const LookupQuestion& question, const LookupAttempt& attempt, LookupMatches& matches)
{
  if (requestData(calls_, question.formId, 0, provider_, attempt.filter, attempt.order, {}) != 0)
    return false;
  const DataPacketPtr packet = calls_.openProvider(provider_, lookupMatchCount);
  if (!packet)
    return false;
  const RecordSet& records = packet->records;
  if (matches.columns.isEmpty())
    takeColumns(records.fields, question.shownField, matches);
  for (qsizetype row = 0; row < records.rows && matches.rows.size() < lookupMatchCount; ++row) {
    VariantArray values;
    for (int i = 0; i < records.fields.size(); ++i)
      values.append(records.value(row, i));
    if (!matches.rows.contains(values))
      matches.rows.append(values);
  }
  return true;
}

LookupMatches LookupFinder::find(const LookupQuestion& question)
{
  LookupMatches matches;
  if (provider_.isEmpty())
    provider_ = createDynamicProvider(calls_);
  const FormFields fields = fieldsOf(question.formId);
  for (const LookupAttempt& attempt : lookupAttempts(question, fields.code, fields.name))
    if (matches.rows.size() >= lookupMatchCount || !takeRecords(question, attempt, matches))
      break;
  const int first = matches.codeColumn >= 0 ? matches.codeColumn : matches.nameColumn;
  if (first >= 0)
    std::stable_partition(matches.rows.begin(), matches.rows.end(), [&](const VariantArray& row) {
      return variantText(row[first]).compare(question.text, Qt::CaseInsensitive) == 0;
    });
  return matches;
}

}  // namespace kalvor
