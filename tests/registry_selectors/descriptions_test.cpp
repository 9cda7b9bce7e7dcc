// Selector descriptions: their parts, options, and which item a record meets.
#include "fake_form.h"
#include "filter_text.h"
#include "registry/selector_conditions.h"
#include "several_tests.h"

namespace kalvor::testing {
namespace {

QString partsOf(const QString& description)
{
  QStringList items;
  for (const TSelectorItem& item : getSelectorItemsByDescription(description))
    items.append(QStringList{filterText(item.Condition), QString::number(item.FormId), item.SourceFields,
                             item.TargetFields, item.Filter, item.PublicFilter}
                     .join(u'/'));
  return items.join(u'#');
}

FilterArray rows(std::initializer_list<FilterRow> list) { return list; }

// A condition row between two constants, followed by a conjunction.
FilterRow fact(bool holds, const QString& conjunction = {})
{
  return {QStringLiteral("1"), QStringLiteral("="), holds ? QStringLiteral("1") : QStringLiteral("2"), conjunction, {}};
}

Variant asWritten(const QString& value, TClientDataSet*, const SelectorControl*, QObject*) { return value; }

}  // namespace

class SelectorDescriptionsTest : public QObject {
  Q_OBJECT
 private slots:
  void parts_data()
  {
    QTest::addColumn<QString>("description");
    QTest::addColumn<QString>("expected");
    QTest::newRow("empty") << QString() << QString();
    QTest::newRow("five parts") << QStringLiteral(";162;Id;Currency_Id;N_Currency.Id,LIKE,<#Param(OwnerValue)#>,")
                                << QStringLiteral("/162/Id/Currency_Id/N_Currency.Id,LIKE,<#Param(OwnerValue)#>,/");
    QTest::newRow("public filter") << QStringLiteral(";178;Id;Series_Id;;N_Series.Kind,=,0,")
                                   << QStringLiteral("/178/Id/Series_Id//N_Series.Kind,=,0,");
    QTest::newRow("two items") << QStringLiteral("<#Field(Type)#>,=,1,;150;Id;A$<#Field(Type)#>,=,2,;140;Id;B")
                               << QStringLiteral("(<#Field(Type)#>;=;1;)/150/Id/A//#(<#Field(Type)#>;=;2;)/140/Id/B//");
    QTest::newRow("no number") << QStringLiteral(";x12;Id;A") << QStringLiteral("/-1/Id/A//");
    QTest::newRow("leading blanks") << QStringLiteral("  ;150;Id") << QStringLiteral("/150/Id///");
    QTest::newRow("blanks inside split the item") << QStringLiteral("; 150;Id") << QStringLiteral("/-1////#/-1////");
    QTest::newRow("blank splits") << QStringLiteral(";150;Id;A$;151;x\ty") << QStringLiteral("/150/Id/A//#/151/x///#/-1////");
    QTest::newRow("quoted at both levels") << QStringLiteral("\";150;Id;A;\"\"x is not ,null,\"\"\"")
                                           << QStringLiteral("/150/Id/A/x is not ,null,/");
    QTest::newRow("open quote takes the rest") << QStringLiteral("\";150;Id") << QStringLiteral("/150/Id///");
    QTest::newRow("separator at the end") << QStringLiteral(";150;Id$") << QStringLiteral("/150/Id///#/-1////");
    QTest::newRow("blank behind the last separator") << QStringLiteral(";150;Id$ ") << QStringLiteral("/150/Id///");
  }
  void parts()
  {
    QFETCH(QString, description);
    QTEST(partsOf(description), "expected");
  }

  void options_data()
  {
    QTest::addColumn<QString>("text");
    QTest::addColumn<quint32>("expected");
    QTest::newRow("absent") << QString() << quint32(so_SelectSingle);
    QTest::newRow("empty") << QStringLiteral(";") << quint32(so_SelectSingle);
    QTest::newRow("both") << QStringLiteral(";so_SelectMulty,so_ReusableArticles")
                          << quint32(so_SelectMulty | so_ReusableArticles);
    QTest::newRow("one") << QStringLiteral(";so_ReusableArticles") << quint32(so_ReusableArticles);
    QTest::newRow("unknown last") << QStringLiteral(";so_SelectMulty,so_Other") << quint32(so_SelectSingle);
    QTest::newRow("unknown first") << QStringLiteral(";so_Other,so_SelectMulty")
                                   << quint32(so_SelectSingle | so_SelectMulty);
    QTest::newRow("case counts") << QStringLiteral(";SO_SELECTMULTY") << quint32(so_SelectSingle);
  }
  void options()
  {
    QFETCH(QString, text);
    QFETCH(quint32, expected);
    const TSelectorItems items = getSelectorItemsByDescription(QStringLiteral(";150;Id;A;;") + text);
    QCOMPARE(items.size(), 1);
    QCOMPARE(quint32(items[0].Options), expected);
  }

  void conditions_data()
  {
    const QString andWord = QStringLiteral("AND"), orWord = QStringLiteral("OR");
    QTest::addColumn<QList<FilterRow>>("condition");
    QTest::addColumn<bool>("expected");
    QTest::newRow("none") << rows({}) << true;
    QTest::newRow("(f AND t) OR t") << rows({fact(false, andWord), fact(true, orWord), fact(true)}) << true;
    QTest::newRow("(t OR t) AND f") << rows({fact(true, orWord), fact(true, andWord), fact(false)}) << false;
    QTest::newRow("no conjunction replaces") << rows({fact(false), fact(true)}) << true;
    QTest::newRow("any other word replaces") << rows({fact(true, QStringLiteral("XOR")), fact(false)}) << false;
  }
  void conditions()
  {
    QFETCH(QList<FilterRow>, condition);
    QFETCH(bool, expected);
    QCOMPARE(CheckCondition(condition, nullptr, nullptr, nullptr, asWritten), expected);
  }

  void comparisons_data()
  {
    QTest::addColumn<QVariant>("left");
    QTest::addColumn<QString>("sign");
    QTest::addColumn<QVariant>("right");
    QTest::addColumn<bool>("expected");
    const QVariant three(qlonglong(3)), half(2.5), none;
    const auto text = [](const char* value) { return QVariant(QString::fromUtf8(value)); };
    QTest::newRow("number by text") << three << "=" << text("3") << true;
    QTest::newRow("ten is above nine") << QVariant(10) << ">" << text("9") << true;
    QTest::newRow("texts as texts") << text("10") << ">" << text("9") << false;
    QTest::newRow("decimal point") << half << "=" << text("2.5") << true;
    QTest::newRow("unreadable differs") << three << "<>" << text("x") << true;
    QTest::newRow("unreadable is not below") << three << "<=" << text("x") << false;
    QTest::newRow("null is the empty text") << none << "=" << text("") << true;
    QTest::newRow("trimmed sign") << three << " >= " << text("3") << true;
    QTest::newRow("date") << QVariant(QDate(2024, 1, 31)) << "<" << text("20240201") << true;
    QTest::newRow("within the list") << three << "like" << text("1,3,5") << true;
    QTest::newRow("not in the list") << QVariant(4) << "LIKE" << text("1,3,5") << false;
    QTest::newRow("nothing is no member") << none << "LIKE" << text("1,3,5") << false;
    QTest::newRow("unknown sign") << three << "is" << text("3") << false;
  }
  void comparisons()
  {
    QFETCH(QVariant, left);
    QFETCH(QString, sign);
    QFETCH(QVariant, right);
    QFETCH(bool, expected);
    const auto valueOf = [&](const QString& value, TClientDataSet*, const SelectorControl*, QObject*) {
      return value == QLatin1String("L") ? left : right;
    };
    const FilterArray condition{{QStringLiteral("L"), sign, QStringLiteral("R"), QString(), QString()}};
    QCOMPARE(CheckCondition(condition, nullptr, nullptr, nullptr, valueOf), expected);
  }

  void firstItemThatHolds()
  {
    FakeForm form;
    TClientDataSet* lines = form.addDataSet(QStringLiteral("cdsMaster"), {fieldDef(QStringLiteral("Type"), DataType::Integer)});
    lines->AppendRecord({2});
    const TSelector selector(&form, static_cast<TField*>(nullptr),
                             QStringLiteral("<#Field(Type)#>,=,1,;150;Id;A$<#Field(Type)#>,=,2,;140;Id;B"), lines);
    QCOMPARE(selector.GetIndex(), 1);
    lines->Edit();
    lines->FieldByName(u"Type")->SetValue(7);
    QCOMPARE(selector.GetIndex(), -1);
  }
};

const RegisterTest<SelectorDescriptionsTest> selectorDescriptionsTest;

}  // namespace kalvor::testing

#include "descriptions_test.moc"
