// Who works in the demo companies, and what each may do (who they are stands in demo_company.h).
#include "server/demo/demo_names.h"
#include "server/demo/demo_parts.h"
#include "server/load/row_inserter.h"

namespace kalvor::server {

namespace {

enum class Role : quint8 { Administrator, Owner, Cashier, Clerk, Auditor, None };

struct UserSeed {
  const char* company;
  const char* code;
  const char* position;
  Role role;
  bool active;
  const char* objects;  // ids
};
constexpr UserSeed userSeeds[] = {
    {"1", "SUPERVSR", "Администратор", Role::Administrator, true, "1 2 3"},
    {"1", "CASHIER", "Касиер", Role::Cashier, true, "1 2"},
    {"1", "CLERK", "Продавач-консултант", Role::Clerk, true, "1 2"},
    {"1", "AUDITOR", "Одитор", Role::Auditor, true, "1 2 3"},
    {"1", "FORMER", "Касиер", Role::Cashier, false, "2"},
    {"1", "GUEST", "Стажант", Role::None, true, "3"},
    {"2", "SUPERVSR", "Администратор", Role::Administrator, true, "4"},
    {"2", "OWNER", "Управител", Role::Owner, true, "4"},
    {"3", "SUPERVSR", "Администратор", Role::Administrator, true, "5"},
    {"3", "OWNER", "Управител", Role::Owner, true, "5"}};

// Nine letters: read, edit, insert, delete, finish, print, export, edit properties, annul; "-" = no.
struct RoleRights {
  Role role;
  const char* invoices;      // forms 120, 121 and 130; documents to be posted, 500 and 501
  const char* contragents;   // 140 and 141
  const char* others;
  bool ownObjectOnly;
};
constexpr RoleRights roleRights[] = {
    {Role::Owner, "REIDFPXOA", "REIDFPXOA", "REIDFPXOA", false},
    {Role::Cashier, "REI-FP---", "R----P---", "R----P---", false},
    {Role::Clerk, "REIDFPX-A", "REI--PX--", "R----PX--", true},
    {Role::Auditor, "R----PX--", "R----PX--", "R----PX--", false}};

// Users, their rights and how forms are described: the administrator's alone, who needs no rows of rights.
constexpr int firstAdministrationForm = 200;
constexpr int lastAdministrationForm = 213;

// Which column of a form is the object, for who sees his own object's documents alone, and what came of them.
struct ObjectColumn {
  int form;
  const char* column;
};
constexpr ObjectColumn objectColumns[] = {
    {120, "D_SaleInvoiceHeader.C_Businessgroup_Id"}, {121, "D_SaleInvoiceHeader.C_Businessgroup_Id"},
    {130, "D_SaleInvoiceHeader.C_Businessgroup_Id"}, {500, "D_GlobalSaleHeader.C_Businessgroup_Id"},
    {501, "D_GlobalSaleHeader.C_Businessgroup_Id"},  {6, "D_SaleInvoiceHeader.C_Businessgroup_Id"},
    {7, "D_ShipmentHeader.C_Businessgroup_Id"},      {8, "D_SaleCrMemoHeader.C_Businessgroup_Id"},
    {9, "dv_ItemEntryAndShipmentHeader.Businessgroup_Id"}, {10, "dv_ItemValueEntry.Businessgroup_Id"},
    {11, "dv_Entry.Businessgroup_Id"},               {12, "dv_VATEntry.Businessgroup_Id"},
    {13, "dv_ContragentEntry.Businessgroup_Id"},     {14, "dv_ContragentEntryDetail.Businessgroup_Id"},
    {15, "G_LBankAccountEntry.Businessgroup_Id"}};

Variant ownObjectFilter(int form)
{
  const auto* of = std::find_if(std::begin(objectColumns), std::end(objectColumns),
                                [&](const ObjectColumn& entry) { return entry.form == form; });
  return of == std::end(objectColumns)
             ? Variant()
             : Variant(QLatin1StringView(of->column) + QStringLiteral(",=,<#Param(BUSINESSGROUP_ID)#>,"));
}

struct RoleActions {
  Role role;
  int aboveCreditLimit, aboveExpireDebt, belowUnitCost, isCashier, contragentCheck;
};
constexpr RoleActions roleActions[] = {
    {Role::Administrator, 1, 1, 1, 1, 3}, {Role::Owner, 1, 1, 1, 1, 1}, {Role::Cashier, 0, 0, 0, 1, 1},
    {Role::Clerk, 1, 1, 0, 0, 3},         {Role::Auditor, 0, 0, 0, 0, 0}, {Role::None, 0, 0, 0, 0, 0}};

QString userActions(Role role)
{
  const auto* of = std::find_if(std::begin(roleActions), std::end(roleActions),
                                [&](const RoleActions& actions) { return actions.role == role; });
  return QStringLiteral(
             "<Root><UserActions><AboveCreditLimit>%1</AboveCreditLimit><AboveExpireDebt>%2</AboveExpireDebt>"
             "<BelowUnitCost>%3</BelowUnitCost><is_Cashier>%4</is_Cashier><ContrCheckAction>%5"
             "</ContrCheckAction></UserActions></Root>")
      .arg(of->aboveCreditLimit)
      .arg(of->aboveExpireDebt)
      .arg(of->belowUnitCost)
      .arg(of->isCashier)
      .arg(of->contragentCheck);
}

void insertRights(DemoScope& scope, const QString& user, Role role, const RecordSet& forms)
{
  const auto* rights = std::find_if(std::begin(roleRights), std::end(roleRights),
                                    [&](const RoleRights& entry) { return entry.role == role; });
  if (rights == std::end(roleRights)) {
    return;
  }
  RowInserter rows(scope.connection, QStringLiteral("S_Rights"),
                   {"User_Id", "Comp_Id", "Form_Id", "ReadRight", "EditRight", "InsertRight", "DeleteRight",
                    "FinishRight", "PrintRight", "ExportRight", "EditPropsRight", "AnnulRight", "SecurityFilter"});
  for (qsizetype i = 0; i < forms.rows; ++i) {
    const int form = forms.value(i, 0).toInt();
    if (form >= firstAdministrationForm && form <= lastAdministrationForm) {
      continue;
    }
    const bool invoices = form == 120 || form == 121 || form == 130 || form == 500 || form == 501;
    const bool contragents = form == 140 || form == 141;
    const char* letters = invoices ? rights->invoices : contragents ? rights->contragents : rights->others;
    VariantArray row{user, scope.companyId, form};
    for (int right = 0; right < 9; ++right) {
      row.append(int(letters[right] != '-'));
    }
    row.append(rights->ownObjectOnly ? ownObjectFilter(form) : Variant());
    rows.insert(row);
  }
}

}  // namespace

void createDemoUsers(DemoScope& scope, const QString& passwordHash)
{
  Connection& connection = scope.connection;
  RowInserter employees(connection, QStringLiteral("N_Employee"), {"Id", "Comp_Id", "Code", "Name", "Position"});
  RowInserter users(connection, QStringLiteral("N_Users"), {"Id", "Comp_Id", "Employee_Id", "Active", "PasswordHash"});
  RowInserter groups(connection, QStringLiteral("S_UserGroups"), {"User_Id", "Comp_Id", "BusinessGroup_Id"});
  RowInserter settings(connection, QStringLiteral("s_UserSettings"),
                       {"Id", "Comp_Id", "Settings", "C_Businessgroup_Id", "C_User_Id", "C_dateTime", "UserActions"});
  const RecordSet forms = connection.query(QStringLiteral("SELECT ID FROM S_Forms WHERE Ds_Index = 0 ORDER BY ID"));
  for (const UserSeed& seed : userSeeds) {
    if (scope.companyId != QLatin1StringView(seed.company)) {
      continue;
    }
    const QString code = QString::fromLatin1(seed.code);
    const QString employee = scope.id("N_Employee", code);
    const QStringList objects = QString::fromLatin1(seed.objects).split(u' ');
    employees.insert({employee, scope.companyId, code, demoPersonName(scope.random), QString::fromUtf8(seed.position)});
    users.insert({code, scope.companyId, employee, int(seed.active), passwordHash});
    for (const QString& object : objects) {
      groups.insert({code, scope.companyId, object});
    }
    settings.insert({code, scope.companyId, QString(), objects.first(), QStringLiteral("SUPERVSR"),
                     scope.firstDay().startOfDay(), userActions(seed.role)});
    insertRights(scope, code, seed.role, forms);
  }
}

}  // namespace kalvor::server
