#include "server/catalogue/catalogue.h"

namespace kalvor::server {

namespace {

struct SecretColumn {
  const char* table;
  const char* column;
};
constexpr SecretColumn secretColumns[] = {{"N_Users", "PasswordHash"}};

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
    if (table.name.startsWith(QLatin1StringView("srv_"), Qt::CaseInsensitive)) {
      continue;
    }
    for (const SecretColumn& secret : secretColumns) {
      if (sameName(table.name, secret.table)) {
        table.columns.removeIf([&](const ColumnInfo& column) { return sameName(column.name, secret.column); });
      }
    }
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
