#include <QFile>
#include <QPlainTextEdit>
#include <QTableWidget>
#include <QTemporaryDir>

#include "../forms/sample_forms.h"
#include "../several_tests.h"
#include "import/messages.h"
#include "import/windows/import_filters_form.h"
#include "session/server_calls.h"
#include "widgets/string_grid.h"

using namespace kalvor;
using namespace kalvor::testing;

namespace {

constexpr int contragentCard = 141;
constexpr int invoiceCard = 121;

const QString contragents = QStringLiteral(
    "[OPTIONS]TXTFILE_SEP=SEMICOLON##FIRST_ROW=2##DECIMAL_SEPARATOR=.##IMPORT_ACTION=%1%2[##OPTIONS]\r\n"
    "[CDSMASTER]1=1|1|Code##2=1|0|Name##3=1|0|CreditLimit##90=1|0|N_VATBusPostGroup_Code||BG##91=1|0|N_GenBusPostGroup_Code||DOMESTIC##\r\n"
    "4=2|0|||1|TermsSource;TermsTarget|16400|N_PaymentTerms|N_PaymentTerms.Name#=#8#4[##CDSMASTER]\r\n"
    "[LINK_FIELDS_DESCR]TermsSource=Id##TermsTarget=PaymentTerms_Id[##LINK_FIELDS_DESCR]\r\n");

class DataFile {
 public:
  explicit DataFile(const QString& lines, const QString& name = QStringLiteral("data.csv")) : path(folder_.filePath(name))
  {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(lines.toUtf8()) < 0)
      qFatal("cannot write %s", qPrintable(path));
  }

 private:
  QTemporaryDir folder_;

 public:
  const QString path;
};

// How many rows every table of the server has.
QStringList rowCounts()
{
  QStringList counts;
  const auto db = demoServer()->core().openWriter();
  const RecordSet tables = db->query(QStringLiteral("SELECT name FROM sqlite_master WHERE type = 'table' ORDER BY name"));
  for (qsizetype row = 0; row < tables.rows; ++row) {
    const QString table = tables.value(row, 0).toString();
    // Sessions and their providers come and go with every form.
    if (table != u"srv_Session" && table != u"srv_Provider")
      counts.append(table + u'=' + db->value(QStringLiteral("SELECT COUNT(*) FROM \"%1\"").arg(table)).toString());
  }
  return counts;
}

QString lastNumbers()
{
  QStringList numbers;
  const RecordSet series = demoServer()->core().openWriter()->query(QStringLiteral("SELECT Code, LastNo FROM N_Series ORDER BY Id"));
  for (qsizetype row = 0; row < series.rows; ++row)
    numbers.append(series.value(row, 0).toString() + u'=' + series.value(row, 1).toString());
  return numbers.join(u',');
}

ImportTrial tried(const QString& text, const QString& path, int form = contragentCard)
{
  return tryImport(form, ImportText(text).filter(form), path);
}

QStringList failuresOf(const ImportTrialDocument& document)
{
  QStringList texts;
  for (const ImportTrialFailure& failure : document.failures)
    texts.append(QStringLiteral("%1 %2 [%3]%4").arg(failure.row).arg(failure.field, failure.value, failure.fatal ? QString() : QStringLiteral(" told")));
  return texts;
}

}  // namespace

class ImportFiltersFormTest : public QObject {
  Q_OBJECT

 private slots:
  void outcomes_data()
  {
    QTest::addColumn<int>("action");
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("second");
    const QString inserted = QStringLiteral("Ще се добави"), updated = QStringLiteral("Ще се промени"), skipped = QStringLiteral("Ще се пропусне");
    QTest::newRow("insert") << 0 << inserted << inserted;
    QTest::newRow("update") << 1 << updated << skipped;
    QTest::newRow("update or insert") << 2 << updated << inserted;
    QTest::newRow("insert what is new") << 3 << skipped << inserted;
  }
  void outcomes()
  {
    QFETCH(int, action);
    Desk desk;
    const QString existing = demoServer()->core().openWriter()->value(QStringLiteral("SELECT Code FROM N_Contragent WHERE Comp_Id = '1' ORDER BY Code LIMIT 1")).toString();
    const DataFile file(QStringLiteral("код;име\r\n%1;Стар\r\nTRY1;Нов\r\n").arg(existing));
    const QStringList before = rowCounts();
    QString text = contragents.arg(action).arg(QString());
    text.remove(text.indexOf(QStringLiteral("##\r\n4=")), text.indexOf(QStringLiteral("[##CDSMASTER]")) - text.indexOf(QStringLiteral("##\r\n4=")));
    const ImportTrial trial = tried(text, file.path);
    QVERIFY2(trial.error.isEmpty(), qPrintable(trial.error));
    QCOMPARE(trial.documents.size(), 2);
    QTEST(importOutcomeText(trial.documents[0].outcome), "first");
    QTEST(importOutcomeText(trial.documents[1].outcome), "second");
    QCOMPARE(trial.documents[1].row, 3);
    QCOMPARE(rowCounts(), before);
    QVERIFY(desk.prompt.messages.isEmpty());
  }

  // Ten of twelve documents, each with what stands against it, and nothing written.
  void tenDocumentsWithTheirFailures()
  {
    Desk desk;
    QString lines = QStringLiteral("код;име;лимит;срок\r\nTRY1;Добър;12.5;До 7 дни\r\nTRY2;Число;много;До 7 дни\r\n"
                                   "TRY3;Търсене;1;Няма такива\r\n%1;Дълъг код;x;Няма\r\n").arg(QString(200, u'Я'));
    for (int i = 5; i <= 12; ++i)
      lines += QStringLiteral("TRY%1;Още;;До 7 дни\r\n").arg(i);
    const DataFile file(lines);
    const QStringList before = rowCounts();
    const QString numbers = lastNumbers();
    const ImportTrial trial = tried(contragents.arg(0).arg(QString()), file.path);
    QVERIFY2(trial.error.isEmpty(), qPrintable(trial.error));
    QCOMPARE(trial.documents.size(), 10);
    QVERIFY(trial.moreDocuments);
    QVERIFY2(trial.documents[0].failures.isEmpty(), qPrintable(failuresOf(trial.documents[0]).join(u'\n')));
    QVERIFY(trial.documents[0].head.contains(QStringLiteral("TRY1")) && trial.documents[0].head.contains(QStringLiteral("Добър")));
    QCOMPARE(trial.documents[0].head.size(), trial.headCaptions.size());
    QCOMPARE(failuresOf(trial.documents[1]), QStringList{QStringLiteral("3 Кредитен лимит [много]")});
    QCOMPARE(trial.documents[2].failures.size(), 1);
    QCOMPARE(trial.documents[2].failures[0].reason, _err_RecNotFound);
    QCOMPARE(trial.documents[2].failures[0].row, 4);
    QVERIFY(trial.documents[2].failures[0].value.contains(QStringLiteral("Няма такива")));
    const QStringList several = failuresOf(trial.documents[3]);
    QCOMPARE(several.size(), 3);  // the lookup, the code that is too long, the number
    for (int i = 0; i < 10; ++i)
      QCOMPARE(trial.documents[i].outcome == ImportTrialDocument::Outcome::Failed, i >= 1 && i <= 3);
    QCOMPARE(rowCounts(), before);
    QCOMPARE(lastNumbers(), numbers);
    QVERIFY(desk.prompt.messages.isEmpty());
  }

  void twiceFoundAndSkippedRows()
  {
    Desk desk;
    const QString twice = QStringLiteral("[CDSMASTER]1=1|0|Code##2=1|0|Name##2=2|0|||1|S;T|16400|N_PaymentTerms|N_PaymentTerms.Name#LIKE#8#@%[##CDSMASTER]"
                                         "[LINK_FIELDS_DESCR]S=Id##T=PaymentTerms_Id[##LINK_FIELDS_DESCR]");
    const DataFile file(QStringLiteral("TRY1;Име\r\n"));
    const QString separator = QStringLiteral("[OPTIONS]TXTFILE_SEP=SEMICOLON%1[##OPTIONS]");
    ImportTrial trial = tried(separator.arg(QString()) + twice, file.path);
    QCOMPARE(trial.documents.value(0).failures.value(0).reason, _err_SelectorMultiRec);
    trial = tried(separator.arg(QStringLiteral("##SKIP_INVALID_ROWS=1")) + twice, file.path);
    QVERIFY(!trial.documents.value(0).failures.isEmpty());
    QVERIFY(!trial.documents[0].failures[0].fatal);
    QVERIFY(trial.documents[0].failures[0].reason.endsWith(QStringLiteral("Редът се пропуска.")));
  }

  void linesOfADocument()
  {
    Desk desk;
    const auto db = demoServer()->core().openWriter();
    const QString client = db->value(QStringLiteral("SELECT Code FROM N_Contragent WHERE Comp_Id = '1' ORDER BY Code LIMIT 1")).toString();
    const QString item = db->value(QStringLiteral("SELECT Code FROM N_Item WHERE Comp_Id = '1' ORDER BY Code LIMIT 1")).toString();
    const DataFile file(QStringLiteral("1;01.02.2026;%1;%2;Име;2;1,50\r\n1;01.02.2026;%1;няма;Име;много;1,50\r\n1;01.02.2026;%1;%2;Име;3;1,50\r\n"
                                       "2;31.02.2026;%1;%2;Име;1;2,00\r\n").arg(client, item));
    const QString text = db->value(QStringLiteral("SELECT DataPort FROM S_DataPort WHERE Id = 'INVOICES_TEXT'")).toString()
                             .replace(QStringLiteral("FIRST_ROW=2"), QStringLiteral("FIRST_ROW=1"));
    const QStringList before = rowCounts();
    const QString numbers = lastNumbers();
    const ImportTrial trial = tried(text, file.path, invoiceCard);
    QVERIFY2(trial.error.isEmpty(), qPrintable(trial.error));
    QCOMPARE(trial.documents.size(), 2);
    const QStringList failures = failuresOf(trial.documents[0]);
    QCOMPARE(failures.filter(QStringLiteral("2 ")).size(), failures.size());  // only the second row
    QVERIFY2(failures.size() >= 2, qPrintable(failures.join(u'\n')));
    QVERIFY(trial.documents[0].lineRows.contains(1) && trial.documents[0].lineRows.contains(3));
    QCOMPARE(trial.documents[0].lines.size(), trial.documents[0].lineRows.size());
    QVERIFY2(failuresOf(trial.documents[1]).join(u' ').contains(QStringLiteral("[31.02.2026]")), qPrintable(failuresOf(trial.documents[1]).join(u'\n')));
    QCOMPARE(rowCounts(), before);
    QCOMPARE(lastNumbers(), numbers);
  }

  void whatCannotBeTried()
  {
    const DataFile file(QStringLiteral("x;y\r\n"));
    {
      Desk guest(QStringLiteral("GUEST"));
      QVERIFY(tried(contragents.arg(0).arg(QString()), file.path).error.contains(QStringLiteral("Забранено е добавянето")));
      RegisterFormClass(formClass<TfEdImportFilters>());
      QVERIFY(!mayOpenImportFilters());
      openImportFiltersOf(contragentCard);
      QVERIFY(!guest.last<TfEdImportFilters>());
      QCOMPARE(guest.prompt.messages.size(), 1);
    }
    Desk desk;
    QVERIFY(!tried(contragents.arg(0).arg(QString()), file.path + QStringLiteral(".none")).error.isEmpty());
    QVERIFY(!tried(contragents.arg(0).arg(QString()), DataFile(QString()).path).error.isEmpty());
    QVERIFY(!tried(contragents.arg(0).arg(QString()), file.path, 999).error.isEmpty());
  }

  // Mapping, options and text are three faces of one text, and what is saved is that text.
  void mappingAndTextAreOne()
  {
    Desk desk;
    RegisterFormClass(formClass<TfEdImportFilters>());
    openImportFiltersOf(contragentCard);
    auto* form = desk.last<TfEdImportFilters>();
    QVERIFY2(form, qPrintable(desk.prompt.messages.join(u'\n')));
    QVERIFY(form->cdsMaster()->IsEmpty());
    form->InsertRecord();
    QCOMPARE(form->cdsMaster()->FieldByName(u"Form_Id")->AsInteger(), contragentCard);
    form->cdsMaster()->FieldByName(u"Description")->SetAsString(QStringLiteral("Опит"));
    const auto rowOf = [&](const QString& field) {
      for (int row = 1; row < form->grdMapping->RowCount(); ++row)
        if (form->grdMapping->Cells(2, row) == field)
          return row;
      return 0;
    };
    const auto type = [&](TStringGrid* grid, int column, int row, const QString& text) {
      grid->SetCells(column, row, text);
      grid->OnEdited(column, row);
    };
    type(form->grdMapping, 3, rowOf(QStringLiteral("Code")), QStringLiteral("1"));
    type(form->grdMapping, 6, rowOf(QStringLiteral("Code")), QStringLiteral("да"));
    type(form->grdOptions, 2, 1, QStringLiteral("COMMA"));
    QCOMPARE(form->memText->toPlainText(), QStringLiteral("[CDSMASTER]\n1=1|1|Code\n[##CDSMASTER]\n[OPTIONS]\nTXTFILE_SEP=COMMA\n[##OPTIONS]\n"));
    form->memText->setPlainText(form->memText->toPlainText().replace(QStringLiteral("1=1|1|Code"), QStringLiteral("1=1|1|Code##2=1|0|Name||без име")));
    QCOMPARE(form->grdMapping->Cells(5, rowOf(QStringLiteral("Name"))), QStringLiteral("без име"));
    // What the format cannot hold is told, and nothing changes.
    type(form->grdMapping, 5, rowOf(QStringLiteral("Name")), QStringLiteral("а|б"));
    QCOMPARE(desk.prompt.takeMessages().size(), 1);
    QCOMPARE(form->grdMapping->Cells(5, rowOf(QStringLiteral("Name"))), QStringLiteral("без име"));
    form->SaveDocument();
    QVERIFY(form->lastSaveSucceeded());
    const auto stored = [] {
      return demoServer()->core().openWriter()->value(QStringLiteral("SELECT DataPort FROM S_DataPort WHERE Description = 'Опит'")).toString();
    };
    QCOMPARE(stored(), form->filterText().text());
    QVERIFY(stored().contains(QStringLiteral("1=1|1|Code##2=1|0|Name||без име")));
    // A change that is taken back is gone from every page.
    type(form->grdMapping, 3, rowOf(QStringLiteral("Name")), QStringLiteral("9"));
    QVERIFY(form->memText->toPlainText().contains(QStringLiteral("9=1|0|Name")));
    form->CancelChanges();
    QVERIFY(!form->memText->toPlainText().contains(QStringLiteral("9=1|0|Name")));
    QCOMPARE(form->grdMapping->Cells(3, rowOf(QStringLiteral("Name"))), QStringLiteral("2"));
    const DataFile file(QStringLiteral("A,Б\r\nC,Д\r\n"));
    form->openSample(file.path);
    QCOMPARE(form->grdMapping->Cells(4, rowOf(QStringLiteral("Name"))), QStringLiteral("Б"));
    form->tryFilter();
    QCOMPARE(form->tblDocuments->rowCount(), 2);
    desk.prompt.answers = {PromptButton::Yes};
    form->DeleteRecord();
    QVERIFY(stored().isEmpty());
  }
};

static const RegisterTest<ImportFiltersFormTest> registerImportFiltersFormTest;

#include "import_filters_form_test.moc"
