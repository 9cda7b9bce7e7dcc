#include "server/posting/posted_documents.h"

#include "server/load/row_inserter.h"
#include "server/posting/copy_rows.h"
#include "server/updates/numbering.h"

namespace kalvor::server {

namespace {

struct DocumentTables {
  const char* header;
  const char* lines;
};
constexpr DocumentTables globalTables{"D_GlobalSaleHeader", "D_GlobalSaleLine"};
constexpr DocumentTables postedTables[] = {{"D_SaleInvoiceHeader", "D_SaleInvoiceLine"},
                                           {"D_SaleCrMemoHeader", "D_SaleCrMemoLine"}};  // by PostedKind

void copyRows(const PostingJob& job, const Fragment& insert, const char* keyColumn)
{
  const Fragment sql = insert + Fragment{QStringLiteral(" WHERE %1 = ?").arg(QLatin1StringView(keyColumn)), {job.document.id}};
  job.db().execute(sql.sql, sql.values);
}

}  // namespace

void writePostedDocument(PostingJob& job)
{
  constexpr int finished = 1;
  if (job.document.seriesId.isEmpty()) {
    refusePosting(QStringLiteral("%1: видът документ няма серия за осчетоводени документи.").arg(job.document.shown()));
  }
  job.postedId = job.ids.next();
  job.postedNumber = nextNumber(job.access, job.document.seriesId);
  const DocumentTables& tables = postedTables[int(job.document.kind)];
  const SaleTotals& totals = job.totals;
  copyRows(job, copyStatement(job.access.metadata.catalogue(), globalTables.header, tables.header,
                              {{"Id", givenValue(job.postedId)},
                               {"DocumentNo", givenValue(job.postedNumber)},
                               {"DocStatus", givenValue(qint64(finished))},
                               {"Series_Id", givenValue(job.document.seriesId)},
                               {"PostingSerie_Id", givenValue(job.document.seriesId)},
                               {"VATDate", givenValue(job.document.vatDate)},
                               {"TotalValue", givenValue(totals.totalValue)},
                               {"VATValue", givenValue(totals.vatValue)},
                               {"TotalVAT", givenValue(totals.totalVat)},
                               {"TotalValue_LCY", givenValue(totals.totalValueLcy)},
                               {"VATValue_LCY", givenValue(totals.vatValueLcy)},
                               {"TotalVAT_LCY", givenValue(totals.totalVatLcy)},
                               {"CopiesPrinted", givenValue(qint64(0))},
                               {"GlobalDoc_Id", givenValue(job.document.id)},
                               {"C_User_Id", givenValue(job.access.session.userId)},
                               {"C_Datetime", givenValue(job.now)}}),
           "Id");
  copyRows(job, copyStatement(job.access.metadata.catalogue(), globalTables.lines, tables.lines,
                              {{"Master_Id", givenValue(job.postedId)},
                               {"QtyToShip", givenValue(qint64(0))},
                               {"ShippedQty", columnValueOf("Quantity")},
                               {"QtyToInvoice", givenValue(qint64(0))},
                               {"InvoicedQty", columnValueOf("Quantity")},
                               {"ReturnedQty", givenValue(qint64(0))}}),
           "Master_Id");
}

void writeShipment(PostingJob& job)
{
  const bool moves = std::any_of(job.document.lines.begin(), job.document.lines.end(),
                                 [](const GlobalLine& line) { return line.movesStock(); });
  if (!moves) {
    return;
  }
  job.shipmentId = job.ids.next();
  job.shipmentNumber = job.document.shipSeriesId.isEmpty() ? job.postedNumber : nextNumber(job.access, job.document.shipSeriesId);
  copyRows(job, copyStatement(job.access.metadata.catalogue(), globalTables.header, "D_ShipmentHeader",
                              {{"Id", givenValue(job.shipmentId)},
                               {"DocumentNo", givenValue(job.shipmentNumber)},
                               {"Series_Id", givenValue(PostingJob::textOrNothing(job.document.shipSeriesId))},
                               {"AppliesToDoc_Id", givenValue(job.postedId)},
                               {"AppliesToDoc_Type", givenValue(qint64(job.document.kind))},
                               {"CopiesPrinted", givenValue(qint64(0))},
                               {"GlobalDoc_Id", givenValue(job.document.id)},
                               {"C_User_Id", givenValue(job.access.session.userId)},
                               {"C_Datetime", givenValue(job.now)}}),
           "Id");
  const Fragment insert = copyStatement(job.access.metadata.catalogue(), globalTables.lines, "D_ShipmentLine",
                                        {{"Master_Id", givenValue(job.shipmentId)},
                                         {"Item_Id", givenValue(Variant(QString()))},
                                         {"Quantity", columnValueOf(job.sign() < 0 ? "-Quantity" : "Quantity")},
                                         {"Quantity_Base", columnValueOf(job.sign() < 0 ? "-Quantity_Base" : "Quantity_Base")}});
  for (const GlobalLine& line : std::as_const(job.document.lines)) {
    if (line.movesStock()) {
      Fragment row = insert + Fragment{QStringLiteral(" WHERE Id = ?"), {line.id}};
      row.values[1] = line.itemId;
      job.db().execute(row.sql, row.values);
    }
  }
}

void noteReturnedQuantities(const PostingJob& job)
{
  if (!job.document.isCreditMemo()) {
    return;
  }
  for (const GlobalLine& line : job.document.lines) {
    if (line.sourceLineId.isEmpty()) {
      continue;
    }
    const qint64 changed = job.db().execute(
        QStringLiteral("UPDATE D_SaleInvoiceLine SET ReturnedQty = COALESCE(ReturnedQty, 0) + ? WHERE Id = ? AND Master_Id = ? "
                       "AND COALESCE(ReturnedQty, 0) + ? <= Quantity"),
        {qlonglong(line.quantity), line.sourceLineId, job.document.appliesToId, qlonglong(line.quantity)});
    if (changed != 1) {
      refusePosting(QStringLiteral("%1: връща се повече от продаденото по фактурата.").arg(job.document.shown(line)));
    }
  }
}

void markPosted(const PostingJob& job)
{
  const qint64 changed = job.db().execute(
      QStringLiteral("UPDATE D_GlobalSaleHeader SET GlobDocIsPosted = 1, DocStatus = 1, PostedDoc_Id = ?, PostedDoc_Type = ?, "
                     "PostedDocumentNo = ?, DirectPay = ?, ShipmentDoc_Id = ?, PostedBy = ?, PostedAt = ? WHERE Id = ? AND GlobDocIsPosted = 0"),
      {job.postedId, int(job.document.kind), job.postedNumber, int(job.document.paidDirectly),
       PostingJob::textOrNothing(job.shipmentId), job.access.session.userId, job.now, job.document.id});
  if (changed != 1) {
    refusePosting(QStringLiteral("%1 вече е осчетоводен.").arg(job.document.shown()));
  }
}

}  // namespace kalvor::server
