#include "server/load/bulk_load.h"

#include "demo_database.h"
#include "several_tests.h"

using namespace kalvor;
using namespace kalvor::server;

class BulkLoadTest : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() { database_ = kalvor::testing::demoDatabase(); }

  // Steps of one small company: contractors, an item, two invoices and their lines.
  void documentsAreCompleted()
  {
    QCOMPARE(load("N_Contragent", "code,country\nX1,Чехия\nX2,\n").rows, 2);
    QCOMPARE(load("N_Item", "code,description\nXA,\"Чаша, \"\"голяма\"\"\"\nxa,\n").rows, 2);
    LoadRequest headers = request("D_SaleInvoiceHeader");
    headers.constants = {{QStringLiteral("Currency_Id"), QStringLiteral("USD")}};
    QCOMPARE(bulkLoad(*database_, headers, "number,date,customer\nX-1,2026-02-27,X1\nCX-1,2010-12-01,X2\n").rows, 2);
    QCOMPARE(
        load("D_SaleInvoiceLine", "invoice,item,quantity,price\nX-1,XA,3,2.55\nX-1,xa,1,0\nCX-1,XA,-2,0.333\n").rows,
        3);

    QCOMPARE(text("SELECT Name FROM N_Contragent WHERE Code = 'X1'"), QStringLiteral("Клиент X1"));
    QCOMPARE(text("SELECT Description FROM D_SaleInvoiceLine WHERE UnitPrice = 2550000 AND Code = 'XA'"),
             QStringLiteral("Чаша, \"голяма\""));
    QCOMPARE(text("SELECT DueDate FROM D_SaleInvoiceHeader WHERE DocumentNo = 'X-1'"), QStringLiteral("2026-03-13"));
    auto sums =
        database_->prepare(QStringLiteral("SELECT TotalValue, VATValue, TotalVAT, CurrencyFactor, TotalValue_LCY "
                                          "FROM D_SaleInvoiceHeader WHERE DocumentNo = 'X-1'"));
    QVERIFY(sums->step());
    QCOMPARE(sums->integer(0), 7'650'000);
    QCOMPARE(sums->integer(1), 1'530'000);
    QCOMPARE(sums->integer(2), 9'180'000);
    QVERIFY(sums->integer(3) > 700'000 && sums->integer(3) < 1'200'000);
    QCOMPARE(sums->integer(4), scaled(qRound64(7.65 * unscaled(sums->integer(3)) * 100) / 100.0));
    QCOMPARE(text("SELECT TotalValue + 0 FROM D_SaleInvoiceHeader WHERE DocumentNo = 'CX-1'"),
             QStringLiteral("-670000"));
    QCOMPARE(
        text("SELECT COUNT(*) FROM D_SaleInvoiceLine JOIN D_SaleInvoiceHeader ON D_SaleInvoiceHeader.Id = Master_Id "
             "WHERE DocumentNo = 'X-1' AND Line_No IN (1, 2) AND D_SaleInvoiceLine.Currency_Id = 'USD'"),
        QStringLiteral("2"));
  }

  void laterLinesJoinTheEarlier()
  {
    load("N_Item", "code,description\nL1,Ред\n");
    load("D_SaleInvoiceHeader", "number,date\nL-1,2026-01-05\n");
    load("D_SaleInvoiceLine", "invoice,item,quantity,price\nL-1,L1,1,1\n");
    load("D_SaleInvoiceLine", "invoice,item,quantity,price\nL-1,L1,1,2\n");
    QCOMPARE(text("SELECT MAX(Line_No) FROM D_SaleInvoiceLine WHERE Code = 'L1'"), QStringLiteral("2"));
    QCOMPARE(text("SELECT TotalValue + 0 FROM D_SaleInvoiceHeader WHERE DocumentNo = 'L-1'"),
             QStringLiteral("3000000"));
  }

  void ownColumnsAndLookups()
  {
    LoadRequest request = this->request("N_ItemPrice");
    request.lookups = {
        {QStringLiteral("Item_Id"), QStringLiteral("N_Item"), QStringLiteral("Code"), QStringLiteral("stock")},
        {QStringLiteral("Measure_Id"), QStringLiteral("N_Measure"), QStringLiteral("Code"), QStringLiteral("unit")}};
    request.map = {{QStringLiteral("cena"), QStringLiteral("UnitPrice")},
                   {QStringLiteral("note"), QStringLiteral("-")}};
    request.constants = {{QStringLiteral("StartDate"), QStringLiteral("2026-01-01")},
                         {QStringLiteral("Side"), QStringLiteral("1")}};
    load("N_Item", "code\nP1\n");
    QCOMPARE(bulkLoad(*database_, request, "stock,unit,cena,note\nP1,бр,12.345678,x\n").rows, 1);
    QCOMPARE(text("SELECT N_ItemPrice.UnitPrice + 0 FROM N_ItemPrice JOIN N_Item ON N_Item.Id = Item_Id WHERE "
                  "N_Item.Code = 'P1'"),
             QStringLiteral("12345678"));
  }

  void companiesStayApart()
  {
    LoadRequest request = this->request("N_Contragent");
    request.companyId = QStringLiteral("2");
    QCOMPARE(bulkLoad(*database_, request, "code\nONLY2\n").rows, 1);
    QVERIFY(fault("D_SaleInvoiceHeader", "number,date,customer\nZ,2026-01-01,ONLY2\n")
                .contains(QStringLiteral("няма „ONLY2“ в N_Contragent")));
  }

  void existingRecordsCanBeSkipped()
  {
    LoadRequest request = this->request("N_Contragent");
    QCOMPARE(load("N_Contragent", "code\nS1\n").rows, 1);
    request.existing = ExistingRecords::Skip;
    const LoadResult result = bulkLoad(*database_, request, "code\nS1\nS2\ns1\n");
    QCOMPARE(result.rows, 2);
    QCOMPARE(result.skipped, 1);
  }

  // Whatever is wrong in a file: one message that says where, and nothing loaded.
  void refuses_data()
  {
    QTest::addColumn<QString>("table");
    QTest::addColumn<QByteArray>("csv");
    QTest::addColumn<QString>("message");
    const auto row = [](const char* name, const char* table, const QByteArray& csv, const char* message) {
      QTest::newRow(name) << QString::fromLatin1(table) << csv << QString::fromUtf8(message);
    };
    row("empty file", "N_Item", "", "t.csv: файлът е празен");
    row("no such table", "N_Nothing", "code\n", "няма таблица „N_Nothing“");
    row("the server's own table", "srv_Migration", "Number\n1\n", "няма таблица „srv_Migration“");
    row("a statement for a table", "N_Item; DROP TABLE N_Item", "code\n1\n", "няма таблица");
    row("unknown header", "N_Item", "code,colour\nA,red\n",
        "t.csv: колона „colour“ не съответства на колона на N_Item");
    row("header twice", "N_Item", "code,code\nA,B\n", "t.csv: колона „code“ се повтаря");
    row("two headers for one column", "N_Item", "code,Code\nA,B\n", "колона Code получава стойност два пъти");
    row("too few fields", "N_Item", "code,description\nA,B\nC\n", "t.csv, ред 3: 1 полета вместо 2");
    row("too many fields", "N_Item", "code\nA,B\n", "t.csv, ред 2: 2 полета вместо 1");
    row("open quote", "N_Item", "code\n\"A\n", "t.csv, ред 2: незатворени кавички");
    row("no code", "N_Item", "code,description\nA,a\n,b\n", "t.csv, ред 3, колона code: липсва стойност за Code");
    row("code there already", "N_Item", "code\nA\nA\n", "t.csv, ред 3, колона Code: вече има запис „A“");
    row("too long", "N_Item", "code\n" + QByteArray(31, 'x') + "\n",
        "ред 2, колона code: „xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx“ е по-дълъг от 30 знака");
    row("other encoding", "N_Item", "code,description\nA,\xC1\xE0\n",
        "ред 2, колона description: текстът не е в кодировка UTF-8");
    row("date", "D_SaleInvoiceHeader", "number,date,customer\nN1,12/1/10,\n",
        "ред 2, колона date: „12/1/10“ не е дата");
    row("no date", "D_SaleInvoiceHeader", "number,date\nN1,\n", "ред 2, колона date: липсва стойност за DocumentDate");
    row("unknown customer", "D_SaleInvoiceHeader", "number,date,customer\nN1,2026-01-01,Nobody\n",
        "ред 2, колона customer: няма „Nobody“ в N_Contragent");
    row("currency without rate", "D_SaleInvoiceHeader", "number,date,Currency_Id\nN1,2026-01-01,JPY\n",
        "ред 2, колона Currency_Id: няма курс на валута „JPY“");
    row("unknown invoice", "D_SaleInvoiceLine", "invoice,item,quantity,price\nNone,A,1,1\n",
        "ред 2, колона invoice: няма „None“ в D_SaleInvoiceHeader");
    row("line of nothing", "D_SaleInvoiceLine", "item,quantity,price\nA,1,1\n",
        "ред 2, колона Master_Id: няма документ „“");
    row("unknown item", "D_SaleInvoiceLine", "invoice,item,quantity,price\n1000000001,Nothing,1,1\n",
        "ред 2, колона Code: няма артикул с код „Nothing“");
    row("quantity", "D_SaleInvoiceLine", "invoice,item,quantity,price\n1000000001,,6x,1\n",
        "ред 2, колона quantity: „6x“ не е число");
    row("key twice", "N_Item", "Id,code\nI,Q1\nI,Q2\n", "t.csv, ред 3: записът нарушава правило на таблица N_Item");
  }

  void refuses()
  {
    QFETCH(QString, table);
    QFETCH(QByteArray, csv);
    const QString before = counts();
    const QString message = fault(table.toUtf8().constData(), csv);
    QVERIFY2(message.contains(*static_cast<QString*>(QTest::qData("message", qMetaTypeId<QString>()))),
             qPrintable(message));
    QCOMPARE(counts(), before);
  }

  void refusesWhatTheCallerAsks_data()
  {
    QTest::addColumn<QString>("fileColumn");
    QTest::addColumn<QString>("column");
    QTest::addColumn<QString>("constant");
    QTest::addColumn<QString>("company");
    QTest::addColumn<QString>("message");
    QTest::newRow("no such company") << "" << "" << "" << "77" << "няма фирма „77“";
    QTest::newRow("no such file column") << "kod" << "Code" << "" << "1" << "t.csv: няма колона „kod“";
    QTest::newRow("no such column") << "code" << "Kode" << "" << "1" << "таблица N_Item няма колона „Kode“";
    QTest::newRow("constant of no column") << "" << "" << "Colour" << "1" << "таблица N_Item няма колона „Colour“";
    QTest::newRow("constant of a mapped column") << ""
                                                 << ""
                                                 << "Code"
                                                 << "1"
                                                 << "колона Code получава стойност два пъти";
    QTest::newRow("constant that does not convert") << "" << "" << "Type" << "1" << "--set Type: „x“ не е цяло число";
  }

  void refusesWhatTheCallerAsks()
  {
    QFETCH(QString, fileColumn);
    QFETCH(QString, column);
    QFETCH(QString, constant);
    QFETCH(QString, company);
    QFETCH(QString, message);
    LoadRequest request = this->request("N_Item");
    request.companyId = company;
    if (!fileColumn.isEmpty()) {
      request.map.insert(fileColumn, column);
    }
    if (!constant.isEmpty()) {
      request.constants.insert(constant, QStringLiteral("x"));
    }
    try {
      bulkLoad(*database_, request, "code\nA\n");
      QFAIL("not refused");
    } catch (const LoadError& error) {
      QCOMPARE(QString::fromUtf8(error.what()), message);
    }
  }

 private:
  LoadRequest request(const char* table) const
  {
    LoadRequest request;
    request.table = QString::fromUtf8(table);
    request.fileName = QStringLiteral("t.csv");
    request.companyId = QStringLiteral("1");
    request.userId = QStringLiteral("SUPERVSR");
    return request;
  }

  LoadResult load(const char* table, const QByteArray& csv) { return bulkLoad(*database_, request(table), csv); }

  QString fault(const char* table, const QByteArray& csv)
  {
    try {
      load(table, csv);
    } catch (const LoadError& error) {
      return QString::fromUtf8(error.what());
    }
    return QStringLiteral("(loaded)");
  }

  QString text(const char* sql) { return database_->value(QString::fromUtf8(sql)).toString(); }

  QString counts()
  {
    return text("SELECT (SELECT COUNT(*) FROM N_Item) || ' ' || (SELECT COUNT(*) FROM N_ItemMeasure) || ' ' || "
                "(SELECT COUNT(*) FROM D_SaleInvoiceHeader) || ' ' || (SELECT COUNT(*) FROM D_SaleInvoiceLine)");
  }

  std::unique_ptr<Connection> database_;
};

static kalvor::testing::RegisterTest<BulkLoadTest> bulkLoadTest;
#include "bulk_load_test.moc"
