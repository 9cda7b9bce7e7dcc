#include "server/integrity/consistency.h"

#include "server/store/introspection.h"
#include "server_demo/demo_database.h"
#include "several_tests.h"

namespace kalvor::testing {

using namespace kalvor::server;

class ConsistencyTest : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() { database_ = demoDatabase(); }

  void theDemoCompaniesHold() { QCOMPARE(violated(), QStringList()); }

  void plantedViolationsAreFound_data()
  {
    QTest::addColumn<QString>("checks");
    QTest::addColumn<QString>("plant");
    const auto plant = [](const char* checks, const char* sql) {
      QTest::addRow("%s %d", checks, number_++) << QString::fromLatin1(checks) << QString::fromUtf8(sql);
    };
    // A cent.
    plant("invoice_totals invoice_gross", "UPDATE D_SaleInvoiceHeader SET TotalValue = TotalValue + 10000 WHERE Id = :invoice");
    plant("invoice_totals", "UPDATE D_SaleInvoiceLine SET TotalValue = TotalValue - 10000 WHERE Id = :line");
    plant("invoice_totals", "UPDATE D_SaleInvoiceLine SET TotalValue_LCY = TotalValue_LCY + 1 WHERE Id = :line");
    plant("invoice_vat invoice_gross", "UPDATE D_SaleInvoiceHeader SET VATValue = VATValue + 90000000 WHERE Id = :invoice");
    plant("invoice_gross entry_of_document", "UPDATE D_SaleInvoiceHeader SET TotalVAT_LCY = TotalVAT_LCY + 1 WHERE Id = :owed");
    plant("invoice_without_lines", "DELETE FROM D_SaleInvoiceLine WHERE Master_Id = :invoice");
    // PostgreSQL lets nobody commit a line without its document.
    plant(onPostgres() ? "lines_without_header invoice_totals invoice_vat"
                       : "storage lines_without_header invoice_totals invoice_vat",
          "UPDATE D_SaleInvoiceLine SET Master_Id = 'X' WHERE Id = :line");
    plant("lines_without_header references_D_SaleInvoiceLine", "UPDATE D_SaleInvoiceLine SET Comp_Id = '2' WHERE Id = :line");
    plant("number_given_twice",
          "UPDATE D_SaleInvoiceHeader SET DocumentNo = (SELECT MIN(h.DocumentNo) FROM D_SaleInvoiceHeader h WHERE h.Series_Id "
          "= D_SaleInvoiceHeader.Series_Id) WHERE Id = :invoice");
    plant("absolute_number_given_twice",
          "UPDATE D_SaleInvoiceHeader SET AbsoluteNo = (SELECT MAX(h.AbsoluteNo) FROM D_SaleInvoiceHeader h WHERE h.Comp_Id = '1') "
          "WHERE Id = :invoice");
    plant("series_last_number", "UPDATE N_Series SET LastNo = LastNo - 1 WHERE Comp_Id = '1' AND Prefix = '1'");
    plant("absolute_last_number", "UPDATE N_Series SET LastNo = LastNo - 1 WHERE Comp_Id = '1' AND Kind = 1");
    plant("ledger_balance", "UPDATE G_Entry SET DebitAmount = DebitAmount + 1 WHERE Id = (SELECT MAX(Id) FROM G_Entry)");
    plant("posted_vat references_D_SaleInvoiceHeader", "UPDATE D_SaleInvoiceHeader SET GlobalDoc_Id = 'X' WHERE Id = :owed");
    plant("posted_goods", "INSERT INTO G_ItemEntry (Id, Comp_Id, Item_Id, PostingDate, Quantity) SELECT 'X', '1', MIN(Id), "
                          "'20260701', 1 FROM N_Item WHERE Comp_Id = '1'");
    plant("posted_documents", "UPDATE D_GlobalSaleHeader SET GlobDocIsPosted = 1 WHERE Id = (SELECT MAX(Id) FROM D_GlobalSaleHeader)");
    plant("entry_details", "UPDATE G_ContragentEntryDetail SET Amount_LCY = Amount_LCY + 1 WHERE Id = :entry");
    plant("entry_remaining", "UPDATE G_ContragentEntry SET Opened = 1 - Opened WHERE Id = :entry");
    plant("entry_remaining entries_balance entry_details", "UPDATE G_ContragentEntry SET Remaining = Amount * 2, Opened = 1 WHERE Id = :entry");
    plant("entries_balance references_G_ContragentEntryDetail", "DELETE FROM G_ContragentEntry WHERE DocumentNo = (SELECT MAX(DocumentNo) FROM G_ContragentEntry "
                             "WHERE DocumentNo LIKE 'PAY%')");
    plant("entry_of_document", "UPDATE G_ContragentEntry SET Document_Id = 'X' WHERE Id = :entry");
    plant("item_entry_cost", "UPDATE G_ItemValueEntry SET CostAmount = -CostAmount WHERE Id = (SELECT MAX(Id) FROM G_ItemValueEntry)");
    plant("item_stock", "UPDATE G_ItemValueEntry SET Quantity = -1, CostAmount = -1 WHERE Item_Id = (SELECT MAX(Item_Id) FROM "
                        "G_ItemValueEntry)");
    plant("references_D_SaleInvoiceHeader", "UPDATE D_SaleInvoiceHeader SET PayTerm_Id = 'X' WHERE Id = :invoice");
    plant("references_N_Item", "UPDATE N_Item SET ItemGroup_Id = 'X' WHERE Id = (SELECT MAX(Id) FROM N_Item)");
    // A record of another company.
    plant("references_D_SaleInvoiceLine",
          "UPDATE D_SaleInvoiceLine SET Measure_Id = (SELECT MAX(Id) FROM N_Measure WHERE Comp_Id = '2') WHERE Id = :line");
    plant("references_S_Rights", "UPDATE S_Rights SET User_Id = 'NOBODY' WHERE User_Id = 'CASHIER' AND Form_Id = "
                                 "(SELECT MAX(Form_Id) FROM S_Rights WHERE User_Id = 'CASHIER')");
    plant("version", "INSERT INTO srv_Migration (Number, Name, AppliedAt) VALUES (9999, 'x', '20260101T000000')");
    // What is no violation: no number, no series, nothing referred to, a manual number in another form, no lines by design.
    plant("", "UPDATE D_SaleInvoiceHeader SET DocumentNo = NULL, AbsoluteNo = '', Currency_Id = '' WHERE Id = :invoice");
    plant("", "UPDATE D_SaleInvoiceHeader SET DocumentNo = '1-99999999' WHERE Id = :invoice");
    plant("", "UPDATE D_SaleInvoiceHeader SET DocumentNo = '99999999999999999999999999' WHERE Id = :invoice");
  }

  void plantedViolationsAreFound()
  {
    QFETCH(QString, checks);
    QFETCH(QString, plant);
    const Transaction planted(*database_);
    const QString invoice = QStringLiteral("(SELECT MIN(Id) FROM D_SaleInvoiceHeader WHERE Comp_Id = '1' AND DocStatus = 0)");
    QString sql = plant;
    sql.replace(QStringLiteral(":invoice"), invoice)
        .replace(QStringLiteral(":line"),
                 QStringLiteral("(SELECT MIN(Id) FROM D_SaleInvoiceLine WHERE Master_Id = %1)").arg(invoice))
        .replace(QStringLiteral(":owed"), QStringLiteral("(SELECT MIN(Document_Id) FROM G_ContragentEntry)"))
        .replace(QStringLiteral(":entry"), QStringLiteral("(SELECT MIN(Id) FROM G_ContragentEntry WHERE DocumentType = 0)"));
    QVERIFY(database_->execute(sql) > 0);
    QCOMPARE(violated(), checks.split(u' ', Qt::SkipEmptyParts));
    planted_ += checks.split(u' ');
  }

  // Whoever adds a check plants what it is to find; of the references, which are one rule in a table, some are enough.
  void everyKindIsPlanted()
  {
    for (const ConsistencyCheck& check : consistencyChecks()) {
      QVERIFY2(check.name.startsWith(u"references_") || planted_.contains(check.name), qPrintable(check.name));
    }
  }

  // Every reference of the schema is looked at: columns called like a key that the table of references does not name.
  void referencesAreComplete()
  {
    static const QStringList free{"id", "comp_id", "c_user_id", "c_businessgroup_id", "document_id", "master_id", "row_id",
                                  "transaction_id", "docline_id", "posteddoc_id", "appliestodoc_id"};
    QString known;
    for (const ConsistencyCheck& check : consistencyChecks()) {
      known += check.sql.toLower();
    }
    for (const TableInfo& table : readTables(*database_)) {
      if (!QStringList{"c_", "d_", "g_", "n_"}.contains(table.name.left(2).toLower()) || table.view) {
        continue;
      }
      for (const ColumnInfo& column : table.columns) {
        const QString name = column.name.toLower();
        const bool key = name.endsWith(u"_id") && !free.contains(name) && name != u"srcline_id";
        // The defaults of a company may name nothing.
        if (key && table.name.compare(QLatin1StringView("C_SalesSetup"), Qt::CaseInsensitive) != 0) {
          QVERIFY2(known.contains(QStringLiteral("from %1 t where t.%2 is").arg(table.name.toLower(), name)),
                   qPrintable(table.name + u'.' + column.name));
        }
      }
    }
  }

 private:
  QStringList violated()
  {
    QStringList names;
    checkConsistency(*database_, [&](const CheckOutcome& outcome) {
      if (!outcome.passed()) {
        names.append(outcome.name);
      }
    });
    return names;
  }

  static inline int number_ = 0;
  std::unique_ptr<Connection> database_;
  QStringList planted_;
};

static RegisterTest<ConsistencyTest> consistencyTest;

}  // namespace kalvor::testing

#include "consistency_test.moc"
