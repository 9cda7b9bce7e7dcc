#include "server/metadata/metadata_loader.h"

#include "server/catalogue/metadata.h"
#include "server/load/row_inserter.h"

namespace kalvor::server {

namespace {

QString digitOf(bool on) { return on ? QStringLiteral("1") : QStringLiteral("0"); }
Variant textOrNull(const QString& text) { return text.isEmpty() ? Variant() : Variant(text); }

bool mayWrite(Connection& connection, const QString& table, const QString& where, const VariantArray& key,
              ExistingRows existing)
{
  if (existing == ExistingRows::Replace) {
    connection.execute(QStringLiteral("DELETE FROM %1 WHERE %2").arg(table, where), key);
    return true;
  }
  return isNull(connection.value(QStringLiteral("SELECT 1 FROM %1 WHERE %2").arg(table, where), key));
}

void insertFields(RowInserter& rows, const DeclaredQuery& query)
{
  for (int i = 0; i < query.fields.size(); ++i) {
    const DeclaredField& field = query.fields.at(i);
    rows.insert({query.id, field.name, textOrNull(field.caption), field.kind, digitOf(field.required),
                 digitOf(field.updatable), digitOf(field.visible), digitOf(field.filterable), digitOf(field.readOnly),
                 digitOf(field.copied), textOrNull(field.displayFormat), textOrNull(field.table), i,
                 textOrNull(field.source), textOrNull(field.defaultValue), textOrNull(field.options),
                 textOrNull(field.selector)});
  }
}

}  // namespace

int loadMetadata(Connection& connection, const DeclaredMetadata& metadata, ExistingRows existing)
{
  RowInserter forms(connection, QStringLiteral("S_Forms"),
                    {"ID", "Ds_Index", "Caption", "ClassName", "CaptionFields", "BaseTable", "FormFilter", "OrderBy",
                     "LineColors", "TextValue", "IntegerValue"});
  RowInserter queries(connection, QStringLiteral("S_QueryList"),
                      {"Id", "Description", "Form_Id", "Ds_Index", "Comment", "SqlText", "BaseTable", "KeyField",
                       "CompanyField", "DefaultOrder"});
  RowInserter fields(connection, QStringLiteral("S_FieldList"),
                     {"SQL_ID", "FieldName", "Caption", "FieldType", "Required", "Updatable", "Visible", "Filterable",
                      "ReadOnly", "CopyField", "DisplayFormat", "Origin", "FieldIndex", "FieldFilter", "DefaultValue",
                      "OptionCaption", "SelectorDesc"});
  for (const DeclaredForm& form : metadata.forms) {
    if (mayWrite(connection, QStringLiteral("S_Forms"), QStringLiteral("ID = ? AND Ds_Index = ?"),
                 {form.id, form.datasetIndex}, existing)) {
      forms.insert({form.id, form.datasetIndex, form.caption, textOrNull(form.className),
                    textOrNull(form.captionFields), textOrNull(form.baseTable), textOrNull(form.filter), textOrNull(form.order),
                    textOrNull(form.lineColors), textOrNull(form.menuGroup), form.menuOrder});
    }
  }
  int written = 0;
  for (const DeclaredQuery& query : metadata.queries) {
    if (!mayWrite(connection, QStringLiteral("S_QueryList"), QStringLiteral("Id = ?"), {query.id}, existing)) {
      continue;
    }
    connection.execute(QStringLiteral("DELETE FROM S_FieldList WHERE SQL_ID = ?"), {query.id});
    queries.insert({query.id, query.description, query.formId, query.datasetIndex, textOrNull(query.comment), query.sql,
                    textOrNull(query.baseTable), textOrNull(query.keyField), textOrNull(query.companyField),
                    textOrNull(query.defaultOrder)});
    insertFields(fields, query);
    ++written;
  }
  if (written > 0) {
    MetadataCache::touch(connection);
  }
  return written;
}

}  // namespace kalvor::server
