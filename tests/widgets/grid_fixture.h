// A shown grid over demo records.
#pragma once

#include <QHeaderView>
#include <QVBoxLayout>

#include "demo_records.h"
#include "typing.h"
#include "widgets/db_grid_ex.h"

namespace kalvor {

struct GridForm {
  TClientDataSet data;
  QWidget window;
  TDBGridEx* grid;
  Messages messages;

  explicit GridForm(qsizetype records = 100)
  {
    demo::openItems(data, records);
    auto* layout = new QVBoxLayout(&window);
    grid = new TDBGridEx(&window);
    layout->addWidget(grid);
    grid->setDataSet(&data);
    window.resize(900, 400);
    window.show();
    window.activateWindow();
    (void)QTest::qWaitForWindowActive(&window);
    grid->setFocus();
  }

  void makeEditable()
  {
    const QStringList kinds{QStringLiteral("Стока"), QStringLiteral("Материал"), QStringLiteral("Услуга")};
    grid->setInCellEditing(true);
    grid->setColumnEditor(QStringLiteral("Kind"), {CellEditorKind::DropDown, QStringLiteral("DBGrcmbBox_1"), kinds});
    grid->setColumnEditor(QStringLiteral("IsActive"), {CellEditorKind::CheckBox});
    grid->setColumnEditor(QStringLiteral("Code"), {CellEditorKind::Selector, QStringLiteral("btn_1")});
  }

  TField* field(const char* name) { return data.FieldByName(QString::fromLatin1(name)); }

  void key(int code, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
  {
    QWidget* editor = grid->cellEditor();
    QTest::keyClick(editor ? editor : grid, Qt::Key(code), modifiers);
  }

  QString selected() const { return grid->selectedField() ? grid->selectedField()->FieldName() : QString(); }
  QPoint cell(int row, const char* name) const
  {
    const int column = grid->datasetModel()->columnOf(QString::fromLatin1(name));
    return grid->visualRect(grid->datasetModel()->index(row, column)).center();
  }
  void click(int row, const char* name, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
  {
    QTest::mouseClick(grid->viewport(), Qt::LeftButton, modifiers, cell(row, name));
  }
};

}  // namespace kalvor
