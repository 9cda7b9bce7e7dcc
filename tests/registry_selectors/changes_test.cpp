// What a change of a field does: typed codes, fields that decide between items, chosen records.
#include "fake_form.h"
#include "filter_text.h"
#include "forms/field_metadata.h"
#include "several_tests.h"

namespace kalvor::testing {
namespace {

const QString codeDescription = QStringLiteral(
    "<#Field(Type)#>,=,1,|<#Field(Type)#>,=,3,;150;Code,Name,Id;Code,Description,Item_Id;N_Item.Code,LIKE,<#Param(OwnerValue)#>,"
    "$<#Field(Type)#>,=,2,;140;Code,Name;Code,Account;");

struct Document {
  Document()
  {
    lines = form.addDataSet(QStringLiteral("cdsMaster"),
                            {fieldDef(QStringLiteral("Type"), DataType::Integer), fieldDef(QStringLiteral("Code"), DataType::String, 10),
                             fieldDef(QStringLiteral("Description")), fieldDef(QStringLiteral("Item_Id")),
                             fieldDef(QStringLiteral("Account"))});
    for (int i = 0; i < lines->FieldCount(); ++i)
      lines->Field(i)->Tag = DecodeFieldIndexToTag(ffPlain, i);
    form.defaults = {QString(), QString(), QStringLiteral("без описание"), QStringLiteral(" "), QString()};
    code()->OnChange = [this](TField* field) { heard.append(field->AsString()); };
    code()->OnValidate = [this](TField* field) { form.fields.fieldChanging(field); };
    selector = form.fields.add(code(), codeDescription);
    form.fields.bindChanges(code());
    form.fields.choiceRefused = [this](TField* field) { refused.append(field->FieldName()); };
    lines->AppendRecord({1, {}, {}, {}, {}});
    lines->Edit();
    form.fields.dataSetScrolled(lines);
    heard.clear();
    services.answer = [this](const FilterArray& filter, Variant& value) { return find(filter, value); };
  }

  // By exact code, by the beginning of it, or by a part of it, as the server does.
  int find(const FilterArray& filter, Variant& value)
  {
    QStringList found;
    const QString text = variantText(filter.value(0).value);
    const auto holds = [&](const QString& known) {
      return text.endsWith(u'%') ? known.startsWith(text.chopped(1), Qt::CaseInsensitive)
                                 : known.contains(text, Qt::CaseInsensitive);
    };
    for (const QString& known : items)
      if (filter.value(0).op == QLatin1String("=") ? known.compare(text, Qt::CaseInsensitive) == 0 : holds(known))
        found.append(known);
    if (!found.isEmpty())
      value = VariantArray{found.first(), QStringLiteral("Артикул ") + found.first(), QStringLiteral("id") + found.first()};
    return int(found.size());
  }
  TField* field(QStringView name) const { return lines->FindField(name); }
  TField* code() const { return field(u"Code"); }
  QString record() const
  {
    QStringList texts;
    for (const TField* each : lines->Fields())
      texts.append(each->IsNull() ? QStringLiteral("-") : each->AsString());
    return texts.join(u'/');
  }
  void choosesInTheForm(const QString& codeText)
  {
    services.choose = [codeText](TSelectionList& selection, QObject* owner) {
      for (TFieldSet& set : selection[0])
        set.Value = set.FieldName + u' ' + codeText;
      return dynamic_cast<IBaseIntf*>(owner)->ProcessSelectedRecords(selection, so_SelectSingle) ? 1 : 2;
    };
  }

  FakeServices services;
  FakeForm form;
  TClientDataSet* lines;
  TSelector* selector = nullptr;
  QStringList items{QStringLiteral("A1"), QStringLiteral("A10"), QStringLiteral("B2")};
  QStringList heard;    // by the field's own handler
  QStringList refused;
};

}  // namespace

class SelectorChangesTest : public QObject {
  Q_OBJECT
 private slots:
  void typedText_data()
  {
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("record");
    QTest::addColumn<int>("opened");
    QTest::newRow("equals one") << "a1" << "1/A1/Артикул A1/idA1/-" << 0;
    QTest::newRow("only inside one") << "2" << "1/Code x/Name x/Id x/-" << 1;
    QTest::newRow("begins only one") << "b" << "1/B2/Артикул B2/idB2/-" << 0;
    QTest::newRow("trimmed") << " B2 " << "1/B2/Артикул B2/idB2/-" << 0;
    QTest::newRow("several") << "a" << "1/Code x/Name x/Id x/-" << 1;
    QTest::newRow("none") << "zz" << "1/Code x/Name x/Id x/-" << 1;
  }
  void typedText()
  {
    QFETCH(QString, text);
    Document document;
    document.choosesInTheForm(QStringLiteral("x"));
    document.code()->SetEditText(text);
    QTEST(document.record(), "record");
    QTEST(int(document.services.openedForms.size()), "opened");
    QCOMPARE(document.heard, QStringList{document.code()->AsString()});
    if (!document.services.openedForms.isEmpty()) {
      QCOMPARE(filterText(document.services.openedFilter), QStringLiteral("(N_Item.Code;LIKE;%1%;)").arg(text));
      QVERIFY(document.services.openedOptions.testFlag(so_ShowModal));
    }
  }

  void leavingTheLookupBringsThePreviousTextBack()
  {
    Document document;
    document.code()->SetEditText(QStringLiteral("A1"));
    const QString before = document.record();
    document.services.choose = [](TSelectionList&, QObject*) { return 2; };
    QVERIFY_EXCEPTION_THROWN(document.code()->SetEditText(QStringLiteral("zz")), SilentAbort);
    QCOMPARE(document.record(), before);
    QCOMPARE(document.refused, QStringList{QStringLiteral("Code")});
    document.code()->SetEditText(QStringLiteral("B2"));
    QCOMPARE(document.code()->AsString(), QStringLiteral("B2"));
  }

  void aFailingServerBringsThePreviousTextBack()
  {
    Document document;
    document.services.answer = [](const FilterArray&, Variant&) -> int { throw DataError(QStringLiteral("няма връзка")); };
    QVERIFY_EXCEPTION_THROWN(document.code()->SetEditText(QStringLiteral("A1")), DataError);
    QCOMPARE(document.record(), QStringLiteral("1/-/-/-/-"));
  }

  void emptyText()
  {
    Document document;
    document.code()->SetEditText(QStringLiteral("A1"));
    document.code()->SetEditText(QString());
    QCOMPARE(document.record(), QStringLiteral("1/-/Артикул A1/-/-"));
    QVERIFY(document.services.openedForms.isEmpty());

    document.code()->Required = true;
    document.choosesInTheForm(QStringLiteral("x"));
    document.code()->SetEditText(QStringLiteral(" "));
    QCOMPARE(document.code()->AsString(), QStringLiteral("Code x"));
    QCOMPARE(filterText(document.services.openedFilter), QStringLiteral("(N_Item.Code;LIKE;;)"));
  }

  void withoutAnItemTheTextStays()
  {
    Document document;
    document.field(u"Type")->SetValue(0);
    document.heard.clear();
    document.code()->SetEditText(QStringLiteral("свободен"));
    QCOMPARE(document.code()->AsString(), QStringLiteral("свободен"));
    QCOMPARE(document.heard, QStringList{QStringLiteral("свободен")});
    QVERIFY(document.services.askedFilters.isEmpty());
  }

  void quietWhileDefaultsAreFilled()
  {
    Document document;
    document.form.fields.defaultsInProgress = [] { return true; };
    document.code()->SetEditText(QStringLiteral("A1"));
    document.field(u"Type")->SetValue(2);
    QCOMPARE(document.record(), QStringLiteral("2/A1/-/-/-"));
    QCOMPARE(document.heard, QStringList{QStringLiteral("A1")});
    QVERIFY(document.services.askedFilters.isEmpty());
  }

  void anotherItemResetsTheTargetsOfBoth()
  {
    Document document;
    QCOMPARE(document.form.fields.dependants().size(), 1);
    QCOMPARE(document.selector->GetFieldsToClear(1, 0), QStringLiteral("Code,Account,Description,Item_Id,"));
    QCOMPARE(document.selector->GetFieldsToClear(-1, 1), QStringLiteral("Code,Account,"));
    QCOMPARE(document.selector->GetFieldsToClear(-1, -1), QString());

    document.code()->SetEditText(QStringLiteral("A1"));
    document.field(u"Account")->SetValue(QStringLiteral("411"));
    document.field(u"Type")->SetValue(3);
    QCOMPARE(document.record(), QStringLiteral("3/A1/Артикул A1/idA1/411"));
    document.field(u"Type")->SetValue(2);
    QCOMPARE(document.record(), QStringLiteral("2/-/без описание/-/-"));
    QCOMPARE(document.selector->Index, 1);
    QVERIFY(document.services.openedForms.isEmpty());
  }

  void theTargetsThatDecideComeFirst()
  {
    Document document;
    TFieldSet name{0, QStringLiteral("Name"), QStringLiteral("Сметка"), document.field(u"Account"), false};
    TFieldSet type{0, QStringLiteral("Type"), 2, document.field(u"Type"), false};
    document.form.ProcessSelectedRecords({{name, type}}, so_SelectSingle);
    QCOMPARE(document.record(), QStringLiteral("2/-/без описание/-/Сметка"));
  }

  void chosenValuesAllOrNone()
  {
    Document document;
    document.field(u"Description")->ReadOnly = true;
    const auto chosen = [&](const QString& code) {
      return TRecordLine{{0, QStringLiteral("Name"), QStringLiteral("нов"), document.field(u"Description"), false},
                         {0, QStringLiteral("Code"), code, document.code(), true}};
    };
    QVERIFY_EXCEPTION_THROWN(document.form.fields.putChosen({chosen(QString(11, u'x'))}), DataError);
    QCOMPARE(document.record(), QStringLiteral("1/-/-/-/-"));
    document.form.fields.putChosen({chosen(QStringLiteral("A1"))});
    QCOMPARE(document.record(), QStringLiteral("1/A1/нов/-/-"));
    QVERIFY(document.field(u"Description")->ReadOnly);
    document.form.fields.putChosen({chosen(QStringLiteral("A1")), chosen(QStringLiteral("B2"))});
    QCOMPARE(document.record(), QStringLiteral("1/A1|B2/нов|нов/-/-"));
  }

  void theChoiceGoesToTheRecordItWasOpenedFor()
  {
    Document document;
    document.lines->Post();
    document.lines->AppendRecord({1, QStringLiteral("B2"), {}, {}, {}});
    document.lines->First();
    document.form.fields.run(*document.selector, nullptr);
    document.lines->Next();
    const TRecordLine line{{0, QStringLiteral("Code"), QStringLiteral("A10"), document.code(), true}};
    document.form.ProcessSelectedRecords({line}, so_SelectSingle);
    QCOMPARE(document.lines->RecNo(), 1);
    QCOMPARE(document.code()->AsString(), QStringLiteral("A10"));

    document.lines->Append();
    document.form.fields.run(*document.selector, nullptr);
    document.lines->Cancel();
    QVERIFY_EXCEPTION_THROWN(document.form.ProcessSelectedRecords({line}, so_SelectSingle), DataError);
  }

  void handlersSurviveReopening()
  {
    Document document;
    document.lines->Post();
    document.form.fields.dataSetClosing(document.lines);
    QVERIFY(document.form.fields.dependants().isEmpty());
    document.lines->Close();
    document.code()->OnChange = [&](TField* field) { document.heard.append(u'2' + field->AsString()); };
    document.lines->Open();
    document.form.fields.dataSetOpened(document.lines);
    QCOMPARE(document.form.fields.dependants().size(), 1);
    document.lines->Append();
    document.field(u"Type")->SetValue(1);
    document.heard.clear();
    document.code()->SetEditText(QStringLiteral("A1"));
    QCOMPARE(document.heard, QStringList{QStringLiteral("A1")});
    QCOMPARE(document.field(u"Item_Id")->AsString(), QStringLiteral("idA1"));
  }

  void aValueGivenFromOutsideFillsWhatDependsOnIt()
  {
    Document document;
    document.services.choose = [](TSelectionList&, QObject*) { return 2; };
    document.form.fields.setWithLookup(document.code(), QStringLiteral("a1"), codeDescription);
    QCOMPARE(document.record(), QStringLiteral("1/A1/Артикул A1/idA1/-"));
    document.form.fields.setWithLookup(document.code(), QStringLiteral("A"), codeDescription);
    QCOMPARE(document.record(), QStringLiteral("1/A/Артикул A1/idA1/-"));
    QCOMPARE(filterText(document.services.openedFilter), QStringLiteral("(N_Item.Code;=;A;)"));
  }

  void defaultThatCallsTheSelector()
  {
    Document document;
    document.items = {QStringLiteral("A1")};
    document.form.fields.runForDefault(document.code());
    QCOMPARE(document.record(), QStringLiteral("1/A1/Артикул A1/idA1/-"));
  }
};

const RegisterTest<SelectorChangesTest> selectorChangesTest;

}  // namespace kalvor::testing

#include "changes_test.moc"
