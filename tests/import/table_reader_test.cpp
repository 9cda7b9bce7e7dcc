#include "import/table_reader.h"

#include "import/import_files.h"
#include "import/messages.h"
#include "import/text_reader.h"
#include "platform/spreadsheet_reader.h"
#include "platform/xml_table.h"
#include "scratch_documents.h"
#include "scripted_ports.h"
#include "session/import_log.h"
#include "several_tests.h"

using namespace kalvor;
using kalvor::testing::AnsweringServer;
using kalvor::testing::documentsOf;
using kalvor::testing::xlsxParts;

namespace {

const QByteArray xsltHead =
    "<xsl:stylesheet version='1.0' xmlns:xsl='http://www.w3.org/1999/XSL/Transform' "
    "xmlns:str='http://exslt.org/strings' exclude-result-prefixes='str'>";
const QByteArray rowsAndColumns = xsltHead +
    "<xsl:template match='/'><table><xsl:for-each select='//line'><row><c><xsl:value-of select='../@no'/></c>"
    "<c><xsl:value-of select='item'/></c><c><xsl:value-of select=\"str:replace(sum,'.',',')\"/></c></row>"
    "</xsl:for-each></table></xsl:template></xsl:stylesheet>";
const QByteArray twoInvoices =
    "<?xml version='1.0' encoding='windows-1251'?><data><invoice no='1'><line><item>a</item><sum>1.5</sum></line>"
    "<line><item>\xF5</item></line></invoice><invoice no='2'><line><item>b</item></line></invoice></data>";

QByteArray cell(const char* reference, const QByteArray& value, const QByteArray& attributes = {})
{
  return QByteArray("<c r='") + reference + "' " + attributes + "><v>" + value + "</v></c>";
}

QString refusal(const std::function<void()>& reading)
{
  try {
    reading();
  } catch (const DataError& error) {
    return error.message();
  }
  return {};
}

}  // namespace

class TableReaderTest : public QObject {
  Q_OBJECT

  testing::ImportFolder folder_;

  QString firstCell(const QList<std::pair<QString, QByteArray>>& parts)
  {
    return readSpreadsheet(folder_.writeZip("cell.xlsx", parts), {}).text(0, 0).toString();
  }

 private slots:
  void cellsOfOfficeOpenXml_data()
  {
    QTest::addColumn<QByteArray>("xml");
    QTest::addColumn<QString>("text");
    QTest::newRow("shared") << cell("A1", "1", "t='s'") << "Хляб и сол";
    QTest::newRow("inline") << QByteArray("<c t='inlineStr'><is><t>а</t><rPh><t>no</t></rPh><r><t>_x0041_б</t></r></is></c>")
                            << "аAб";
    QTest::newRow("formula text") << QByteArray("<c r='A1' t='str'><f>B1&amp;C1</f><v>x</v></c>") << "x";
    QTest::newRow("whole") << cell("A1", "3800123456789") << "3800123456789";
    QTest::newRow("seventeen digits") << cell("A1", "0.10000000000000001") << "0,1";
    QTest::newRow("exact sum") << cell("A1", "0.30000000000000004") << "0,30000000000000004";
    QTest::newRow("exponent") << cell("A1", "1.5E-3") << "0,0015";
    QTest::newRow("negative") << cell("A1", "-12.50") << "-12,5";
    QTest::newRow("boolean") << cell("A1", "1", "t='b'") << "1";
    QTest::newRow("error") << cell("A1", "#N/A", "t='e'") << "";
    QTest::newRow("date, built-in format") << cell("A1", "45322", "s='1'") << "31.01.2024";
    QTest::newRow("date and time, own format") << cell("A1", "45322.430902777778", "s='2'") << "31.01.2024 10:20:30";
    QTest::newRow("before the day that never was") << cell("A1", "59", "s='1'") << "28.02.1900";
    QTest::newRow("the day that never was") << cell("A1", "60", "s='1'") << "60";
    QTest::newRow("time") << cell("A1", "0.4375", "s='2'") << "10:30:00";
    QTest::newRow("duration") << cell("A1", "1.25", "s='3'") << "1,25";
    QTest::newRow("number with a d in quotes") << cell("A1", "7", "s='4'") << "7";
    QTest::newRow("iso date") << cell("A1", "2024-01-31T00:00:00", "t='d'") << "31.01.2024";
  }
  void cellsOfOfficeOpenXml()
  {
    QFETCH(QByteArray, xml);
    const QByteArray styles =
        "<numFmts><numFmt numFmtId='170' formatCode='dd\\.mm\\.yyyy hh:mm'/><numFmt numFmtId='171' formatCode='[h]:mm'/>"
        "<numFmt numFmtId='172' formatCode='[Red]0.00&quot; days&quot;'/></numFmts>"
        "<cellStyleXfs><xf numFmtId='14'/></cellStyleXfs><cellXfs><xf/><xf numFmtId='14'/><xf numFmtId='170'/>"
        "<xf numFmtId='171'/><xf numFmtId='172'/></cellXfs>";
    const QByteArray texts = "<si><t>x</t></si><si><r><t>Хляб</t></r><r><t xml:space='preserve'> и сол</t></r></si>";
    QTEST(firstCell(xlsxParts("<row r='1'>" + xml + "</row>", texts, styles)), "text");
  }

  void datesFollowTheFilter_data()
  {
    QTest::addColumn<QString>("picture");
    QTest::addColumn<QChar>("separator");
    QTest::addColumn<QString>("text");
    QTest::newRow("American") << "mm/dd/yy" << QChar(u'/') << "01/31/2024";
    QTest::newRow("unseparated") << "yyyymmdd" << QChar(u'.') << "20240131";
    QTest::newRow("not a full picture") << "yyyy" << QChar(u'-') << "31-01-2024";
  }
  void datesFollowTheFilter()
  {
    QFETCH(QString, picture);
    QFETCH(QChar, separator);
    QFETCH(QString, text);
    TFormatSettings settings;
    settings.ShortDateFormat = picture;
    settings.DateSeparator = separator;
    const QDateTime when(QDate(2024, 1, 31), QTime(10, 20, 30));
    const CellTextFormat format{u',', separator, picture};
    QCOMPARE(cellDateText(when.date(), QTime(0, 0), format), text);
    QCOMPARE(ParseAsFieldType(cellDateText(when.date(), when.time(), format), DataType::DateTime, settings), Variant(when));
  }

  void epochOf1904()
  {
    const QByteArray styles = "<cellXfs><xf numFmtId='14'/></cellXfs>";
    QCOMPARE(firstCell(xlsxParts("<row>" + cell("A1", "43860") + "</row>", {}, styles, "<x:workbookPr date1904='1'/>")),
             "31.01.2024");
  }

  void placesOfCells()
  {
    const TextTable table = readSpreadsheet(
        folder_.writeZip("places.xlsx", xlsxParts("<row r='2'>" + cell("B2", "1") + "<c><v>2</v></c>" + cell("AB2", "3") +
                                                  "</row><row><c><v>4</v></c><c/></row><row r='9'/>")), {});
    QCOMPARE(table.rowCount(), 3);
    QCOMPARE(table.columnCount(), 28);
    QCOMPARE(table.text(1, 0), u"");
    QCOMPARE(table.text(1, 1), u"1");
    QCOMPARE(table.text(1, 2), u"2");
    QCOMPARE(table.text(1, 27), u"3");
    QCOMPARE(table.text(2, 0), u"4");
    QCOMPARE(table.text(3, 0), u"");
    QCOMPARE(table.text(0, -1), u"");
  }

  void refusedSpreadsheets_data()
  {
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("reason");
    const auto sheet = [this](const char* name, const QByteArray& rows) {
      return folder_.writeZip(name, xlsxParts(rows));
    };
    QTest::newRow("no file") << "/nonexistent.xls" << "Файлът не може да бъде отворен";
    QTest::newRow("text") << folder_.write("text.xls", "A;B\n") << "Файлът не е таблица на MS Excel";
    QTest::newRow("cut") << folder_.write("cut.xlsx", "PK\x03\x04 cut") << "Файлът не може да бъде разархивиран";
    QTest::newRow("cut .xls") << folder_.write("cut.xls", QByteArray("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1") + QByteArray(99, 1))
                              << "Таблицата на MS Excel е повредена";
    QTest::newRow("another archive") << folder_.writeZip("other.xlsx", {{"a.txt", "x"}}) << "Файлът не съдържа лист с данни.";
    QTest::newRow("unknown text") << sheet("index.xlsx", "<row>" + cell("A1", "5", "t='s'") + "</row>") << "при клетка A1";
    QTest::newRow("no number") << sheet("number.xlsx", "<row>" + cell("A1", "five") + "</row>") << "при клетка A1";
    QTest::newRow("rows go back") << sheet("back.xlsx", "<row r='5'>" + cell("A5", "1") + "</row><row r='4'>" + cell("A4", "1") + "</row>")
                                  << "при клетка A4";
    QTest::newRow("column too far") << sheet("far.xlsx", "<row>" + cell("ZZZZZZZZ1", "1") + "</row>") << "при клетка ZZZZZZZZ1";
    QTest::newRow("row too far") << sheet("deep.xlsx", "<row r='1048577'/>") << "при клетка 1048577";
    QTest::newRow("not XML") << sheet("broken.xlsx", "<row>") << "Таблицата на MS Excel е повредена";
    auto doctype = xlsxParts("<row/>");
    doctype.last().second.prepend("<!DOCTYPE worksheet [<!ENTITY a 'b'>]>");
    QTest::newRow("doctype") << folder_.writeZip("doctype.xlsx", doctype) << "DOCTYPE";
    QTest::newRow("bomb") << sheet("bomb.xlsx", "<row>" + QByteArray(20 << 20, ' ') + "</row>") << "твърде голямо";
  }
  void refusedSpreadsheets()
  {
    QFETCH(QString, file);
    QFETCH(QString, reason);
    const QString message = refusal([&] { readSpreadsheet(file, {}); });
    QVERIFY2(message.contains(reason), qPrintable(message));
  }

  void manyParts()
  {
    auto parts = xlsxParts("<row/>");
    for (int i = 0; i < 10'001; ++i)
      parts.append({QString::number(i), {}});
    const QString file = folder_.writeZip("parts.xlsx", parts);
    QVERIFY(refusal([&] { readSpreadsheet(file, {}); }).contains("твърде голямо"));
  }

  void binaryWorkbook()
  {
    const TextTable table = readSpreadsheet(QStringLiteral(KALVOR_SOURCE_DIR "/tests/import/data/values.xls"), {});
    QStringList rows;
    for (int row = 0; row < table.rowCount(); ++row) {
      QStringList texts;
      for (int column = 0; column < table.columnCount(); ++column)
        texts.append(table.text(row, column).toString());
      rows.append(texts.join(u'|'));
    }
    QCOMPARE(rows, (QStringList{"Номер|Дата|Текст|Стойност|Флаг", "1001|31.01.2024|Хляб \"Добруджа\"|0,1|1",
                                "3800123456789|29.02.2024 10:20:30| шоколад |1234567,89|0", "-3|10:30:00||29,99|1", "||||",
                                "край||||"}));
  }

  // Their shared texts go over the ends of records, in narrow and in wide characters.
  void longTextsOfABinaryWorkbook()
  {
    const TextTable table = readSpreadsheet(QStringLiteral(KALVOR_SOURCE_DIR "/tests/import/data/long_texts.xls"), {});
    QCOMPARE(table.rowCount(), 12);
    QCOMPARE(table.text(0, 1), u"31.01.2024");
    for (int row = 0; row < table.rowCount(); ++row)
      QCOMPARE(table.text(row, 0).toString(), QString::number(row) + QString(1500 + 100 * row, row % 2 ? u'я' : u'z'));
  }

  void sameDocumentsFromEverySource()
  {
    const TImportFilter filter = testing::importFilter(
        "NEW_DOCSEP=1##TXTFILE_SEP=SEMICOLON##FIRST_ROW=2##DECIMAL_SEPARATOR=,", "1=1|1|No##2=1|0|Day", "3=1|0|Sum##9=1|0|Kind||x");
    const QString text = folder_.write("same.txt", "No;Day;Sum\n1;31.01.2024;0,1\n1;31.01.2024;-2,05\n2;29.02.2024;3\n");
    const QByteArray rows = "<row><c><v>0</v></c></row><row><c><v>1</v></c><c s='1'><v>45322</v></c><c><v>0.1</v></c></row>"
                            "<row><c t='s'><v>0</v></c><c s='1'><v>45322</v></c><c><v>-2.0499999999999998</v></c></row>"
                            "<row><c><v>2</v></c><c s='1'><v>45351</v></c><c><v>3</v></c></row>";
    const QString sheet = folder_.writeZip("same.XLSX", xlsxParts(rows, "<si><t> 1 </t></si>", "<cellXfs><xf/><xf numFmtId='14'/></cellXfs>"));
    const QStringList expected{"No=1*; Day=31.01.2024", "- Sum=0,1; Kind=x", "- Sum=-2,05; Kind=x",
                               "No=2*; Day=29.02.2024", "- Sum=3; Kind=x"};
    const auto textReader = createImportReader(text, filter, {});
    const auto sheetReader = createImportReader(sheet, filter, {});
    QVERIFY(dynamic_cast<TImportTxt*>(textReader.get()) && dynamic_cast<TImportXLS*>(sheetReader.get()));
    QCOMPARE(sheetReader->GetRecordCount(), 3);
    QCOMPARE(documentsOf(*textReader), expected);
    QCOMPARE(documentsOf(*sheetReader), expected);
  }

  void groupingOfTableRows_data()
  {
    QTest::addColumn<QString>("options");
    QTest::addColumn<QStringList>("lines");
    QTest::newRow("an empty break keeps the document")
        << "NEW_DOCSEP=1" << QStringList{"No=X*", "- Item=1", "- Item=2", "- Item=3", "No=Y*", "- Item=4"};
    QTest::newRow("a break without a description is always new")
        << "NEW_DOCSEP=3" << QStringList{"No=X*", "- Item=1", "", "- Item=2", "No=X*", "- Item=3", "No=Y*", "- Item=4"};
    QTest::newRow("breaks end at a position below 1")
        << "NEW_DOCSEP=0;1" << QStringList{"No=X*", "- Item=1", "- Item=2", "- Item=3", "- Item=4"};
  }
  void groupingOfTableRows()
  {
    QFETCH(QString, options);
    const TImportFilter filter = testing::importFilter(options, "1=1|1|No", "2=1|0|Item");
    const auto row = [](const char* no, const char* item) {
      return QByteArray("<row><c t='str'><v>") + no + "</v></c><c><v>" + item + "</v></c></row>";
    };
    TImportXLS reader(folder_.writeZip("rows.xlsx", xlsxParts("<row/>" + row("X", "1") + row(" ", "2") + row("X", "3") + row("Y", "4"))),
                      filter, {});
    QTEST(documentsOf(reader), "lines");
    QCOMPARE(reader.rowCounter(), 5);
  }

  void rowNumbersAndMissingColumns()
  {
    const testing::ScratchDocuments documents;
    const testing::FixedClock clock(QDateTime(QDate(2026, 1, 18), QTime(9, 5, 7)));
    ImportInitLog();
    AnsweringServer server;
    TImportFilter filter = testing::importFilter("NEW_DOCSEP=1", "1=1|1|No", "2=1|0|Item##7=2|0|||3|ONE;ID|12|N|Code#=#8#2#;Kind#=#8#7#",
                                                 "[LINK_FIELDS_DESCR]ONE=Id##ID=Item_Id[##LINK_FIELDS_DESCR]");
    filter.DPSchema = rowsAndColumns;
    const auto reader = createImportReader(folder_.write("rows.xml", twoInvoices), filter, server.services());
    QVERIFY(dynamic_cast<TImportXML*>(reader.get()));
    QCOMPARE(documentsOf(*reader), (QStringList{"! Ред No: 2\r\n" + _err_FillImportLine, "! Ред No: 3\r\n" + _err_FillImportLine}));
    // A table without column 7 has item 4 of its description there.
    QVERIFY2(server.messages[0].endsWith("\r\nРед No: 1\r\nФилтър: Code=a\r\nKind=3\r\n"), qPrintable(server.messages[0]));
    QCOMPARE(server.messages.size(), 2);
    ImportCloseLog();
    QVERIFY(QString::fromUtf8(documents.read("Kalvor/ImportLog/20260118.LOG"))
                .contains("Процедура: TImportDS.ReadRecord]\r\n[Грешка]: Грешка при извличане на данни.\r\n"));
  }

  void sourcesThatDoNotOpen_data()
  {
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("logged");
    QTest::newRow("spreadsheet") << "broken.XLS"
                                 << "TImportXLS.Create]\r\n[Грешка]: Не може да се установи връзка с MS Excel!\r\nФайлът не е";
    QTest::newRow("xml") << "broken.xml" << "TImportXML.Create]\r\n[Грешка]: Грешка при отваряне на файл.\r\n";
  }
  void sourcesThatDoNotOpen()
  {
    QFETCH(QString, name);
    QFETCH(QString, logged);
    const testing::ScratchDocuments documents;
    const testing::FixedClock clock(QDateTime(QDate(2026, 1, 18), QTime(9, 5, 7)));
    ImportInitLog();
    const TImportFilter filter = testing::importFilter({}, "1=1|1|No");
    const auto reader = createImportReader(folder_.write(name, "x"), filter, {});
    QVERIFY(!reader->isOpened());
    QVERIFY(!reader->isEndOfData());
    QCOMPARE(documentsOf(*reader), QStringList{"! Ред No: 0\r\nФайлът не е отворен!"});
    ImportCloseLog();
    const QString log = QString::fromUtf8(documents.read("Kalvor/ImportLog/20260118.LOG"));
    QVERIFY2(log.contains(logged), qPrintable(log));
    QVERIFY(log.contains("Процедура: TImportDS.ReadRecord]\r\n[Грешка]: Файлът не е отворен!\r\n"));
  }

  void emptyTableEndsAtOnce()
  {
    const TImportFilter filter = testing::importFilter({}, "1=1|1|No");
    TImportXLS reader(folder_.writeZip("empty.xlsx", xlsxParts("<row>" + cell("A1", "1") + "</row>")), filter, {});
    QVERIFY(reader.isOpened() && reader.isEndOfData());
  }

  void xmlTables()
  {
    const TextTable table = readXmlTable(twoInvoices, rowsAndColumns);
    QCOMPARE(table.rowCount(), 3);
    QCOMPARE(table.text(0, 2), u"1,5");
    QCOMPARE(table.text(1, 1), u"х");
    QCOMPARE(table.text(2, 0), u"2");
  }

  void refusedXml_data()
  {
    QTest::addColumn<QByteArray>("xml");
    QTest::addColumn<QByteArray>("stylesheet");
    QTest::addColumn<QString>("reason");
    const auto sheet = [](const QByteArray& body) {
      return QByteArray(xsltHead + "<xsl:template match='/'>" + body + "</xsl:template></xsl:stylesheet>");
    };
    const QByteArray secret = folder_.write("secret.xml", "<line/>").toUtf8();
    const QByteArray bomb =
        "<!DOCTYPE data [<!ENTITY a 'aaaaaaaaaa'><!ENTITY b '&a;&a;&a;&a;'>]><data x='&b;'>&b;</data>";
    QTest::newRow("doctype") << bomb << rowsAndColumns << "DOCTYPE не се приема";
    QTest::newRow("doctype of the stylesheet") << twoInvoices << "<!DOCTYPE x SYSTEM 'x.dtd'>" + rowsAndColumns << "DOCTYPE";
    QTest::newRow("cut") << twoInvoices.left(90) << rowsAndColumns << "Файлът не е правилен XML: ";
    QTest::newRow("no stylesheet") << twoInvoices << QByteArray(" ") << "Няма схема";
    QTest::newRow("no XSLT") << twoInvoices << QByteArray("<a/>") << "Схемата за преобразуване на XML не се чете";
    QTest::newRow("wrong expression") << twoInvoices << sheet("<table><xsl:value-of select='1 +'/></table>") << "XML";
    QTest::newRow("no table") << twoInvoices << sheet("<rows/>") << "не дава таблица";
    QTest::newRow("no row") << twoInvoices << sheet("<table><line><c/></line></table>") << "не дава таблица";
    QTest::newRow("no cell") << twoInvoices << sheet("<table><row><d/></row></table>") << "не дава таблица";
    QTest::newRow("says stop") << twoInvoices << sheet("<xsl:message terminate='yes'>стоп</xsl:message><table/>") << "не успя";
    QTest::newRow("included file") << twoInvoices << xsltHead + "<xsl:include href='" + secret + "'/></xsl:stylesheet>" << "XML";
    QTest::newRow("written file") << twoInvoices
        << QByteArray("<xsl:stylesheet version='1.0' xmlns:xsl='http://www.w3.org/1999/XSL/Transform' xmlns:e='http://exslt.org/common' "
                      "extension-element-prefixes='e'><xsl:template match='/'><table/><e:document href='") + secret +
               "'><a/></e:document></xsl:template></xsl:stylesheet>" << "не успя";
    QTest::newRow("endless") << twoInvoices
        << xsltHead + "<xsl:template match='/' name='a'><xsl:call-template name='a'/></xsl:template></xsl:stylesheet>" << "не успя";
  }
  void refusedXml()
  {
    QFETCH(QByteArray, xml);
    QFETCH(QByteArray, stylesheet);
    QFETCH(QString, reason);
    const QString message = refusal([&] { readXmlTable(xml, stylesheet); });
    QVERIFY2(message.contains(reason), qPrintable(message));
  }

  void noFileIsRead()
  {
    const QByteArray secret = folder_.write("secret.xml", "<line>secret</line>").toUtf8();
    const QByteArray stylesheet = xsltHead + "<xsl:template match='/'><table><row><c>x<xsl:value-of select=\"document('" +
                                  secret + "')\"/></c></row></table></xsl:template></xsl:stylesheet>";
    QString text;
    const QString message = refusal([&] { text = readXmlTable(twoInvoices, stylesheet).text(0, 0).toString(); });
    QVERIFY2(text == "x" || !message.isEmpty(), qPrintable(text));
  }
};

static const testing::RegisterTest<TableReaderTest> registered;
#include "table_reader_test.moc"
