// A grid of a million records at work: every step of a person against one screen frame of 16 ms. Times include
// the repainting. The budget is for the slowest step but a few: the median and the 99th of a hundred are shown.
#include <QApplication>
#include <QDateTime>
#include <QElapsedTimer>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>
#include <algorithm>
#include <cstdio>
#include <functional>

#include "widgets/db_grid_ex.h"
#include "widgets/theme.h"

using namespace kalvor;

namespace {

constexpr double frameMs = 16;
constexpr qsizetype records = 1000000;

FieldDef fieldOf(const QString& name, DataType type, int size = 0)
{
  FieldDef definition;
  definition.name = name;
  definition.type = type;
  definition.size = size;
  return definition;
}

// 3 integers, 4 floats, a date, 4 Cyrillic texts.
RecordSet benchRecords()
{
  QList<FieldDef> fields;
  for (int i = 1; i <= 3; ++i) {
    fields.append(fieldOf(QStringLiteral("Int%1").arg(i), DataType::Integer));
  }
  for (int i = 1; i <= 4; ++i) {
    fields.append(fieldOf(QStringLiteral("Amount%1").arg(i), DataType::Float));
  }
  fields.append(fieldOf(QStringLiteral("Day"), DataType::Date));
  for (int i = 1; i <= 4; ++i) {
    fields.append(fieldOf(QStringLiteral("Text%1").arg(i), DataType::WideString, 60));
  }
  RecordSet result(fields);
  const QStringList texts{QStringLiteral("Контрагент „Изгрев“ ООД"), QStringLiteral("Транспорт София – Пловдив"),
                          QStringLiteral("Хартия копирна А4"), QStringLiteral("Бележка без значение")};
  const qint64 firstDay = QDate(2020, 1, 1).toJulianDay();
  for (qsizetype row = 0; row < records; ++row) {
    for (size_t i = 0; i < 3; ++i) {
      result.columns[i].appendInteger(row * qint64(i + 1));
    }
    for (size_t i = 3; i < 7; ++i) {
      result.columns[i].appendReal(double((row * 7919) % 1000003) / 100 - 2000);
    }
    result.columns[7].appendInteger(firstDay + row % 1500);
    for (size_t i = 8; i < 12; ++i) {
      const QString& text = texts[qsizetype((row + qsizetype(i)) % 4)];
      // One column with 100,000 different texts: names of a real list.
      result.columns[i].appendText(i == 10 ? QStringLiteral("%1 %2").arg(text).arg((row * 7919) % 100003) : text);
    }
  }
  result.rows = records;
  return result;
}

double timed(const std::function<void()>& work)
{
  QElapsedTimer timer;
  timer.start();
  work();
  QCoreApplication::sendPostedEvents();
  QCoreApplication::processEvents();
  return timer.nsecsElapsed() / 1e6;
}

void press(QWidget* target, int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier, const QString& text = {})
{
  QKeyEvent down(QEvent::KeyPress, key, modifiers, text);
  QKeyEvent up(QEvent::KeyRelease, key, modifiers, text);
  QApplication::sendEvent(target, &down);
  QApplication::sendEvent(target, &up);
}

void report(const char* what, std::vector<double> times)
{
  std::sort(times.begin(), times.end());
  const double median = times[times.size() / 2];
  const double nearlyWorst = times[size_t(double(times.size() - 1) * 0.99)];
  std::printf("%-44s median %8.3f ms   99 %% %8.3f ms   frame %4.0f ms   %s\n", what, median, nearlyWorst, frameMs,
              nearlyWorst <= frameMs ? "within" : "OVER");
}

void clickTitle(TDBGridEx& grid, int position)
{
  const QHeaderView* titles = grid.horizontalHeader();
  QWidget* surface = titles->viewport();
  const int section = titles->logicalIndex(titles->visualIndexAt(0) + position);
  const QPointF at(titles->sectionViewportPosition(section) + titles->sectionSize(section) / 2.0,
                   surface->height() / 2.0);
  for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
    QMouseEvent event(type, at, surface->mapToGlobal(at), Qt::LeftButton,
                      type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(surface, &event);
  }
}

// A whole million in order: no frame, but nobody waits long. Against the bare sort of the same values.
template <class Value>
void sortedByTitle(TDBGridEx& grid, TClientDataSet& data, const char* field, Value (*read)(const TField&, qsizetype))
{
  data.SetIndexFieldNames(QString());
  const TField& column = *data.FieldByName(QString::fromLatin1(field));
  std::vector<Value> values;
  for (qsizetype row = 0; row < records; ++row) {
    values.push_back(read(column, row));
  }
  int position = 0;
  while (grid.shownField(position) != &column) {
    ++position;
  }
  std::vector<double> ours;
  std::vector<double> bare;
  for (int i = 0; i < 5; ++i) {
    data.SetIndexFieldNames(QString());
    QCoreApplication::processEvents();
    ours.push_back(timed([&] { clickTitle(grid, position); }));
    if (data.IndexFieldNames() != QLatin1String(field)) {
      std::printf("FAILED the title of %s orders nothing\n", field);
      return;
    }
    std::vector<Value> copy = values;
    bare.push_back(timed([&] { std::sort(copy.begin(), copy.end()); }));
  }
  std::sort(ours.begin(), ours.end());
  std::sort(bare.begin(), bare.end());
  std::printf("sorted by the title of %-21s median %8.3f ms   bare sort of the values %8.3f ms   ratio %5.2f\n", field,
              ours[2], bare[2], ours[2] / bare[2]);
}

void series(const char* what, const std::function<void()>& step)
{
  std::vector<double> times;
  for (int i = 0; i < 100; ++i) {
    times.push_back(timed(step));
  }
  report(what, std::move(times));
}

}  // namespace

int main(int argc, char** argv)
{
  QApplication application(argc, argv);
  applyTheme(application, ThemeMode::Light);
  TClientDataSet data;
  data.SetRecords(benchRecords());
  for (const char* name : {"Amount1", "Amount2", "Amount3", "Amount4"}) {
    data.FieldByName(QString::fromLatin1(name))->DisplayFormat = QStringLiteral("#,##0.00");
  }
  TDBGridEx grid;
  grid.resize(1366, 700);
  grid.setInCellEditing(true);
  grid.setMultiSelect(true);

  std::printf("Grid of %lld records, 12 fields\n", static_cast<long long>(records));
  std::printf("%-44s %8.3f ms\n", "dataset given to the grid", timed([&] { grid.setDataSet(&data); }));
  std::printf("%-44s %8.3f ms\n", "first paint (window shown)", timed([&] {
                grid.show();
                grid.activateWindow();
                grid.setFocus();
              }));
  series("next row", [&] { press(&grid, Qt::Key_Down); });
  series("next cell", [&] { press(&grid, grid.selectNextColumn() ? Qt::Key_Left : Qt::Key_Home); });
  series("next page", [&] { press(&grid, Qt::Key_PageDown); });
  series("last row and back", [&] {
    press(&grid, data.RecNo() > 1 ? Qt::Key_Home : Qt::Key_End, Qt::ControlModifier);
  });
  data.SetRecNo(records / 2);
  grid.selectField(QStringLiteral("Text1"));
  series("keystroke in a cell", [&] {
    press(grid.cellEditor() ? grid.cellEditor() : &grid, 0, Qt::NoModifier, QStringLiteral("ж"));
  });
  if (grid.cellEditor()) {
    press(grid.cellEditor(), Qt::Key_Escape);
  }
  data.Cancel();
  series("cell changed, row posted, next row", [&] {
    press(&grid, 0, Qt::NoModifier, QStringLiteral("ж"));
    press(grid.cellEditor() ? grid.cellEditor() : &grid, Qt::Key_Down);
  });
  series("row marked", [&] { press(&grid, Qt::Key_Space, Qt::ControlModifier, QStringLiteral(" ")); });
  series("controls disabled and enabled", [&] {
    const ControlsDisabledScope quiet(&data);
    data.Next();
  });
  series("record inserted and cancelled", [&] {
    data.Insert();
    data.Cancel();
  });
  QObject::connect(&grid, &TDBGrid::titleClicked, &grid, [&data](TField* field) {
    data.SetIndexFieldNames(field->FieldName());
    data.First();
  });
  sortedByTitle<qlonglong>(grid, data, "Int2", [](const TField& field, qsizetype row) {
    return field.ValueAt(row).toLongLong();
  });
  sortedByTitle<double>(grid, data, "Amount1", [](const TField& field, qsizetype row) {
    return field.ValueAt(row).toDouble();
  });
  sortedByTitle<qlonglong>(grid, data, "Day", [](const TField& field, qsizetype row) {
    return field.ValueAt(row).toDate().toJulianDay();
  });
  sortedByTitle<QString>(grid, data, "Text3", [](const TField& field, qsizetype row) {
    return field.ValueAt(row).toString();
  });
  series("next row, sorted", [&] { press(&grid, Qt::Key_Down); });
  series("next page, sorted", [&] { press(&grid, Qt::Key_PageDown); });
  series("last row and back, sorted", [&] {
    press(&grid, data.RecNo() > 1 ? Qt::Key_Home : Qt::Key_End, Qt::ControlModifier);
  });
  return 0;
}
