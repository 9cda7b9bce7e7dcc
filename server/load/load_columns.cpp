#include "server/load/load_columns.h"

#include <QSet>

#include "server/load/load_values.h"

namespace kalvor::server {

namespace {

struct UsualColumn {
  const char* table;
  const char* fileColumn;
  const char* column;
  const char* lookupTable = nullptr;
  const char* lookupKey = nullptr;
};

constexpr UsualColumn usualColumns[] = {
    {"N_Item", "code", "Code"},
    {"N_Item", "description", "Name"},
    {"N_Contragent", "code", "Code"},
    {"N_Contragent", "country", "Country"},
    {"D_SaleInvoiceHeader", "number", "DocumentNo"},
    {"D_SaleInvoiceHeader", "date", "DocumentDate"},
    {"D_SaleInvoiceHeader", "customer", "Contragent_Id", "N_Contragent", "Code"},
    {"D_SaleInvoiceLine", "invoice", "Master_Id", "D_SaleInvoiceHeader", "DocumentNo"},
    {"D_SaleInvoiceLine", "item", "Code"},
    {"D_SaleInvoiceLine", "quantity", "Quantity"},
    {"D_SaleInvoiceLine", "price", "UnitPrice"},
};

const UsualColumn* usualColumn(const QString& table, const QString& fileColumn)
{
  const auto* found = std::find_if(std::begin(usualColumns), std::end(usualColumns), [&](const UsualColumn& usual) {
    return table == QLatin1StringView(usual.table) &&
           fileColumn.compare(QLatin1StringView(usual.fileColumn), Qt::CaseInsensitive) == 0;
  });
  return found == std::end(usualColumns) ? nullptr : found;
}

const ColumnInfo& columnNamed(const TableInfo& table, const QString& name)
{
  const ColumnInfo* column = table.column(name);
  if (!column) {
    throw LoadError(QStringLiteral("таблица %1 няма колона „%2“").arg(table.name, name));
  }
  return *column;
}

std::shared_ptr<KeyLookup> lookupIn(Connection& connection, const QString& tableName, const QString& keyColumn,
                                    const QString& companyId)
{
  const TableInfo table = loadableTable(connection, tableName);
  columnNamed(table, QStringLiteral("Id"));
  const QString company = table.column(u"Comp_Id") ? companyId : QString();
  return std::make_shared<KeyLookup>(connection, table.name, columnNamed(table, keyColumn).name, company);
}

LoadCell lookupCell(Connection& connection, const LoadRequest& request, const TableInfo& table,
                    const LoadLookup& lookup, const QStringList& header)
{
  const int at = int(header.indexOf(lookup.fileColumn));
  if (at < 0) {
    throw LoadError(QStringLiteral("%1: няма колона „%2“").arg(request.fileName, lookup.fileColumn));
  }
  return {at, lookup.fileColumn, &columnNamed(table, lookup.column),
          lookupIn(connection, lookup.table, lookup.keyColumn, request.companyId), lookup.table};
}

std::optional<LoadCell> cellForHeader(Connection& connection, const LoadRequest& request, const TableInfo& table,
                                      const QString& name, int at)
{
  if (const auto mapped = request.map.constFind(name); mapped != request.map.cend()) {
    return *mapped == u"-" ? std::nullopt
                           : std::optional(LoadCell{at, name, &columnNamed(table, *mapped), nullptr, {}});
  }
  if (const UsualColumn* usual = usualColumn(table.name, name)) {
    LoadCell cell{at, name, &columnNamed(table, QString::fromLatin1(usual->column)), nullptr, {}};
    if (usual->lookupTable) {
      cell.lookupTable = QString::fromLatin1(usual->lookupTable);
      cell.lookup = lookupIn(connection, cell.lookupTable, QString::fromLatin1(usual->lookupKey), request.companyId);
    }
    return cell;
  }
  if (const ColumnInfo* column = table.column(name)) {
    return LoadCell{at, name, column, nullptr, {}};
  }
  throw LoadError(QStringLiteral("%1: колона „%2“ не съответства на колона на %3; посочете я с --map %2=Колона или я "
                                 "пропуснете с --map %2=-").arg(request.fileName, name, table.name));
}

QList<LoadConstant> readConstants(const LoadRequest& request, const TableInfo& table)
{
  QList<LoadConstant> constants;
  for (auto it = request.constants.cbegin(); it != request.constants.cend(); ++it) {
    const ColumnInfo& column = columnNamed(table, it.key());
    QString error;
    const Variant value = parseCell(it.value().toStdString(), column, error);
    if (!error.isEmpty()) {
      throw LoadError(QStringLiteral("--set %1: %2").arg(it.key(), error));
    }
    constants.append({&column, value});
  }
  return constants;
}

void refuseTwice(const LoadColumns& columns)
{
  QSet<const ColumnInfo*> taken;
  const auto take = [&](const ColumnInfo* column) {
    if (taken.contains(column)) {
      throw LoadError(QStringLiteral("колона %1 получава стойност два пъти").arg(column->name));
    }
    taken.insert(column);
  };
  for (const LoadCell& cell : columns.cells) {
    take(cell.column);
  }
  for (const LoadConstant& constant : columns.constants) {
    take(constant.column);
  }
}

}  // namespace

TableInfo loadableTable(Connection& connection, const QString& name)
{
  for (const TableInfo& table : readTables(connection)) {
    if (!table.view && !table.name.startsWith(u"srv_", Qt::CaseInsensitive) &&
        table.name.compare(name, Qt::CaseInsensitive) == 0) {
      return table;
    }
  }
  throw LoadError(QStringLiteral("няма таблица „%1“").arg(name));
}

LoadColumns planColumns(Connection& connection, const LoadRequest& request, const TableInfo& table,
                        const QStringList& header)
{
  for (auto it = request.map.cbegin(); it != request.map.cend(); ++it) {
    if (!header.contains(it.key())) {
      throw LoadError(QStringLiteral("%1: няма колона „%2“").arg(request.fileName, it.key()));
    }
  }
  LoadColumns columns;
  QSet<QString> looked;
  for (const LoadLookup& lookup : request.lookups) {
    columns.cells.append(lookupCell(connection, request, table, lookup, header));
    looked.insert(lookup.fileColumn);
  }
  for (int i = 0; i < header.size(); ++i) {
    if (looked.contains(header.at(i)) && !request.map.contains(header.at(i))) {
      continue;
    }
    if (const auto cell = cellForHeader(connection, request, table, header.at(i), i)) {
      columns.cells.append(*cell);
    }
  }
  columns.constants = readConstants(request, table);
  refuseTwice(columns);
  return columns;
}

QString naturalKey(const TableInfo& table)
{
  for (const char* name : {"DocumentNo", "Code"}) {
    const ColumnInfo* column = table.column(QString::fromLatin1(name));
    const bool line = table.column(u"Master_Id") != nullptr;
    if (column && !line) {
      return column->name;
    }
  }
  return {};
}

}  // namespace kalvor::server
