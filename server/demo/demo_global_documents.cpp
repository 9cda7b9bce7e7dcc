// Documents waiting to be posted: what the open invoices of the last days sold, once more, numbered in their own series.
#include "server/demo/demo_parts.h"
#include "server/posting/copy_rows.h"

namespace kalvor::server {

namespace {

// Another Id of the same length, unique like the one it is made of.
constexpr const char* otherId = "SUBSTR(Id, 17, 16) || SUBSTR(Id, 1, 16)";
constexpr const char* otherMaster = "SUBSTR(Master_Id, 17, 16) || SUBSTR(Master_Id, 1, 16)";

}  // namespace

void createDemoGlobalDocuments(DemoScope& scope)
{
  Connection& db = scope.connection;
  const Catalogue catalogue = Catalogue::read(db);
  const RecordSet open = db.query(
      QStringLiteral("SELECT h.Id, b.Code FROM D_SaleInvoiceHeader h INNER JOIN N_BusinessGroup b ON b.Id = h.BusinessGroup_Id "
                     "WHERE h.Comp_Id = ? AND h.DocStatus = 0 ORDER BY h.DocumentNo"), {scope.companyId});
  for (qsizetype i = 0; i < open.rows; ++i) {
    const Variant invoice = open.value(i, 0);
    const QString code = QStringLiteral("SALE-") + open.value(i, 1).toString();
    const QString series = scope.id("N_Series", code);
    db.execute(QStringLiteral("UPDATE N_Series SET LastNo = LastNo + 1 WHERE Id = ?"), {series});
    const RecordSet number = db.query(QStringLiteral("SELECT Prefix, LastNo FROM N_Series WHERE Id = ?"), {series});
    Fragment header = copyStatement(catalogue, "D_SaleInvoiceHeader", "D_GlobalSaleHeader",
                                    {{"Id", columnValueOf(otherId)},
                                     {"DocumentNo", givenValue(Variant(number.value(0, 0).toString() +
                                                                       number.value(0, 1).toString().rightJustified(9, u'0')))},
                                     {"DocSubType_Id", givenValue(Variant(scope.id("N_SubDocument", code)))},
                                     {"Series_Id", givenValue(Variant(series))},
                                     {"PostingSerie_Id", givenValue(Variant(scope.id("N_Series", QStringLiteral("INV-") + open.value(i, 1).toString())))},
                                     {"AbsoluteNo", columnValueOf("NULL")}}) +
                      Fragment{QStringLiteral(" WHERE Id = ?"), {invoice}};
    db.execute(header.sql, header.values);
    Fragment lines = copyStatement(catalogue, "D_SaleInvoiceLine", "D_GlobalSaleLine",
                                   {{"Id", columnValueOf(otherId)}, {"Master_Id", columnValueOf(otherMaster)}}) +
                     Fragment{QStringLiteral(" WHERE Master_Id = ?"), {invoice}};
    db.execute(lines.sql, lines.values);
  }
}

}  // namespace kalvor::server
