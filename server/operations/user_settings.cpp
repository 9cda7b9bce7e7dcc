#include <QDateTime>

#include "rpc/rpc_error.h"
#include "server/client_sql/statement_template.h"
#include "server/operations/handlers.h"
#include "server/operations/own_statements.h"
#include "server/queries/filter_values.h"
#include "server/rights/row_security.h"

namespace kalvor::server {

namespace {

constexpr qsizetype maxSettings = 4 * 1024 * 1024;

constexpr const char* settingsUpsert =
    "IF Exists (Select Id from s_UserSettings where Id = :user and Comp_Id = :company) "
    "Update s_UserSettings Set settings = :settings, C_dateTime = :date, C_Businessgroup_Id = :group, C_User_Id = :user "
    "where Id = :user and Comp_Id = :company "
    "ELSE insert into s_UserSettings values (:user, :company, :settings, :group, :user, :date)";

constexpr const char* printCounter = "UPDATE <table> SET <field> = <field> + 1 WHERE ID = :id AND Comp_Id = :company";

// Puts the settings into the session's own row, which is made when there is none.
void storeSettings(CallContext& call, const QString& settings)
{
  if (settings.size() > maxSettings) {
    throw RpcError(RpcError::Invalid, QStringLiteral("Настройките са твърде големи."));
  }
  const Session& session = call.session;
  const QDateTime now = QDateTime::currentDateTime();
  const qint64 updated = call.db.execute(
      QStringLiteral("UPDATE s_UserSettings SET Settings = ?, C_Businessgroup_Id = ?, C_User_Id = ?, C_dateTime = ? "
                     "WHERE Id = ? AND Comp_Id = ?"),
      {settings, session.groupId, session.userId, now, session.userId, session.companyId});
  if (updated == 0) {
    call.db.execute(QStringLiteral("INSERT INTO s_UserSettings (Id, Comp_Id, Settings, C_Businessgroup_Id, C_User_Id, C_dateTime) "
                                   "VALUES (?, ?, ?, ?, ?, ?)"),
                    {session.userId, session.companyId, settings, session.groupId, session.userId, now});
  }
}

[[noreturn]] void refuseForeignSettings()
{
  throw RpcError(RpcError::Forbidden, QStringLiteral("Може да записвате само собствените си настройки."));
}

bool isOwn(const CallContext& call, const QString& user)
{
  return user.compare(call.session.userId, Qt::CaseInsensitive) == 0;
}

// A column that counts prints: an integer whose name says so.
bool countsPrints(const ColumnInfo& column)
{
  return isIntegerType(column.type) && (column.name.contains(QLatin1StringView("Print"), Qt::CaseInsensitive) ||
                                        column.name.contains(QLatin1StringView("Copies"), Qt::CaseInsensitive));
}

bool mayPrint(const CallContext& call, const TableInfo& table)
{
  const QList<int> forms = call.metadata->formsOver(table.name);
  return std::any_of(forms.begin(), forms.end(), [&](int form) { return formRights(call.access(), form).has(FormRight::Print); });
}

int countPrint(CallContext& call, const QHash<QString, QString>& values)
{
  const TableInfo* table = call.metadata->catalogue().table(values.value(QStringLiteral("table")));
  const ColumnInfo* counter = table ? table->column(values.value(QStringLiteral("field"))) : nullptr;
  const ColumnInfo* company = table ? table->column(u"Comp_Id") : nullptr;
  const ColumnInfo* key = table ? table->column(u"Id") : nullptr;
  if (!counter || !company || !key || table->view || !countsPrints(*counter)) {
    throw RpcError(RpcError::Refused, QStringLiteral("Заявката не е разрешена."));
  }
  if (!mayPrint(call, *table) || values.value(QStringLiteral("company")) != call.session.companyId) {
    throw RpcError(RpcError::Forbidden, QStringLiteral("Нямате право на печат на този документ."));
  }
  const QString name = quotedName(counter->name);
  const Fragment row = allOf({Fragment{quotedName(key->name) + QStringLiteral(" = ?"), {values.value(QStringLiteral("id"))}},
                              Fragment{quotedName(company->name) + QStringLiteral(" = ?"), {call.session.companyId}},
                              tableSecurity(call.access(), *table, table->name)});
  const qint64 counted = call.db.execute(
      QStringLiteral("UPDATE %1 SET %2 = COALESCE(%2, 0) + 1 WHERE ").arg(quotedName(table->name), name) + row.sql, row.values);
  return counted == 1 ? 0 : -1;
}

}  // namespace

Variant callUpdateUserSettings(CallContext& call)
{
  const auto users = filterValueList(call.text(1));
  const VariantArray texts = call.arguments.at(0).toList();
  if (!users || users->size() != texts.size()) {
    return -1;
  }
  for (qsizetype i = 0; i < texts.size(); ++i) {
    if (!isOwn(call, users->at(i).toString())) {
      refuseForeignSettings();
    }
    storeSettings(call, variantText(texts.at(i)));
  }
  return 0;
}

std::optional<int> runOwnStatement(CallContext& call, const QString& statement)
{
  if (const auto values = matchTemplate(statement, settingsUpsert)) {
    if (!isOwn(call, values->value(QStringLiteral("user"))) ||
        values->value(QStringLiteral("company")) != call.session.companyId) {
      refuseForeignSettings();
    }
    storeSettings(call, values->value(QStringLiteral("settings")));
    return 0;
  }
  if (const auto values = matchTemplate(statement, printCounter)) {
    return countPrint(call, *values);
  }
  return {};
}

void refuseStatement()
{
  throw RpcError(RpcError::Refused, QStringLiteral("Заявката не е разрешена."));
}

Variant callExecuteSqlScript(CallContext& call)
{
  const auto result = runOwnStatement(call, call.text(0));
  return result ? *result : (refuseStatement(), 0);
}

}  // namespace kalvor::server
