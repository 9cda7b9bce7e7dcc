// The export dialog by keys, and a string grid on paper.
#include <QApplication>
#include <QBuffer>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPdfWriter>
#include <QPushButton>

#include "common/windows/export_dialog.h"
#include "common/windows/string_grid_output.h"
#include "export_records.h"
#include "several_tests.h"
#include "widgets/string_grid.h"

using namespace kalvor;
using namespace kalvor::testing;

namespace {

QStringList textsOf(const QListWidget* list)
{
  QStringList texts;
  for (int row = 0; row < list->count(); ++row)
    texts << list->item(row)->text();
  return texts;
}

class ExportDialogTest : public QObject {
  Q_OBJECT
 private slots:
  void byKeys()
  {
    ExportDesk desk;
    TfExportOptions dialog;
    dialog.FillListBox(&desk.master, &desk.detail);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowActive(&dialog));
    QCOMPARE(dialog.windowTitle(), u"Експорт на данни"_s);
    QCOMPARE(dialog.SeparatorPosition(), 4);
    QCOMPARE(dialog.focusWidget(), dialog.sourceList());

    QTest::keyClick(dialog.sourceList(), Qt::Key_Down);
    QTest::keyClick(dialog.sourceList(), Qt::Key_Return);
    QTest::keyClick(dialog.sourceList(), Qt::Key_Enter);
    QCOMPARE(textsOf(dialog.targetList()), (QStringList{u"Име"_s, u"Сума"_s}));
    dialog.sourceList()->setCurrentRow(2);
    QTest::keyClick(dialog.sourceList(), Qt::Key_Return);
    QCOMPARE(textsOf(dialog.sourceList()), (QStringList{u"Код"_s, u"Дата"_s, exportDetailSeparator, u"Код"_s, u"Ред. име"_s}));
    dialog.findChild<QCheckBox*>(u"cbxAll"_s)->setChecked(true);
    QTest::keyClick(&dialog, Qt::Key_Right, Qt::AltModifier);
    QCOMPARE(textsOf(dialog.sourceList()), QStringList{exportDetailSeparator});
    QTest::keyClick(dialog.targetList(), Qt::Key_Return);
    QCOMPARE(textsOf(dialog.targetList()), QStringList());
    QVERIFY(dialog.isVisible());
  }

  void exportChecks()
  {
    ExportDesk desk;
    TfExportOptions dialog;
    dialog.FillListBox(&desk.master, &desk.detail);
    dialog.show();
    QCOMPARE(dialog.fileType(), ExportFileType::XLS);
    dialog.pathEdit()->setText(desk.path(u"a.xls"_s));
    dialog.findChild<QComboBox*>(u"cbType"_s)->setCurrentText(u"TXT"_s);
    QCOMPARE(dialog.path(), desk.path(u"a.txt"_s));
    QTest::keyClick(dialog.pathEdit(), Qt::Key_Return);
    QCOMPARE(desk.prompt.takeMessages(), QStringList{u"Не са избрани полета за експорт!"_s});
    dialog.sourceList()->setCurrentRow(5);
    dialog.moveToTarget();
    dialog.sourceList()->setCurrentRow(0);
    dialog.moveToTarget();
    dialog.pathEdit()->setText(desk.path(u"none/a.txt"_s));
    QTest::keyClick(dialog.pathEdit(), Qt::Key_Return);
    QCOMPARE(desk.prompt.takeMessages(), QStringList{u"Грешно въведен път до файл !"_s});
    QVERIFY(dialog.isVisible());
    desk.prompt.file = desk.path(u"b"_s);
    dialog.openClicked();
    QCOMPARE(dialog.path(), desk.path(u"b.txt"_s));
    QTest::keyClick(dialog.pathEdit(), Qt::Key_Return);
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QCOMPARE(dialog.masterList(), u"Код"_s);
    QCOMPARE(dialog.detailList(), u"Код"_s);
  }

  void choiceFiles()
  {
    ExportDesk desk;
    TfExportOptions dialog;
    dialog.FillListBox(&desk.master, nullptr);
    dialog.moveToTarget();
    desk.prompt.file = desk.path(u"a"_s);
    dialog.saveClicked();
    QCOMPARE(desk.read(u"a.exp"_s), QByteArray("Код;\r\n"));
    dialog.moveToSource();
    desk.prompt.file = desk.path(u"a.exp"_s);
    dialog.loadClicked();
    QCOMPARE(textsOf(dialog.targetList()), QStringList{u"Код"_s});
    dialog.loadClicked();
    QCOMPARE(desk.prompt.takeMessages(), QStringList{u"Не сьществуващо поле !\r\n!!!"_s});
  }

  void gridFiles()
  {
    ExportDesk desk;
    TStringGrid grid(2);
    grid.table().SetRowCount(2);
    grid.SetCells(0, 1, u"a"_s);
    desk.prompt.file = desk.path(u"g"_s);
    ExportStrGridToExcel(nullptr, grid, 1);
    ExportStrGridToTXT(nullptr, grid);
    QCOMPARE(desk.fileNames(), (QStringList{u"g.txt"_s, u"g.xls"_s}));
    QCOMPARE(desk.prompt.takeMessages(), QStringList(2, u"Данните са записани успешно !"_s));
    desk.prompt.file = desk.path(u"none/g.xls"_s);
    ExportStrGridToExcel(nullptr, grid, 1);
    QCOMPARE(desk.prompt.takeMessages(), QStringList{u"Грешка при експортиране на данни"_s});
  }

  // A4 upright without margins: 2970 units high, 55 rows on a page.
  void gridOnPaper()
  {
    QCOMPARE(stringGridPages(0, 2970), 0);
    QCOMPARE(stringGridPages(55, 2970), 1);
    QCOMPARE(stringGridPages(56, 2970), 2);
    TStringGrid grid(3);
    grid.table().setTitles({u"Код"_s, u"Име"_s, u"Сума"_s});
    grid.table().SetRowCount(120);
    for (int row = 1; row < 120; ++row)
      grid.SetCells(1, row, u"Ред %1"_s.arg(row));
    QBuffer file;
    QVERIFY(file.open(QIODevice::WriteOnly));
    {
      QPdfWriter writer(&file);
      writer.setPageSize(QPageSize(QPageSize::A4));
      writer.setPageMargins(QMarginsF());
      QVERIFY(paintStringGrid(writer, grid, u"Наличности"_s, {u"Склад=Централен"_s}));
    }
    QCOMPARE(file.data().count("/Type /Page\n"), 3);
  }
};

const RegisterTest<ExportDialogTest> registered;

}  // namespace

#include "export_dialog_test.moc"
