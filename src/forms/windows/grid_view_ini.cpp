// Grid views in ini files.
#include <QApplication>
#include <QPalette>

#include "forms/windows/grid_view_store.h"
#include "session/error_log.h"
#include "session/ini_file.h"
#include "session/local_settings_file.h"
#include "widgets/db_grid_ex.h"
#include "widgets/string_grid.h"

namespace kalvor {

namespace {

// Errors stay in the log: a grid without a stored view keeps its design.
template <class Body>
void withGridFile(const char* routine, const char* what, const QString& fileName, Body body)
{
  const QString file = gridViewFile(fileName);
  try {
    body(file);
  } catch (const std::exception& error) {
    LogError(errorText(error), QLatin1String(routine), 0, QLatin1String(what) + file);
  }
}

struct AlignmentRow {
  ColumnAlignment stored;
  Qt::AlignmentFlag flag;
};
constexpr AlignmentRow alignmentRows[] = {{ColumnAlignment::Right, Qt::AlignRight},
                                          {ColumnAlignment::Center, Qt::AlignHCenter},
                                          {ColumnAlignment::Left, Qt::AlignLeft}};

ColumnAlignment storedAlignment(Qt::Alignment alignment)
{
  for (const AlignmentRow& row : alignmentRows) {
    if (alignment & row.flag) {
      return row.stored;
    }
  }
  return ColumnAlignment::Left;
}

Qt::Alignment alignmentOfNumber(int number)
{
  for (const AlignmentRow& row : alignmentRows) {
    if (int(row.stored) == number) {
      return row.flag;
    }
  }
  throw DataError(QStringLiteral("'%1' не е подравняване").arg(number));
}

void writeColumns(IniFile& file, const QString& section, TDBGrid* grid)
{
  const QList<GridColumn> columns = grid->columns();
  for (int position = 0; position < columns.size(); ++position) {
    const GridColumn& column = columns.at(position);
    GridViewColumn view;
    view.fieldName = column.fieldName;
    view.width = column.width;
    view.color = columnColorValue(column.color);
    view.visible = column.visible;
    view.alignment = storedAlignment(grid->columnAlignment(grid->datasetModel()->columnOf(column.fieldName)));
    file.setKey(section, gridViewKey(grid->objectName(), position), gridViewValue(view));
  }
}

// Applied part by part, so that a line with a bad part has done what stands before it.
void applyColumn(const GridViewLine& line, TDBGrid* grid)
{
  enum Part { FieldName, Width, Color, Visible, Alignment };
  const int position = line.position();
  const QString name = line.text(FieldName);
  if (position < 0 || position >= grid->columns().size() || grid->datasetModel()->columnOf(name) < 0) {
    return;
  }
  grid->moveColumn(name, position);
  grid->setColumnPixels(name, qMax(0, line.number(Width)));
  grid->setColumnColor(name, columnColor(line.color(Color)));
  grid->setColumnVisible(name, line.flag(Visible));
  grid->setColumnAlignment(name, alignmentOfNumber(line.number(Alignment)));
}

void readColumns(const QStringList& lines, TDBGrid* grid)
{
  for (const QString& text : lines) {
    if (const GridViewLine line(text); line.gridName() == grid->objectName() && text.contains(u';')) {
      applyColumn(line, grid);
    }
  }
}

bool hasColumns(TDBGrid* grid)
{
  return grid && !grid->columns().isEmpty();
}

void saveView(const char* routine, const QString& fileName, const QString& section, TDBGrid* grid,
              const TDBGridEx* enhanced)
{
  if (!hasColumns(grid)) {
    return;
  }
  withGridFile(routine, "Update file: ", fileName, [&](const QString& path) {
    IniFile file = IniFile::read(path);
    writeColumns(file, section, grid);
    if (enhanced) {
      file.setKey(section, fixedColumnsKey, QString::number(enhanced->fixedColumns()));
    }
    file.write(path);
  });
}

void loadView(const char* routine, const QString& fileName, const QString& section, TDBGrid* grid, TDBGridEx* enhanced)
{
  if (!hasColumns(grid)) {
    return;
  }
  withGridFile(routine, "Read file: ", fileName, [&](const QString& path) {
    const QStringList lines = IniFile::read(path).section(section);
    readColumns(lines, grid);
    if (enhanced && hasLine(lines, fixedColumnsKey)) {
      enhanced->setFixedColumns(valueOfLine(lines, fixedColumnsKey).toInt());
    }
  });
}

struct SystemColorRow {
  ColorValue value;
  QPalette::ColorRole role;
};
constexpr SystemColorRow systemColors[] = {{0xFF00000F, QPalette::Button},    {0xFF00000D, QPalette::Highlight},
                                           {0xFF000010, QPalette::Dark},      {0xFF000004, QPalette::Window},
                                           {0xFF000018, QPalette::ToolTipBase}, {0xFF00000E, QPalette::HighlightedText},
                                           {0xFF000008, QPalette::WindowText}, {0xFF00000C, QPalette::Mid}};

}  // namespace

StringGridColumns::~StringGridColumns() = default;

ColorValue columnColorValue(const QColor& color)
{
  return color.isValid() ? ColorValue(color.blue()) << 16 | ColorValue(color.green()) << 8 | ColorValue(color.red())
                         : clWindow;
}

QColor columnColor(ColorValue value)
{
  if (value < 0x1000000) {
    return QColor(int(value & 0xFF), int(value >> 8 & 0xFF), int(value >> 16 & 0xFF));
  }
  for (const SystemColorRow& row : systemColors) {
    if (row.value == value) {
      return QApplication::palette().color(row.role);
    }
  }
  return {};
}

void SaveGridViewEx(const QString& fileName, int formId, const QString& tag, TDBGrid* grid)
{
  saveView("SaveGridViewEx", fileName, gridViewSection(formId, tag), grid, nullptr);
}

void LoadGridViewEx(const QString& fileName, int formId, const QString& tag, TDBGrid* grid)
{
  loadView("LoadGridViewEx", fileName, gridViewSection(formId, tag), grid, nullptr);
}

void ResetGridView(const QString& fileName, int formId, int tag, TDBGrid* grid)
{
  if (!grid || !grid->dataSet() || !grid->dataSet()->Active()) {
    return;
  }
  withGridFile("ResetGridView", "Update file: ", fileName, [&](const QString& path) {
    IniFile file = IniFile::read(path);
    file.clearSection(gridViewSection(formId, QString::number(tag)));
    file.write(path);
  });
}

void SaveGridView(const QString& fileName, int formId, int tag, TDBGrid* grid)
{
  saveView("SaveGridView", fileName, gridViewSection(formId, QString::number(tag)), grid, nullptr);
}

void LoadGridView(const QString& fileName, int formId, int tag, TDBGrid* grid)
{
  loadView("LoadGridView", fileName, gridViewSection(formId, QString::number(tag)), grid, nullptr);
}

void SaveGridView(const QString& fileName, int formId, int tag, TDBGridEx* grid)
{
  saveView("SaveGridView", fileName, enhancedGridViewSection(formId, QString::number(tag)), grid, grid);
}

void LoadGridView(const QString& fileName, int formId, int tag, TDBGridEx* grid)
{
  loadView("LoadGridView", fileName, enhancedGridViewSection(formId, QString::number(tag)), grid, grid);
}

namespace {

class ColumnsOfStringGrid : public StringGridColumns {
 public:
  explicit ColumnsOfStringGrid(TStringGrid* grid) : grid_(grid) {}

  QString gridName() const override { return grid_->objectName(); }
  int columnCount() const override { return grid_->ColCount(); }
  bool hasDescriptor(int column) const override { return !grid_->columnDescriptor(column).texts.isEmpty(); }
  StringGridViewColumn column(int column) const override
  {
    const StringGridColumn descriptor = grid_->columnDescriptor(column);
    return {descriptor.texts, grid_->columnWidth(column), columnColorValue(descriptor.color)};
  }
  void setColumn(int column, const StringGridViewColumn& view) override
  {
    grid_->setColumnDescriptor(column, {view.texts, columnColor(view.color)});
    grid_->setColumnPixels(column, qMax(0, view.width));
  }

 private:
  TStringGrid* grid_;
};

}  // namespace

// --- String grids --------------------------------------------------------------------------------------------------

void SaveStringGridView(const QString& fileName, int formId, const StringGridColumns& grid)
{
  if (grid.columnCount() == 0) {
    return;
  }
  withGridFile("SaveStringGridView", "Update file: ", fileName, [&](const QString& path) {
    IniFile file = IniFile::read(path);
    for (int column = 0; column < grid.columnCount(); ++column) {
      if (grid.hasDescriptor(column)) {
        file.setKey(stringGridViewSection(formId), gridViewKey(grid.gridName(), column),
                    stringGridViewValue(grid.column(column)));
      }
    }
    file.write(path);
  });
}

void LoadStringGridView(const QString& fileName, int formId, StringGridColumns& grid)
{
  constexpr int descriptorTexts = 4;
  withGridFile("LoadStringGridView", "Read file: ", fileName, [&](const QString& path) {
    for (const QString& text : IniFile::read(path).section(stringGridViewSection(formId))) {
      const GridViewLine line(text);
      if (line.gridName() != grid.gridName()) {
        continue;
      }
      const int column = line.position();
      if (column < 0 || column >= grid.columnCount()) {
        continue;
      }
      StringGridViewColumn view;
      for (int part = 0; part < descriptorTexts; ++part) {
        view.texts.append(line.text(part));
      }
      view.width = line.number(descriptorTexts);
      view.color = line.color(descriptorTexts + 1);
      grid.setColumn(column, view);
    }
  });
}

void SaveStringGridView(const QString& fileName, int formId, TStringGrid* grid)
{
  SaveStringGridView(fileName, formId, ColumnsOfStringGrid(grid));
}

void LoadStringGridView(const QString& fileName, int formId, TStringGrid* grid)
{
  ColumnsOfStringGrid columns(grid);
  LoadStringGridView(fileName, formId, columns);
}

}  // namespace kalvor
