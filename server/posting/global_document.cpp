#include "server/posting/global_document.h"

namespace kalvor::server {

namespace {

// A payment method is direct where the set-up of the document's object says so, unless the document says otherwise.
constexpr const char* headerSql =
    "SELECT h.DocumentNo, h.DocumentDate, h.VATDate, h.DueDate, h.PostingSerie_Id, h.Contragent_Id, h.InvToContragent_ID, "
    "h.BusinessGroup_Id, h.C_Businessgroup_Id, h.PayMethod_Id, h.Currency_Id, h.CurrencyFactor, h.GenBusPostGroup_Id, "
    "h.AppliesToDocId, h.Annul, h.GlobDocIsPosted, COALESCE(h.DirectPay, o.DirectPay, 0), h.TotalValue, h.VATValue, "
    "h.TotalVAT, h.TotalValue_LCY, h.VATValue_LCY, h.TotalVAT_LCY, s.DocumentKind, s.Post_Series_Id, s.Ship_Series_Id, "
    "c.Name, s.Id, c.Id, h.VATBusPostGroup_Id "
    "FROM D_GlobalSaleHeader h LEFT JOIN N_SubDocument s ON s.Id = h.DocSubType_Id AND s.Comp_Id = h.Comp_Id "
    "LEFT JOIN N_Contragent c ON c.Id = COALESCE(NULLIF(h.InvToContragent_ID, ''), h.Contragent_Id) AND c.Comp_Id = h.Comp_Id "
    "LEFT JOIN N_CashBankOperation o ON o.Comp_Id = h.Comp_Id AND o.BusinessGroup_Id = h.BusinessGroup_Id "
    "AND o.PaymentMethod_Id = h.PayMethod_Id WHERE h.Id = ? AND h.Comp_Id = ?";

constexpr const char* linesSql =
    "SELECT l.Id, l.Line_No, l.Type, l.Code, l.GenBusPostGroup_Id, l.GenProdPostGroup_Id, l.VATBusPostGroup_Id, "
    "l.VATProdPostGroup_Id, l.VATPercent, l.VATCalculationType, l.VATLedger, l.Quantity, l.Quantity_Base, l.TotalValue, "
    "l.TotalValue_LCY, l.SrcLine_Id, i.Id, i.Type, i.UnitCost, i.GenProdPostGroup_Id, i.VATProdPostGroup_Id "
    "FROM D_GlobalSaleLine l LEFT JOIN N_Item i ON i.Comp_Id = ? AND i.Code = l.Code "
    "WHERE l.Master_Id = ? ORDER BY l.Line_No, l.Id";

QString firstOf(const QString& own, const QString& other) { return own.isEmpty() ? other : own; }

GlobalLine lineOf(const Statement& row, const GlobalDocument& document, const QString& vatBusinessGroup)
{
  GlobalLine line;
  line.id = row.text(0);
  line.number = row.integer(1);
  line.type = int(row.integer(2));
  line.code = row.text(3);
  line.general = {firstOf(row.text(4), document.generalBusinessGroup), firstOf(row.text(5), row.text(19))};
  line.vat = {firstOf(row.text(6), vatBusinessGroup), firstOf(row.text(7), row.text(20))};
  line.vatPercent = row.integer(8);
  line.vatCalculation = int(row.integer(9));
  line.vatLedger = int(row.integer(10));
  line.quantity = row.integer(11);
  line.quantityBase = row.integer(12);
  line.value = row.integer(13);
  line.valueLcy = row.integer(14);
  line.sourceLineId = row.text(15);
  line.itemId = row.text(16);
  line.itemType = int(row.integer(17));
  line.itemUnitCost = row.integer(18);
  return line;
}

}  // namespace

QString GlobalDocument::shown() const
{
  const QString name = isCreditMemo() ? QStringLiteral("Кредитно известие") : QStringLiteral("Документ");
  return name + (number.isEmpty() ? QStringLiteral(" без номер") : u' ' + number);
}

QString GlobalDocument::shown(const GlobalLine& line) const
{
  return QStringLiteral("%1, ред %2").arg(shown()).arg(line.number);
}

std::optional<GlobalDocument> readGlobalDocument(Connection& db, const QString& companyId, const QString& documentId)
{
  auto row = db.prepare(QLatin1StringView(headerSql));
  row->bind(0, documentId);
  row->bind(1, companyId);
  if (!row->step()) {
    return {};
  }
  GlobalDocument document;
  document.id = documentId;
  document.number = row->text(0).trimmed();
  document.date = row->value(1).toDate();
  document.vatDate = row->isNull(2) ? document.date : row->value(2).toDate();
  document.dueDate = row->isNull(3) ? document.date : row->value(3).toDate();
  document.customerId = row->text(5);
  document.payerId = firstOf(row->text(6), row->text(5));
  document.objectId = row->text(7);
  document.ownerGroupId = row->text(8);
  document.payMethodId = row->text(9);
  document.currencyId = row->text(10);
  document.currencyFactor = row->integer(11);
  document.generalBusinessGroup = row->text(12);
  document.appliesToId = row->text(13);
  document.annulled = row->integer(14) != 0;
  document.posted = row->integer(15) != 0;
  document.paidDirectly = row->integer(16) != 0;
  document.totals = {row->integer(17), row->integer(18), row->integer(19), row->integer(20), row->integer(21), row->integer(22)};
  document.kind = row->integer(23) == int(PostedKind::CreditMemo) ? PostedKind::CreditMemo : PostedKind::Invoice;
  document.seriesId = firstOf(row->text(4), row->text(24));
  document.shipSeriesId = row->text(25);
  document.payerName = row->isNull(28) ? QString() : firstOf(row->text(26), document.payerId);
  document.knownSubType = !row->isNull(27);
  const QString vatBusinessGroup = row->text(29);
  auto lines = db.prepare(QLatin1StringView(linesSql));
  lines->bind(0, companyId);
  lines->bind(1, documentId);
  while (lines->step()) {
    const GlobalLine line = lineOf(*lines, document, vatBusinessGroup);
    // A code that several items share is the first one's.
    if (document.lines.isEmpty() || document.lines.last().id != line.id) {
      document.lines.append(line);
    }
  }
  return document;
}

}  // namespace kalvor::server
