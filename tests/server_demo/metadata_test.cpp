#include "demo_database.h"
#include "server/catalogue/metadata.h"
#include "server/metadata/metadata_check.h"
#include "server/metadata/metadata_loader.h"
#include "server/queries/order_terms.h"
#include "several_tests.h"

using namespace kalvor;
using namespace kalvor::server;

class MetadataTest : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase()
  {
    database_ = kalvor::testing::newTestConnection();
    migrate(*database_);
    QVERIFY(loadMetadata(*database_, embeddedMetadata(), ExistingRows::Keep) > 30);
  }

  void theProgramsOwnFormsAreSound() { QCOMPARE(checkMetadata(*database_).join(u'\n'), QString()); }

  // As the server reads them: every query usable, every field known by its name and its filter name.
  void theServerUnderstandsThem()
  {
    const auto metadata = server::Metadata::read(*database_);
    int fields = 0;
    for (const DeclaredQuery& declared : embeddedMetadata().queries) {
      const StoredQuery* query = metadata->query(declared.formId, declared.datasetIndex);
      QVERIFY2(query, qPrintable(QString::number(declared.id)));
      for (const DeclaredField& field : declared.fields) {
        if (field.kind == u"6") {
          continue;
        }
        QVERIFY2(query->resolve(field.name, {}), qPrintable(field.name));
        QVERIFY2(field.source.isEmpty() || query->resolve(field.source, {}), qPrintable(field.source));
        ++fields;
      }
      QVERIFY(declared.defaultOrder.isEmpty() || !orderTerms(declared.defaultOrder, QueryFields(*query, {})).isEmpty());
      for (const QueryItem& item : query->items) {
        QVERIFY2(item.field.type != DataType::Unknown || !item.declaredType.isEmpty(), qPrintable(item.field.name));
      }
    }
    QVERIFY(fields > 400);
  }

  void knownFormsAreThere_data()
  {
    QTest::addColumn<int>("form");
    QTest::addColumn<int>("dataset");
    QTest::addColumn<QString>("className");
    QTest::addColumn<QString>("table");
    QTest::newRow("invoices") << 120 << 0 << "TfBrSaleInvoice" << "D_SaleInvoiceHeader";
    QTest::newRow("invoice") << 121 << 0 << "TfEdSaleInvoice" << "D_SaleInvoiceHeader";
    QTest::newRow("invoice lines") << 121 << 1 << "TfEdSaleInvoice" << "D_SaleInvoiceLine";
    QTest::newRow("contractors") << 140 << 0 << "TfBrContragent" << "N_Contragent";
    QTest::newRow("item") << 151 << 0 << "TfEdItem" << "N_Item";
    QTest::newRow("a dialog without data") << 250 << 0 << "TfSettings" << "";
    QTest::newRow("measures") << 160 << 0 << "TfBrNomenclature" << "N_Measure";
  }

  void knownFormsAreThere()
  {
    QFETCH(int, form);
    QFETCH(int, dataset);
    const RecordSet rows = database_->query(
        QStringLiteral("SELECT ClassName, BaseTable FROM S_Forms WHERE ID = ? AND Ds_Index = ?"), {form, dataset});
    QCOMPARE(rows.rows, 1);
    QTEST(rows.value(0, 0).toString(), "className");
    QTEST(rows.value(0, 1).toString(), "table");
  }

  // Every row breaks something that the check must notice; the database is put back afterwards.
  void faultsAreFound_data()
  {
    QTest::addColumn<QString>("change");
    QTest::addColumn<QString>("fault");
    const auto row = [](const char* name, const char* change, const char* fault) {
      QTest::newRow(name) << QString::fromUtf8(change) << QString::fromUtf8(fault);
    };
    row("statement", "UPDATE S_QueryList SET SqlText = 'SELECT Nothing FROM N_Item' WHERE Id = 15000", "query 15000: ");
    row("key", "UPDATE S_QueryList SET KeyField = 'N_Item.Key' WHERE Id = 15000", "no column N_Item.Key");
    row("order", "UPDATE S_QueryList SET DefaultOrder = 'N_Item.Nome DESC' WHERE Id = 15000", "no column N_Item.Nome");
    row("column without row", "DELETE FROM S_FieldList WHERE SQL_ID = 15000 AND FieldName = 'UnitPrice'",
        "column UnitPrice has no field row");
    row("row without column",
        "UPDATE S_FieldList SET FieldName = 'Price' WHERE SQL_ID = 15000 AND FieldName = 'UnitPrice'",
        "field row Price has no column");
    row("filter name", "UPDATE S_FieldList SET FieldFilter = 'N_Item.Cod' WHERE SQL_ID = 15000 AND FieldName = 'Code'",
        "no column N_Item.Cod");
    row("unqualified key", "UPDATE S_FieldList SET FieldFilter = 'Id' WHERE SQL_ID = 15000 AND FieldName = 'Id'",
        "the key needs a qualified filter name");
    row("joined and updatable",
        "UPDATE S_FieldList SET Updatable = '1' WHERE SQL_ID = 15000 AND FieldName = 'N_Measure_Code'",
        "updatable, but not of N_Item");
    row("options", "UPDATE S_FieldList SET OptionCaption = NULL WHERE SQL_ID = 15000 AND FieldName = 'Type'",
        "an option field without options");
    row("macro", "UPDATE S_FieldList SET DefaultValue = '<#CURRENTDAY#>' WHERE SQL_ID = 15100 AND FieldName = 'Code'",
        "unknown macro <#CURRENTDAY#>");
    row("master macro",
        "UPDATE S_FieldList SET DefaultValue = '<#MasterField(Nobody)#>' WHERE SQL_ID = 12101 AND FieldName = "
        "'Currency_Id'",
        "unknown macro");
    row("look-up form",
        "UPDATE S_FieldList SET SelectorDesc = ';999;Id;Id;' WHERE SQL_ID = 12100 AND FieldName = 'Currency_Id'",
        "no look-up form 999");
    row("source field",
        "UPDATE S_FieldList SET SelectorDesc = ';162;Symbol;Currency_Id;' WHERE SQL_ID = 12100 AND FieldName = "
        "'Currency_Id'",
        "form 162 has no field Symbol");
    row("uneven",
        "UPDATE S_FieldList SET SelectorDesc = ';162;Id,Name;Currency_Id;' WHERE SQL_ID = 12100 AND FieldName = "
        "'Currency_Id'",
        "2 source fields, 1 target fields");
    row("blank",
        "UPDATE S_FieldList SET SelectorDesc = ';162;Id; Currency_Id;' WHERE SQL_ID = 12100 AND FieldName = "
        "'Currency_Id'",
        "a blank ends a part");
    row("look-up filter",
        "UPDATE S_FieldList SET SelectorDesc = ';162;Id;Currency_Id;N_Currency.Rate,=,1,' WHERE SQL_ID = 12100 AND "
        "FieldName = 'Currency_Id'",
        "form 162 cannot be filtered by N_Currency.Rate");
    row("aggregate",
        "UPDATE S_FieldList SET SelectorDesc = 'SUM(Sum)' WHERE SQL_ID = 12101 AND FieldName = 'Agg_TotalAmount'",
        "not an aggregate: SUM(Sum)");
    row("form without query", "DELETE FROM S_QueryList WHERE Id = 12101", "form 121, dataset 1: no stored query");
    row("caption field", "UPDATE S_Forms SET CaptionFields = 'Nummer' WHERE ID = 121 AND Ds_Index = 0",
        "no caption field Nummer");
    row("colour rule", "UPDATE S_Forms SET LineColors = REPLACE(LineColors, 'DocStatus', 'Status') WHERE ID = 120",
        "colour rule for no field Status");
  }

  void faultsAreFound()
  {
    QFETCH(QString, change);
    QFETCH(QString, fault);
    Transaction transaction(*database_);
    QVERIFY(database_->execute(change) > 0);
    const QStringList faults = checkMetadata(*database_);
    QVERIFY2(faults.join(u'\n').contains(fault), qPrintable(faults.join(u'\n')));
  }

  void changesOfAnAdministratorStay()
  {
    Transaction transaction(*database_);
    database_->execute(QStringLiteral("UPDATE S_Forms SET Caption = 'Моите фактури' WHERE ID = 120"));
    QCOMPARE(loadMetadata(*database_, embeddedMetadata(), ExistingRows::Keep), 0);
    const auto caption = [&] { return database_->value(QStringLiteral("SELECT Caption FROM S_Forms WHERE ID = 120")); };
    QCOMPARE(caption().toString(), QStringLiteral("Моите фактури"));
    loadMetadata(*database_, embeddedMetadata(), ExistingRows::Replace);
    QCOMPARE(caption().toString(), QStringLiteral("Фактури за продажба"));
  }

  void faultyFilesAreRefused_data()
  {
    QTest::addColumn<QByteArray>("json");
    QTest::newRow("not json") << QByteArray("{");
    QTest::newRow("unknown key") << QByteArray(R"({"form": []})");
    QTest::newRow("unknown flag") << QByteArray(R"({"queries": [{"form": 1, "index": 0, "query": 1, "table": "T",
        "from": ["T"], "fields": [{"name": "Id", "flags": "shown"}]}]})");
    QTest::newRow("no number") << QByteArray(R"({"queries": [{"form": 1, "index": 0, "table": "T", "fields": []}]})");
    QTest::newRow("no name") << QByteArray(R"({"queries": [{"form": 1, "index": 0, "query": 1, "table": "T",
        "from": ["T"], "fields": [{"caption": "Код"}]}]})");
  }

  void faultyFilesAreRefused()
  {
    QFETCH(QByteArray, json);
    DeclaredMetadata metadata;
    QVERIFY_EXCEPTION_THROWN(readMetadataFile(json, QStringLiteral("x.json"), metadata), MetadataError);
  }

 private:
  std::unique_ptr<Connection> database_;
};

static kalvor::testing::RegisterTest<MetadataTest> metadataTest;
#include "metadata_test.moc"
