// A real retailer's journal as its accountant would hand it over: delimited, of fixed width, as XML and as a spreadsheet.
// All of them cut into the same documents. Skipped where the journal is not at hand (KALVOR_SAMPLES names its folder).
#include <QProcess>
#include <QRegularExpression>

#include "import/import_files.h"
#include "platform/text_encoding.h"
#include "several_tests.h"

using namespace kalvor;

namespace {

constexpr int retailDocuments = 66;
constexpr int retailLines = 999;

const QString masterFields = QStringLiteral("1=1|1|DocumentNo|1-11##2=1|0|DocumentDate|11-21##3=1|0|Contragent|21-31");
const QString detailFields = QStringLiteral("4=1|0|Item|31-43##5=1|0|Text|43-81##6=1|0|Quantity|81-91##7=1|0|Price|91-103");

const QByteArray journalSchema =
    "<xsl:stylesheet version='1.0' xmlns:xsl='http://www.w3.org/1999/XSL/Transform'><xsl:template match='/journal'><table>"
    "<xsl:for-each select='line'><row><xsl:for-each select='v'><c><xsl:value-of select='.'/></c></xsl:for-each></row>"
    "</xsl:for-each></table></xsl:template></xsl:stylesheet>";

struct Journal {
  QStringList lines;  // trimmed, texts cut to the width of the fixed form
  int documents = 0, details = 0;
  double total = 0;
};

QString plainText(const Variant& value)
{
  constexpr int fixedTextWidth = 38;
  return variantText(value).trimmed().left(fixedTextWidth).trimmed();
}

Journal read(const QString& fileName, const TImportFilter& filter)
{
  TFormatSettings settings;
  SetFormatSetting(filter, settings);
  const auto reader = createImportReader(fileName, filter, {});
  reader->GetRecordCount();
  Journal journal;
  while (!reader->isEndOfData()) {
    TImportLine master;
    TImportSet details;
    QString error;
    if (reader->ReadRecord(master, details, error) != 0) {
      journal.lines.append(error);
      break;
    }
    ++journal.documents;
    for (TImportLine line : TImportSet{master} + details) {
      double product = 1;
      for (TImportCell& cell : line) {
        cell.Value = plainText(cell.Value);
        if (cell.FieldName == u"Quantity" || cell.FieldName == u"Price")
          product *= ParseAsFieldType(cell.Value, DataType::Float, settings).toDouble();
      }
      line.removeIf([](const TImportCell& cell) { return cell.Value.toString().isEmpty(); });
      journal.lines.append(testing::lineText(line));
      journal.total += line.constLast().FieldName == u"Price" ? product : 0;
    }
    journal.details += int(details.size());
  }
  return journal;
}

QByteArray spreadsheetCell(int column, const QString& text)
{
  constexpr int quantityColumn = 5;
  if (column < quantityColumn)
    return "<c t='inlineStr'><is><t>" + text.toHtmlEscaped().toUtf8() + "</t></is></c>";
  return "<c><v>" + QByteArray::number(QString(text).replace(u',', u'.').toDouble(), 'g', 17) + "</v></c>";
}

}  // namespace

class RetailTest : public QObject {
  Q_OBJECT

  testing::ImportFolder folder_;

 private slots:
  void sameDocumentsInEveryForm()
  {
    const QString script = qEnvironmentVariable("KALVOR_SAMPLES", KALVOR_SOURCE_DIR "/../shared/samples") + "/retail.py";
    if (!QFile::exists(script))
      QSKIP("the retail journal is not here");
    const QString text = folder_.write("retail.txt", {});
    const QString fixed = folder_.write("fixed.txt", {});
    QCOMPARE(QProcess::execute("python3", {script, "--text", text, "--fixed", fixed}), 0);

    QFile file(text);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QStringList rows = fromWindows1251(file.readAll()).split("\r\n", Qt::SkipEmptyParts);
    QByteArray xml = "<?xml version='1.0' encoding='utf-8'?><journal>", sheet = "<row/>";
    for (const QString& row : rows.mid(1)) {
      const QStringList values = row.split(u';');
      xml += "<line>";
      sheet += "<row>";
      for (int column = 0; column < values.size(); ++column) {
        xml += "<v>" + values[column].toHtmlEscaped().toUtf8() + "</v>";
        sheet += spreadsheetCell(column, values[column]);
      }
      xml += "</line>";
      sheet += "</row>";
    }

    const QString options = "NEW_DOCSEP=1##DECIMAL_SEPARATOR=,##TXTFILE_SEP=";
    const Journal delimited = read(text, testing::importFilter(options + "SEMICOLON##FIRST_ROW=2", masterFields, detailFields));
    QCOMPARE(delimited.documents, retailDocuments);
    QCOMPARE(delimited.details, retailLines);
    QVERIFY(delimited.total > 1000);
    TImportFilter table = testing::importFilter(options, masterFields, detailFields);
    table.DPSchema = QString::fromUtf8(journalSchema);
    for (const Journal& other : {read(fixed, testing::importFilter(options + "FIXEDLEN", masterFields, detailFields)),
                                 read(folder_.write("retail.xml", xml + "</journal>"), table),
                                 read(folder_.writeZip("retail.xlsx", testing::xlsxParts(sheet)), table)}) {
      QCOMPARE(other.lines, delimited.lines);
      QCOMPARE(other.total, delimited.total);
    }
  }
};

static const testing::RegisterTest<RetailTest> registered;
#include "retail_test.moc"
