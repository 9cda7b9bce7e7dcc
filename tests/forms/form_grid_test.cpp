// Grids of forms: keys by state, ordering by titles, totals, rows pasted from a spreadsheet.
#include <QApplication>
#include <QClipboard>
#include <QPushButton>
#include <QTableWidget>
#include <QTimer>

#include "../several_tests.h"
#include "forms/form_filters.h"
#include "forms/grid_order.h"
#include "forms/pasted_rows.h"
#include "forms/windows/grid_keys.h"
#include "forms/windows/paste_preview.h"
#include "sample_forms.h"
#include "widgets/db_grid_ex.h"
#include "widgets/grid_footer.h"

using namespace kalvor;
using namespace kalvor::testing;

namespace {

constexpr int invoiceCard = 121;
constexpr ShowOption newRecord = ShowOption(so_NewRecord) | so_AllowEdit | so_AllowInsert | so_AllowDelete;

// Columns A, B (read-only), C; three records.
struct KeyGrid {
  KeyGrid()
  {
    FieldDef field;
    field.type = DataType::WideString;
    field.size = 10;
    QList<FieldDef> fields;
    for (const char* name : {"A", "B", "C"}) {
      field.name = QLatin1String(name);
      fields.append(field);
    }
    data.CreateDataSet(fields);
    for (int i = 0; i < 3; ++i)
      data.AppendRecord({QString::number(i), QString::number(i), QString::number(i)});
    grid.setDataSet(&data);
    grid.setInCellEditing(true);
    grid.setColumnReadOnly(QStringLiteral("B"), true);
    grid.resize(400, 200);
    grid.show();
  }
  TClientDataSet data;
  TDBGridEx grid;
};

// Answers the preview that comes: what it shows, then the button.
class Previewer {
 public:
  explicit Previewer(const QString& button) : button_(button)
  {
    QObject::connect(&timer_, &QTimer::timeout, [this] { look(); });
    timer_.start(10);
  }
  int rows = -1;
  QStringList problems;

 private:
  void look()
  {
    auto* preview = qobject_cast<TfPastePreview*>(QApplication::activeModalWidget());
    if (!preview)
      return;
    timer_.stop();
    rows = preview->table()->rowCount();
    for (int row = 0; row < rows; ++row)
      problems.append(preview->table()->item(row, preview->table()->columnCount() - 1)->text());
    QTest::mouseClick(preview->findChild<QPushButton*>(button_), Qt::LeftButton);
  }
  QString button_;
  QTimer timer_;
};

}  // namespace

class FormGridTest : public QObject {
  Q_OBJECT

 private slots:
  void keysByState_data()
  {
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<QString>("start");     // record and column
    QTest::addColumn<QString>("state");     // e: line edited, m: master edited, s: selection mode, r: read-only grid
    QTest::addColumn<bool>("used");
    QTest::addColumn<QString>("end");
    const int enter = Qt::Key_Return, none = Qt::NoModifier, shift = Qt::ShiftModifier, control = Qt::ControlModifier;
    const auto row = [](const char* name, int key, int modifiers, const char* start, const char* state, bool used,
                        const char* end) {
      QTest::newRow(name) << key << modifiers << QString::fromLatin1(start) << QString::fromLatin1(state) << used
                          << QString::fromLatin1(end);
    };
    row("ctrl+delete is swallowed", Qt::Key_Delete, control, "1A", "", true, "1A");
    row("delete is the grid's", Qt::Key_Delete, none, "1A", "", false, "1A");
    row("enter to the next column", enter, none, "1A", "", true, "1B");
    row("while editing past a read-only one", enter, none, "1A", "e", true, "1C");
    row("keypad enter", Qt::Key_Enter, none, "1A", "", true, "1B");
    row("past the last column", enter, none, "1C", "", true, "2A");
    row("read-only grid too", enter, none, "1C", "r", true, "2A");
    row("last record, master not edited", enter, none, "3C", "", true, "3A");
    row("last record, master edited", enter, none, "3C", "m", true, "4A");
    row("last record, read-only grid", enter, none, "3C", "mr", true, "3A");
    row("shift back", enter, shift, "1C", "", true, "1B");
    row("shift while editing", enter, shift, "1C", "e", true, "1A");
    row("shift before the first column", enter, shift, "2A", "", true, "1C");
    row("shift at the very first cell", enter, shift, "1A", "", true, "1C");
    row("ctrl does not move", enter, control, "1A", "", false, "1A");
    row("selection mode leaves enter to the form", enter, none, "1A", "s", false, "1A");
    row("but not while editing", enter, none, "1A", "se", true, "1C");
  }
  void keysByState()
  {
    QFETCH(int, key);
    QFETCH(int, modifiers);
    QFETCH(QString, start);
    QFETCH(QString, state);
    KeyGrid form;
    form.data.SetRecNo(start.left(1).toInt());
    form.grid.selectField(start.mid(1));
    form.grid.setReadOnly(state.contains(u'r'));
    if (state.contains(u'e'))
      form.data.Edit();
    QKeyEvent event(QEvent::KeyPress, key, Qt::KeyboardModifiers(modifiers));
    const bool taken = handleGridKey(form.grid, event, {state.contains(u's'), state.contains(u'm')});
    QTEST(taken, "used");
    QTEST(QString::number(form.data.RecNo()) + form.grid.selectedField()->FieldName(), "end");
  }

  void ordersByTitles_data()
  {
    QTest::addColumn<QString>("before");
    QTest::addColumn<bool>("adds");
    QTest::addColumn<QString>("after");
    QTest::newRow("plain") << "B DESC;C" << false << "A";
    QTest::newRow("plain again") << "A" << false << "A";
    QTest::newRow("adds behind") << "B" << true << "B;A";
    QTest::newRow("to nothing") << "" << true << "A";
    QTest::newRow("turns") << "B;a" << true << "B;a DESC";
    QTest::newRow("turns back") << "A DESC;B" << true << "A;B";
  }
  void ordersByTitles()
  {
    QFETCH(QString, before);
    QFETCH(bool, adds);
    QTEST(orderAfterTitleClick(before, QStringLiteral("A"), adds ? TitleClick::AddsToOrder : TitleClick::OrdersByIt), "after");
  }

  void pastedTables_data()
  {
    QTest::addColumn<QString>("text");
    QTest::addColumn<QList<QStringList>>("table");
    const auto table = [](const QList<QStringList>& rows) { return rows; };
    QTest::newRow("rows") << "a\tb\r\nc\td\r\n" << table({{"a", "b"}, {"c", "d"}});
    QTest::newRow("empty cells") << "a\t\t\n\tb\n" << table({{"a", "", ""}, {"", "b"}});
    QTest::newRow("quoted") << "\"a\tb\n\"\"c\"\"\"\td" << table({{"a\tb\n\"c\"", "d"}});
    QTest::newRow("blank end") << "a\n\n\t\n" << table({{"a"}});
    QTest::newRow("nothing") << "\n" << table({});
    QTest::newRow("open quote") << "\"a" << table({{"a"}});
  }
  void pastedTables()
  {
    QFETCH(QString, text);
    QTEST(pastedTable(text), "table");
  }

  void theLinesFooterSumsThem()
  {
    Desk desk;
    auto* list = desk.open<TfBrSaleInvoice>(120);
    QVERIFY(list);
    auto* card = desk.open<TfEdSaleInvoice>(invoiceCard, so_Normal,
                                            recordFilter(QStringLiteral("ID"), list->cdsMaster()->FieldByName(u"Id")->Value()));
    QVERIFY(card);
    TClientDataSet* lines = card->cdsDetail();
    QVERIFY(lines->RecordCount() > 1);
    double sum = 0;
    for (qsizetype row = 0; row < lines->RecordCount(); ++row)
      sum += lines->FieldByName(u"TotalVAT")->ValueAt(row).toDouble();
    QVERIFY(card->dbgDetail()->footerVisible());
    QCOMPARE(card->dbgDetail()->footer()->text(QStringLiteral("TotalVAT")), lines->FieldByName(u"TotalVAT")->FormatValue(sum));

    TDBGridEx* grid = card->dbgDetail();
    grid->setFocus();
    grid->selectField(QStringLiteral("TotalVAT"));
    card->SelectAll();
    QTRY_VERIFY(grid->footer()->status().contains(QStringLiteral("Избрани редове: %1 ").arg(lines->RecordCount())));
    QVERIFY(grid->footer()->status().endsWith(lines->FieldByName(u"TotalVAT")->FormatValue(sum)));
    grid->clearMarks();
    QTRY_COMPARE(grid->footer()->status(), QString());
  }

  void rowsFromASpreadsheet_data()
  {
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("button");
    QTest::addColumn<QStringList>("problems");
    QTest::addColumn<int>("lines");
    const QString captions = QStringLiteral("Описание\tКоличество\tЕд. цена\n");
    const QString good = QStringLiteral("Първи\t2\t10,50\nВтори\t3\t1,00\n");
    const QString bad = QStringLiteral("Първи\t2\t10,50\nВтори\tтри\t1,00\n");
    QTest::newRow("all fit") << captions + good << "btnPaste" << QStringList{"", ""} << 2;
    QTest::newRow("refused by the user") << captions + good << "btnCancel" << QStringList{"", ""} << 0;
    QTest::newRow("one does not fit") << captions + bad << "btnPaste" << QStringList{"", "Количество"} << 1;
  }
  void rowsFromASpreadsheet()
  {
    QFETCH(QString, text);
    QFETCH(QString, button);
    QFETCH(QStringList, problems);
    Desk desk;
    auto* card = desk.open<TfEdSaleInvoice>(invoiceCard, newRecord);
    QVERIFY(card);
    TDBGridEx* grid = card->dbgDetail();
    grid->setFocus();
    QApplication::clipboard()->setText(text);
    Previewer previewer(button);
    QTest::keyClick(grid, Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(desk.prompt.takeMessages(), QStringList());
    QCOMPARE(previewer.rows, int(problems.size()));
    for (qsizetype row = 0; row < problems.size(); ++row)
      QVERIFY2(problems[row].isEmpty() ? previewer.problems[row].isEmpty() : previewer.problems[row].startsWith(problems[row]),
               qPrintable(previewer.problems[row]));
    QTEST(int(card->cdsDetail()->RecordCount()), "lines");
    if (card->cdsDetail()->RecordCount() > 0) {
      card->cdsDetail()->First();
      QCOMPARE(card->cdsDetail()->FieldByName(u"Description")->AsString(), QStringLiteral("Първи"));
      QCOMPARE(card->cdsDetail()->FieldByName(u"UnitPrice")->AsFloat(), 10.5);
    }
    QVERIFY(!card->cdsDetail()->ControlsDisabled());
    card->execute(QStringLiteral("acCancel"));
  }
};

static const RegisterTest<FormGridTest> formGridTest;

#include "form_grid_test.moc"
