// What the export writes, the import readers read: every value of every record, in every form that can be read back.
#include "common/export_spreadsheet.h"
#include "common/export_text.h"
#include "data/client_dataset.h"
#include "forms/grid_view.h"
#include "import/table_reader.h"
#include "import/text_reader.h"
#include "platform/spreadsheet_reader.h"
#include "platform/spreadsheet_writer.h"
#include "several_tests.h"

using namespace kalvor;

namespace {

// Row by row: number, amount, day, name as texts; "." for the decimals, null is nothing.
using Texts = QList<QStringList>;

// The last row of a full .xls sheet is one without a value.
bool isBlank(int row) { return row % 1000 == 534; }

Texts expectedTexts(int rows)
{
  Texts texts;
  for (int row = 0; row < rows; ++row) {
    if (isBlank(row))
      texts << QStringList{{}, {}, {}, {}};
    else
      texts << QStringList{QString::number(row * 3 - 50), QString::number((row * 7919 % 2'000'003 - 700'000) / 100.0, 'f', 2),
                           QDate(1999, 12, 31).addDays(row % 20'000).toString("dd.MM.yyyy"),
                           row % 7 == 3 ? QString() : QStringLiteral("=Щайга „%1“ & <№>").arg(row % 911)};
  }
  return texts;
}

void fill(TClientDataSet& dataSet, const Texts& texts)
{
  const auto field = [](const char* name, DataType type) {
    FieldDef def;
    def.name = QString::fromLatin1(name);
    def.type = type;
    def.size = type == DataType::WideString ? 30 : 0;
    return def;
  };
  RecordSet records({field("Id", DataType::LargeInt), field("Amount", DataType::Float), field("Day", DataType::Date),
                     field("Name", DataType::WideString)});
  records.rows = texts.size();
  for (const QStringList& row : texts) {
    row[0].isEmpty() ? records.columns[0].appendNull() : records.columns[0].appendInteger(row[0].toLongLong());
    row[1].isEmpty() ? records.columns[1].appendNull() : records.columns[1].appendReal(row[1].toDouble());
    row[2].isEmpty() ? records.columns[2].appendNull()
                     : records.columns[2].appendInteger(QDate::fromString(row[2], "dd.MM.yyyy").toJulianDay());
    row[3].isEmpty() ? records.columns[3].appendNull() : records.columns[3].appendUtf8(row[3].toUtf8().toStdString());
  }
  dataSet.SetRecords(std::move(records));
}

QString filterText(const TClientDataSet& dataSet, const QString& separator)
{
  QStringList entries;
  int from = 1;
  for (int i = 0; i < dataSet.Fields().size(); ++i) {
    const int to = from + GetColSize(dataSet.Field(i));
    entries << QStringLiteral("%1=1|0|%1|%2-%3").arg(i + 1).arg(from).arg(to);
    from = to;
  }
  return QStringLiteral("[OPTIONS]FIRST_ROW=2##TXTFILE_SEP=%1##DATE_FORMAT=dd.mm.yyyy##DATE_SEPARATOR=.##DECIMAL_SEPARATOR=.[##OPTIONS]"
                        "[CDSMASTER]%2[##CDSMASTER]").arg(separator, entries.join("##"));
}

Texts readAll(TImportBase& reader)
{
  Texts texts;
  TImportLine master;
  TImportSet details;
  QString error;
  while (!reader.isEndOfData() && reader.ReadRecord(master, details, error) == 0) {
    QStringList row(4);
    for (const TImportCell& cell : master)
      row[cell.FieldName.toInt() - 1] = cell.Value.toString().trimmed();
    if (!row[1].isEmpty())
      row[1] = QString::number(row[1].replace(u',', u'.').toDouble(), 'f', 2);
    texts << row;
  }
  return error.isEmpty() ? texts : Texts{{error}};
}

}  // namespace

class ExportRoundTripTest : public QObject {
  Q_OBJECT

 private slots:
  void everyValue_data()
  {
    QTest::addColumn<QString>("file");
    QTest::addColumn<int>("delimiter");
    QTest::addColumn<QString>("separator");
    QTest::addColumn<int>("rows");
    QTest::newRow("tab") << "a.txt" << int(dtTab) << "TAB" << 3000;
    QTest::newRow("comma") << "a.txt" << int(dtComma) << "COMMA" << 3000;
    QTest::newRow("semicolon") << "a.txt" << int(dtSemiColon) << "SEMICOLON" << 3000;
    QTest::newRow("own separator") << "a.txt" << int(dtChar) << "" << 3000;
    QTest::newRow("fixed width") << "a.txt" << int(dtFixedLen) << "FIXEDLEN" << 3000;
    QTest::newRow("zipped XML") << "a.xlsx" << 0 << "" << 3000;
    QTest::newRow("binary, two sheets") << "a.xls" << 0 << "" << 70'000;
  }
  void everyValue()
  {
    QFETCH(QString, file);
    QFETCH(int, delimiter);
    QFETCH(QString, separator);
    QFETCH(int, rows);
    const QTemporaryDir folder;
    const QString path = folder.filePath(file);
    const QString own = QStringLiteral(" | ");
    const Texts expected = expectedTexts(rows);
    TClientDataSet dataSet;
    fill(dataSet, expected);
    TImportFilter filter(1);
    filter.LoadImportParams(filterText(dataSet, separator));
    const QString all = QStringLiteral("Id,Amount,Day,Name");
    Texts read;
    if (file.endsWith(".txt")) {
      QVERIFY(CommonExportToTXT(path, &dataSet, nullptr, all, {}, TDelimiter(delimiter), own, 2, true, false));
      TImportTxt reader(path, filter, {});
      if (delimiter == dtChar)
        reader.SetDelimiter(dtChar, own);
      read = readAll(reader);
    } else {
      CommonExportToXLS(&dataSet, nullptr, all, {}, path, QStringLiteral("SheetName"));
      TImportXLS reader(path, filter, {});
      QCOMPARE(reader.GetRecordCount(), rows);
      read = readAll(reader);
    }
    QCOMPARE(read.size(), expected.size());
    for (int row = 0; row < rows; ++row)
      QCOMPARE(read[row], expected[row]);
  }

  // A sheet goes on in the next one only where it is full and the next one says so.
  void furtherSheets_data()
  {
    QTest::addColumn<QString>("file");
    QTest::addColumn<int>("firstRows");
    QTest::addColumn<QString>("secondName");
    QTest::addColumn<QString>("secondHeading");
    QTest::addColumn<int>("read");
    for (const auto& [file, full] : {std::pair("a.xls", 65'536), std::pair("a.xlsx", 1'048'576)}) {
      const auto row = [&, name = file](const char* what) -> QTestData& {
        return QTest::addRow("%s, %s", name, what) << QString::fromLatin1(name);
      };
      row("continued") << full << "S (2)" << "Код" << full + 1;
      row("copied, not full") << 10 << "S (2)" << "Код" << 10;
      row("another name") << full << "S (3)" << "Код" << full;
      row("other headings") << full << "S (2)" << "Име" << full;
    }
  }
  void furtherSheets()
  {
    QFETCH(QString, file);
    QFETCH(int, firstRows);
    QFETCH(QString, secondName);
    QFETCH(QString, secondHeading);
    QFETCH(int, read);
    const QTemporaryDir folder;
    const QString path = folder.filePath(file);
    const auto sheet = SpreadsheetWriter::create(path);
    const auto write = [&](const QString& name, const QString& heading, int rows) {
      sheet->startSheet(name, QList<SheetColumn>(1));
      for (int row = 0; row < rows; ++row) {
        sheet->beginRow();
        if (row == 0)
          sheet->text(heading);
        else if (row == rows - 1)
          sheet->integer(row);
      }
    };
    write(QStringLiteral("S"), QStringLiteral("Код"), firstRows);
    write(secondName, secondHeading, 2);
    sheet->commit();
    const TextTable table = readSpreadsheet(path, {});
    QCOMPARE(table.rowCount(), read);
    QCOMPARE(table.text(read - 1, 0).toString(), QString::number(read > firstRows ? 1 : firstRows - 1));
  }
};

static const testing::RegisterTest<ExportRoundTripTest> registered;
#include "export_round_trip_test.moc"
