#include "server/posting/posted_documents.h"

#include "server/load/row_inserter.h"
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

struct SetColumn {
  const char* name;
  Fragment value;
};

// INSERT ... SELECT: the given columns, and every other one that both tables have, as it stands.
Fragment copyStatement(const Metadata& metadata, const char* from, const char* to, const QList<SetColumn>& given)
{
  const TableInfo& source = *metadata.catalogue().table(QString::fromLatin1(from));
  const TableInfo& target = *metadata.catalogue().table(QString::fromLatin1(to));
  QStringList names;
  Fragment values;
  const auto add = [&](const QString& name, const Fragment& value) {
    names.append(quotedName(name));
    values += (values.isEmpty() ? Fragment() : Fragment{QStringLiteral(", "), {}}) + value;
  };
  for (const SetColumn& column : given) {
    add(target.column(QString::fromLatin1(column.name))->name, column.value);
  }
  for (const ColumnInfo& column : target.columns) {
    const bool isGiven = std::any_of(given.begin(), given.end(), [&](const SetColumn& other) {
      return column.name.compare(QLatin1StringView(other.name), Qt::CaseInsensitive) == 0;
    });
    if (const ColumnInfo* same = source.column(column.name); same && !isGiven) {
      add(column.name, {quotedName(same->name), {}});
    }
  }
  return QStringLiteral("INSERT INTO %1 (%2) SELECT ").arg(quotedName(target.name), names.join(QStringLiteral(", "))) + values +
         QStringLiteral(" FROM ") + quotedName(source.name);
}

void copyRows(const PostingJob& job, const Fragment& insert, const char* keyColumn)
{
  const Fragment sql = insert + Fragment{QStringLiteral(" WHERE %1 = ?").arg(QLatin1StringView(keyColumn)), {job.document.id}};
  job.db().execute(sql.sql, sql.values);
}

Fragment given(const Variant& value) { return {QStringLiteral("?"), {value}}; }
Fragment given(qint64 value) { return {QStringLiteral("?"), {qlonglong(value)}}; }
Fragment column(const char* expression) { return {QString::fromLatin1(expression), {}}; }

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
  copyRows(job, copyStatement(job.access.metadata, globalTables.header, tables.header,
                              {{"Id", given(job.postedId)},
                               {"DocumentNo", given(job.postedNumber)},
                               {"DocStatus", given(qint64(finished))},
                               {"Series_Id", given(job.document.seriesId)},
                               {"PostingSerie_Id", given(job.document.seriesId)},
                               {"VATDate", given(job.document.vatDate)},
                               {"TotalValue", given(totals.totalValue)},
                               {"VATValue", given(totals.vatValue)},
                               {"TotalVAT", given(totals.totalVat)},
                               {"TotalValue_LCY", given(totals.totalValueLcy)},
                               {"VATValue_LCY", given(totals.vatValueLcy)},
                               {"TotalVAT_LCY", given(totals.totalVatLcy)},
                               {"CopiesPrinted", given(qint64(0))},
                               {"GlobalDoc_Id", given(job.document.id)},
                               {"C_User_Id", given(job.access.session.userId)},
                               {"C_Datetime", given(job.now)}}),
           "Id");
  copyRows(job, copyStatement(job.access.metadata, globalTables.lines, tables.lines,
                              {{"Master_Id", given(job.postedId)},
                               {"QtyToShip", given(qint64(0))},
                               {"ShippedQty", column("Quantity")},
                               {"QtyToInvoice", given(qint64(0))},
                               {"InvoicedQty", column("Quantity")},
                               {"ReturnedQty", given(qint64(0))}}),
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
  copyRows(job, copyStatement(job.access.metadata, globalTables.header, "D_ShipmentHeader",
                              {{"Id", given(job.shipmentId)},
                               {"DocumentNo", given(job.shipmentNumber)},
                               {"Series_Id", given(PostingJob::textOrNothing(job.document.shipSeriesId))},
                               {"AppliesToDoc_Id", given(job.postedId)},
                               {"AppliesToDoc_Type", given(qint64(job.document.kind))},
                               {"CopiesPrinted", given(qint64(0))},
                               {"GlobalDoc_Id", given(job.document.id)},
                               {"C_User_Id", given(job.access.session.userId)},
                               {"C_Datetime", given(job.now)}}),
           "Id");
  const Fragment insert = copyStatement(job.access.metadata, globalTables.lines, "D_ShipmentLine",
                                        {{"Master_Id", given(job.shipmentId)},
                                         {"Item_Id", given(Variant(QString()))},
                                         {"Quantity", column(job.sign() < 0 ? "-Quantity" : "Quantity")},
                                         {"Quantity_Base", column(job.sign() < 0 ? "-Quantity_Base" : "Quantity_Base")}});
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
                     "PostedDocumentNo = ?, ShipmentDoc_Id = ?, PostedBy = ?, PostedAt = ? WHERE Id = ? AND GlobDocIsPosted = 0"),
      {job.postedId, int(job.document.kind), job.postedNumber, PostingJob::textOrNothing(job.shipmentId),
       job.access.session.userId, job.now, job.document.id});
  if (changed != 1) {
    refusePosting(QStringLiteral("%1 вече е осчетоводен.").arg(job.document.shown()));
  }
}

}  // namespace kalvor::server
