// What the export writes into a spreadsheet, the import reads out of it: the same texts from both kinds of file.
#include "platform/spreadsheet_reader.h"
#include "platform/spreadsheet_writer.h"
#include "several_tests.h"

using namespace kalvor;

class WrittenSheetsTest : public QObject {
  Q_OBJECT

 private slots:
  void readsBackWhatWasWritten_data()
  {
    QTest::addColumn<QString>("name");
    QTest::newRow("binary") << "sheet.xls";
    QTest::newRow("zipped XML") << "sheet.xlsx";
  }
  void readsBackWhatWasWritten()
  {
    QFETCH(QString, name);
    constexpr int manyRows = 3000;  // shared texts over several records
    const QTemporaryDir folder;
    const QString file = folder.filePath(name);
    const auto writer = SpreadsheetWriter::create(file);
    writer->startSheet("Продажби", {{0, ""}, {0, "#,##0.00"}, {0, ""}, {0, ""}, {0, ""}, {0, ""}});
    writer->addTitleRow({"Номер", "Сума", "Дата", "Кога", "Час", "Флаг"}, SheetRowLook::Bold);
    for (int row = 0; row < manyRows; ++row) {
      writer->beginRow();
      writer->text(QStringLiteral("=Ред <%1> & \"ъ\"").arg(row));
      writer->number(row * 0.1 - 7);
      writer->date(QDate(2024, 1, 31).addDays(row));
      writer->dateTime(QDateTime(QDate(2024, 2, 29), QTime(10, 20, 30)));
      row % 2 ? writer->time(QTime(23, 59, 59)) : writer->empty();
      writer->boolean(row % 3 == 0);
    }
    writer->commit();

    const CellTextFormat format;
    const TextTable table = readSpreadsheet(file, format);
    QCOMPARE(table.rowCount(), manyRows + 1);
    QCOMPARE(table.text(0, 2), u"Дата");
    for (int row = 0; row < manyRows; ++row) {
      QCOMPARE(table.text(row + 1, 0).toString(), QStringLiteral("=Ред <%1> & \"ъ\"").arg(row));
      QCOMPARE(table.text(row + 1, 1).toString().replace(u',', u'.').toDouble(), row * 0.1 - 7);
      QCOMPARE(table.text(row + 1, 2).toString(), QDate(2024, 1, 31).addDays(row).toString("dd.MM.yyyy"));
      QCOMPARE(table.text(row + 1, 3), u"29.02.2024 10:20:30");
      QCOMPARE(table.text(row + 1, 4).toString(), row % 2 ? "23:59:59" : "");
      QCOMPARE(table.text(row + 1, 5).toString(), row % 3 == 0 ? "1" : "0");
    }
  }

  // Texts that a file of XML or of bytes has to write otherwise than they are.
  void edgeTexts_data() { readsBackWhatWasWritten_data(); }
  void edgeTexts()
  {
    QFETCH(QString, name);
    const QStringList texts{" blank ", "\tтаб", "два\nреда", "CR\rLF\r\n", "_x0041_", "_x005F_x0041_", "_x00", "a\u0001b\u001F", "]]>",
                            "&amp;<b>\"'", QString::fromUcs4(U"\U0001F600€\u07FF\u0800"), QString(32'767, u'\u0002')};
    const QTemporaryDir folder;
    const QString file = folder.filePath(name);
    const auto writer = SpreadsheetWriter::create(file);
    writer->startSheet("S", QList<SheetColumn>(2));
    for (const QString& text : texts) {
      writer->beginRow();
      writer->text(text);
      writer->text(QString(QChar(0xD83D)) + u'x');  // half a character
    }
    writer->commit();
    const TextTable table = readSpreadsheet(file, {});
    QCOMPARE(table.rowCount(), texts.size());
    for (int row = 0; row < texts.size(); ++row) {
      QCOMPARE(table.text(row, 0).toString(), texts[row]);
      QVERIFY(table.text(row, 1).endsWith(u'x'));
    }
  }
};

static const testing::RegisterTest<WrittenSheetsTest> registered;
#include "written_sheets_test.moc"
