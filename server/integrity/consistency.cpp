#include "server/integrity/consistency.h"

#include <algorithm>
#include <span>

#include "server/integrity/references.h"
#include "server/store/migrations.h"

namespace kalvor::server {

namespace {

constexpr int examplesShown = 3;

struct CheckText {
  const char* name;
  const char* sql;
  const char* meaning;
};

// The number behind a series' prefix, or nothing where a document's number is not one of the series.
#define SERIES_NUMBER(no)                                                                                          \
  "CASE WHEN LENGTH(" no ") BETWEEN LENGTH(COALESCE(s.Prefix, '')) + 1 AND LENGTH(COALESCE(s.Prefix, '')) + 18 " \
  "AND SUBSTR(" no ", 1, LENGTH(COALESCE(s.Prefix, ''))) = COALESCE(s.Prefix, '') "                               \
  "AND TRIM(SUBSTR(" no ", LENGTH(COALESCE(s.Prefix, '')) + 1), '0123456789') = '' "                              \
  "THEN CAST(SUBSTR(" no ", LENGTH(COALESCE(s.Prefix, '')) + 1) AS BIGINT) END"

const CheckText ofDocuments[] = {
    {"lines_without_header",
     "SELECT l.Id FROM D_SaleInvoiceLine l WHERE NOT EXISTS "
     "(SELECT 1 FROM D_SaleInvoiceHeader h WHERE h.Id = l.Master_Id AND h.Comp_Id = l.Comp_Id)",
     "всеки ред на фактура е на документ от същата фирма"},
    // "G..." are the invoices that init --invoices makes for measuring, without lines unless it is told how many.
    {"invoice_without_lines",
     "SELECT h.Comp_Id || '/' || COALESCE(h.DocumentNo, h.Id) FROM D_SaleInvoiceHeader h "
     "WHERE (COALESCE(h.TotalValue, 0) <> 0 OR COALESCE(h.TotalVAT, 0) <> 0) AND COALESCE(h.DocumentNo, '') NOT LIKE 'G%' "
     "AND NOT EXISTS (SELECT 1 FROM D_SaleInvoiceLine l WHERE l.Master_Id = h.Id)",
     "всяка фактура със сума има редове"},
    {"invoice_totals",
     "SELECT h.Comp_Id || '/' || COALESCE(h.DocumentNo, h.Id) FROM D_SaleInvoiceHeader h INNER JOIN "
     "(SELECT Master_Id, SUM(COALESCE(TotalValue, 0)) AS LinesValue, SUM(COALESCE(TotalValue_LCY, 0)) AS LinesLocal "
     "FROM D_SaleInvoiceLine GROUP BY Master_Id) s ON s.Master_Id = h.Id "
     "WHERE COALESCE(h.TotalValue, 0) <> s.LinesValue OR COALESCE(h.TotalValue_LCY, 0) <> s.LinesLocal",
     "стойността на всяка фактура е сборът на редовете ѝ"},
    // VAT is rounded once a group in the document and once a line in the lines: half a unit each.
    {"invoice_vat",
     "SELECT h.Comp_Id || '/' || COALESCE(h.DocumentNo, h.Id) FROM D_SaleInvoiceHeader h INNER JOIN "
     "(SELECT Master_Id, SUM(COALESCE(VATValue, 0)) AS LinesVat, SUM(COALESCE(VatValue_LCY, 0)) AS LinesLocal, "
     "COUNT(*) AS LinesCount FROM D_SaleInvoiceLine GROUP BY Master_Id) s ON s.Master_Id = h.Id "
     "LEFT JOIN C_CompanySetup c ON c.Id = h.Comp_Id WHERE "
     "ABS(COALESCE(h.VATValue, 0) - s.LinesVat) > s.LinesCount * CASE COALESCE(c.PrecisionAmount, 2) "
     "WHEN 0 THEN 1000000 WHEN 1 THEN 100000 ELSE 10000 END OR "
     "ABS(COALESCE(h.VATValue_LCY, 0) - s.LinesLocal) > s.LinesCount * CASE COALESCE(c.PrecisionAmount, 2) "
     "WHEN 0 THEN 1000000 WHEN 1 THEN 100000 ELSE 10000 END",
     "ДДС на всяка фактура е този на редовете ѝ с точност до закръгляването"},
    {"invoice_gross",
     "SELECT Comp_Id || '/' || COALESCE(DocumentNo, Id) FROM D_SaleInvoiceHeader "
     "WHERE COALESCE(TotalVAT, 0) <> COALESCE(TotalValue, 0) + COALESCE(VATValue, 0) "
     "OR COALESCE(TotalVAT_LCY, 0) <> COALESCE(TotalValue_LCY, 0) + COALESCE(VATValue_LCY, 0)",
     "сумата с ДДС на всяка фактура е стойността и данъкът ѝ"},
    {"number_given_twice",
     "SELECT Comp_Id || '/' || DocumentNo FROM D_SaleInvoiceHeader WHERE DocumentNo IS NOT NULL AND DocumentNo <> '' "
     "AND Series_Id IS NOT NULL GROUP BY Comp_Id, Series_Id, DocumentNo HAVING COUNT(*) > 1",
     "никой номер на серия не е даден на два документа"},
    {"absolute_number_given_twice",
     "SELECT Comp_Id || '/' || AbsoluteNo FROM D_SaleInvoiceHeader WHERE AbsoluteNo IS NOT NULL AND AbsoluteNo <> '' "
     "GROUP BY Comp_Id, AbsoluteNo HAVING COUNT(*) > 1",
     "никой абсолютен номер не е даден на два документа"},
    {"series_last_number",
     "SELECT s.Comp_Id || '/' || s.Code || ' ' || h.DocumentNo FROM D_SaleInvoiceHeader h INNER JOIN N_Series s "
     "ON s.Id = h.Series_Id AND s.Comp_Id = h.Comp_Id WHERE " SERIES_NUMBER("h.DocumentNo") " > s.LastNo",
     "последният номер на всяка серия не е по-малък от номерата на документите ѝ"},
    // A document does not say which series its absolute number is of: one that fits is enough.
    {"absolute_last_number",
     "SELECT h.Comp_Id || '/' || h.AbsoluteNo FROM D_SaleInvoiceHeader h WHERE h.AbsoluteNo IS NOT NULL AND EXISTS "
     "(SELECT 1 FROM N_Series s WHERE s.Comp_Id = h.Comp_Id AND s.Kind = 1 AND " SERIES_NUMBER("h.AbsoluteNo")
     " > s.LastNo) AND NOT EXISTS (SELECT 1 FROM N_Series s WHERE s.Comp_Id = h.Comp_Id AND s.Kind = 1 AND "
     SERIES_NUMBER("h.AbsoluteNo") " <= s.LastNo)",
     "последният абсолютен номер не е по-малък от тези на документите"},
};

#undef SERIES_NUMBER

const CheckText ofEntries[] = {
    {"entry_remaining",
     "SELECT Comp_Id || '/' || COALESCE(DocumentNo, Id) FROM G_ContragentEntry WHERE "
     "(Opened = 0 AND (Remaining <> 0 OR Remaining_LCY <> 0)) OR (Opened <> 0 AND Remaining = 0) "
     "OR ABS(Remaining) > ABS(Amount) OR (Remaining > 0 AND Amount < 0) OR (Remaining < 0 AND Amount > 0) "
     "OR ABS(Remaining_LCY) > ABS(Amount_LCY) OR (Remaining_LCY > 0 AND Amount_LCY < 0) "
     "OR (Remaining_LCY < 0 AND Amount_LCY > 0)",
     "остатъкът на всяко салдо е част от сумата му и е нула точно когато то е закрито"},
    {"entries_balance",
     "SELECT Comp_Id || '/' || Contragent_Id FROM G_ContragentEntry "
     "GROUP BY Comp_Id, Contragent_Id, Gen_PostingType, COALESCE(Currency_Id, '') HAVING SUM(Amount - Remaining) <> 0",
     "уреденото от документите на всеки контрагент е уреденото от плащанията му"},
    {"entry_of_document",
     "SELECT e.Comp_Id || '/' || COALESCE(e.DocumentNo, e.Id) FROM G_ContragentEntry e "
     "LEFT JOIN D_SaleInvoiceHeader h ON h.Id = e.Document_Id AND h.Comp_Id = e.Comp_Id "
     "WHERE e.Gen_PostingType = 1 AND e.DocumentType = 0 AND e.Document_Id IS NOT NULL AND (h.Id IS NULL "
     "OR COALESCE(NULLIF(h.InvToContragent_ID, ''), h.Contragent_Id, '') <> e.Contragent_Id OR COALESCE(h.TotalVAT, 0) <> e.Amount "
     "OR COALESCE(h.TotalVAT_LCY, 0) <> e.Amount_LCY)",
     "всяко вземане по фактура е от нейния платец и на нейната сума"},
    {"item_entry_cost",
     "SELECT Comp_Id || '/' || Item_Id || ' ' || Id FROM G_ItemValueEntry "
     "WHERE (Quantity > 0 AND CostAmount < 0) OR (Quantity < 0 AND CostAmount > 0)",
     "себестойността на всяко движение на стока е със знака на количеството"},
    {"entry_details",
     "SELECT e.Comp_Id || '/' || COALESCE(e.DocumentNo, e.Id) FROM G_ContragentEntry e LEFT JOIN (SELECT Entry_Id, SUM(Amount) AS "
     "Total, SUM(Amount_LCY) AS TotalLocal FROM G_ContragentEntryDetail GROUP BY Entry_Id) d ON d.Entry_Id = e.Id "
     "WHERE COALESCE(d.Total, 0) <> e.Remaining OR COALESCE(d.TotalLocal, 0) <> e.Remaining_LCY",
     "остатъкът на всяко салдо е сборът на подробните му записи"},
    {"item_stock",
     "SELECT Comp_Id || '/' || Item_Id FROM G_ItemValueEntry WHERE Comp_Id NOT IN (SELECT Id FROM C_CompanySetup WHERE "
     "AllowNegativeStock <> 0) GROUP BY Comp_Id, Item_Id HAVING SUM(Quantity) < 0",
     "наличността на никоя стока не е под нулата"},
};

// What one posting left behind agrees with itself. Documents are negative in the entries where they are credit memos.
const CheckText ofPostings[] = {
    {"ledger_balance",
     "SELECT MIN(Comp_Id) || '/' || COALESCE(MIN(DocumentNo), Transaction_Id) FROM G_Entry GROUP BY Transaction_Id "
     "HAVING SUM(DebitAmount) <> SUM(CreditAmount)",
     "дебитът на всяка счетоводна операция е равен на кредита ѝ"},
    {"posted_vat",
     "SELECT d.Comp_Id || '/' || d.DocumentNo FROM (SELECT Id, Comp_Id, DocumentNo, TotalValue_LCY AS Base, VATValue_LCY AS Vat "
     "FROM D_SaleInvoiceHeader WHERE GlobalDoc_Id IS NOT NULL UNION ALL SELECT Id, Comp_Id, DocumentNo, -TotalValue_LCY, "
     "-VATValue_LCY FROM D_SaleCrMemoHeader) d LEFT JOIN (SELECT Document_Id, SUM(BaseAmount) AS Base, SUM(VATAmount) AS Vat "
     "FROM G_VATEntry GROUP BY Document_Id) v ON v.Document_Id = d.Id "
     "WHERE d.Base <> COALESCE(v.Base, 0) OR d.Vat <> COALESCE(v.Vat, 0)",
     "ДДС записите на всеки осчетоводен документ са неговите основа и данък"},
    {"posted_goods",
     "SELECT i.Comp_Id || '/' || COALESCE(i.DocumentNo, i.Id) FROM G_ItemEntry i "
     "LEFT JOIN D_ShipmentLine l ON l.Id = i.DocLine_Id AND l.Master_Id = i.Document_Id "
     "LEFT JOIN G_ItemValueEntry v ON v.ItemEntry_Id = i.Id "
     "WHERE COALESCE(l.Quantity_Base, 0) <> -i.Quantity OR COALESCE(v.Quantity, 0) <> i.Quantity",
     "всяко движение на стока е това на реда в складовия ѝ документ и в записа за стойността ѝ"},
    {"posted_documents",
     "SELECT g.Comp_Id || '/' || COALESCE(g.DocumentNo, g.Id) FROM D_GlobalSaleHeader g "
     "LEFT JOIN D_SaleInvoiceHeader i ON i.Id = g.PostedDoc_Id AND i.GlobalDoc_Id = g.Id AND i.DocStatus = 1 "
     "LEFT JOIN D_SaleCrMemoHeader m ON m.Id = g.PostedDoc_Id AND m.GlobalDoc_Id = g.Id "
     "WHERE (g.GlobDocIsPosted <> 0) <> (i.Id IS NOT NULL OR m.Id IS NOT NULL)",
     "всеки документ е осчетоводен точно когато има осчетоводена фактура или известие"},
};

CheckOutcome answer(Connection& connection, const ConsistencyCheck& check)
{
  CheckOutcome outcome{check.name, check.meaning, 0, {}};
  try {
    const auto rows = connection.prepare(check.sql);
    while (rows->step()) {
      if (++outcome.violations <= examplesShown) {
        outcome.examples.append(rows->text(0));
      }
    }
  } catch (const StoreError& error) {
    if (error.kind() == StoreError::Kind::Unreachable) {
      throw;
    }
    ++outcome.violations;
    outcome.examples.append(QString::fromUtf8(error.what()).section(QStringLiteral(" in: "), 0, 0));
  }
  return outcome;
}

CheckOutcome storageOutcome(Connection& connection)
{
  CheckOutcome outcome{QStringLiteral("storage"), QStringLiteral("файлът на базата данни е здрав"), 0, {}};
  try {
    const QStringList found = connection.faults();
    outcome.violations = found.size();
    outcome.examples = found.mid(0, examplesShown);
  } catch (const StoreError& error) {
    if (error.kind() == StoreError::Kind::Unreachable) {
      throw;
    }
    outcome.violations = 1;
    outcome.examples.append(QString::fromUtf8(error.what()).section(QStringLiteral(" in: "), 0, 0));
  }
  return outcome;
}

ConsistencyCheck versionCheck()
{
  const QList<Migration> known = embeddedMigrations();
  const int newest = std::max_element(known.begin(), known.end(), [](const Migration& a, const Migration& b) {
                       return a.number < b.number;
                     })->number;
  return {QStringLiteral("version"),
          QStringLiteral("SELECT 'version ' || CAST(Last AS TEXT) FROM (SELECT COALESCE(MAX(Number), -1) AS Last FROM "
                         "srv_Migration) m WHERE Last <> %1").arg(newest),
          QStringLiteral("базата данни е от версията на програмата (%1)").arg(newest)};
}

}  // namespace

const QList<ConsistencyCheck>& consistencyChecks()
{
  static const QList<ConsistencyCheck> checks = [] {
    QList<ConsistencyCheck> list;
    const auto append = [&](std::span<const CheckText> texts) {
      for (const CheckText& text : texts) {
        list.append({QString::fromLatin1(text.name), QString::fromUtf8(text.sql), QString::fromUtf8(text.meaning)});
      }
    };
    append(ofDocuments);
    append(ofEntries);
    append(ofPostings);
    return list + referenceChecks();
  }();
  return checks;
}

bool checkConsistency(Connection& connection, const std::function<void(const CheckOutcome&)>& tell)
{
  // In PostgreSQL a question that fails would end the transaction for those behind it: each has a savepoint.
  const Transaction snapshot(connection, false);
  bool passed = true;
  const auto told = [&](const CheckOutcome& outcome) {
    passed = passed && outcome.passed();
    tell(outcome);
    return outcome.passed();
  };
  told(storageOutcome(connection));
  const auto asked = [&](const ConsistencyCheck& check) {
    const Transaction step(connection, false);
    return told(answer(connection, check));
  };
  if (!asked(versionCheck())) {
    return false;
  }
  for (const ConsistencyCheck& check : consistencyChecks()) {
    asked(check);
  }
  return passed;
}

QString outcomeLine(const CheckOutcome& outcome)
{
  if (outcome.passed()) {
    return QStringLiteral("ok       %1: %2").arg(outcome.name, outcome.meaning);
  }
  QString found = outcome.examples.join(QStringLiteral("; "));
  if (outcome.violations > outcome.examples.size()) {
    found += QStringLiteral("; …");
  }
  // Records' texts must not pass for lines of their own.
  for (QChar& c : found) {
    c = c.category() == QChar::Other_Control ? u' ' : c;
  }
  return QStringLiteral("НАРУШЕНО %1 (%2): %3 – не е вярно, че %4")
      .arg(outcome.name, QString::number(outcome.violations), found, outcome.meaning);
}

}  // namespace kalvor::server
