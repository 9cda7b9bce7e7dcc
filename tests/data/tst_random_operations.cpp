// A dataset under random operations beside a list of rows that does the same the simple way.
#include <QRandomGenerator>
#include <algorithm>

#include "data/data_tests.h"

using namespace kalvor;
using namespace kalvor::test;

namespace {

// Rows as plain lists: Id, Name, Amount. Everything is recomputed from them.
struct Model {
  struct Row {
    VariantArray values;
    VariantArray original;  // empty: inserted
    bool deleted = false;
  };
  QList<Row> rows;   // in the order of arrival
  bool filtered = false;
  int order = 0;     // 0 arrival, 1 Amount, 2 Name DESC; then Id

  static bool passes(const Row& row) { return !isNull(row.values[2]) && row.values[2].toDouble() < 50; }

  QList<int> view() const
  {
    QList<int> shown;
    for (int i = 0; i < rows.size(); ++i)
      if (!rows[i].deleted && (!filtered || passes(rows[i])))
        shown.append(i);
    const auto key = [this](int i) {
      const VariantArray& values = rows[i].values;
      return std::make_tuple(isNull(values[2]) ? -1e9 : values[2].toDouble(), values[1].toString(), values[0].toInt());
    };
    if (order == 1)
      std::ranges::stable_sort(shown, {}, [&](int i) {
        return std::make_tuple(std::get<0>(key(i)), std::get<2>(key(i)));
      });
    if (order == 2)
      std::ranges::stable_sort(shown, [&](int a, int b) {
        const int byName = QString::compare(rows[a].values[1].toString(), rows[b].values[1].toString());
        return byName != 0 ? byName > 0 : rows[a].values[0].toInt() < rows[b].values[0].toInt();
      });
    return shown;
  }

  int changes() const
  {
    return int(std::ranges::count_if(rows, [](const Row& row) {
      return row.original.isEmpty() ? !row.deleted : row.deleted || row.values != row.original;
    }));
  }

  void cancelAll()
  {
    rows.removeIf([](const Row& row) { return row.original.isEmpty(); });
    for (Row& row : rows) {
      row.values = row.original;
      row.deleted = false;
    }
  }
};

}  // namespace

class TestRandomOperations : public QObject {
  Q_OBJECT

 private slots:
  void agreesWithTheModel_data();
  void agreesWithTheModel();
};

void TestRandomOperations::agreesWithTheModel_data()
{
  QTest::addColumn<uint>("seed");
  QTest::addColumn<int>("packet");
  for (uint seed = 1; seed <= 12; ++seed)
    QTest::addRow("seed %u", seed) << seed << (seed % 4 == 0 ? 7 : -1);
}

void TestRandomOperations::agreesWithTheModel()
{
  QFETCH(uint, seed);
  QFETCH(int, packet);
  QRandomGenerator random(seed);
  Model model;
  int nextId = 1;
  double serial = 0;
  const auto newValues = [&] {
    serial += 0.25;  // a touched record always differs from its original
    const Variant amount = random.bounded(8) == 0 ? Variant() : Variant(random.bounded(100) + std::fmod(serial, 1.0));
    return VariantArray{nextId++, QString(QChar(u'а' + random.bounded(30))), amount};
  };
  FakeBroker broker;
  broker.records = RecordSet({fieldDef("Id", DataType::Integer), fieldDef("Name", DataType::WideString, 20),
                              fieldDef("Amount", DataType::Float)});
  for (int i = 0; i < 40; ++i) {
    const VariantArray values = newValues();
    broker.records.appendRow(values);
    model.rows.append({values, values});
  }
  TClientDataSet dataSet;
  dataSet.SetRemoteServer(&broker);
  dataSet.ProviderName = QStringLiteral("p");
  dataSet.PacketRecords = packet;
  dataSet.AggregatesActive = true;
  dataSet.Open();
  if (packet > 0)
    dataSet.FetchAll();
  dataSet.AggregateValue(QStringLiteral("SUM(Amount)"));

  const auto rowOfCurrent = [&] {
    const int id = int(field(dataSet, "Id")->AsInteger());
    return int(std::ranges::find_if(model.rows, [id](const Model::Row& row) { return row.values[0].toInt() == id; }) -
               model.rows.begin());
  };
  const auto fill = [&](const VariantArray& values) {
    for (int i = 0; i < 3; ++i)
      dataSet.Field(i)->SetValue(values[i]);
  };
  for (int step = 0; step < 400; ++step) {
    const QList<int> before = model.view();
    if (!before.isEmpty())
      dataSet.SetRecNo(1 + random.bounded(int(before.size())));
    switch (random.bounded(10)) {
      case 0: {
        const VariantArray values = newValues();
        dataSet.Append();
        fill(values);
        dataSet.Post();
        model.rows.append({values, {}});
        break;
      }
      case 1: {
        const int place = dataSet.IsEmpty() || model.order != 0 ? int(model.rows.size()) : rowOfCurrent();
        const VariantArray values = newValues();
        dataSet.Insert();
        fill(values);
        dataSet.CheckBrowseMode();
        model.rows.insert(place, {values, {}});
        break;
      }
      case 2:
      case 3:
        if (!before.isEmpty()) {
          Model::Row& row = model.rows[rowOfCurrent()];
          VariantArray values = newValues();
          values[0] = row.values[0];
          dataSet.Edit();
          fill(values);
          dataSet.Post();
          row.values = values;
        }
        break;
      case 4:
        if (!before.isEmpty()) {
          model.rows[rowOfCurrent()].deleted = true;
          dataSet.Delete();
        }
        break;
      case 5:
        if (!before.isEmpty()) {
          dataSet.Edit();
          fill(newValues());
          dataSet.Cancel();
        }
        break;
      case 6:
        model.filtered = !model.filtered;
        dataSet.SetFilter(QStringLiteral("Amount < 50"));
        dataSet.SetFiltered(model.filtered);
        break;
      case 7:
        model.order = random.bounded(3);
        dataSet.SetIndexFieldNames(QStringList{QString(), "Amount;Id", "Name DESC;Id"}[model.order]);
        break;
      case 8:
        if (!before.isEmpty()) {
          Model::Row& row = model.rows[rowOfCurrent()];
          if (row.original.isEmpty())
            row.deleted = true;
          else
            row.values = row.original;
          dataSet.RevertRecord();
        }
        break;
      case 9:
        if (random.bounded(5) == 0) {
          dataSet.CancelUpdates();
          model.cancelAll();
        }
        break;
    }
    QStringList ids;
    double sum = 0;
    for (int i : model.view()) {
      ids << variantText(model.rows[i].values[0]);
      sum += model.rows[i].values[2].toDouble();
    }
    QCOMPARE(column(dataSet, "Id"), ids.join(u'|'));
    QCOMPARE(dataSet.ChangeCount(), model.changes());
    QCOMPARE(dataSet.AggregateValue(QStringLiteral("SUM(Amount)")).toDouble(), sum);
    QCOMPARE(dataSet.AggregateValue(QStringLiteral("COUNT(*)")).toInt(), int(ids.size()));
  }
  TClientDataSet copy;
  copy.SetXMLData(dataSet.XMLData());
  QCOMPARE(copy.ChangeCount(), model.changes());
  while (dataSet.UndoLastChange(false)) {
  }
  copy.CancelUpdates();
  dataSet.SetFiltered(false);
  dataSet.SetIndexFieldNames(QString());
  QCOMPARE(column(dataSet, "Amount"), column(copy, "Amount"));
  QCOMPARE(dataSet.ChangeCount(), 0);
}

QTEST_GUILESS_MAIN(TestRandomOperations)
#include "tst_random_operations.moc"
