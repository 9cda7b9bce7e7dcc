#include "server/catalogue/catalogue.h"

#include "server/store/asked_rules.h"

namespace kalvor::server {

namespace {

// Tables whose key is the company.
constexpr const char* companyTables[] = {"N_Company", "C_CompanySetup", "C_SalesSetup"};

bool sameName(QStringView name, const char* other)
{
  return name.compare(QLatin1StringView(other), Qt::CaseInsensitive) == 0;
}

}  // namespace

Catalogue Catalogue::read(Connection& connection)
{
  Catalogue catalogue;
  for (TableInfo& table : readTables(connection)) {
    if (isServerTable(table.name)) {
      continue;
    }
    table.columns.removeIf([&](const ColumnInfo& column) { return isSecretColumn(table.name, column.name); });
    const QString key = table.name.toCaseFolded();
    catalogue.tables_.insert(key, std::move(table));
  }
  return catalogue;
}

const TableInfo* Catalogue::table(QStringView name) const
{
  const auto found = tables_.constFind(name.toString().toCaseFolded());
  return found == tables_.constEnd() ? nullptr : &*found;
}

const ColumnInfo* Catalogue::companyColumn(const TableInfo& table) const
{
  for (const char* name : companyTables) {
    if (sameName(table.name, name)) {
      return table.column(u"Id");
    }
  }
  return table.column(u"Comp_Id");
}

}  // namespace kalvor::server
