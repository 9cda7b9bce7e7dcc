#include <QTest>

#include "forms/filter_panel.h"
#include "several_tests.h"

using namespace kalvor;

namespace {

class PlainControl : public PanelControl {
 public:
  explicit PlainControl(FilterControlKind kind) : kind_(kind), value_(emptyPanelValue(kind)) {}
  FilterControlKind kind() const override { return kind_; }
  Variant value() const override { return value_; }
  void setValue(const Variant& value) override { value_ = value; }

 private:
  FilterControlKind kind_;
  Variant value_;
};

FilterRow line(const QString& field, const QString& op, const Variant& value, const QString& conjunction = {},
               const QString& brackets = {})
{
  return {field, op, value, conjunction, brackets};
}

struct SmallPanel {
  PlainControl name{FilterControlKind::FlatEdit};
  PlainControl side{FilterControlKind::FlatDropDown};
  PlainControl item{FilterControlKind::EnhancedDropDown};
  TFilterControlArray controls{{&name, QStringLiteral("Name"), false, {}, {}, {}},
                               {&side, QStringLiteral("Side"), false, {}, {}, {}},
                               {&item, QStringLiteral("Item_Id"), false, {}, {}, {}}};
  QStringList origins{QStringLiteral("N_Item.Name"), QStringLiteral("P.Side"), QStringLiteral("P.Item_Id")};
};

}  // namespace

Q_DECLARE_METATYPE(kalvor::FilterControlKind)

class FilterPanelTest : public QObject {
  Q_OBJECT

 private slots:
  void aLineIsShownByTheKindOfControl_data()
  {
    QTest::addColumn<FilterControlKind>("kind");
    QTest::addColumn<QString>("op");
    QTest::addColumn<Variant>("value");
    QTest::addColumn<Variant>("shown");
    const auto edit = FilterControlKind::FlatEdit;
    const auto list = FilterControlKind::FlatDropDown;
    QTest::newRow("plain text") << edit << "=" << Variant("%чай%") << Variant("%чай%");
    QTest::newRow("contains") << edit << "LIKE" << Variant("%чай%") << Variant("чай");
    QTest::newRow("lower case operator") << edit << "like" << Variant("чай%") << Variant("чай");
    QTest::newRow("blanks around") << edit << "LIKE" << Variant("  %чай%  ") << Variant("чай");
    QTest::newRow("one sign each side only") << edit << "LIKE" << Variant("%%чай%%") << Variant("%чай%");
    QTest::newRow("quotes inside the signs") << edit << "LIKE" << Variant("%'чай'%") << Variant("чай");
    QTest::newRow("half a quote stays") << edit << "LIKE" << Variant("'чай") << Variant("'чай");
    QTest::newRow("a lone sign") << edit << "LIKE" << Variant("%") << Variant("");
    QTest::newRow("number in an edit") << edit << "=" << Variant(12) << Variant("12");
    QTest::newRow("position") << list << "=" << Variant("1") << Variant(1);
    QTest::newRow("position in a pattern") << list << "LIKE" << Variant("%2%") << Variant(2);
    QTest::newRow("no position") << list << "=" << Variant("Продажби") << Variant(-1);
    QTest::newRow("key") << FilterControlKind::EnhancedDropDown << "=" << Variant("A1") << Variant("A1");
  }

  void aLineIsShownByTheKindOfControl()
  {
    QFETCH(const FilterControlKind, kind);
    QFETCH(const QString, op);
    QFETCH(const Variant, value);
    QTEST(shownPanelValue(kind, line(QStringLiteral("A"), op, value)), "shown");
  }

  void leavingComparesWithWhatIsRemembered_data()
  {
    QTest::addColumn<bool>("compareStored");
    QTest::addColumn<Variant>("entered");
    QTest::addColumn<Variant>("stored");
    QTest::addColumn<bool>("changed");
    QTest::newRow("as entered") << false << Variant("чай") << Variant("кафе") << false;
    QTest::newRow("not as entered") << false << Variant("кафе") << Variant("чай") << true;
    QTest::newRow("as stored") << true << Variant("кафе") << Variant("чай") << false;
    QTest::newRow("not as stored") << true << Variant("чай") << Variant("кафе") << true;
    QTest::newRow("never entered") << false << Variant() << Variant("чай") << true;
  }

  void leavingComparesWithWhatIsRemembered()
  {
    QFETCH(const bool, compareStored);
    QFETCH(const Variant, entered);
    QFETCH(const Variant, stored);
    PlainControl control(FilterControlKind::FlatEdit);
    control.setValue(QStringLiteral("чай"));
    QTEST(panelValueChanged({&control, QStringLiteral("Name"), compareStored, {}, entered, stored}), "changed");
  }

  void thePanelShowsTheFormsAndTheCallersFilter()
  {
    SmallPanel panel;
    panel.side.setValue(1);
    const FilterArray form{line(QStringLiteral("n_item.NAME"), QStringLiteral("LIKE"), QStringLiteral("%чай%"))};
    const FilterArray caller{line(QStringLiteral("P.Item_Id"), QStringLiteral("="), QStringLiteral("A1"))};
    QVERIFY(showFiltersInPanel(panel.controls, panel.origins, form, caller));
    QCOMPARE(panel.name.value().toString(), QStringLiteral("чай"));
    QCOMPARE(panel.side.value().toInt(), -1);  // cleared, nothing speaks of it
    QCOMPARE(panel.item.value().toString(), QStringLiteral("A1"));
    QVERIFY(!showFiltersInPanel(panel.controls, panel.origins, {}, caller));
    QCOMPARE(panel.name.value().toString(), QString());
    QCOMPARE(panel.item.value().toString(), QStringLiteral("A1"));
  }

  void controlsThatHoldAValueMakeTheFilter()
  {
    SmallPanel panel;
    QVERIFY(panelFilter(panel.controls, panel.origins).isEmpty());
    panel.name.setValue(QStringLiteral(" чай "));
    panel.side.setValue(0);
    const FilterArray expected{
        line(QStringLiteral("N_Item.Name"), QStringLiteral("LIKE"), QStringLiteral("%чай%"), QStringLiteral("AND")),
        line(QStringLiteral("P.Side"), QStringLiteral("="), QStringLiteral("0"))};
    QCOMPARE(panelFilter(panel.controls, panel.origins), expected);
    QVERIFY(panelFilter(panel.controls, {}).isEmpty());  // the master has none of the fields
  }

  void thePanelsLinesReplaceItsOwnOnly()
  {
    const QStringList origins{QStringLiteral("N_Item.Name"), QStringLiteral("P.Side")};
    const FilterRow date = line(QStringLiteral("P.StartDate"), QStringLiteral(">"), QStringLiteral("20250101"));
    const FilterRow side = line(QStringLiteral("p.side"), QStringLiteral("="), 1);
    const FilterRow name = line(QStringLiteral("N_Item.Name"), QStringLiteral("LIKE"), QStringLiteral("%чай%"));
    FilterRow dateAnd = date;
    dateAnd.conjunction = QStringLiteral("AND");
    FilterRow dateBracket = dateAnd, sideBracket = side;
    dateBracket.brackets = QStringLiteral("(");
    sideBracket.brackets = QStringLiteral(")");
    QCOMPARE(formFilterWithPanel({}, origins, {name}), FilterArray{name});
    QCOMPARE(formFilterWithPanel({date}, origins, {name}), (FilterArray{dateAnd, name}));
    QCOMPARE(formFilterWithPanel({dateAnd, side}, origins, {}), FilterArray{date});
    QCOMPARE(formFilterWithPanel({dateBracket, sideBracket}, origins, {}), FilterArray{date});
    QVERIFY(formFilterWithPanel({side}, origins, {}).isEmpty());
  }
};

static const testing::RegisterTest<FilterPanelTest> registerFilterPanelTest;
#include "filter_panel_test.moc"
