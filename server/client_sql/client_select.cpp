#include "server/client_sql/client_select.h"

#include "rpc/rpc_error.h"
#include "server/queries/filter_condition.h"
#include "server/rights/row_security.h"

namespace kalvor::server {

namespace {

// Rows of these come in their own order when nothing else is asked for.
struct NaturalOrder {
  const char* table;
  const char* column;
};
constexpr NaturalOrder naturalOrders[] = {{"S_FieldList", "FieldIndex"}, {"S_QueryList", "Ds_Index"}};

[[noreturn]] void refuseSelect(const QString& what)
{
  throw RpcError(RpcError::Refused, QStringLiteral("Заявката не е разрешена: %1.").arg(what));
}

// The tables of one statement and the names that their columns have in it.
class SelectScope : public FieldResolver {
 public:
  SelectScope(const Access& access, const ClientSelect& select) : catalogue_(access.metadata.catalogue())
  {
    add(select.table);
    for (const SelectJoin& join : select.joins) {
      add(join.table);
    }
  }

  const QList<const TableInfo*>& tables() const { return tables_; }

  Fragment column(const SelectColumn& wanted) const
  {
    const auto found = resolve(wanted.table.isEmpty() ? wanted.column : wanted.table + u'.' + wanted.column);
    if (!found) {
      refuseSelect(QStringLiteral("непозната колона „%1“").arg(wanted.column.left(64)));
    }
    return found->expression;
  }

  std::optional<ResolvedField> resolve(const QString& name) const override
  {
    const QString qualifier = name.contains(u'.') ? name.section(u'.', 0, 0).trimmed() : QString();
    const QString columnName = name.contains(u'.') ? name.section(u'.', 1).trimmed() : name;
    std::optional<ResolvedField> found;
    for (const TableInfo* table : tables_) {
      const bool meant = qualifier.isEmpty() || qualifier.compare(table->name, Qt::CaseInsensitive) == 0;
      const ColumnInfo* column = meant ? table->column(columnName) : nullptr;
      if (column && found) {
        return {};
      }
      if (column) {
        found = ResolvedField{{quotedName(table->name) + u'.' + quotedName(column->name), {}}, column->type, column->size,
                              column->name};
      }
    }
    return found;
  }

 private:
  void add(const QString& name)
  {
    const TableInfo* table = catalogue_.table(name);
    if (!table || tables_.contains(table)) {
      refuseSelect(QStringLiteral("непозната таблица „%1“").arg(name.left(64)));
    }
    tables_.append(table);
  }

  const Catalogue& catalogue_;
  QList<const TableInfo*> tables_;
};

// What the rights and the company ask of the rows of a table.
Fragment tableCondition(const Access& access, const TableInfo& table)
{
  Fragment company;
  if (const ColumnInfo* column = access.metadata.catalogue().companyColumn(table)) {
    company = {quotedName(table.name) + u'.' + quotedName(column->name) + QStringLiteral(" = ?"), {access.session.companyId}};
  }
  return allOf({company, tableSecurity(access, table, table.name)});
}

Fragment selectList(const ClientSelect& select, const SelectScope& scope)
{
  Fragment list;
  for (const SelectColumn& column : select.columns) {
    // Its name in the result stays here: rows are answered without names, and no word of the client's is to go further.
    list += QLatin1StringView(list.isEmpty() ? "" : ", ") + scope.column(column);
  }
  return list;
}

Fragment joinedTables(const Access& access, const ClientSelect& select, const SelectScope& scope)
{
  Fragment from{quotedName(scope.tables().first()->name), {}};
  for (qsizetype i = 0; i < select.joins.size(); ++i) {
    const SelectJoin& join = select.joins.at(i);
    const TableInfo& table = *scope.tables().at(i + 1);
    QList<Fragment> conditions;
    for (const ColumnPair& pair : join.equal) {
      conditions.append(scope.column(pair.left) + QStringLiteral(" = ") + scope.column(pair.right));
    }
    conditions.append(tableCondition(access, table));
    from += QLatin1StringView(join.left ? " LEFT JOIN " : " INNER JOIN ") + quotedName(table.name) +
            QStringLiteral(" ON ") + allOf(conditions);
  }
  return from;
}

QString naturalOrder(const TableInfo& table)
{
  for (const NaturalOrder& order : naturalOrders) {
    if (table.name.compare(QLatin1StringView(order.table), Qt::CaseInsensitive) == 0) {
      return QStringLiteral(" ORDER BY %1.%2").arg(quotedName(table.name), quotedName(QLatin1StringView(order.column)));
    }
  }
  return {};
}

}  // namespace

Fragment clientSelectStatement(const Access& access, const ClientSelect& select, const FilterArray& filter)
{
  const SelectScope scope(access, select);
  const TableInfo& first = *scope.tables().first();
  const Fragment where =
      allOf({tableCondition(access, first), filterCondition(select.where, scope), filterCondition(filter, scope)});
  Fragment sql = QStringLiteral("SELECT ") + selectList(select, scope) + QStringLiteral(" FROM ") +
                 joinedTables(access, select, scope);
  if (!where.isEmpty()) {
    sql += QStringLiteral(" WHERE ") + where;
  }
  return sql + naturalOrder(first);
}

}  // namespace kalvor::server
