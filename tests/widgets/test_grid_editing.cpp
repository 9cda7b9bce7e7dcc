// Editing in the grid's cells, one editor of each kind.
#include <QSignalSpy>

#include "grid_fixture.h"
#include "widgets/db_combo_box.h"
#include "widgets/db_date_edit.h"
#include "widgets/edit_button.h"
#include "widgets/theme.h"

namespace kalvor {

class TestGridEditing : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() { applyTheme(*qApp, ThemeMode::Light); }

  void typingReplacesTheCell_data()
  {
    QTest::addColumn<QString>("column");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("stored");
    QTest::newRow("text") << "Name" << QStringLiteral("Ябълки") << QStringLiteral("Ябълки");
    QTest::newRow("number") << "Price" << QStringLiteral("12.5") << QStringLiteral("12.5");
    QTest::newRow("date") << "DocDate" << QStringLiteral("5.3.2023") << QStringLiteral("20230305");
    QTest::newRow("selector") << "Code" << QStringLiteral("A7") << QStringLiteral("A7");
  }
  void typingReplacesTheCell()
  {
    QFETCH(QString, column);
    QFETCH(QString, typed);
    QFETCH(QString, stored);
    GridForm form;
    form.makeEditable();
    form.data.SetRecNo(3);
    form.grid->selectField(column);
    typeText(form.grid, typed);
    QVERIFY(form.grid->cellEditor());
    QCOMPARE(form.data.State(), DataSetState::Edit);
    form.key(Qt::Key_Return);
    QVERIFY(!form.grid->cellEditor());
    QCOMPARE(variantText(form.data.FieldByName(column)->Value()), stored);
    QCOMPARE(form.data.RecNo(), 3);
    QTRY_VERIFY(form.grid->hasFocus());
  }

  void editorsByKind()
  {
    GridForm form;
    form.makeEditable();
    const auto editorOf = [&](const char* column) {
      form.grid->closeCell();
      form.grid->selectField(QString::fromLatin1(column));
      form.key(Qt::Key_F2);
      return form.grid->cellEditor();
    };
    QVERIFY(qobject_cast<TDBEdit*>(editorOf("Name")));
    QVERIFY(qobject_cast<TDBEdit*>(editorOf("Quantity")));
    QVERIFY(qobject_cast<QLineEdit*>(form.grid->cellEditor())->alignment().testFlag(Qt::AlignRight));
    QVERIFY(qobject_cast<TDBDateEdit*>(editorOf("DocDate")));
    auto* list = qobject_cast<DataComboBox*>(editorOf("Kind"));
    QVERIFY(list);
    QCOMPARE(list->objectName(), QStringLiteral("DBGrcmbBox_1"));
    QCOMPARE(list->items().size(), 3);
    QCOMPARE(editorOf("Code")->objectName(), QStringLiteral("btn_1"));
    QCOMPARE(editorOf("IsActive"), nullptr);
  }

  void dropDownInACell()
  {
    GridForm form;
    form.makeEditable();
    form.grid->selectField(QStringLiteral("Kind"));
    QVERIFY(form.grid->editCell());
    auto* list = qobject_cast<DataComboBox*>(form.grid->cellEditor());
    list->hidePopup();
    QTest::keyClick(list, Qt::Key_Down);
    QCOMPARE(form.field("Kind")->AsInteger(), 1);
    QTest::keyClick(list, Qt::Key_Return);
    QVERIFY(!form.grid->cellEditor());
    QCOMPARE(form.field("Kind")->AsInteger(), 1);
  }

  void checkBoxTogglesWithSpaceAndMouse()
  {
    GridForm form;
    form.makeEditable();
    form.grid->selectField(QStringLiteral("IsActive"));
    form.key(Qt::Key_Space);
    QCOMPARE(form.field("IsActive")->AsInteger(), 0);
    form.click(0, "IsActive");
    QCOMPARE(form.field("IsActive")->AsInteger(), 1);
    form.click(5, "IsActive");
    QCOMPARE(form.data.RecNo(), 6);
    QCOMPARE(form.field("IsActive")->AsInteger(), 1);
    form.data.Post();
    form.grid->setColumnReadOnly(QStringLiteral("IsActive"), true);
    form.key(Qt::Key_Space);
    QCOMPARE(form.field("IsActive")->AsInteger(), 1);
  }

  void selectorButtonTellsTheField()
  {
    GridForm form;
    form.makeEditable();
    QList<TField*> told;
    connect(form.grid, &TDBGrid::selectorRequested, this, [&](TField* field) { told.append(field); });
    form.grid->selectField(QStringLiteral("Code"));
    form.key(Qt::Key_Down, Qt::AltModifier);
    QCOMPARE(told.size(), 1);
    form.grid->editCell();
    auto* button = form.grid->findChild<EditButton*>();
    QVERIFY(button && button->isVisible());
    typeText(form.grid, QStringLiteral("B2"));
    QTest::mouseClick(button, Qt::LeftButton);
    QCOMPARE(told, (QList<TField*>{form.field("Code"), form.field("Code")}));
    QCOMPARE(form.field("Code")->AsString(), QStringLiteral("B2"));
    QTest::keyClick(form.grid->cellEditor(), Qt::Key_Down, Qt::AltModifier);
    QCOMPARE(told.size(), 3);
    form.grid->closeCell();
    QTRY_VERIFY(!form.grid->findChild<EditButton*>());
  }

  void ownEditorIsBoundByTheGrid()
  {
    GridForm form;
    form.makeEditable();
    CellEditor own{CellEditorKind::Selector};
    own.create = [](QWidget* parent) { return new TDBFlatEdit(parent); };
    form.grid->setColumnEditor(QStringLiteral("Code"), own);
    form.grid->selectField(QStringLiteral("Code"));
    form.grid->editCell();
    QVERIFY(qobject_cast<TDBFlatEdit*>(form.grid->cellEditor()));
    QCOMPARE(DataControl::of(form.grid->cellEditor())->field(), form.field("Code"));
  }

  void escapeTakesBackTheCellThenTheRecord()
  {
    GridForm form;
    form.makeEditable();
    form.grid->selectField(QStringLiteral("Name"));
    const QString before = form.field("Name")->AsString();
    form.data.Edit();
    form.field("Price")->SetAsFloat(5);
    typeText(form.grid, QStringLiteral("ххх"));
    form.key(Qt::Key_Escape);
    QVERIFY(!form.grid->cellEditor());
    QCOMPARE(form.field("Name")->AsString(), before);
    QCOMPARE(form.field("Price")->AsFloat(), 5.0);
    form.key(Qt::Key_Escape);
    QCOMPARE(form.data.State(), DataSetState::Browse);
    QCOMPARE(form.field("Price")->AsFloat(), 0.99);
  }

  void arrowsCommitAndMove()
  {
    GridForm form;
    form.makeEditable();
    form.grid->selectField(QStringLiteral("Name"));
    typeText(form.grid, QStringLiteral("нов"));
    form.key(Qt::Key_Down);
    QCOMPARE(form.data.RecNo(), 2);
    QCOMPARE(form.data.State(), DataSetState::Browse);
    QCOMPARE(form.data.UpdateStatusOfRow(0), UpdateStatus::Modified);
    typeText(form.grid, QStringLiteral("още"));
    form.key(Qt::Key_Tab);
    QCOMPARE(form.field("Name")->AsString(), QStringLiteral("още"));
    QCOMPARE(form.selected(), QStringLiteral("Kind"));
  }

  void enterGoesToTheKeyHandlerAfterTheCell()
  {
    GridForm form;
    form.makeEditable();
    QString atKey;
    form.grid->keyHandler = [&](QKeyEvent* event) {
      if (event->key() != Qt::Key_Return) {
        return false;
      }
      atKey = form.field("Name")->AsString();
      return form.grid->selectNextColumn(true);
    };
    form.grid->selectField(QStringLiteral("Name"));
    typeText(form.grid, QStringLiteral("нов"));
    form.key(Qt::Key_Return);
    QCOMPARE(atKey, QStringLiteral("нов"));
    QCOMPARE(form.selected(), QStringLiteral("Kind"));
  }

  void refusedValueKeepsEditorAndPlace_data()
  {
    QTest::addColumn<QString>("leaving");
    for (const char* way : {"enter", "down", "tab", "click", "column", "title"}) {
      QTest::newRow(way) << QString::fromLatin1(way);
    }
  }
  void refusedValueKeepsEditorAndPlace()
  {
    QFETCH(QString, leaving);
    GridForm form;
    form.makeEditable();
    form.field("Price")->OnValidate = [](TField*) { throw DataError(QStringLiteral("Грешна цена")); };
    form.data.SetRecNo(2);
    form.grid->selectField(QStringLiteral("Price"));
    QSignalSpy titles(form.grid, &TDBGrid::titleClicked);
    typeText(form.grid, QStringLiteral("7"));
    if (leaving == QLatin1String("click")) {
      form.click(6, "Name");
    } else if (leaving == QLatin1String("column")) {
      QVERIFY(!form.grid->selectField(QStringLiteral("Name")));
    } else if (leaving == QLatin1String("title")) {
      QTest::mouseClick(form.grid->horizontalHeader()->viewport(), Qt::LeftButton, {}, QPoint(60, 10));
      QCOMPARE(titles.size(), 0);
    } else {
      form.key(leaving == QLatin1String("enter") ? Qt::Key_Return
               : leaving == QLatin1String("tab") ? Qt::Key_Tab
                                                 : Qt::Key_Down);
    }
    QTest::qWait(10);
    QCOMPARE(form.messages.texts.size(), 1);
    QCOMPARE(form.data.RecNo(), 2);
    QCOMPARE(form.selected(), QStringLiteral("Price"));
    auto* editor = qobject_cast<QLineEdit*>(form.grid->cellEditor());
    QVERIFY(editor);
    QCOMPARE(editor->text(), QStringLiteral("7"));
    QVERIFY(editor->hasFocus());
    QCOMPARE(form.field("Price")->AsFloat(), 80.18);
  }

  void refusedEditOpensNothing()
  {
    GridForm form;
    form.makeEditable();
    form.data.BeforeEdit = [](TClientDataSet*) { throw DataError(QStringLiteral("Забранено")); };
    form.grid->selectField(QStringLiteral("Name"));
    const QString before = form.field("Name")->AsString();
    typeText(form.grid, QStringLiteral("ж"));
    QCOMPARE(form.messages.texts, QStringList{QStringLiteral("Забранено")});
    QCOMPARE(form.data.State(), DataSetState::Browse);
    form.key(Qt::Key_Return);
    QCOMPARE(form.field("Name")->AsString(), before);
  }

  void whatMayNotBeEditedOpensNothing_data()
  {
    QTest::addColumn<QString>("why");
    for (const char* why : {"grid", "column", "field", "dataset", "in-cell editing off"}) {
      QTest::newRow(why) << QString::fromLatin1(why);
    }
  }
  void whatMayNotBeEditedOpensNothing()
  {
    QFETCH(QString, why);
    GridForm form;
    form.makeEditable();
    form.grid->selectField(QStringLiteral("Name"));
    form.grid->setReadOnly(why == QLatin1String("grid"));
    form.grid->setColumnReadOnly(QStringLiteral("Name"), why == QLatin1String("column"));
    form.field("Name")->ReadOnly = why == QLatin1String("field");
    form.data.ReadOnly = why == QLatin1String("dataset");
    form.grid->setInCellEditing(why != QLatin1String("in-cell editing off"));
    typeText(form.grid, QStringLiteral("ж"));
    form.key(Qt::Key_F2);
    QTest::mouseDClick(form.grid->viewport(), Qt::LeftButton, {}, form.cell(0, "Name"));
    QCOMPARE(form.grid->cellEditor(), nullptr);
    QCOMPARE(form.data.State(), DataSetState::Browse);
  }

  void movingTheCursorClosesTheEditorAndKeepsItsText()
  {
    GridForm form;
    form.makeEditable();
    form.grid->selectField(QStringLiteral("Name"));
    typeText(form.grid, QStringLiteral("нов"));
    form.data.Last();
    QVERIFY(!form.grid->cellEditor());
    QCOMPARE(form.field("Name")->AsString(), QStringLiteral("Стол офис „Комфорт“"));
    form.data.First();
    QCOMPARE(form.field("Name")->AsString(), QStringLiteral("нов"));
  }

  void clickElsewhereCommits()
  {
    GridForm form;
    form.makeEditable();
    auto* other = new QLineEdit(&form.window);
    form.window.layout()->addWidget(other);
    form.grid->selectField(QStringLiteral("Name"));
    typeText(form.grid, QStringLiteral("нов"));
    QTest::mouseClick(other, Qt::LeftButton);
    QTRY_VERIFY(!form.grid->cellEditor());
    QCOMPARE(form.field("Name")->AsString(), QStringLiteral("нов"));
    QVERIFY(other->hasFocus());
  }
};

}  // namespace kalvor

QTEST_MAIN(kalvor::TestGridEditing)
#include "test_grid_editing.moc"
