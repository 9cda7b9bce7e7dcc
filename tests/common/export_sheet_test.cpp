// Sheets, read back by other programs' eyes: kinds of cells, column names, further sheets, long texts, grids.
#include <random>

#include "common/export_spreadsheet.h"
#include "common/grid_export.h"
#include "export_records.h"
#include "platform/spreadsheet_writer.h"
#include "several_tests.h"
#include "sheet_files.h"

using namespace kalvor;
using namespace kalvor::testing;

namespace {

class ExportSheetTest : public QObject {
  Q_OBJECT
 private slots:
  void cells()
  {
    ExportDesk desk;
    const QString captions = u"Име,Сума,Дата,Код"_s;
    ExportToXLS(&desk.master, nullptr, captions, {}, desk.path(u"a.xls"_s), u"SheetName"_s);
    ExportToXLS(&desk.master, nullptr, captions, {}, desk.path(u"a.xlsx"_s), u"SheetName"_s);
    QCOMPARE(desk.prompt.takeMessages(), QStringList(2, u"Операцията приключи успешно."_s));
    QCOMPARE(desk.fileNames(), (QStringList{u"a.xls"_s, u"a.xlsx"_s}));
    const QList<ReadSheet> sheets = readXls(desk.path(u"a.xls"_s));
    QCOMPARE(sheets.size(), 1);
    QCOMPARE(sheets[0].name, u"SheetName"_s);
    const QVariantList titles{u"Име"_s, u"Сума"_s, u"Дата"_s, u"Код"_s};
    QCOMPARE(sheets[0].rows, (SheetRows{titles,
                                        {u"Аня"_s, 12.345, u"2026-01-18"_s, 1},
                                        {u"=1+1"_s, -0.001, QVariant(), 2},
                                        {u"Жълтит"_s, QVariant(), u"1999-12-31"_s, 3}}));
    QCOMPARE(readXlsxSheet(desk.path(u"a.xlsx"_s), 1), (SheetRows{titles,
                                                                  {u"Аня"_s, 12.345, 46040.0, 1.0},
                                                                  {u"=1+1"_s, -0.001, QVariant(), 2.0},
                                                                  {u"Жълтит"_s, QVariant(), 36525.0, 3.0}}));
    QVERIFY(zipPart(desk.path(u"a.xlsx"_s), "xl/workbook.xml").contains("name=\"SheetName\""));
  }

  // What a person could mistake for a formula, and values at the edges of a cell's kinds.
  void edgesOfKinds()
  {
    QTemporaryDir folder;
    for (const QString& name : {u"a.xls"_s, u"a.xlsx"_s}) {
      const QString path = folder.filePath(name);
      const auto sheet = SpreadsheetWriter::create(path);
      sheet->startSheet(u"[a]*:'b"_s, QList<SheetColumn>(12, SheetColumn{}));
      sheet->beginRow();
      for (const QString& text : {u"=SUM(A1)"_s, u"+1"_s, u"-1"_s, u"@x"_s, u"007"_s, u"a\u0001\n<&>"_s})
        sheet->text(text);
      sheet->integer(1234567890123456789);
      sheet->integer(-536870913);
      sheet->number(std::nan(""));
      sheet->date(QDate(1899, 12, 31));
      sheet->boolean(true);
      sheet->empty();
      sheet->commit();
      const QVariantList row = name == u"a.xls" ? readXls(path).value(0).rows.value(0) : readXlsxSheet(path, 1).value(0);
      QCOMPARE(row.mid(0, 5), (QVariantList{u"=SUM(A1)"_s, u"+1"_s, u"-1"_s, u"@x"_s, u"007"_s}));
      QVERIFY(row[5].toString().startsWith(u'a') && row[5].toString().endsWith(u"\n<&>"_s));
      QCOMPARE(row[6], QVariant(u"1234567890123456789"_s));
      QCOMPARE(row[7].toDouble(), -536870913.0);
      QVERIFY(!row[8].isValid());
      QCOMPARE(row[9], QVariant(u"31.12.1899"_s));
      QCOMPARE(row[10].toInt(), 1);
    }
    QCOMPARE(readXls(folder.filePath(u"a.xls"_s)).value(0).name, u"a'b"_s);
    const auto tooWide = SpreadsheetWriter::create(folder.filePath(u"b.xls"_s));
    QVERIFY_EXCEPTION_THROWN(tooWide->startSheet(u"S"_s, QList<SheetColumn>(257)), DataError);
    tooWide->startSheet(u"S"_s, QList<SheetColumn>(2));
    tooWide->beginRow();
    QVERIFY_EXCEPTION_THROWN(tooWide->text(QString(32768, u'x')), DataError);
  }

  void columnNames()
  {
    ExportDesk desk;
    desk.master.Field(0)->DisplayLabel = u" К. од "_s;
    desk.detail.Field(0)->DisplayLabel = u" К. од "_s;
    const auto titles = [&](auto routine) {
      routine(&desk.master, &desk.detail, u" К. од ,Име"_s, u"Ред. име, К. од "_s, desk.path(u"a.xls"_s), u"S"_s, [] {});
      return readXls(desk.path(u"a.xls"_s)).value(0).rows.value(0);
    };
    QCOMPARE(titles(CommonExportToXLS), (QVariantList{u"К. од"_s, u"Име"_s, u"К. од"_s, u"Детайли_Ред. име"_s}));
    QCOMPARE(titles(ExportToXLS), (QVariantList{u"К_ од"_s, u"Име"_s, u"_Ред_ име"_s, u"_К_ од"_s}));
  }

  // The callback shows the lines; the scroll handlers are silent and come back.
  void detailRows()
  {
    ExportDesk desk;
    int scrolls = 0, calls = 0;
    desk.master.RecordCount();
    desk.master.First();
    desk.master.Next();
    desk.master.AfterScroll = [&](TClientDataSet*) { ++scrolls; };
    ExportToXLS(&desk.master, &desk.detail, u"Код,Име"_s, u"Ред. име"_s, desk.path(u"a.xls"_s), u"S"_s, [&] {
      ++calls;
      desk.showLines();
    });
    QCOMPARE(readXls(desk.path(u"a.xls"_s)).value(0).rows.mid(1),
             (SheetRows{{1, u"Аня"_s, u"р1"_s}, {1, u"Аня"_s, u"р1"_s}, {3, u"Жълтит"_s, u"р3"_s}}));
    QCOMPARE(calls, 3);
    QCOMPARE(scrolls, 0);
    QCOMPARE(desk.master.RecNo(), 2);
    desk.master.Next();
    QCOMPARE(scrolls, 1);
  }

  void closedMasterIsAnError()
  {
    ExportDesk desk;
    TClientDataSet closed;
    ExportToXLS(&closed, nullptr, u"Код"_s, {}, desk.path(u"a.xls"_s), u"S"_s);
    QCOMPARE(desk.prompt.messages, QStringList{u"Операцията приключи с грешки."_s});
    QCOMPARE(desk.fileNames(), QStringList());
  }

  // More records than a sheet takes, in a file whose allocation table overflows its header.
  void furtherSheets()
  {
    ExportDesk desk;
    QList<FieldDef> fields;
    for (int i = 0; i < 9; ++i)
      fields << fieldDef(u"F%1"_s.arg(i), DataType::Float);
    RecordSet records(fields);
    constexpr int rows = 65'536 + 10;
    for (Column& column : records.columns)
      for (int row = 0; row < rows; ++row)
        column.appendReal(row + 0.25);
    records.rows = rows;
    TClientDataSet dataSet;
    dataSet.SetRecords(std::move(records));
    QStringList captions;
    for (const TField* field : dataSet.Fields())
      captions << field->FieldName();
    CommonExportToXLS(&dataSet, nullptr, captions.join(u','), {}, desk.path(u"a.xls"_s), u"Данни"_s);
    QVERIFY(QFileInfo(desk.path(u"a.xls"_s)).size() > 109 * 128 * 512);
    const QList<ReadSheet> sheets = readXls(desk.path(u"a.xls"_s));
    QCOMPARE(sheets.size(), 2);
    QCOMPARE(sheets[1].name, u"Данни (2)"_s);
    QCOMPARE(sheets[0].rows.size(), 65'536);
    QCOMPARE(sheets[0].rows.last()[8].toDouble(), 65'534.25);
    QCOMPARE(sheets[1].rows.size(), 12);
    QCOMPARE(sheets[1].rows[0][0], QVariant(u"F0"_s));
    QCOMPARE(sheets[1].rows[1][0].toDouble(), 65'535.25);
  }

  // The table of texts is cut into records at every possible place of a text. FreeXL reads no text that fills more
  // than a whole record.
  void manyTexts()
  {
    QTemporaryDir folder;
    const QString path = folder.filePath(u"a.xls"_s);
    std::mt19937 random(11);
    QStringList texts{QString(5000, u'я'), QString(7000, u'x')};
    for (int i = 0; i < 4000; ++i)
      texts << QString::number(i) + QString(int(random() % 40), random() % 2 ? u'щ' : u'é');
    const auto sheet = SpreadsheetWriter::create(path);
    sheet->startSheet(u"S"_s, QList<SheetColumn>(1));
    for (const QString& text : std::as_const(texts)) {
      sheet->beginRow();
      sheet->text(text);
    }
    sheet->commit();
    const SheetRows rows = readXls(path).value(0).rows;
    QCOMPARE(rows.size(), texts.size());
    for (int i = 0; i < texts.size(); ++i)
      QCOMPARE(rows[i][0].toString(), texts[i]);
  }

  void gridSheet()
  {
    QTemporaryDir folder;
    StringTable table(2, 3);
    table.setTitles({u"Код"_s, u"Име"_s});
    table.SetCells(0, 1, u"=1"_s);
    table.SetCells(1, 2, u"Аня"_s);
    const QString path = folder.filePath(u"g.xls"_s);
    writeGridSheet(table, 2, {u"Склад=5=6"_s}, path);
    QCOMPARE(readXls(path).value(0).rows,
             (SheetRows{{u"Склад"_s, u"5=6"_s}, {QVariant(), QVariant()}, {u"Код"_s, u"Име"_s}, {u"=1"_s, QVariant()}, {QVariant(), u"Аня"_s}}));
    writeGridSheet(table, 2, {}, path);
    QCOMPARE(readXls(path).value(0).rows.value(0), (QVariantList{u"Код"_s, u"Име"_s}));
    writeGridSheet(table, 2, {u"Склад=5"_s}, folder.filePath(u"g.xlsx"_s));
    const QByteArray styles = zipPart(folder.filePath(u"g.xlsx"_s), "xl/styles.xml");
    QVERIFY(styles.contains("FF0000FF") && styles.contains("FF008000"));
    writeGridText(table, {u"Склад=5"_s}, folder.filePath(u"g.txt"_s));
    QFile text(folder.filePath(u"g.txt"_s));
    QVERIFY(text.open(QIODevice::ReadOnly));
    QCOMPARE(text.readAll(), QByteArray("\xD1\xEA\xEB\xE0\xE4\t5\r\n\xCA\xEE\xE4\t\xC8\xEC\xE5\t\r\n=1\t\t\r\n\t\xC0\xED\xFF\t\r\n"));
  }
};

const RegisterTest<ExportSheetTest> registered;

}  // namespace

#include "export_sheet_test.moc"
