#include "server/posting/document_counts.h"

#include "rpc/rpc_error.h"
#include "server/queries/filter_condition.h"
#include "server/rights/row_security.h"

namespace kalvor::server {

namespace {

enum NavigationLink : quint8 {
  LinkInvoice, LinkCrMemo, LinkDtMemo, LinkStoreDoc, LinkRows, LinkValue, LinkLedger, LinkVat, LinkContragent,
  LinkContragentDetail, LinkMoney, LinkPayments, LinkServiceOrder
};
enum NavigationTypes : quint8 { Invoice = 1, CrMemo = 2, StoreDoc = 4, Journal = 8, AllTypes = 15 };
enum NavigationSides : quint8 { Sales = 1, Purchases = 2, Service = 4, AllSides = 7 };

// The records of a form whose column is the document, or the document that it applies to.
struct NavigationRow {
  NavigationLink link;
  int sides;
  int types;
  const char* column;
  int form;
  bool appliedTo = false;
};
constexpr NavigationRow navigationRows[] = {
    {LinkInvoice, Sales, Invoice, "D_SaleInvoiceHeader.Id", 6},
    {LinkInvoice, Sales, CrMemo | StoreDoc | Journal, "D_SaleInvoiceHeader.Id", 6, true},
    {LinkInvoice, Purchases, Invoice, "D_PurchInvoiceHeader.Id", 3},
    {LinkInvoice, Purchases, CrMemo | StoreDoc | Journal, "D_PurchInvoiceHeader.Id", 3, true},
    {LinkInvoice, Service, Invoice, "D_SaleInvoiceHeader.AppliesToDocId", 6},
    {LinkCrMemo, Sales, Invoice, "D_SaleCrMemoHeader.AppliesToDocID", 8},
    {LinkCrMemo, Sales, CrMemo, "D_SaleCrMemoHeader.ID", 8},
    {LinkCrMemo, Purchases, Invoice, "D_PurchCrMemoHeader.AppliesToDoc_id", 5},
    {LinkCrMemo, Purchases, CrMemo, "D_PurchCrMemoHeader.ID", 5},
    {LinkStoreDoc, Sales, Invoice | CrMemo, "D_ShipmentHeader.AppliesToDoc_Id", 7},
    {LinkStoreDoc, Sales, StoreDoc, "D_ShipmentHeader.Id", 7},
    {LinkStoreDoc, Purchases, Invoice | CrMemo, "D_PurchReceiptHeader.AppliedToDoc_Id", 4},
    {LinkStoreDoc, Purchases, StoreDoc, "D_PurchReceiptHeader.ID", 4},
    {LinkRows, Sales | Service, Invoice | CrMemo | Journal, "dv_ItemEntryAndShipmentHeader.AppliesToDoc_Id", 9},
    {LinkRows, Sales | Service, StoreDoc, "dv_ItemEntryAndShipmentHeader.Document_Id", 9},
    {LinkRows, Purchases, Invoice | CrMemo | Journal, "dv_ItemEntryAndReceiptHeader.AppliedToDoc_Id", 2},
    {LinkRows, Purchases, StoreDoc, "dv_ItemEntryAndReceiptHeader.Document_Id", 2},
    {LinkValue, AllSides, AllTypes, "dv_ItemValueEntry.Document_Id", 10},
    {LinkLedger, AllSides, AllTypes, "dv_Entry.Document_Id", 11},
    {LinkVat, AllSides, AllTypes, "dv_VATEntry.Document_Id", 12},
    {LinkContragent, AllSides, AllTypes, "dv_ContragentEntry.Document_Id", 13},
    {LinkContragentDetail, AllSides, AllTypes, "dv_ContragentEntryDetail.Document_Id", 14},
    {LinkMoney, AllSides, AllTypes, "G_LBankAccountEntry.Document_Id", 15},
    {LinkPayments, AllSides, Journal, "G_LJnlLine_Archive.Id", 16},
    {LinkPayments, AllSides, Invoice | CrMemo | StoreDoc, "G_LJnlLine_Archive.AppliesToDoc_Id", 16},
    {LinkServiceOrder, Sales, Invoice, "D_PostServiceOrderHeader.Id", 17, true},
    {LinkServiceOrder, Service, Invoice, "D_PostServiceOrderHeader.Id", 17},
};

// Where a document of a side and type says what it applies to.
struct AppliesToColumn {
  int sides;
  int types;
  const char* table;
  const char* column;
};
constexpr AppliesToColumn appliesToColumns[] = {
    {Sales | Service, Invoice, "D_SaleInvoiceHeader", "AppliesToDocId"},
    {Sales, CrMemo, "D_SaleCrMemoHeader", "AppliesToDocID"},
    {Sales, StoreDoc, "D_ShipmentHeader", "AppliesToDoc_Id"},
    {Purchases, CrMemo, "D_PurchCrMemoHeader", "AppliesToDoc_id"},
    {Purchases, StoreDoc, "D_PurchReceiptHeader", "AppliedToDoc_Id"},
    {AllSides, Journal, "G_LJnlLine_Archive", "AppliesToDoc_Id"},
};

QString appliedTo(const Access& access, int side, int type, const QString& documentId)
{
  for (const AppliesToColumn& row : appliesToColumns) {
    if ((row.sides & side) == 0 || (row.types & type) == 0 || !access.metadata.catalogue().table(QString::fromLatin1(row.table))) {
      continue;
    }
    return access.db.value(QStringLiteral("SELECT %1 FROM %2 WHERE Id = ? AND Comp_Id = ?")
                               .arg(QLatin1StringView(row.column), QLatin1StringView(row.table)),
                           {documentId, access.session.companyId}).toString();
  }
  return {};
}

int countOf(const Access& access, const NavigationRow& row, const QString& value)
{
  const StoredQuery* query = value.isEmpty() ? nullptr : access.metadata.query(row.form, 0);
  if (!query || !formRights(access, row.form).has(FormRight::Read)) {
    return 0;
  }
  const ParameterArray parameters{{QStringLiteral("User_Id"), access.session.userId},
                                  {QStringLiteral("Comp_Id"), access.session.companyId},
                                  {QStringLiteral("Bg_Id"), access.session.groupId}};
  const FilterArray filter{{QString::fromLatin1(row.column), QStringLiteral("="), value, {}, {}}};
  const Fragment sql = query->selectFrom({QStringLiteral("COUNT(*)"), {}},
                                         {filterCondition(filter, QueryFields(*query, parameters)),
                                          rowSecurity(access, *query, parameters)},
                                         access.session.companyId, parameters);
  return access.db.value(sql.sql, sql.values).toInt();
}

}  // namespace

std::array<int, navigationLinkCount> documentCounts(const Access& access, int type, int side, const QString& documentId)
{
  if (type < 0 || type > 3 || side < 0 || side > 2) {
    throw RpcError(RpcError::BadArguments, QStringLiteral("Няма такъв вид документ."));
  }
  const int sideBit = 1 << side;
  const int typeBit = 1 << type;
  const QString applied = appliedTo(access, sideBit, typeBit, documentId);
  std::array<int, navigationLinkCount> counts{};
  for (const NavigationRow& row : navigationRows) {
    if ((row.sides & sideBit) != 0 && (row.types & typeBit) != 0) {
      counts[row.link] = countOf(access, row, row.appliedTo ? applied : documentId);
    }
  }
  return counts;
}

}  // namespace kalvor::server
