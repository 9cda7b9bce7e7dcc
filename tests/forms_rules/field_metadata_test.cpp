#include "forms/field_metadata.h"
#include "records.h"
#include "several_tests.h"

using namespace kalvor;
using kalvor::testing::fieldDef;

class FieldMetadataTest : public QObject {
  Q_OBJECT

  // A row of 19 nulls with some columns given.
  static Variant row(const QString& name, const QHash<int, Variant>& columns)
  {
    VariantArray values(fieldColumnCount);
    values[0] = name;
    for (auto it = columns.begin(); it != columns.end(); ++it)
      values[it.key()] = it.value();
    return values;
  }
  static int at(FieldColumn column) { return int(column); }

 private slots:
  void kindsAndFlags_data()
  {
    QTest::addColumn<Variant>("type");
    QTest::addColumn<quint32>("flags");
    QTest::newRow("0") << Variant("0") << 16u;
    QTest::newRow("missing") << Variant() << 16u;
    QTest::newRow("1") << Variant("1") << 32u;
    QTest::newRow("2") << Variant("2") << 64u;
    QTest::newRow("3") << Variant("3") << 128u;
    QTest::newRow("4") << Variant("4") << 256u;
    QTest::newRow("5") << Variant("5") << 512u;
    QTest::newRow("6") << Variant("6") << 0u;
    QTest::newRow("7") << Variant("7") << 1024u;
    QTest::newRow("8") << Variant("8") << 0u;
    QTest::newRow("as a number") << Variant(7) << 1024u;
  }
  void kindsAndFlags()
  {
    QFETCH(Variant, type);
    QFETCH(quint32, flags);
    QCOMPARE(FieldDescription(row("A", {{2, type}})).flags(), flags);
    const QHash<int, Variant> all{{2, type}, {5, "1"}, {6, "1"}, {7, "1"}, {8, "1"}};
    QCOMPARE(FieldDescription(row("A", all)).flags(), flags | 15u);
  }

  void tagHoldsFlagsAndRow()
  {
    for (const int index : {0, 1, 255})
      QCOMPARE(EncodeFieldIndexFromTag(DecodeFieldIndexToTag(ffVisible | ffDate, index)), index);
    QCOMPARE(DecodeFieldIndexToTag(ffDate, 3), 0x30400u);
    QCOMPARE(DecodeFieldIndexToTag(DecodeFieldIndexToTag(1, 200), 2), 0x20001u);
  }

  void rowsShapeTheFields()
  {
    TClientDataSet dataSet;
    dataSet.CreateDataSet({fieldDef("Id"), fieldDef("Amount", DataType::Float), fieldDef("Status", DataType::SmallInt),
                           fieldDef("DocDate", DataType::DateTime), fieldDef("Note")});
    TField* note = dataSet.FieldByName(u"Note");
    note->DisplayLabel = "Забележка";
    const VariantArray rows{
        row("amount", {{at(FieldColumn::Caption), "Сума"}, {at(FieldColumn::Required), "0"},
                       {at(FieldColumn::Visible), "1"}, {at(FieldColumn::DisplayFormat), "#,##0.00"},
                       {at(FieldColumn::FieldFilter), "D_Sale.Amount"}, {at(FieldColumn::Origin), "x"}}),
        Variant("no row"),
        row("Missing", {{at(FieldColumn::Caption), "Няма"}}),
        row("Status", {{at(FieldColumn::FieldType), "1"}, {at(FieldColumn::OptionCaption), "Нов,Готов"},
                       {at(FieldColumn::Required), "1"}, {at(FieldColumn::Origin), "D_Sale"}}),
        row("Note", {{at(FieldColumn::DisplayFormat), "0.00"}}),
    };
    applyFieldDescriptions(dataSet, rows);

    TField* amount = dataSet.FieldByName(u"Amount");
    QCOMPARE(amount->DisplayLabel, QString("Сума"));
    QCOMPARE(amount->DisplayFormat, QString("#,##0.00"));
    QCOMPARE(amount->Origin, QString("D_Sale.Amount"));
    QCOMPARE(amount->Tag, quint32(ffVisible | ffPlain));
    QCOMPARE(amount->Index(), 0);
    QVERIFY(amount->Visible && !amount->Required);

    TField* status = dataSet.FieldByName(u"Status");
    QCOMPARE(status->Tag, quint32(ffOption) | (3u << 16));
    QCOMPARE(status->Origin, QString("D_Sale.Status"));
    QVERIFY(!status->Visible && status->Required);
    QCOMPARE(descriptionOf(status, rows).text(FieldColumn::OptionCaption), QString("Нов,Готов"));

    QCOMPARE(note->DisplayLabel, QString("Забележка"));
    QVERIFY(note->DisplayFormat.isEmpty());
    QVERIFY(note->Required);  // null is not "0"
    QCOMPARE(note->Origin, QString());

    QVERIFY(!descriptionOf(dataSet.FieldByName(u"Id"), rows).isRow());

    dataSet.Append();
    status->SetAsInteger(1);
    QCOMPARE(status->DisplayText(), QString("Готов"));
    status->SetEditText("Нов");
    QCOMPARE(status->AsInteger(), 0);
    QVERIFY_EXCEPTION_THROWN(status->SetEditText("Друг"), DataError);
    QCOMPARE(status->AsInteger(), 0);
    status->SetEditText("");
    QVERIFY(status->IsNull());
    QCOMPARE(status->DisplayText(), QString());
  }

  void aggregatesAreMadeOfRowsWithoutAField()
  {
    TClientDataSet dataSet;
    dataSet.CreateDataSet({fieldDef("Amount", DataType::Float)});
    applyFieldDescriptions(dataSet, {row("Total", {{2, "6"}, {at(FieldColumn::SelectorDesc), "SUM(Amount)"}}),
                                     row("Other", {{2, "2"}})});
    QVERIFY(dataSet.AggregatesActive);
    QCOMPARE(dataSet.FieldByName(u"Total")->Expression, QString("SUM(Amount)"));
    QVERIFY(!dataSet.FindField(u"Other"));
  }

  void optionTexts_data()
  {
    QTest::addColumn<QString>("stored");
    QTest::addColumn<QString>("text");
    QTest::newRow("first") << "0" << "Нов";
    QTest::newRow("blank option") << "2" << " Стар";
    QTest::newRow("past the list") << "3" << "3";
    QTest::newRow("negative") << "-1" << "-1";
    QTest::newRow("no number") << "x" << "x";
  }
  void optionTexts()
  {
    QFETCH(QString, stored);
    QTEST(optionText({"Нов", "Готов", " Стар"}, stored), "text");
  }

  void optionPositions()
  {
    const QStringList options{"нов", "Нов", " Стар"};
    QCOMPARE(optionPosition(options, "Нов"), 1);
    QCOMPARE(optionPosition(options, "НОВ "), 0);
    QCOMPARE(optionPosition(options, "стар"), 2);
    QCOMPARE(optionPosition(options, "x"), -1);
  }
};

static const testing::RegisterTest<FieldMetadataTest> registerFieldMetadataTest;
#include "field_metadata_test.moc"
