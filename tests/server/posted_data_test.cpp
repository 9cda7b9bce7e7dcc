// What posting leaves behind: read through its forms, never changed through any; and databases from before there was posting.
#include "posting_company.h"
#include "several_tests.h"

namespace kalvor::testing {

using namespace server;

namespace {

// The rows of a form's dataset about a document, with the provider to save them through.
struct FormRows {
  FormRows(PostingCaller& caller, int form, int dsIndex, const QString& field, const QString& value)
  {
    VariantArray made{QString(), true};
    caller.call("CreateDynamicProvider", made);
    provider = made[0].toString();
    VariantArray request{form, dsIndex, provider, filterToVariant({{field, QStringLiteral("="), value, {}, {}}}), QString(), Variant(), Variant(), 0};
    caller.call("RequestData", request);
    VariantArray open{provider, -1};
    packet = caller.call("OpenProvider", open).value<DataPacketPtr>();
  }
  Variant cell(const char* field) const { return packet->records.value(0, packet->records.indexOf(QString::fromLatin1(field))); }

  QString provider;
  DataPacketPtr packet;
};

Variant save(PostingCaller& caller, const QList<std::pair<QString, DeltaPtr>>& deltas)
{
  VariantArray pairs;
  for (const auto& [provider, delta] : deltas)
    pairs.append(Variant(VariantArray{provider, QVariant::fromValue(delta)}));
  VariantArray arguments{Variant(pairs), Variant()};
  return caller.call("UpdateClientData", arguments);
}

}  // namespace

class PostedDataTest : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase()
  {
    company_ = std::make_unique<PostingCompany>();
    admin_ = std::make_unique<PostingCaller>(*company_, "SUPERVSR");
    company_->add({.id = QStringLiteral("Д"), .lines = {{"СТОКА", 1, 50}}, .cash = true});
    company_->add({.id = QStringLiteral("К"), .kind = 1, .lines = {{"СТОКА", 1, 50}}});
    company_->add({.id = QStringLiteral("Н"), .lines = {{"СТОКА", 1, 50}}});
    ids_[QStringLiteral("sale")] = QStringLiteral("Д");
    const VariantArray invoice = admin_->post(QStringLiteral("Д"));
    ids_[QStringLiteral("invoice")] = invoice[0].toString();
    ids_[QStringLiteral("shipment")] = invoice[1].toString();
    ids_[QStringLiteral("memo")] = admin_->post(QStringLiteral("К"))[0].toString();
  }
  void cleanupTestCase()
  {
    admin_.reset();
    company_.reset();
  }
  void init() { tried_ = std::make_unique<Transaction>(company_->db()); }
  void cleanup() { tried_.reset(); }

  void reads_data()
  {
    QTest::addColumn<int>("form");
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("document");
    QTest::addColumn<int>("rows");
    QTest::addColumn<QString>("amountField");
    QTest::addColumn<double>("amount");
    const auto row = [](int form, const char* field, const char* document, int rows, const char* amountField, double amount) {
      QTest::addRow("%d %s", form, document) << form << field << document << rows << amountField << amount;
    };
    row(500, "D_GlobalSaleHeader.Id", "sale", 1, "TotalVAT", 60);
    row(6, "D_SaleInvoiceHeader.Id", "invoice", 1, "TotalVAT", 60);
    row(7, "D_ShipmentHeader.AppliesToDoc_Id", "invoice", 1, "AppliesToDoc_Type", 0);
    row(8, "D_SaleCrMemoHeader.ID", "memo", 1, "TotalVAT", 60);
    row(9, "dv_ItemEntryAndShipmentHeader.AppliesToDoc_Id", "invoice", 1, "Quantity", -1);
    row(9, "dv_ItemEntryAndShipmentHeader.Document_Id", "shipment", 1, "Quantity", -1);
    row(10, "dv_ItemValueEntry.Document_Id", "invoice", 1, "CostAmount", -3.33);
    row(11, "dv_Entry.Document_Id", "invoice", 7, "DebitAmount", 60);
    row(12, "dv_VATEntry.Document_Id", "memo", 1, "VATAmount", -10);
    row(13, "dv_ContragentEntry.Document_Id", "memo", 1, "Remaining_LCY", -60);
    row(14, "dv_ContragentEntryDetail.Document_Id", "memo", 1, "Amount", -60);
    row(15, "G_LBankAccountEntry.Document_Id", "invoice", 1, "Amount", 60);
  }
  void reads()
  {
    QFETCH(int, form);
    QFETCH(QString, field);
    QFETCH(QString, document);
    QFETCH(QString, amountField);
    const FormRows rows(*admin_, form, 0, field, ids_[document]);
    QTEST(int(rows.packet->records.rows), "rows");
    QTEST(rows.cell(qPrintable(amountField)).toDouble(), "amount");
  }

  void neverChanges_data()
  {
    QTest::addColumn<int>("form");
    QTest::addColumn<int>("dsIndex");
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("document");
    const auto row = [](int form, int dsIndex, const char* field, const char* document) {
      QTest::addRow("%d %d %s", form, dsIndex, document) << form << dsIndex << field << document;
    };
    row(500, 0, "D_GlobalSaleHeader.Id", "sale");
    row(501, 0, "D_GlobalSaleHeader.Id", "sale");
    row(501, 1, "D_GlobalSaleLine.Master_Id", "sale");
    row(121, 0, "D_SaleInvoiceHeader.Id", "invoice");
    row(121, 1, "D_SaleInvoiceLine.Master_Id", "invoice");
    row(6, 0, "D_SaleInvoiceHeader.Id", "invoice");
    row(7, 0, "D_ShipmentHeader.Id", "shipment");
    row(8, 0, "D_SaleCrMemoHeader.ID", "memo");
    row(9, 0, "dv_ItemEntryAndShipmentHeader.Document_Id", "shipment");
    row(11, 0, "dv_Entry.Document_Id", "invoice");
    row(15, 0, "G_LBankAccountEntry.Document_Id", "invoice");
  }
  void neverChanges()
  {
    QFETCH(int, form);
    QFETCH(int, dsIndex);
    QFETCH(QString, field);
    QFETCH(QString, document);
    const FormRows rows(*admin_, form, dsIndex, field, ids_[document]);
    const auto refused = [&](const DeltaPtr& delta) { return errorCode([&] { save(*admin_, {{rows.provider, delta}}); }); };
    QCOMPARE(refused(DeltaBuilder(rows.packet).remove(0).delta()), int(RpcError::Refused));
    if (rows.packet->records.indexOf(QStringLiteral("Note")) >= 0)
      QCOMPARE(refused(DeltaBuilder(rows.packet).modify(0, {{QStringLiteral("Note"), QStringLiteral("друго")}}).delta()), int(RpcError::Refused));
    if (dsIndex == 1) {
      QCOMPARE(refused(DeltaBuilder(rows.packet).modify(0, {{QStringLiteral("Quantity"), 2.0}}).delta()), int(RpcError::Refused));
      QCOMPARE(refused(DeltaBuilder(rows.packet).insert({{QStringLiteral("Master_Id"), ids_[document]}, {QStringLiteral("Line_No"), 2},
                                                          {QStringLiteral("Type"), 1}}).delta()), int(RpcError::Refused));
    }
  }

  // Nor through statements, nor by moving a line into a posted document; an open one is free, and finished in one save.
  void waysAround()
  {
    const FormRows header(*admin_, 501, 0, QStringLiteral("D_GlobalSaleHeader.Id"), QStringLiteral("Н"));
    const FormRows lines(*admin_, 501, 1, QStringLiteral("D_GlobalSaleLine.Master_Id"), QStringLiteral("Н"));
    const DeltaPtr moved = DeltaBuilder(lines.packet).modify(0, {{QStringLiteral("Master_Id"), ids_[QStringLiteral("sale")]}}).delta();
    QVERIFY(errorCode([&] { save(*admin_, {{lines.provider, moved}}); }) != 0);
    const DeltaPtr forged = DeltaBuilder(header.packet).modify(0, {{QStringLiteral("GlobDocIsPosted"), 1}, {QStringLiteral("Note"), QStringLiteral("да")}}).delta();
    QCOMPARE(save(*admin_, {{header.provider, forged}}).toInt(), 0);
    QCOMPARE(company_->number(QStringLiteral("SELECT GlobDocIsPosted FROM D_GlobalSaleHeader WHERE Id = 'Н' AND Note = 'да'")), 0);
    for (const char* sql : {"UPDATE D_SaleInvoiceHeader SET Note = 'x' WHERE Id = '%1'", "DELETE FROM D_SaleInvoiceLine WHERE Master_Id = '%1'",
                            "UPDATE G_LBankAccountEntry SET Description = 'x' WHERE Document_Id = '%1'"}) {
      VariantArray batch{QString::fromLatin1(sql).arg(ids_[QStringLiteral("invoice")])};
      Variant result = -1;
      const int code = errorCode([&] { result = admin_->call("ExecMultySQL", batch); });
      QVERIFY2(code != 0 || result.toInt() != 0, sql);
    }
    VariantArray printed{QStringLiteral("UPDATE D_SaleInvoiceHeader SET CopiesPrinted = CopiesPrinted + 1 WHERE ID = '%1' AND Comp_Id = '1'").arg(ids_[QStringLiteral("invoice")])};
    QCOMPARE(admin_->call("ExecuteSQLScript", printed).toInt(), 0);
    company_->db().execute(QStringLiteral("INSERT INTO D_SaleInvoiceHeader (Id, Comp_Id, DocumentDate) VALUES ('Ч', '1', '20260701')"));
    company_->db().execute(QStringLiteral("INSERT INTO D_SaleInvoiceLine (Id, Comp_Id, Master_Id, Line_No) VALUES ('Ч1', '1', 'Ч', 1)"));
    const FormRows open(*admin_, 121, 0, QStringLiteral("D_SaleInvoiceHeader.Id"), QStringLiteral("Ч"));
    const FormRows line(*admin_, 121, 1, QStringLiteral("D_SaleInvoiceLine.Master_Id"), QStringLiteral("Ч"));
    QCOMPARE(save(*admin_, {{open.provider, DeltaBuilder(open.packet).modify(0, {{QStringLiteral("DocStatus"), 1}}).delta()},
                            {line.provider, DeltaBuilder(line.packet).modify(0, {{QStringLiteral("Quantity"), 2.0}}).delta()}}).toInt(), 0);
  }

  void olderDatabases()
  {
    const auto db = newTestConnection();
    QList<Migration> older = embeddedMigrations();
    older.removeIf([](const Migration& migration) { return migration.number >= 80; });
    QVERIFY(older.size() < embeddedMigrations().size());
    migrate(*db, older);
    runScript(*db, QStringLiteral(
        "INSERT INTO N_Company (Id, Name) VALUES ('1', 'Стара'); INSERT INTO C_CompanySetup (Id, Currency_LCY) VALUES ('1', 'EUR');"
        "INSERT INTO D_SaleInvoiceHeader (Id, Comp_Id, DocumentDate, DocStatus) VALUES ('Ф', '1', '20260101', 1);"
        "INSERT INTO G_ContragentEntry (Id, Comp_Id, Contragent_Id, Gen_PostingType, DocumentType, PostingDate, Amount, Amount_LCY, Remaining, "
        "Remaining_LCY, Opened) VALUES ('A', '1', 'К', 1, 0, '20260101', 120, 240, 20, 40, 1), ('B', '1', 'К', 1, 0, '20260101', 7, 7, 7, 7, 1)"));
    QCOMPARE(migrate(*db), int(embeddedMigrations().size() - older.size()));
    QCOMPARE(migrate(*db), 0);
    const RecordSet details = db->query(QStringLiteral("SELECT Entry_Id, COUNT(*), CAST(SUM(Amount) AS INTEGER), CAST(SUM(Amount_LCY) AS INTEGER) "
                                                       "FROM G_ContragentEntryDetail GROUP BY Entry_Id ORDER BY Entry_Id"));
    const auto text = [&](qsizetype row) {
      return QStringLiteral("%1 %2 %3 %4").arg(details.value(row, 0).toString()).arg(details.value(row, 1).toInt()).arg(details.value(row, 2).toInt()).arg(details.value(row, 3).toInt());
    };
    QCOMPARE(details.rows, 2);
    QCOMPARE(text(0), QStringLiteral("A 2 20 40"));
    QCOMPARE(text(1), QStringLiteral("B 1 7 7"));
    QCOMPARE(db->value(QStringLiteral("SELECT AllowNegativeStock FROM C_CompanySetup")).toInt(), 0);
    // Views keep what their columns were declared as.
    QStringList dates;
    for (const TableInfo& table : readTables(*db))
      for (const ColumnInfo& column : table.columns)
        if (table.view && column.type == DataType::Date && column.name == u"PostingDate")
          dates << table.name;
    QCOMPARE(dates.join(u' '), QStringLiteral("dv_ContragentEntry dv_ContragentEntryDetail dv_Entry dv_ItemEntryAndShipmentHeader dv_ItemValueEntry dv_VATEntry"));
  }

 private:
  std::unique_ptr<PostingCompany> company_;
  std::unique_ptr<PostingCaller> admin_;
  std::unique_ptr<Transaction> tried_;
  QHash<QString, QString> ids_;
};

static const RegisterTest<PostedDataTest> postedDataTest;

}  // namespace kalvor::testing

#include "posted_data_test.moc"
