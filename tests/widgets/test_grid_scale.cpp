// What a grid asks of a million records: no more than of a thousand.
#include <QScrollBar>
#include <numeric>

#include "data/data_broker.h"
#include "grid_fixture.h"
#include "widgets/theme.h"

namespace kalvor {
namespace {

RecordSet numberedRecords(qsizetype first, qsizetype count)
{
  FieldDef id;
  id.name = QStringLiteral("Id");
  id.type = DataType::Integer;
  FieldDef name;
  name.name = QStringLiteral("Name");
  name.type = DataType::WideString;
  name.size = 20;
  RecordSet records({id, name});
  std::vector<qint64> numbers(size_t(count), first);
  std::iota(numbers.begin(), numbers.end(), first);
  const std::vector<quint64> noNulls(size_t(count + 63) / 64, 0);
  const std::u16string text = u"ред";
  records.columns[0].adoptIntegers(std::move(numbers), noNulls);
  records.columns[1].adoptText({text.begin(), text.end()}, std::vector<Column::TextSpan>(size_t(count), {0, 3}), noNulls);
  records.rows = count;
  return records;
}

// A provider of so many records, which can fail.
class PacketSource : public DataBroker {
 public:
  explicit PacketSource(qsizetype records) : records_(records) {}

  DataPacketPtr openProvider(const QString&, qsizetype count) override { return packet(0, count); }
  DataPacketPtr fetchRecords(const QString&, const Variant& continuation, qsizetype count) override
  {
    ++fetches;
    if (broken) {
      throw DataError(QStringLiteral("Няма връзка"));
    }
    return packet(continuation.toLongLong(), count);
  }

  int fetches = 0;
  bool broken = false;

 private:
  DataPacketPtr packet(qsizetype from, qsizetype count) const
  {
    const qsizetype take = count < 0 ? records_ - from : qMin(count, records_ - from);
    auto result = std::make_shared<DataPacket>();
    result->records = numberedRecords(from, take);
    if (from + take < records_) {
      result->continuation = qlonglong(from + take);
    }
    return result;
  }

  qsizetype records_;
};

}  // namespace

class TestGridScale : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() { applyTheme(*qApp, ThemeMode::Light); }

  void workDoesNotGrowWithTheRecords()
  {
    const auto cellsAsked = [](qsizetype count) {
      TClientDataSet data;
      int asked = 0;
      data.SetRecords(numberedRecords(1, count));
      data.FieldByName(u"Name")->OnGetText = [&asked](TField* field, QString& text, bool) {
        ++asked;
        text = field->AsString();
      };
      TDBGridEx grid;
      grid.resize(600, 400);
      grid.setDataSet(&data);
      grid.show();
      grid.grab();
      grid.setFocus();
      QTest::keyClick(&grid, Qt::Key_Down);
      QTest::keyClick(&grid, Qt::Key_End, Qt::ControlModifier);
      grid.grab();
      return asked;
    };
    const int few = cellsAsked(1000);
    const int many = cellsAsked(1000000);
    QCOMPARE(many, few);
    QVERIFY2(many < 300, qPrintable(QString::number(many)));
  }

  void packetsComeAsTheGridScrolls()
  {
    PacketSource source(200);
    GridForm form;
    TClientDataSet data;
    data.SetRemoteServer(&source);
    data.ProviderName = QStringLiteral("p");
    data.PacketRecords = 32;
    data.Open();
    form.grid->setDataSet(&data);
    form.window.grab();
    QCOMPARE(form.grid->datasetModel()->rowCount(), 32);
    QCOMPARE(source.fetches, 0);
    form.grid->verticalScrollBar()->setValue(form.grid->verticalScrollBar()->maximum());
    QTRY_COMPARE(form.grid->datasetModel()->rowCount(), 64);
    QCOMPARE(data.RecNo(), 1);
    for (int i = 0; i < 70; ++i) {
      form.key(Qt::Key_Down);
    }
    QCOMPARE(data.RecNo(), 71);
    QCOMPARE(form.grid->currentIndex().row(), 70);
    QVERIFY(data.RecordCount() < 200);
    form.key(Qt::Key_End, Qt::ControlModifier);
    QCOMPARE(data.RecNo(), 200);
    QCOMPARE(form.grid->datasetModel()->rowCount(), 200);
  }

  void aLostServerIsNotAskedWithEveryScroll()
  {
    PacketSource source(200);
    GridForm form;
    TClientDataSet data;
    data.SetRemoteServer(&source);
    data.ProviderName = QStringLiteral("p");
    data.PacketRecords = 32;
    data.Open();
    form.grid->setDataSet(&data);
    source.broken = true;
    for (int i = 0; i < 3; ++i) {
      form.grid->verticalScrollBar()->setValue(0);
      form.grid->verticalScrollBar()->setValue(form.grid->verticalScrollBar()->maximum());
      QTest::qWait(5);
    }
    QCOMPARE(source.fetches, 1);
    QCOMPARE(form.messages.texts, QStringList{QStringLiteral("Няма връзка")});
    QCOMPARE(form.grid->datasetModel()->rowCount(), 32);
  }
};

}  // namespace kalvor

QTEST_MAIN(kalvor::TestGridScale)
#include "test_grid_scale.moc"
