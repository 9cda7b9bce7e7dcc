// The client dataset against the stock item model with its proxy: the same records, the same work, one run,
// by processor time; the median of several runs where the work is short.
//
//   dataset_bench [rows ...]        100000 and 1000000 when none are given
//
// 12 fields: 3 integers, 4 reals, a date, 4 Cyrillic texts, the first of them different in every record.
#include <QDate>
#include <QGuiApplication>
#include <QSortFilterProxyModel>
#include <QStandardItemModel>
#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>
#include <malloc.h>
#include <random>

#include "data/client_dataset.h"

using namespace kalvor;

namespace {

constexpr int firstReal = 3;
constexpr int dayColumn = 7;
constexpr int nameColumn = 8;
constexpr int columnCount = 12;

struct Source {
  std::vector<std::array<qint64, 3>> integers;
  std::vector<std::array<double, 4>> reals;
  std::vector<QDate> days;
  std::vector<std::array<QString, 4>> texts;
};

Source makeSource(int rows)
{
  static const char16_t* const words[] = {u"Захар", u"Брашно", u"Щайга", u"Олио", u"Йогурт", u"Ябълки", u"Цимент",
                                          u"Юта", u"Чай", u"Жито", u"Фурма", u"Ъгъл", u"Хартия", u"Шперплат"};
  std::mt19937 random(7);
  const auto word = [&] { return QString::fromUtf16(words[random() % std::size(words)]); };
  Source source;
  for (int i = 0; i < rows; ++i) {
    source.integers.push_back({i, qint64(random() % 50), qint64(random() % 2)});
    const double third = random() % 7 / 3.0;
    source.reals.push_back({random() % 100000 / 100.0, random() % 1000 / 10.0, double(random() % 100), third});
    source.days.push_back(QDate(2020, 1, 1).addDays(random() % 2000));
    source.texts.push_back({word() + u' ' + word() + u' ' + QString::number(random() % 10000000),
                            word() + QStringLiteral(" ООД"), word() + u' ' + QString::number(random() % 5000), word()});
  }
  return source;
}

QList<FieldDef> fieldDefs()
{
  QList<FieldDef> fields;
  for (int i = 0; i < columnCount; ++i) {
    FieldDef field;
    field.name = QStringLiteral("F%1").arg(i);
    field.type = i < firstReal    ? DataType::LargeInt
                 : i < dayColumn  ? DataType::Float
                 : i == dayColumn ? DataType::Date
                                  : DataType::WideString;
    fields.append(field);
  }
  return fields;
}

void fillDataSet(TClientDataSet& dataSet, const Source& source)
{
  RecordSet records(fieldDefs());
  const qsizetype rows = qsizetype(source.days.size());
  for (size_t i = 0; i < columnCount; ++i) {
    Column& column = records.columns[i];
    column.reserve(rows);
    for (size_t row = 0; row < size_t(rows); ++row) {
      if (i < firstReal)
        column.appendInteger(source.integers[row][i]);
      else if (i < dayColumn)
        column.appendReal(source.reals[row][i - firstReal]);
      else if (i == dayColumn)
        column.appendInteger(source.days[row].toJulianDay());
      else
        column.appendText(source.texts[row][i - nameColumn]);
    }
  }
  records.rows = rows;
  dataSet.SetRecords(std::move(records));
}

void fillModel(QStandardItemModel& model, const Source& source)
{
  model.setColumnCount(columnCount);
  for (size_t row = 0; row < source.days.size(); ++row) {
    QList<QStandardItem*> items;
    items.reserve(columnCount);
    for (size_t i = 0; i < columnCount; ++i) {
      auto* item = new QStandardItem;
      item->setData(i < firstReal    ? QVariant(source.integers[row][i])
                    : i < dayColumn  ? QVariant(source.reals[row][i - firstReal])
                    : i == dayColumn ? QVariant(source.days[row])
                                     : QVariant(source.texts[row][i - nameColumn]),
                    Qt::DisplayRole);
      items.append(item);
    }
    model.appendRow(items);
  }
}

// Of this process alone, so that others who work on the machine do not count.
double processorMilliseconds()
{
  timespec now{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return double(now.tv_sec) * 1e3 + double(now.tv_nsec) / 1e6;
}

template <typename Work>
double milliseconds(int runs, Work work)
{
  std::vector<double> times;
  for (int i = 0; i < runs; ++i) {
    const double start = processorMilliseconds();
    work(i);
    times.push_back(processorMilliseconds() - start);
  }
  std::ranges::sort(times);
  return times[times.size() / 2];
}

double heapMegabytes()
{
  const struct mallinfo2 info = mallinfo2();
  return double(info.uordblks + info.hblkhd) / 1e6;
}

void report(const char* work, double ours, double stock, const char* unit, double wanted)
{
  std::printf("  %-34s %12.3f %-2s %12.3f %-2s %9.1f x   (at least %g x)%s\n", work, ours, unit, stock, unit,
              stock / ours, wanted, stock / ours >= wanted ? "" : "   MISSED");
}

void compare(int rows)
{
  std::printf("%d rows of 12 fields              client dataset      stock item model\n", rows);
  const Source source = makeSource(rows);
  const int runs = rows > 200000 ? 3 : 7;

  double before = heapMegabytes();
  TClientDataSet dataSet;
  const double ourFill = milliseconds(runs, [&](int) { fillDataSet(dataSet, source); });
  const double ourMemory = heapMegabytes() - before;

  before = heapMegabytes();
  QStandardItemModel model;
  const double stockFill = milliseconds(1, [&](int) { fillModel(model, source); });
  const double stockMemory = heapMegabytes() - before;
  report("fill", ourFill, stockFill, "ms", 5);

  QSortFilterProxyModel proxy;
  proxy.setSourceModel(&model);
  proxy.setDynamicSortFilter(false);
  proxy.setSortLocaleAware(true);
  proxy.setSortCaseSensitivity(Qt::CaseInsensitive);
  const double ourSort = milliseconds(runs, [&](int run) {
    dataSet.SetIndexFieldNames(run % 2 ? QStringLiteral("F8") : QStringLiteral("F8 DESC"));
  });
  report("sort by text, Bulgarian order", ourSort, milliseconds(1, [&](int) { proxy.sort(nameColumn); }), "ms", 20);
  dataSet.SetIndexFieldNames(QString());
  proxy.setSortLocaleAware(false);
  proxy.setSortCaseSensitivity(Qt::CaseSensitive);
  const double stockCodeSort = milliseconds(1, [&](int) { proxy.sort(nameColumn, Qt::DescendingOrder); });
  report("  against the stock order by code", ourSort, stockCodeSort, "ms", 1);
  proxy.sort(-1);

  proxy.setFilterKeyColumn(nameColumn);
  proxy.setFilterCaseSensitivity(Qt::CaseInsensitive);
  const auto needle = [](int run) { return QStringLiteral("ЯБЪЛКИ %1").arg(run % 9 + 1); };
  std::vector<qsizetype> counts[2];
  const double ourFilter = milliseconds(9, [&](int run) {
    dataSet.SetFilter(QStringLiteral("F8 LIKE '%%1%'").replace(QStringLiteral("%1"), needle(run)));
    dataSet.SetFiltered(true);
    counts[0].push_back(dataSet.RecordCount());
  });
  const double stockFilter = milliseconds(3, [&](int run) {
    proxy.setFilterFixedString(needle(run));
    counts[1].push_back(proxy.rowCount());
  });
  counts[0].resize(counts[1].size());
  if (counts[0] != counts[1] || counts[0][0] == 0)
    std::printf("  THE FILTERS DISAGREE\n");
  report("filter contains", ourFilter, stockFilter, "ms", 15);
  dataSet.SetFiltered(false);

  double sums[2] = {0, 0};
  const double ourSum = milliseconds(25, [&](int run) {
    sums[0] = dataSet.AggregateValue(QStringLiteral("SUM(F3)") + QString(run, u' ')).toDouble();
  });
  const double stockSum = milliseconds(5, [&](int) {
    sums[1] = 0;
    for (int row = 0; row < model.rowCount(); ++row)
      sums[1] += model.index(row, firstReal).data().toDouble();
  });
  if (std::abs(sums[0] - sums[1]) > 0.01)
    std::printf("  THE SUMS DISAGREE\n");
  report("sum", ourSum, stockSum, "ms", 30);
  report("memory", ourMemory, stockMemory, "MB", 10);
}

}  // namespace

int main(int argc, char** argv)
{
  QGuiApplication application(argc, argv);
  QLocale::setDefault(QLocale(QStringLiteral("bg_BG")));
  QStringList sizes = QGuiApplication::arguments().mid(1);
  if (sizes.isEmpty())
    sizes = QStringList{QStringLiteral("100000"), QStringLiteral("1000000")};
  for (const QString& size : std::as_const(sizes))
    compare(size.toInt());
  return 0;
}
