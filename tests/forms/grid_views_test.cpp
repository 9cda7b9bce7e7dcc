// Grid views in ini files and in the settings document, and the dialog that changes them, on a grid over local records.
#include <QComboBox>
#include <QListWidget>
#include <QPushButton>
#include <QSpinBox>
#include <QtTest>

#include "../records.h"
#include "../scratch_documents.h"
#include "../scripted_ports.h"
#include "../session/scripted_session.h"
#include "forms/windows/columns_dialog.h"
#include "forms/windows/grid_view_store.h"
#include "session/error_log.h"
#include "session/settings_document.h"
#include "widgets/db_grid_ex.h"
#include "widgets/string_grid.h"
#include "widgets/theme.h"

using namespace kalvor;
using namespace kalvor::testing;

namespace {

// Columns Id (hidden by the field), Code, Name, Total.
struct ShownGrid {
  ShownGrid()
  {
    data.CreateDataSet({fieldDef("Id"), fieldDef("Code"), fieldDef("Name"), fieldDef("Total", DataType::Float)});
    data.AppendRecord({"1", "a", "Име", 5.0});
    const std::pair<const char16_t*, const char*> captions[] = {{u"Code", "Код"}, {u"Name", "Име"}, {u"Total", "Сума"}};
    for (const auto& [name, caption] : captions)
      data.FieldByName(QStringView(name))->DisplayLabel = caption;
    data.FieldByName(u"Id")->Visible = false;
    grid.setObjectName("dbgMain");
    grid.setDataSet(&data);
  }
  QStringList shown() const
  {
    QStringList names;
    for (const GridColumn& column : grid.columns())
      if (column.visible)
        names << column.fieldName;
    return names;
  }
  GridColumn column(const QString& name) const
  {
    for (const GridColumn& column : grid.columns())
      if (column.fieldName == name)
        return column;
    return {};
  }
  TClientDataSet data;
  TDBGridEx grid;
};

struct GridFile {
  GridFile() { InitLog(); }
  ~GridFile() { CloseLog(); }
  QString name() const { return documents.path("views.exe"); }
  QString text() const { return QString::fromUtf8(documents.read("views.ini")); }
  QStringList logged(const QString& label) const
  {
    QStringList log;
    LoadErrorLog(log);
    return log.filter("[" + label + "]: ");
  }
  ScratchDocuments documents;
};

}  // namespace

class GridViewsTest : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() { applyTheme(*qApp, ThemeMode::Light); }

  void anIniViewComesBack()
  {
    GridFile file;
    {
      ShownGrid first;
      first.grid.setColumnPixels("Name", 150);
      first.grid.setColumnColor("Name", QColor(0xff, 0, 0));
      first.grid.setColumnAlignment("Code", Qt::AlignHCenter);
      first.grid.setColumnVisible("Code", false);
      first.grid.moveColumn("Total", 0);
      SaveGridViewEx(file.name(), 120, "1", &first.grid);
      const QString total = QString::number(first.column("Total").width);
      QVERIFY2(file.text().startsWith("[120;1]\ndbgMain;0=Total;" + total + ";clWindow;-1;1;\n"), qPrintable(file.text()));
      QVERIFY(file.text().contains("=Name;150;clRed;-1;0;\n"));
      SaveGridViewEx(file.name(), 120, "2", &first.grid);
      QVERIFY(file.text().contains("\n\n[120;2]\ndbgMain;0="));
    }
    ShownGrid second;
    LoadGridViewEx(file.name(), 120, "1", &second.grid);
    QCOMPARE(second.shown(), (QStringList{"Total", "Name"}));
    QCOMPARE(second.column("Name").width, 150);
    QCOMPARE(second.column("Name").color, QColor(0xff, 0, 0));
    QVERIFY(!second.column("Total").color.isValid());
    QCOMPARE(second.column("Code").alignment, Qt::Alignment(Qt::AlignHCenter));
    QCOMPARE(file.logged("Грешка"), QStringList());
  }

  // What the lines leave of Code (width 50), Name, Total, and what the log says.
  void oddLines_data()
  {
    QTest::addColumn<QByteArray>("lines");
    QTest::addColumn<QStringList>("order");
    QTest::addColumn<int>("nameWidth");
    QTest::addColumn<bool>("logged");
    const QStringList plain{"Code", "Name", "Total"};
    QTest::newRow("other grid") << QByteArray("dbgDetail;0=Name;77;clRed;0;0;\n") << plain << 60 << false;
    QTest::newRow("no such field") << QByteArray("dbgMain;0=Gone;1;clRed;0;0;\ndbgMain;1=Name;77;clWindow;-1;0;\n")
                                   << QStringList{"Name", "Code", "Total"} << 77 << false;
    QTest::newRow("past the last") << QByteArray("dbgMain;4=Name;77;clWindow;0;0;\n") << plain << 60 << false;
    QTest::newRow("last") << QByteArray("dbgMain;3=Name;77;clWindow;-1;0;\n") << QStringList{"Code", "Total", "Name"} << 77 << false;
    QTest::newRow("missing parts") << QByteArray("dbgMain;3=Name;77\ndbgMain;0=Total;10;clRed;0;0;\n")
                                   << QStringList{"Code", "Total", "Name"} << 77 << true;
    QTest::newRow("no position") << QByteArray("dbgMain;x=Name;77;clWindow;-1;0;\n") << plain << 60 << true;
  }
  void oddLines()
  {
    QFETCH(QByteArray, lines);
    QFETCH(bool, logged);
    GridFile file;
    file.documents.write("views.ini", "[120;1]\n" + lines);
    ShownGrid shown;
    shown.grid.setColumnPixels("Name", 60);
    LoadGridViewEx(file.name(), 120, "1", &shown.grid);
    QTEST(shown.shown(), "order");
    QTEST(shown.column("Name").width, "nameWidth");
    QCOMPARE(file.logged("Процедура"), logged ? QStringList{"[Процедура]: LoadGridViewEx"} : QStringList());
    QCOMPARE(file.logged("Операция"),
             logged ? QStringList{"[Операция]: Read file: " + file.documents.path("views.ini")} : QStringList());
  }

  void resettingNeedsAnOpenDataset()
  {
    GridFile file;
    const QByteArray stored = "[120;1]\ndbgMain;0=Name;77;clWindow;0;0;\n[120;2]\nx=1\n";
    file.documents.write("views.ini", stored);
    ShownGrid shown;
    shown.data.Close();
    ResetGridView(file.name(), 120, 1, &shown.grid);
    QCOMPARE(file.text().toUtf8(), stored);
    shown.data.Open();
    ResetGridView(file.name(), 120, 1, &shown.grid);
    QCOMPARE(file.text(), QString("[120;1]\n[120;2]\nx=1\n"));
  }

  void enhancedGridsKeepTheirFixedColumns()
  {
    GridFile file;
    ShownGrid first;
    first.grid.setFixedColumns(2);
    SaveGridView(file.name(), 120, 1, &first.grid);
    QVERIFY(file.text().startsWith("[120|1]\n") && file.text().endsWith("FixedColls=2\n"));
    ShownGrid second;
    LoadGridView(file.name(), 120, 1, &second.grid);
    QCOMPARE(second.grid.fixedColumns(), 2);
    QCOMPARE(file.logged("Грешка"), QStringList());
  }

  void unwritableFilesAreLogged()
  {
    GridFile file;
    ShownGrid shown;
    SaveGridViewEx(file.documents.path("missing/views.exe"), 120, "1", &shown.grid);
    QCOMPARE(file.logged("Процедура"), QStringList{"[Процедура]: SaveGridViewEx"});
    QCOMPARE(file.logged("Операция"), QStringList{"[Операция]: Update file: " + file.documents.path("missing/views.ini")});
  }

  void theSettingsDocumentKeepsShownFieldsInOrder()
  {
    QDomDocument document;
    ShownGrid first;
    first.grid.setColumnCharacters("Name", 30);
    first.grid.setColumnCharacters("Total", 9);
    first.grid.setColumnVisible("Code", false);
    first.grid.moveColumn("Total", 0);
    first.grid.setFixedColumns(1);
    SaveGridView(document, 120, 1, &first.grid);
    QCOMPARE(document.toString(-1), QString("<Root><Form_Id120Tag_Id1><Total>9</Total><Name>30</Name></Form_Id120Tag_Id1>"
                                            "<Form_Id120><FixedColls>1</FixedColls></Form_Id120></Root>"));
    ShownGrid second;
    QVERIFY(!LoadGridView(document, 120, 2, &second.grid));
    QCOMPARE(second.grid.fixedColumns(), 1);
    QCOMPARE(second.shown(), (QStringList{"Code", "Name", "Total"}));
    QVERIFY(LoadGridView(document, 120, 1, &second.grid));
    QCOMPARE(second.shown(), (QStringList{"Total", "Name"}));
    QCOMPARE(second.grid.columnCharacters("Name"), 30);
    QVERIFY(LoadGridView(document, 120, 1, &second.grid, true));
    QCOMPARE(second.shown().size(), 4);
  }

  void colorsStandBesideTheView()
  {
    QDomDocument document;
    ShownGrid first;
    first.grid.setColumnColor("Name", QColor(1, 2, 3));
    SaveGridView(document, 120, 0, &first.grid);
    ShownGrid second;
    QVERIFY(LoadGridView(document, 120, 0, &second.grid));
    QCOMPARE(second.column("Name").color, QColor(1, 2, 3));
    second.grid.setColumnColor("Name", QColor());
    SaveGridView(document, 120, 0, &second.grid);
    QVERIFY(!document.toString().contains("Colors"));
  }

  void theDialogChangesTheGrid()
  {
    const ScriptedPrompt prompt;
    ScriptedSession session;
    session.load();
    ShownGrid shown;
    shown.grid.setProperty("tag", 1);
    TfColumnsProps dialog(120, &shown.grid);
    QCOMPARE(dialog.windowTitle(), QString("Видими колони"));
    QCOMPARE(dialog.clbColumns->count(), 3);
    QStringList captions;
    for (int row = 0; row < 3; ++row)
      captions << dialog.clbColumns->item(row)->text();
    QCOMPARE(captions, (QStringList{"Име", "Код", "Сума"}));
    dialog.speSize->setValue(33);
    QTest::keyClick(dialog.clbColumns, Qt::Key_Down);
    dialog.clbColumns->currentItem()->setCheckState(Qt::Unchecked);
    dialog.speFixed->setValue(1);
    QCOMPARE(shown.shown().size(), 3);
    QTest::mouseClick(dialog.btnOk, Qt::LeftButton);
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QCOMPARE(shown.shown(), (QStringList{"Name", "Total"}));
    QCOMPARE(shown.grid.columnCharacters("Name"), 33);
    QCOMPARE(shown.grid.fixedColumns(), 1);
    QStringList lines;
    GetNodeFromXml(session.dm->UserSettings->document, "Form_Id120Tag_Id1", lines);
    QCOMPARE(lines.value(0), QString("Name=33"));
    GetNodeFromXml(session.dm->UserSettings->document, "Form_Id120", lines);
    QCOMPARE(lines, QStringList{"FixedColls=1"});

    TfColumnsProps again(120, &shown.grid);
    again.speFixed->setValue(0);
    again.btnOkClick();
    GetNodeFromXml(session.dm->UserSettings->document, "Form_Id120", lines);
    QCOMPARE(lines, QStringList{"FixedColls=0"});
  }

  void someColumnStays()
  {
    ScriptedPrompt prompt;
    ShownGrid shown;
    TfColumnsProps dialog(120, &shown.grid);
    for (int row = 0; row < 3; ++row)
      dialog.clbColumns->item(row)->setCheckState(Qt::Unchecked);
    dialog.btnOkClick();
    QCOMPARE(prompt.messages, QStringList{"Поне една колона трябва да е видима."});
    QCOMPARE(shown.shown().size(), 3);
  }

  // A string grid of three columns, the second without a descriptor.
  void stringGrids()
  {
    const auto named = [](TStringGrid& grid) {
      grid.setObjectName("sgFilter");
      grid.setColumnWidths({70, 70, 70});
    };
    GridFile file;
    TStringGrid first(3);
    named(first);
    first.setColumnDescriptor(0, {{"a", "b", "c", "d"}, {}});
    first.setColumnDescriptor(2, {{"e", "", "", "f"}, Qt::red});
    first.setColumnPixels(0, 40);
    first.setColumnPixels(2, 50);
    SaveStringGridView(file.name(), 12, &first);
    QCOMPARE(file.text(), QString("[12]\nsgFilter;0=a;b;c;d;40;clWindow;\nsgFilter;2=e;;;f;50;clRed;\n"));
    TStringGrid second(3), other(3), shorter(2);
    named(second);
    named(shorter);
    const int width = second.columnWidth(1);
    LoadStringGridView(file.name(), 12, &second);
    QCOMPARE(second.columnDescriptor(0).texts, (QStringList{"a", "b", "c", "d"}));
    QCOMPARE(second.columnDescriptor(2).color, QColor(Qt::red));
    QCOMPARE((QList<int>{second.columnWidth(0), second.columnWidth(1), second.columnWidth(2)}), (QList<int>{40, width, 50}));
    QVERIFY(second.columnDescriptor(1).texts.isEmpty());
    LoadStringGridView(file.name(), 12, &shorter);
    QCOMPARE(shorter.columnDescriptor(0).texts.size(), 4);
    LoadStringGridView(file.name(), 12, &other);
    QVERIFY(other.columnDescriptor(0).texts.isEmpty());
    QCOMPARE(file.logged("Грешка"), QStringList());
  }
};

QTEST_MAIN(GridViewsTest)
#include "grid_views_test.moc"
