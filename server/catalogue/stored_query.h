// A stored query: the SELECT behind a form's dataset, the descriptions of its fields, and what its names mean.
#pragma once

#include <array>

#include "server/catalogue/catalogue.h"
#include "server/sql/fragment.h"
#include "server/sql/select_parts.h"

namespace kalvor::server {

// Columns of S_FieldList in the order of a field description row.
enum class FieldColumn : quint8 {
  FieldName, Caption, FieldType, Required, Updatable, Visible, Filterable, ReadOnly, CopyField, CaptionML,
  DisplayFormat, Origin, FieldIndex, FieldFilter, DefaultValue, OptionCaption, SelectorDesc, OptionCaptionML,
  FlowFieldDescr
};
constexpr int fieldColumnCount = 19;
KALVOR_SERVER const QString& fieldColumnNames();  // comma list in that order

struct FieldRow {
  VariantArray values;  // fieldColumnCount of them
  QString text(FieldColumn column) const { return values.value(int(column)).toString(); }
};

// One column of the query's result.
struct QueryItem {
  FieldDef field;          // type Unknown: an expression without a declared type
  QString declaredType;    // of an expression, "AMOUNT" ...
  QString alias;           // a plain column: its table's alias and its name
  QString column;
  qsizetype begin = 0;     // an expression: its tokens
  qsizetype end = 0;
  bool ofBaseTable = false;
};

// What a name in a filter or an order stands for.
struct ResolvedField {
  Fragment expression;
  DataType type = DataType::Unknown;
  int size = 0;
  QString caption;         // for messages
};

class KALVOR_SERVER FieldResolver {
 public:
  virtual ~FieldResolver() = default;
  virtual std::optional<ResolvedField> resolve(const QString& name) const = 0;
};

struct KALVOR_SERVER StoredQuery {
  int id = 0;
  int formId = 0;
  int dsIndex = 0;
  QString description;
  QString sqlText;
  QString baseTable;
  QString keyField;
  QString companyField;
  QString defaultOrder;
  QList<FieldRow> rows;

  // Made by compile().
  SelectParts parts;
  QList<QueryItem> items;
  QString baseAlias;
  const TableInfo* base = nullptr;  // of the catalogue; null: nothing is written through it

  // Reads the text against the catalogue, which must live as long as this. Returns why it cannot be used; empty = fine.
  QString compile(const Catalogue& catalogue);

  const QueryItem* item(QStringView name) const;
  const FieldRow* row(QStringView fieldName) const;
  QString captionOf(const QString& fieldName) const;  // the name itself when there is none
  // The item's value as an expression of the statement: inside a nested query's wrapper, its column.
  Fragment expression(const QueryItem& item, const ParameterArray& parameters) const;
  Fragment keyExpression() const;                     // empty: the query has no key
  Fragment companyCondition(const QString& company) const;  // empty: no company data, or it goes inside
  std::optional<ResolvedField> resolve(const QString& name, const ParameterArray& parameters) const;
  // SELECT list FROM tables, with the conditions after WHERE (" WHERE " included when there is one).
  Fragment selectFrom(const Fragment& list, const QList<Fragment>& conditions, const QString& company,
                      const ParameterArray& parameters) const;
  Fragment itemList(const ParameterArray& parameters) const;

 private:
  QString compileItem(const SelectItem& source, const Catalogue& catalogue);
  void appendColumn(const SelectTable& table, const ColumnInfo& column, const QString& name);
  const SelectTable* tableOf(QStringView alias) const;
  // "Alias.Column" as an expression over the tables; empty when there is no such table.
  QString qualifiedColumn(const QString& name) const;
  std::optional<ResolvedField> resolveItem(const QueryItem& item, const ParameterArray& parameters) const;
  std::optional<ResolvedField> resolveBaseColumn(const QString& name) const;
};

// Names of a stored query under the parameters of one request.
class KALVOR_SERVER QueryFields : public FieldResolver {
 public:
  QueryFields(const StoredQuery& query, const ParameterArray& parameters) : query_(query), parameters_(parameters) {}
  std::optional<ResolvedField> resolve(const QString& name) const override { return query_.resolve(name, parameters_); }

 private:
  const StoredQuery& query_;
  const ParameterArray& parameters_;
};

}  // namespace kalvor::server
