#include "import_files.h"

#include "data/data_error.h"
#include "import/import_mapping.h"
#include "import/import_sample.h"
#include "several_tests.h"

using namespace kalvor;
using namespace kalvor::testing;

namespace {

// The entries that a reader takes from the section.
QStringList readEntries(const ImportText& text, ImportSection section)
{
  const TImportFilter filter = text.filter(1);
  switch (section) {
    case ImportSection::Options: return filter.Options.entries();
    case ImportSection::Master: return filter.CdsMaster.entries();
    case ImportSection::Detail: return filter.CdsDetail.entries();
    case ImportSection::LinkFields: return filter.LinkFieldsDescr.entries();
    case ImportSection::Fallbacks: break;
  }
  return filter.DefaultSelector.entries();
}

QStringList ownEntries(const ImportText& text, ImportSection section)
{
  QStringList entries;
  for (const ImportTextEntry& entry : text.entries(section))
    entries.append(entry.text);
  return entries;
}

const QString invoice = QStringLiteral(
    "remark\r\n[OPTIONS]\r\n  TXTFILE_SEP=SEMICOLON##\r\n  FIRST_ROW=2\r\n[##OPTIONS]\r\n"
    "[CDSMASTER]\r\n1=1|1|No##\r\n2=1|0|Date||01.01.2024##\r\n3=2|0|||1|S;T|87|Clients|Clients.Code#=#8#3#\r\n[##CDSMASTER]\r\n"
    "[CDSDETAIL]4=1|0|Price##9=7|x##5=1|0|Quantity||1##[##CDSDETAIL] between\r\n"
    "[LINK_FIELDS_DESCR]S=Id,Name##T=Client_Id,ClientName[##LINK_FIELDS_DESCR]");

const QList<ImportFormField>& invoiceFields()
{
  static const QList<ImportFormField> fields{
      {ImportSection::Master, "No", "Номер", true, true},         {ImportSection::Master, "Date", "Дата", true, false},
      {ImportSection::Master, "Client_Id", "", false, false},     {ImportSection::Master, "ClientName", "Клиент", true, false},
      {ImportSection::Master, "Note", "Бележка", true, false},    {ImportSection::Detail, "Price", "Цена", true, false},
      {ImportSection::Detail, "Quantity", "Количество", true, true}};
  return fields;
}

QString rowText(const ImportMappingRow& row)
{
  return row.field + u'=' + row.column + u'/' + row.defaultText + (row.key ? "*" : "") + (row.isLookup ? "?" : "");
}

QStringList mappingTexts(const ImportText& text)
{
  QStringList texts;
  for (const ImportMappingRow& row : importMapping(text, invoiceFields()))
    texts.append(rowText(row));
  return texts;
}

ImportMappingRow mappingRow(const ImportText& text, const QString& field)
{
  for (const ImportMappingRow& row : importMapping(text, invoiceFields()))
    if (row.field == field)
      return row;
  return {};
}

}  // namespace

class FilterTextTest : public QObject {
  Q_OBJECT

 private slots:
  void changesKeepTheRest_data()
  {
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("entry");
    QTest::addColumn<QStringList>("entries");
    const QString two = "x[OPTIONS]\r\nA=1 ##\r\n B=2\r\n[##OPTIONS]y";
    QTest::newRow("change") << two << 0 << "A=3" << QStringList{"A=3", "B=2"};
    QTest::newRow("change the last") << two << 1 << "B=3" << QStringList{"A=1", "B=3"};
    QTest::newRow("add") << two << -1 << "C=3" << QStringList{"A=1", "B=2", "C=3"};
    QTest::newRow("remove the first") << two << 0 << "" << QStringList{"B=2"};
    QTest::newRow("remove the last") << two << 1 << "" << QStringList{"A=1"};
    QTest::newRow("remove the only one") << "[OPTIONS]A=1[##OPTIONS]" << 0 << "" << QStringList();
    QTest::newRow("add to an empty section") << "[options][##Options]" << -1 << "A=1" << QStringList{"A=1"};
    QTest::newRow("add behind a separator at the end") << "[OPTIONS]A=1##[##OPTIONS]" << -1 << "B=2" << QStringList{"A=1", "B=2"};
    QTest::newRow("add to a text without the section") << "[CDSMASTER]1=1|0|X[##CDSMASTER]" << -1 << "A=1" << QStringList{"A=1"};
    QTest::newRow("add to nothing") << "" << -1 << "A=1" << QStringList{"A=1"};
    QTest::newRow("a sign at the end is no separator") << "[OPTIONS]A=1##B=2[##OPTIONS]" << 0 << "A=x#" << QStringList{"A=x#", "B=2"};
    QTest::newRow("a sign at the beginning") << "[OPTIONS]A=1##B=2[##OPTIONS]" << 1 << "#B" << QStringList{"A=1", "#B"};
    QTest::newRow("add behind a sign") << "[OPTIONS]A=#[##OPTIONS]" << -1 << "#" << QStringList{"A=#", "#"};
    QTest::newRow("remove between signs") << "[OPTIONS]A=# ##B=2## #C[##OPTIONS]" << 1 << "" << QStringList{"A=#", "#C"};
    QTest::newRow("line ends become blanks") << two << 0 << "A=1\n2" << QStringList{"A=1 2", "B=2"};
  }
  void changesKeepTheRest()
  {
    QFETCH(QString, text);
    QFETCH(int, index);
    QFETCH(QString, entry);
    QFETCH(QStringList, entries);
    ImportText filter(text + invoice.section("[OPTIONS]", 1).section("[##OPTIONS]", 1));
    QMap<ImportSection, QStringList> others;
    for (const ImportSection section : importSections)
      others[section] = readEntries(filter, section);
    filter.setEntry(ImportSection::Options, index, entry);
    others[ImportSection::Options] = entries;
    for (const ImportSection section : importSections) {
      QCOMPARE(readEntries(filter, section), others[section]);
      QCOMPARE(ownEntries(filter, section), others[section]);
    }
    QVERIFY(filter.text().contains("between"));
  }

  void refusals_data()
  {
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("entry");
    QTest::newRow("a separator") << "" << "A=1##B=2";
    QTest::newRow("a tag") << "" << "A=[cdsmaster]";
    QTest::newRow("a section that is not closed") << "[OPTIONS]A=1" << "B=2";
  }
  void refusals()
  {
    QFETCH(QString, text);
    QFETCH(QString, entry);
    ImportText filter(text);
    QVERIFY_EXCEPTION_THROWN(filter.addEntry(ImportSection::Options, entry), DataError);
    QCOMPARE(filter.text(), text);
  }

  void mappingOfAText()
  {
    QCOMPARE(mappingTexts(ImportText(invoice)),
             (QStringList{"No=1/*", "Date=2/01.01.2024", "Client_Id=3/?", "ClientName=3/?", "Note=/", "Price=4/", "Quantity=5/1"}));
    // What the form does not have, and what is filled twice, is seen too.
    const ImportText odd("[CDSMASTER]1=1|0|no##2=1|0|No##3=1|0|Gone[##CDSMASTER]");
    QCOMPARE(mappingTexts(odd).mid(0, 2), (QStringList{"no=1/", "No=2/"}));
    QVERIFY(mappingTexts(odd).contains("Gone=3/"));
  }

  void mappingIsWritten_data()
  {
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("column");
    QTest::addColumn<QString>("defaultText");
    QTest::addColumn<bool>("key");
    QTest::addColumn<QString>("entry");   // that stands in the text then; empty: none of the field's
    QTest::newRow("another column") << "No" << "7" << "" << true << "7=1|1|No";
    QTest::newRow("no key any more") << "No" << "1" << "" << false << "1=1|0|No";
    QTest::newRow("default taken out") << "Date" << "2" << "" << false << "2=1|0|Date";
    QTest::newRow("a field comes in") << "Note" << "6" << "-" << false << "6=1|0|Note||-";
    QTest::newRow("a constant") << "Note" << "" << "внесен" << false << "900=1|0|Note||внесен";
    QTest::newRow("a field goes") << "Quantity" << "" << "" << false << "";
    QTest::newRow("a lookup becomes a key") << "ClientName" << "3" << "" << true << "3=2|1|||1|S;T|87|Clients|Clients.Code#=#8#3#";
  }
  void mappingIsWritten()
  {
    QFETCH(QString, field);
    QFETCH(QString, column);
    QFETCH(QString, defaultText);
    QFETCH(bool, key);
    QFETCH(QString, entry);
    ImportText text(invoice);
    ImportMappingRow row = mappingRow(text, field);
    row.column = column;
    row.defaultText = defaultText;
    row.key = key;
    putImportMapping(text, row);
    const QStringList entries = readEntries(text, row.part);
    if (entry.isEmpty())
      QVERIFY(entries.filter(field).isEmpty());
    else
      QVERIFY2(entries.contains(entry), qPrintable(entries.join('\n')));
    // The same table comes back, and putting it in again changes nothing.
    const ImportMappingRow back = mappingRow(text, field);
    QCOMPARE(back.defaultText, defaultText);
    QCOMPARE(back.key, key);
    const QString written = text.text();
    for (const ImportMappingRow& same : importMapping(text, invoiceFields()))
      if (same.entry >= 0)
        putImportMapping(text, same);
    QCOMPARE(text.text(), written);
    QVERIFY(readEntries(text, ImportSection::Detail).contains("9=7|x"));
  }

  void mappingRefuses_data()
  {
    QTest::addColumn<QString>("column");
    QTest::addColumn<QString>("defaultText");
    QTest::newRow("column 0") << "0" << "";
    QTest::newRow("no number") << "A" << "";
    QTest::newRow("a divider") << "1" << "a|b";
    QTest::newRow("a separator") << "1" << "a##b";
  }
  void mappingRefuses()
  {
    QFETCH(QString, column);
    QFETCH(QString, defaultText);
    ImportText text(invoice);
    ImportMappingRow row = mappingRow(text, "Note");
    row.column = column;
    row.defaultText = defaultText;
    QVERIFY_EXCEPTION_THROWN(putImportMapping(text, row), DataError);
    QCOMPARE(text.text(), invoice);
  }

  void lookups()
  {
    ImportText text(invoice);
    ImportLookupText lookup = importLookupText(text, ImportSection::Master, 2);
    QCOMPARE(lookup.sourceFields, "Id,Name");
    QCOMPARE(lookup.targetFields, "Client_Id,ClientName");
    putImportLookup(text, ImportSection::Master, 2, lookup);
    QCOMPARE(readEntries(text, ImportSection::Master), readEntries(ImportText(invoice), ImportSection::Master).replaceInStrings("8#3#", "8#3"));
    lookup.conditions.append({"Clients.Kind", "=", "3", "@1", ""});
    lookup.sourceFields += ", Code";
    lookup.targetFields += ",Note";
    putImportLookup(text, ImportSection::Master, 2, lookup);
    QCOMPARE(readEntries(text, ImportSection::LinkFields), (QStringList{"S=Id,Name,Code", "T=Client_Id,ClientName,Note"}));
    QVERIFY(readEntries(text, ImportSection::Master).last().endsWith("Clients.Code#=#8#3;Clients.Kind#=#3#@1"));
    // A second one that shares the lists does not change them for the first.
    putImportLookup(text, ImportSection::Detail, -1, lookup);
    lookup.sourceFields = "Id";
    lookup.targetFields = "Price";
    putImportLookup(text, ImportSection::Detail, 3, lookup);
    QCOMPARE(importLookupText(text, ImportSection::Master, 2).sourceFields, "Id,Name,Code");
    QCOMPARE(importLookupText(text, ImportSection::Detail, 3).targetFields, "Price");
    const QString before = text.text();
    lookup.targetFields = "Price,Quantity";
    QVERIFY_EXCEPTION_THROWN(putImportLookup(text, ImportSection::Detail, 3, lookup), DataError);
    lookup.targetFields = "Price";
    lookup.conditions.last().value = "@a;b";
    QVERIFY_EXCEPTION_THROWN(putImportLookup(text, ImportSection::Detail, 3, lookup), DataError);
    QCOMPARE(text.text(), before);
  }

  void problems_data()
  {
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("line");
    QTest::addColumn<QString>("problem");
    const QString good = "\n[CDSMASTER]1=1|0|No[##CDSMASTER]";
    QTest::newRow("none") << invoice.section("9=7|x##", 0, 0) + invoice.section("9=7|x##", 1) << 0 << "";
    QTest::newRow("another kind") << invoice << 11 << "Видът е";
    QTest::newRow("not closed") << "\n\n[OPTIONS]FIRST_ROW=1" + good << 3 << "не е затворена";
    QTest::newRow("no such option") << "[OPTIONS]\nFIRSTROW=1[##OPTIONS]" + good << 2 << "Няма такава настройка: FIRSTROW";
    QTest::newRow("an option's value") << "[OPTIONS]IMPORT_ACTION=5[##OPTIONS]" + good << 1 << "IMPORT_ACTION може да бъде";
    QTest::newRow("break columns") << "[OPTIONS]NEW_DOCSEP=1;a[##OPTIONS]" + good << 1 << "NEW_DOCSEP";
    QTest::newRow("no fields at all") << "[OPTIONS][##OPTIONS]" << 1 << "нито едно поле";
    QTest::newRow("a column") << "[CDSMASTER]\n0=1|0|No[##CDSMASTER]" << 2 << "Колоната е номер";
    QTest::newRow("no such field") << "[CDSMASTER]1=1|0|Nope[##CDSMASTER]" << 1 << "няма такова поле: Nope";
    QTest::newRow("no range") << "[OPTIONS]TXTFILE_SEP=FixedLen[##OPTIONS][CDSMASTER]\n1=1|0|No|5-5[##CDSMASTER]" << 2 << "обхват";
    QTest::newRow("no list") << "[CDSMASTER]1=2|0||||A;B|5|N|F#=#8#1[##CDSMASTER]" << 1 << "Няма списък „A“";
    QTest::newRow("a condition") << "[CDSMASTER]1=2|0||||A;B|5|N|F#=#8#x[##CDSMASTER][LINK_FIELDS_DESCR]A=Id##B=No[##LINK_FIELDS_DESCR]"
                                 << 1 << "номер на колона или текст след @";
    QTest::newRow("lists differ") << "[CDSMASTER]1=2|0||||A;B|5|N|F#=#8#1[##CDSMASTER][LINK_FIELDS_DESCR]A=Id,X##B=No[##LINK_FIELDS_DESCR]"
                                  << 1 << "различен брой";
  }
  void problems()
  {
    QFETCH(QString, text);
    QFETCH(int, line);
    QFETCH(QString, problem);
    const QList<ImportTextProblem> found = importTextProblems(ImportText(text), invoiceFields());
    if (problem.isEmpty()) {
      QVERIFY2(found.isEmpty(), qPrintable(found.isEmpty() ? QString() : found.first().text));
      return;
    }
    QVERIFY(!found.isEmpty());
    QVERIFY2(found.first().line == line && found.first().text.contains(problem),
             qPrintable(QString::number(found.first().line) + u' ' + found.first().text));
  }

  void samples_data()
  {
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("options");
    QTest::addColumn<QString>("delimiter");
    QTest::addColumn<bool>("found");
    QTest::addColumn<QStringList>("second");  // row
    QTest::newRow("the filter's delimiter") << "a.csv" << QByteArray("1;2,3\n4;5,6\n") << "TXTFILE_SEP=COMMA" << "COMMA" << false << QStringList{"4;5", "6"};
    QTest::newRow("found") << "a.csv" << QByteArray("1;2,3\n4;5,6;7,8\n") << "" << "SEMICOLON" << true << QStringList{"4", "5,6", "7,8"};
    QTest::newRow("none") << "a.txt" << QByteArray("one\ntwo\n") << "" << "" << false << QStringList{"two"};
    QTest::newRow("fixed width") << "a.txt" << QByteArray("ABCDEF\nGHIJKL\n") << "TXTFILE_SEP=FIXEDLEN" << "FIXEDLEN" << false << QStringList{"", "HI", "GHIJKL"};
    QTest::newRow("windows-1251") << "a.csv" << QByteArray("x;y\n\xC0;\xC1\n") << "" << "SEMICOLON" << true << QStringList{"А", "Б"};
  }
  void samples()
  {
    QFETCH(QString, name);
    QFETCH(QByteArray, bytes);
    QFETCH(QString, options);
    const ImportFolder folder;
    const ImportSample sample = readImportSample(folder.write(name, bytes), testing::importFilter(options, "2=1|0|X|2-4"));
    QVERIFY(sample.error.isEmpty());
    QTEST(sample.delimiter, "delimiter");
    QTEST(sample.delimiterFound, "found");
    QTEST(sample.rows.value(1), "second");
  }
  void samplesOfTables()
  {
    const ImportFolder folder;
    QByteArray rows = "<row r='1'><c r='A1' t='inlineStr'><is><t>Код</t></is></c><c r='B1' t='inlineStr'><is><t>Цена</t></is></c></row>";
    for (int row = 2; row < 70; ++row)
      rows += "<row r='" + QByteArray::number(row) + "'><c r='B" + QByteArray::number(row) + "'><v>1.5</v></c></row>";
    const ImportSample sample = readImportSample(folder.writeZip("a.xlsx", xlsxParts(rows)), TImportFilter(1));
    QCOMPARE(sample.headings, (QStringList{"Код", "Цена"}));
    QCOMPARE(sample.rows.size(), 50);
    QVERIFY(sample.moreRows);
    QCOMPARE(sample.rows.first(), (QStringList{"", "1,5"}));
    QVERIFY(!readImportSample(folder.write("b.xlsx", "no sheet"), TImportFilter(1)).error.isEmpty());
    QVERIFY(!readImportSample("/none/none.txt", TImportFilter(1)).error.isEmpty());
  }

  // A trial sees what a run sees, goes on behind what fails, and counts the rows as the file has them.
  void aTrialReadsOn()
  {
    const ImportFolder folder;
    const QString path = folder.write("a.txt", "head\nA;1\nA;2\nB;3\n");
    const TImportFilter filter = testing::importFilter("TXTFILE_SEP=SEMICOLON##FIRST_ROW=2##NEW_DOCSEP=1", "1=1|1|No",
        "2=1|0|Line##2=2|0||||S;T|12|N|N.Code#=#8#2", "[LINK_FIELDS_DESCR]S=Id##T=Item[##LINK_FIELDS_DESCR]");
    AnsweringServer server;
    ImportServices services = server.services();
    QStringList told;
    services.LookupFailed = [&](const ImportLookup& lookup, const QString&, const QString& conditions) {
      told.append(lookup.targetFields.join(',') + ' ' + conditions);
    };
    services.LineRead = [&](const TImportLine& line, int row) { told.append(QString::number(row) + ' ' + lineText(line)); };
    const auto reader = createImportReader(path, filter, services);
    QCOMPARE(documentsOf(*reader), (QStringList{"No=A*", "- Line=1", "- Line=2", "No=B*", "- Line=3"}));
    QCOMPARE(told, (QStringList{"2 No=A*", "Item Code=1", "2 Line=1", "Item Code=2", "3 Line=2", "4 No=B*", "Item Code=3", "4 Line=3"}));
    QVERIFY(server.messages.isEmpty());
  }
};

static const testing::RegisterTest<FilterTextTest> registered;
#include "filter_text_test.moc"
