#include "server/rights/row_security.h"

#include "rpc/rpc_error.h"
#include "server/log.h"
#include "server/queries/filter_condition.h"
#include "server/rights/stored_filter.h"

namespace kalvor::server {

namespace {

// Set-up and look-up tables that every user of the company works with, whatever forms are open to him.
constexpr const char* openTables[] = {
    "C_CompanySetup", "C_SalesSetup", "G_LJournalBatch", "G_VATPostingSetup", "N_BusinessGroup", "N_CashBankOperation",
    "N_Company", "N_Contragent", "N_Currency", "N_CurrencyRate", "N_Employee", "N_Item", "N_ItemCrossRef", "N_Measure",
    "N_PaymentTerms", "N_SubDocument", "N_Users", "S_AppPrintForms", "S_DataPort", "S_FieldList",
    "S_FiscalPrinterSetup", "S_PrintDocuments", "S_QueryList", "S_ReferenceTable",
};

bool isOpenTable(const QString& name)
{
  return std::any_of(std::begin(openTables), std::end(openTables), [&](const char* open) {
    return name.compare(QLatin1StringView(open), Qt::CaseInsensitive) == 0;
  });
}

// Columns of one table under an alias, qualified by its name or not.
class TableFields : public FieldResolver {
 public:
  TableFields(const TableInfo& table, QString alias) : table_(table), alias_(std::move(alias)) {}
  std::optional<ResolvedField> resolve(const QString& name) const override
  {
    const bool qualified = name.contains(u'.');
    if (qualified && name.section(u'.', 0, 0).trimmed().compare(table_.name, Qt::CaseInsensitive) != 0) {
      return {};
    }
    const ColumnInfo* column = table_.column(qualified ? name.section(u'.', 1).trimmed() : name);
    return column ? std::optional(ResolvedField{{quotedName(alias_) + u'.' + quotedName(column->name), {}},
                                                column->type, column->size, column->name})
                  : std::nullopt;
  }

 private:
  const TableInfo& table_;
  QString alias_;
};

// A security filter that cannot be applied hides everything: an error in it must not open what it was to close.
Fragment securityCondition(const Access& access, int formId, const QString& text, const FieldResolver& fields)
{
  QString reason;
  try {
    const FilterArray filter = storedFilter(text, access.session);
    if (!filter.isEmpty()) {
      return filterCondition(filter, fields);
    }
    reason = QStringLiteral("not a stored filter");
  } catch (const RpcError& error) {
    reason = error.message();
  }
  logEvent(LogLevel::Error, "security_filter_unusable",
           {{"form", QString::number(formId)}, {"user", access.session.userId}, {"reason", reason}});
  throw RpcError(RpcError::Forbidden,
                 QStringLiteral("Филтърът за достъп до данните на форма с код : %1 не може да бъде приложен."
                                "\r\nМоля, обърнете се към системния администратор за отстраняване на проблема!")
                     .arg(formId));
}

// That the master of a detail row is in the company and passes the filter.
Fragment masterCondition(const Access& access, const StoredQuery& master, const StoredQuery& detail,
                         const ColumnInfo& masterColumn, const QString& filterText, const ParameterArray& parameters)
{
  const QueryFields fields(master, parameters);
  const Fragment security =
      filterText.isEmpty() ? Fragment() : securityCondition(access, master.formId, filterText, fields);
  const QString reference = quotedName(detail.baseAlias) + u'.' + quotedName(masterColumn.name);
  const Fragment key = master.keyExpression();
  const bool captured = std::any_of(master.parts.tables.begin(), master.parts.tables.end(), [&](const SelectTable& table) {
    return table.alias.compare(detail.baseAlias, Qt::CaseInsensitive) == 0;
  });
  if (captured) {
    return reference + QStringLiteral(" IN (") +
           master.selectFrom(key, {security}, access.session.companyId, parameters) + QStringLiteral(")");
  }
  const Fragment link = key + QStringLiteral(" = ") + Fragment{reference, {}};
  return QStringLiteral("EXISTS (") +
         master.selectFrom(Fragment{QStringLiteral("1"), {}}, {link, security}, access.session.companyId, parameters) +
         QStringLiteral(")");
}

}  // namespace

Fragment rowSecurity(const Access& access, const StoredQuery& query, const ParameterArray& parameters, RowUse use)
{
  const QString filter = formRights(access, query.formId).securityFilter;
  const StoredQuery* master = query.dsIndex > 0 ? access.metadata.query(query.formId, 0) : nullptr;
  const ColumnInfo* masterColumn = master && query.base ? query.base->column(u"Master_Id") : nullptr;
  if (masterColumn && !master->keyExpression().isEmpty() && !master->parts.nested()) {
    const bool needed = use == RowUse::Writing || !filter.isEmpty() || query.companyField.isEmpty();
    return needed ? masterCondition(access, *master, query, *masterColumn, filter, parameters) : Fragment();
  }
  return filter.isEmpty() ? Fragment()
                          : securityCondition(access, query.formId, filter, QueryFields(query, parameters));
}

Fragment tableSecurity(const Access& access, const TableInfo& table, const QString& alias)
{
  if (access.session.administrator()) {
    return {};
  }
  const TableFields fields(table, alias);
  QList<Fragment> readable;
  QList<Fragment> others;
  bool everyRow = false;
  bool anyRight = false;
  for (int formId : access.metadata.formsOver(table.name)) {
    const FormRights rights = formRights(access, formId);
    if (!rights.known) {
      continue;
    }
    const bool reads = rights.has(FormRight::Read);
    anyRight = anyRight || reads;
    if (rights.securityFilter.isEmpty()) {
      everyRow = everyRow || reads;
    } else {
      (reads ? readable : others).append(securityCondition(access, formId, rights.securityFilter, fields));
    }
  }
  if (!anyRight && !isOpenTable(table.name)) {
    throw RpcError(RpcError::Forbidden, QStringLiteral("Нямате права за преглед на данните в таблица %1.").arg(table.name));
  }
  if (everyRow) {
    return {};
  }
  return anyOf(readable.isEmpty() ? others : readable);
}

}  // namespace kalvor::server
