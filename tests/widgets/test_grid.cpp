// The grid over a dataset: cursor, columns, marks, copying, keys.
#include <QClipboard>
#include <QScrollBar>
#include <QSignalSpy>

#include "grid_fixture.h"
#include "widgets/grid_footer.h"
#include "widgets/theme.h"

namespace kalvor {

class TestGrid : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() { applyTheme(*qApp, ThemeMode::Light); }

  void cellsShowTheFieldsTexts()
  {
    GridForm form;
    const DatasetModel* model = form.grid->datasetModel();
    const auto text = [&](int row, const char* name) {
      return model->data(model->index(row, model->columnOf(QString::fromLatin1(name)))).toString();
    };
    QCOMPARE(text(1, "Kind"), QStringLiteral("Материал"));
    QCOMPARE(text(3, "Amount"), form.field("Amount")->DisplayTextAt(3));
    QCOMPARE(text(0, "DocDate"), QStringLiteral("01.01.2024"));
    QCOMPARE(model->headerData(model->columnOf(u"Price"), Qt::Horizontal).toString(), QStringLiteral("Ед. цена"));
    QCOMPARE(model->headerData(model->columnOf(u"Id"), Qt::Horizontal).toString(), QStringLiteral("Id"));
    const auto alignment = [&](const char* name) {
      return form.grid->columnAlignment(model->columnOf(QString::fromLatin1(name)));
    };
    QCOMPARE(alignment("Price"), Qt::Alignment(Qt::AlignRight));
    QCOMPARE(alignment("Id"), Qt::Alignment(Qt::AlignRight));
    QCOMPARE(alignment("Kind"), Qt::Alignment(Qt::AlignLeft));  // an option: its text counts
    QCOMPARE(alignment("DocDate"), Qt::Alignment(Qt::AlignLeft));
    const QModelIndex negative = model->index(4, model->columnOf(u"Quantity"));
    QCOMPARE(negative.data(Qt::ForegroundRole).value<QColor>(), theme().negative);
  }

  void cursorAndCurrentCellFollowEachOther()
  {
    GridForm form;
    QCOMPARE(form.grid->currentIndex().row(), 0);
    form.data.SetRecNo(8);
    QCOMPARE(form.grid->currentIndex().row(), 7);
    form.click(2, "Name");
    QCOMPARE(form.data.RecNo(), 3);
    QCOMPARE(form.selected(), QStringLiteral("Name"));
    form.key(Qt::Key_Down);
    QCOMPARE(form.data.RecNo(), 4);
    QCOMPARE(form.selected(), QStringLiteral("Name"));
    form.key(Qt::Key_End, Qt::ControlModifier);
    QCOMPARE(form.data.RecNo(), 100);
    form.key(Qt::Key_PageUp);
    QVERIFY(form.data.RecNo() < 100 && form.data.RecNo() > 80);
    form.data.First();
    QCOMPARE(form.grid->currentIndex().row(), 0);
    QCOMPARE(form.selected(), QStringLiteral("Name"));
  }

  // Captions come after the records; a width that the user chose stays.
  void columnsAreAsWideAsTitlesThatComeLater()
  {
    GridForm form;
    form.grid->setColumnPixels(QStringLiteral("Price"), 40);
    const QString caption = QStringLiteral("Наименование на счетоводна група");
    for (const char* name : {"Kind", "Price"})
      form.field(name)->DisplayLabel = caption;
    form.data.UpdateLayout();
    const DatasetModel* model = form.grid->datasetModel();
    QVERIFY(form.grid->columnWidth(model->columnOf(u"Kind")) >= form.grid->fontMetrics().horizontalAdvance(caption));
    QCOMPARE(form.grid->columnWidth(model->columnOf(u"Price")), 40);
  }

  void changesShowWithoutResets()
  {
    GridForm form;
    DatasetModel* model = form.grid->datasetModel();
    QSignalSpy resets(model, &QAbstractItemModel::modelReset);
    QSignalSpy changes(model, &QAbstractItemModel::dataChanged);
    form.data.SetRecNo(5);
    form.data.Edit();
    form.field("Name")->SetAsString(QStringLiteral("Друго"));
    QVERIFY(!changes.isEmpty());
    QCOMPARE(changes.last().at(0).toModelIndex().row(), 4);
    QCOMPARE(changes.last().at(1).toModelIndex().row(), 4);
    QCOMPARE(model->index(4, model->columnOf(u"Name")).data().toString(), QStringLiteral("Друго"));
    form.data.Append();
    QCOMPARE(model->rowCount(), 101);
    QCOMPARE(form.grid->currentIndex().row(), 100);
    form.data.Cancel();
    QCOMPARE(model->rowCount(), 100);
    form.data.SetRecNo(2);
    form.data.Delete();
    QCOMPARE(model->rowCount(), 99);
    QCOMPARE(form.grid->currentIndex().row(), 1);
    form.data.Close();
    QCOMPARE(model->rowCount(), 0);
    QVERIFY(!form.grid->currentIndex().isValid());
    QCOMPARE(resets.size(), 0);
  }

  void disabledControlsWait()
  {
    GridForm form;
    QSignalSpy moves(form.grid->datasetModel(), &DatasetModel::cursorMoved);
    form.data.DisableControls();
    for (int i = 0; i < 50; ++i) {
      form.data.Next();
    }
    form.data.Append();
    QCOMPARE(moves.size(), 0);
    QCOMPARE(form.grid->currentIndex().row(), 0);
    QCOMPARE(form.grid->datasetModel()->rowCount(), 100);
    form.window.grab();
    form.data.Cancel();
    form.data.SetRecNo(31);
    form.data.EnableControls();
    QCOMPARE(form.grid->currentIndex().row(), 30);
  }

  void deletedDatasetLeavesAnEmptyGrid()
  {
    GridForm form;
    auto* other = new TClientDataSet;
    demo::openItems(*other, 5);
    form.grid->setDataSet(other);
    QCOMPARE(form.grid->datasetModel()->rowCount(), 5);
    delete other;
    QCOMPARE(form.grid->datasetModel()->rowCount(), 0);
    form.key(Qt::Key_Down);
    form.window.grab();
  }

  void refusedPostKeepsTheRow()
  {
    GridForm form;
    form.data.SetRecNo(4);
    form.data.BeforePost = [](TClientDataSet*) { throw DataError(QStringLiteral("Няма да стане")); };
    form.data.Edit();
    form.field("Name")->SetAsString(QStringLiteral("Друго"));
    form.key(Qt::Key_Down);
    QCOMPARE(form.data.RecNo(), 4);
    form.click(8, "Code");
    QCOMPARE(form.data.RecNo(), 4);
    QCOMPARE(form.grid->currentIndex().row(), 3);
    QCOMPARE(form.messages.texts.size(), 2);
    form.key(Qt::Key_Escape);
    QCOMPARE(form.data.State(), DataSetState::Browse);
    form.key(Qt::Key_Down);
    QCOMPARE(form.data.RecNo(), 5);
  }

  void columnsAreVisibleFieldsAndKeepTheirArrangement()
  {
    GridForm form;
    QCOMPARE(form.grid->shownColumnCount(), 8);
    QCOMPARE(form.grid->shownField(0)->FieldName(), QStringLiteral("Code"));
    form.grid->setColumns({{QStringLiteral("Price"), 90, {}, true, {}, false},
                           {QStringLiteral("Gone"), 50, {}, true, {}, false},
                           {QStringLiteral("name"), 200, Qt::yellow, true, Qt::AlignRight, true}});
    QCOMPARE(form.grid->shownField(0)->FieldName(), QStringLiteral("Price"));
    QCOMPARE(form.grid->shownField(1)->FieldName(), QStringLiteral("Name"));
    form.grid->setColumnVisible(QStringLiteral("Kind"), false);
    form.grid->setColumnVisible(QStringLiteral("Note"), true);
    const QList<GridColumn> arranged = form.grid->columns();
    QCOMPARE(arranged[0].width, 90);
    QCOMPARE(arranged[1].color, QColor(Qt::yellow));
    QVERIFY(arranged[1].readOnly);
    form.field("Price")->DisplayLabel = QStringLiteral("Цена");
    form.data.UpdateLayout();
    QCOMPARE(form.grid->columns(), arranged);
    form.data.Close();
    demo::openItems(form.data, 10);
    QCOMPARE(form.grid->columns(), arranged);
    form.grid->moveColumn(QStringLiteral("Amount"), 0);
    QCOMPARE(form.grid->shownField(0)->FieldName(), QStringLiteral("Amount"));
    form.grid->setColumnCharacters(QStringLiteral("Amount"), 17);
    QCOMPARE(form.grid->columnCharacters(QStringLiteral("Amount")), 17);
  }

  void movingByTheMouseIsToldOnce()
  {
    GridForm form;
    QSignalSpy arranged(form.grid, &TDBGrid::columnLayoutChanged);
    QSignalSpy clicked(form.grid, &TDBGrid::titleClicked);
    QWidget* titles = form.grid->horizontalHeader()->viewport();
    const int edge = form.grid->horizontalHeader()->sectionViewportPosition(2);
    QTest::mousePress(titles, Qt::LeftButton, {}, QPoint(edge - 1, 10));
    for (int step = 1; step <= 4; ++step) {
      QMouseEvent move(QEvent::MouseMove, QPointF(edge - 1 + 10 * step, 10),
                       titles->mapToGlobal(QPointF(edge - 1 + 10 * step, 10)), Qt::LeftButton, Qt::LeftButton, {});
      QApplication::sendEvent(titles, &move);
    }
    QTest::mouseRelease(titles, Qt::LeftButton, {}, QPoint(edge + 39, 10));
    QCOMPARE(arranged.size(), 1);
    QCOMPARE(clicked.size(), 0);
    const int width = form.grid->columns().at(1).width;
    form.data.UpdateLayout();
    QCOMPARE(form.grid->columns().at(1).width, width);
  }

  void titleClickTellsTheField()
  {
    GridForm form;
    QList<TField*> told;
    connect(form.grid, &TDBGrid::titleClicked, this, [&](TField* field) { told.append(field); });
    const auto clickTitle = [&](const char* name) {
      const int column = form.grid->datasetModel()->columnOf(QString::fromLatin1(name));
      QTest::mouseClick(form.grid->horizontalHeader()->viewport(), Qt::LeftButton, {},
                        QPoint(form.grid->horizontalHeader()->sectionViewportPosition(column) + 20, 10));
    };
    clickTitle("Price");
    QCOMPARE(told, QList<TField*>{form.field("Price")});
    form.grid->setTitleButtons(false);
    clickTitle("Price");
    QCOMPARE(told.size(), 1);
  }

  void columnPrimitives()
  {
    GridForm form;
    form.makeEditable();
    form.grid->selectField(QStringLiteral("Code"));
    form.grid->setColumnReadOnly(QStringLiteral("Name"), true);
    form.field("Kind")->ReadOnly = true;
    QVERIFY(form.grid->selectNextColumn(true));
    QCOMPARE(form.selected(), QStringLiteral("Quantity"));
    QVERIFY(form.grid->selectPriorColumn(true));
    QCOMPARE(form.selected(), QStringLiteral("Code"));
    QVERIFY(!form.grid->selectPriorColumn());
    QVERIFY(form.grid->selectLastColumn());
    QCOMPARE(form.grid->selectedColumn(), 7);
    QVERIFY(!form.grid->selectNextColumn());
    QCOMPARE(form.grid->selectedColumn(), 7);
    form.grid->setColumnReadOnly(QStringLiteral("IsActive"), true);
    QVERIFY(form.grid->selectLastColumn(true));
    QCOMPARE(form.selected(), QStringLiteral("DocDate"));
    form.grid->setReadOnly(true);
    QVERIFY(!form.grid->selectFirstColumn(true));
  }

  void tabWalksTheCells()
  {
    GridForm form(2);
    form.grid->selectLastColumn();
    form.key(Qt::Key_Tab);
    QCOMPARE(form.data.RecNo(), 2);
    QCOMPARE(form.grid->selectedColumn(), 0);
    form.key(Qt::Key_Backtab, Qt::ShiftModifier);
    QCOMPARE(form.data.RecNo(), 1);
    QCOMPARE(form.grid->selectedColumn(), 7);
  }

  void selectedColumnWaitsForTheFirstRecord()
  {
    GridForm form(0);
    QVERIFY(form.grid->selectField(QStringLiteral("Price")));
    QCOMPARE(form.selected(), QStringLiteral("Price"));
    form.data.Append();
    QCOMPARE(form.selected(), QStringLiteral("Price"));
    QVERIFY(form.grid->currentIndex().isValid());
  }

  void keyHandlerComesFirst()
  {
    GridForm form;
    QList<int> seen;
    form.grid->keyHandler = [&](QKeyEvent* event) {
      seen.append(event->key());
      return event->key() == Qt::Key_Down;
    };
    form.key(Qt::Key_Down);
    QCOMPARE(form.data.RecNo(), 1);
    form.key(Qt::Key_Right);
    QCOMPARE(form.selected(), QStringLiteral("Name"));
    QCOMPARE(seen, (QList<int>{Qt::Key_Down, Qt::Key_Right}));
  }

  void typedCharactersSearchWhenNothingIsEdited()
  {
    GridForm form;
    QStringList typed;
    connect(form.grid, &TDBGrid::characterTyped, this, [&](const QString& text) { typed.append(text); });
    typeText(form.grid, QStringLiteral("ж7 #ѝ"));
    QCOMPARE(typed, (QStringList{QStringLiteral("ж"), QStringLiteral("7")}));
    form.data.Edit();
    typeText(form.grid, QStringLiteral("ж"));
    form.data.Cancel();
    form.makeEditable();
    form.grid->selectField(QStringLiteral("Name"));
    typeText(form.grid, QStringLiteral("ж"));
    QCOMPARE(typed.size(), 2);
  }

  void marksFollowRecords()
  {
    GridForm form;
    form.grid->setMultiSelect(true);
    form.click(1, "Code", Qt::ControlModifier);
    form.click(3, "Code", Qt::ControlModifier);
    QVERIFY(form.grid->isMarked(1) && form.grid->isMarked(3) && !form.grid->isMarked(2));
    form.data.SetRecNo(1);
    form.data.Delete();
    QVERIFY(form.grid->isMarked(0) && form.grid->isMarked(2) && !form.grid->isMarked(1));
    form.click(4, "Code", Qt::ShiftModifier);
    QCOMPARE(form.grid->markedRecords().size(), 3);
    form.key(Qt::Key_Down, Qt::ShiftModifier);
    QCOMPARE(form.grid->markedRecords().last(), form.data.GetBookmark());
    QCOMPARE(form.grid->markedRecords().size(), 4);
    form.key(Qt::Key_Down, Qt::ControlModifier);
    QCOMPARE(form.grid->markedRecords().size(), 4);
    form.key(Qt::Key_Space, Qt::ControlModifier);
    QCOMPARE(form.grid->markedRecords().size(), 5);
    form.click(0, "Code");
    QVERIFY(!form.grid->hasMarks());
    QTest::mouseClick(form.grid->verticalHeader()->viewport(), Qt::LeftButton, {},
                      QPoint(8, form.grid->visualRect(form.grid->datasetModel()->index(6, 1)).center().y()));
    QCOMPARE(form.data.RecNo(), 7);
    form.key(Qt::Key_A, Qt::ControlModifier);
    QCOMPARE(form.grid->markedRecords().size(), 99);
    form.grid->setMarked(0, false);
    QCOMPARE(form.grid->markedRecords().size(), 98);
    form.grid->setMultiSelect(false);
    form.click(1, "Code", Qt::ControlModifier);
    QVERIFY(!form.grid->hasMarks());
  }

  void copying()
  {
    GridForm form;
    form.makeEditable();
    form.grid->setMultiSelect(true);
    form.grid->setColumns({{QStringLiteral("Name"), 100, {}, true, {}, false},
                           {QStringLiteral("Amount"), 100, {}, true, {}, false},
                           {QStringLiteral("IsActive"), 100, {}, true, {}, false}});
    for (const char* name : {"Code", "Kind", "Quantity", "Price", "DocDate"}) {
      form.grid->setColumnVisible(QString::fromLatin1(name), false);
    }
    form.data.Edit();
    form.field("Name")->SetAsString(QStringLiteral("две\tдуми"));
    form.data.Post();
    form.grid->selectField(QStringLiteral("Amount"));
    form.key(Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QApplication::clipboard()->text(), QStringLiteral("0,99"));
    form.key(Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(QApplication::clipboard()->text(),
             QStringLiteral("Наименование\tСума\tАктивен\nдве думи\t0,99\tДа"));
    form.grid->setMarked(1, true);
    form.grid->setMarked(2, true);
    form.key(Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QApplication::clipboard()->text().split(u'\n').size(), 3);
    QVERIFY(QApplication::clipboard()->text().contains(QStringLiteral("Тонер касета HP 26A\t641,44\tНе")));
  }

  void cellColorsAreAsked()
  {
    GridForm form;
    QSet<int> rows;
    bool currentSeen = false;
    form.grid->cellColors = [&](qsizetype row, TField* field, CellColors& colors) {
      rows.insert(int(row));
      currentSeen = currentSeen || (colors.current && row == 0 && field == form.field("Code"));
      if (row == 2) {
        colors.background = QColor(0x12, 0xf4, 0x56);
      }
    };
    const QImage picture = form.grid->viewport()->grab().toImage();
    QVERIFY(currentSeen);
    QVERIFY(rows.contains(2) && rows.size() < 40);
    const QRect cell = form.grid->visualRect(form.grid->datasetModel()->index(2, 1));
    QCOMPARE(picture.pixelColor(cell.left() + 2, cell.top() + 3), QColor(0x12, 0xf4, 0x56));
  }

  void fixedColumnsStayWhileTheOthersScroll()
  {
    GridForm form;
    form.window.resize(420, 300);
    form.grid->setFixedColumns(1);
    form.grid->selectField(QStringLiteral("Name"));
    form.grid->selectLastColumn();
    QScrollBar* bar = form.grid->horizontalScrollBar();
    QVERIFY(bar->value() > 0);
    const auto rectOf = [&](const char* name) {
      return form.grid->visualRect(form.grid->datasetModel()->index(2, form.grid->datasetModel()->columnOf(QString::fromLatin1(name))));
    };
    QCOMPARE(rectOf("Code").left(), 0);
    QVERIFY(rectOf("Name").left() < 0);
    form.click(2, "Code");
    QCOMPARE(form.selected(), QStringLiteral("Code"));
    QCOMPARE(form.data.RecNo(), 3);
    QVERIFY(bar->value() > 0);
    form.grid->selectNextColumn();
    QVERIFY(rectOf("Name").left() >= rectOf("Code").right());
    QSignalSpy titles(form.grid, &TDBGrid::titleClicked);
    bar->setValue(bar->maximum());
    QTest::mouseClick(form.grid->horizontalHeader()->viewport(), Qt::LeftButton, {}, QPoint(10, 10));
    QCOMPARE(titles.size(), 1);
    QCOMPARE(titles.at(0).at(0).value<TField*>(), form.field("Code"));
    form.window.grab();
    form.grid->setFixedColumns(0);
    QVERIFY(rectOf("Code").left() < 0);
  }

  // Where the last row just fits, the grid must come to rest: a layout that goes on for ever holds the program.
  void theFooterComesToRestAtEveryHeight()
  {
    GridForm form(8);
    form.grid->setFooterVisible(true);
    const int all = form.grid->horizontalHeader()->length() + form.grid->verticalHeader()->width();
    for (int width = all - 20; width <= all + 40; width += 10) {
      for (int height = 150; height <= 330; height += 2) {
        form.window.resize(width, height);
        for (int turn = 0; turn < 20; ++turn) {
          QCoreApplication::sendPostedEvents(form.grid, QEvent::LayoutRequest);
          QCoreApplication::processEvents();
        }
        const bool scrolls = form.grid->verticalScrollBar()->maximum() > 0;
        QCOMPARE(form.grid->verticalScrollBar()->isVisible(), scrolls);
      }
    }
  }

  void footerStandsUnderTheColumns()
  {
    GridForm form;
    const int rowsBefore = form.grid->viewport()->height();
    form.grid->setFooterVisible(true);
    form.grid->setFooterText(QStringLiteral("amount"), QStringLiteral("123 456 789,00"));
    QCOMPARE(form.grid->footer()->text(QStringLiteral("Amount")), QStringLiteral("123 456 789,00"));
    const QRect footer = form.grid->footer()->geometry();
    QVERIFY(form.grid->viewport()->height() <= rowsBefore - footer.height());
    QCOMPARE(footer.top(), form.grid->viewport()->geometry().bottom() + 1);
    form.key(Qt::Key_End, Qt::ControlModifier);
    const QRect last = form.grid->visualRect(form.grid->currentIndex());
    QVERIFY(last.isValid() && last.bottom() < form.grid->viewport()->height());
    form.grid->setFooterVisible(false);
    QCOMPARE(form.grid->viewport()->height(), rowsBefore);
  }
};

}  // namespace kalvor

QTEST_MAIN(kalvor::TestGrid)
#include "test_grid.moc"
