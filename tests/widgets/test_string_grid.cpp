#include <QAbstractButton>
#include <QAbstractItemView>
#include <QComboBox>
#include <QLineEdit>
#include <QVBoxLayout>

#include "typing.h"
#include "widgets/string_grid.h"
#include "widgets/theme.h"

using namespace kalvor;

namespace {

using Kind = StringCellEditor::Kind;

// Columns: a drop-down, a plain text, an ellipsis; the first row of the third cannot be edited.
struct Fixture {
  Fixture()
  {
    auto* layout = new QVBoxLayout(&window);
    before = new QLineEdit(&window);
    grid = new TStringGrid(3, &window);
    after = new QLineEdit(&window);
    for (QWidget* widget : std::initializer_list<QWidget*>{before, grid, after}) {
      layout->addWidget(widget);
    }
    grid->table().setTitles({"Поле", "Текст", "Избор"});
    grid->table().SetRowCount(3);
    grid->OnGetEditor = [](int column, int row) -> StringCellEditor {
      if (column == 0) {
        return {Kind::DropDown, {"Дата", "Документ", "Сума", "Начална сума"}, {}};
      }
      return {column == 1 ? Kind::Plain : row == 1 ? Kind::None : Kind::Ellipsis, {}, {}};
    };
    grid->OnEllipsis = [this](int column, int row) { pressed.append(column * 10 + row); };
    grid->OnEdited = [this](int column, int row) { edited.append(column * 10 + row); };
    window.resize(500, 300);
    window.show();
    window.activateWindow();
    if (!QTest::qWaitForWindowActive(&window)) {
      qWarning("The window did not become active");
    }
    grid->setFocus();
    grid->select(0, 1);
  }
  void key(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
  {
    QTest::keyClick(QApplication::focusWidget(), Qt::Key(key), modifiers);
  }

  QWidget window;
  QLineEdit* before;
  QLineEdit* after;
  TStringGrid* grid;
  QList<int> pressed, edited;
};

}  // namespace

class StringGridTest : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() { applyTheme(*qApp, ThemeMode::Light); }

  void typingCompletesToAnItem_data()
  {
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("cell");
    QTest::newRow("begins so") << "док" << "Документ";
    QTest::newRow("first that begins so") << "д" << "Дата";
    QTest::newRow("other letters") << "сума" << "Сума";
    QTest::newRow("held by one") << "начал" << "Начална сума";
    QTest::newRow("no item") << "цвят" << "цвят";
  }
  void typingCompletesToAnItem()
  {
    Fixture fixture;
    QFETCH(QString, typed);
    typeText(fixture.grid, typed);
    QVERIFY(qobject_cast<QComboBox*>(fixture.grid->cellEditor()));
    fixture.key(Qt::Key_Tab);
    QTEST(fixture.grid->Cells(0, 1), "cell");
    QVERIFY(!fixture.grid->cellEditor());
    QCOMPARE(fixture.grid->Col(), 1);
    QCOMPARE(fixture.edited, QList<int>{1});
  }

  void keysStartAndEndAnEdit()
  {
    Fixture fixture;
    TStringGrid* grid = fixture.grid;
    grid->select(1, 1);
    typeText(grid, "абв");
    QCOMPARE(grid->Cells(1, 1), QString());
    fixture.key(Qt::Key_Escape);
    QCOMPARE(grid->Cells(1, 1), QString());
    QVERIFY(!grid->cellEditor() && grid->hasFocus());

    typeText(grid, "абв");
    fixture.key(Qt::Key_Down);
    QCOMPARE(grid->Cells(1, 1), QString("абв"));
    QCOMPARE(grid->Row(), 2);
    fixture.key(Qt::Key_Up);
    fixture.key(Qt::Key_F2);
    QVERIFY(grid->cellEditor());
    fixture.key(Qt::Key_End);
    typeText(grid, "г");
    fixture.after->setFocus();
    QTRY_COMPARE(grid->Cells(1, 1), QString("абвг"));

    grid->setFocus();
    fixture.key(Qt::Key_Backspace);
    QCOMPARE(grid->Cells(1, 1), QString());
  }

  void tabGoesThroughTheCellsAndLeaves()
  {
    Fixture fixture;
    for (int i = 0; i < 5; ++i) {
      fixture.key(Qt::Key_Tab);
    }
    QCOMPARE(fixture.grid->Col() * 10 + fixture.grid->Row(), 22);
    QVERIFY(fixture.grid->hasFocus());
    fixture.key(Qt::Key_Tab);
    QVERIFY(fixture.after->hasFocus());
    fixture.key(Qt::Key_Backtab, Qt::ShiftModifier);
    QVERIFY(fixture.grid->hasFocus());
    fixture.grid->select(0, 1);
    fixture.key(Qt::Key_Backtab, Qt::ShiftModifier);
    QVERIFY(fixture.before->hasFocus());
  }

  void theEllipsisIsPressedByKeys_data()
  {
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::newRow("F4") << int(Qt::Key_F4) << int(Qt::NoModifier);
    QTest::newRow("Alt+Down") << int(Qt::Key_Down) << int(Qt::AltModifier);
    QTest::newRow("Ctrl+Enter") << int(Qt::Key_Return) << int(Qt::ControlModifier);
  }
  void theEllipsisIsPressedByKeys()
  {
    Fixture fixture;
    QFETCH(int, key);
    QFETCH(int, modifiers);
    fixture.grid->select(2, 2);
    fixture.key(key, Qt::KeyboardModifiers(modifiers));
    typeText(fixture.grid, "а");
    QVERIFY(fixture.grid->cellEditor());
    fixture.key(key, Qt::KeyboardModifiers(modifiers));
    QCOMPARE(fixture.pressed, QList<int>({22, 22}));
    QCOMPARE(fixture.grid->Cells(2, 2), QString("а"));
    fixture.grid->startEdit();
    fixture.grid->findChild<QAbstractButton*>("cellButton")->click();
    QTRY_COMPARE(fixture.pressed.size(), 3);
  }

  void altDownOpensTheList()
  {
    Fixture fixture;
    fixture.key(Qt::Key_Down, Qt::AltModifier);
    auto* list = qobject_cast<QComboBox*>(fixture.grid->cellEditor());
    QVERIFY(list && list->view()->isVisible());
    list->hidePopup();
    fixture.key(Qt::Key_Down);
    fixture.key(Qt::Key_Return);
    QCOMPARE(fixture.grid->Cells(0, 1), QString("Дата"));
  }

  void aCellWithoutEditorStays()
  {
    Fixture fixture;
    fixture.grid->SetCells(2, 1, "x");
    fixture.grid->select(2, 1);
    typeText(fixture.grid, "а");
    fixture.key(Qt::Key_F2);
    fixture.key(Qt::Key_Backspace);
    QVERIFY(!fixture.grid->cellEditor());
    QCOMPARE(fixture.grid->Cells(2, 1), QString("x"));
  }

  void rowsComeAndGoUnderTheCurrentCell()
  {
    Fixture fixture;
    fixture.grid->select(1, 2);
    fixture.grid->table().insertRow(1);
    QCOMPARE(fixture.grid->Row(), 2);
    fixture.grid->table().SetRowCount(2);
    QCOMPARE(fixture.grid->Col() * 10 + fixture.grid->Row(), 11);
    fixture.grid->table().SetRowCount(1);
    QCOMPARE(fixture.grid->Row(), -1);
  }
};

QTEST_MAIN(StringGridTest)
#include "test_string_grid.moc"
