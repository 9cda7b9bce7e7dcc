// The list under a lookup field while its text is being typed, with a server that answers when the test says so.
#include <QHBoxLayout>

#include "fake_form.h"
#include "filter_text.h"
#include "filters/filter_expression.h"
#include "registry/windows/selector_edit.h"
#include "registry/windows/type_ahead.h"
#include "scripted_ports.h"
#include "several_tests.h"

namespace kalvor::testing {
namespace {

class ScriptedSource : public LookupSource {
 public:
  ScriptedSource() { installLookupSource(this); }
  ~ScriptedSource() override { installLookupSource(nullptr); }
  void ask(const LookupQuestion& question, QObject*, Answer answered) override
  {
    questions.append(question);
    waiting = std::move(answered);
    if (answersAtOnce)
      answer();
  }
  void answer()
  {
    LookupMatches matches;
    matches.columns = QStringList{QStringLiteral("Id"), QStringLiteral("Code"), QStringLiteral("Name")};
    matches.codeColumn = 1;
    matches.nameColumn = 2;
    for (int i = 0; i < rows; ++i) {
      const QString code = questions.last().text + QString::number(i);
      matches.rows.append({i + 1, code, QStringLiteral("Артикул ") + code});
    }
    std::exchange(waiting, {})(matches);
  }
  QStringList texts() const
  {
    QStringList result;
    for (const LookupQuestion& question : questions)
      result.append(question.text);
    return result;
  }
  QList<LookupQuestion> questions;
  Answer waiting;
  int rows = 3;
  bool answersAtOnce = false;
};

const QString codeDescription =
    QStringLiteral("<#Field(Kind)#>,=,1,;150;Id,Code,Name;Item_Id,Code,Name;"
                   "N_Item.Code,LIKE,<#Param(OwnerValue)#>,&N_Item.Kind,=,<#Field(Kind)#>,;N_Item.Inactive,=,0,");

struct LookupWindow {
  LookupWindow()
  {
    dataSet = form.addDataSet(QStringLiteral("cdsMaster"),
                              {fieldDef(QStringLiteral("Item_Id"), DataType::Integer), fieldDef(QStringLiteral("Code")),
                               fieldDef(QStringLiteral("Name")), fieldDef(QStringLiteral("Kind"), DataType::Integer)});
    dataSet->AppendRecord({0, QStringLiteral("Z9"), QStringLiteral("Стар"), 1});
    edit = new TDBEdit(&window);
    edit->setGeometry(10, 20, 200, 24);
    edit->setDataSet(dataSet);
    edit->setDataField(QStringLiteral("Code"));
    button = std::make_unique<TSelectorButton>(edit, &form, codeDescription, dataSet);
    ahead = button->findChild<TypeAhead*>();
    other = new QLineEdit(&window);
    other->setGeometry(10, 300, 100, 24);
    window.resize(500, 400);
    window.show();
    window.activateWindow();
    (void)QTest::qWaitForWindowActive(&window);
    edit->setFocus();
    edit->selectAll();
  }
  void type(const QString& text) { QTest::keyClicks(edit, text); }
  bool openWith(const QString& text, ScriptedSource& source)
  {
    source.answersAtOnce = true;
    type(text);
    return QTest::qWaitFor([this] { return ahead->isOpen(); });
  }
  QString value(const char* name) const { return dataSet->FieldByName(QString::fromLatin1(name))->AsString(); }

  FakeServices services;
  FakeForm form;
  QWidget window;
  TClientDataSet* dataSet;
  TDBEdit* edit;
  QLineEdit* other;
  std::unique_ptr<TSelectorButton> button;
  TypeAhead* ahead;
};

}  // namespace

class TypeAheadTest : public QObject {
  Q_OBJECT
 private slots:
  void asksOnceAfterAPauseWithTheSelectorsFilters()
  {
    LookupWindow screen;
    ScriptedSource source;
    screen.type(QStringLiteral("AB1"));
    QCOMPARE(source.questions.size(), 0);
    QTRY_COMPARE(source.texts(), QStringList(QStringLiteral("AB1")));
    const LookupQuestion& question = source.questions.first();
    QCOMPARE(question.formId, 150);
    QCOMPARE(question.shownField, QStringLiteral("Code"));
    QCOMPARE(filterText(question.filter), QStringLiteral("(N_Item.Code;LIKE;AB1;AND) (N_Item.Kind;=;1;)"));
    QCOMPARE(question.typedRows, QList<int>{0});
    QCOMPARE(filterText(question.publicFilter), QStringLiteral("(N_Item.Inactive;=;0;)"));
    QVERIFY(!screen.ahead->isOpen());
    source.answer();
    QVERIFY(screen.ahead->isOpen());
    QCOMPARE(screen.ahead->list()->topLevelItemCount(), 3);
    QCOMPARE(screen.ahead->list()->topLevelItem(1)->text(1), QStringLiteral("Артикул AB11"));
    QVERIFY(screen.edit->hasFocus());
    QCOMPARE(screen.value("Code"), QStringLiteral("Z9"));
  }

  void oneRequestAtATimeAndLateAnswersAreDropped()
  {
    LookupWindow screen;
    ScriptedSource source;
    screen.type(QStringLiteral("A"));
    QTRY_COMPARE(source.questions.size(), 1);
    screen.type(QStringLiteral("B"));
    QTest::qWait(2 * TypeAhead::pauseMs);
    QCOMPARE(source.texts(), QStringList(QStringLiteral("A")));  // the first one is still out
    source.answer();
    QVERIFY(!screen.ahead->isOpen());
    QTRY_COMPARE(source.texts(), (QStringList{QStringLiteral("A"), QStringLiteral("AB")}));
    source.answer();
    QVERIFY(screen.ahead->isOpen());
    QCOMPARE(screen.ahead->list()->topLevelItem(0)->text(0), QStringLiteral("AB0"));
  }

  void keysOfTheOpenList_data()
  {
    QTest::addColumn<QList<int>>("keys");
    QTest::addColumn<bool>("open");
    QTest::addColumn<QString>("code");
    QTest::addColumn<QString>("text");
    const auto row = [](const char* name, const QList<int>& keys, bool open, const char* code, const char* text) {
      QTest::newRow(name) << keys << open << QString::fromLatin1(code) << QString::fromLatin1(text);
    };
    row("enter takes the first", {Qt::Key_Return}, false, "AB0", "AB0");
    row("down chooses", {Qt::Key_Down, Qt::Key_Enter}, false, "AB1", "AB1");
    row("not past the last", {Qt::Key_Down, Qt::Key_Down, Qt::Key_Down, Qt::Key_Down, Qt::Key_Return}, false, "AB2", "AB2");
    row("up again", {Qt::Key_Down, Qt::Key_Up, Qt::Key_Up, Qt::Key_Return}, false, "AB0", "AB0");
    row("escape closes and keeps the text", {Qt::Key_Escape}, false, "Z9", "AB");
    row("a second escape takes it back", {Qt::Key_Escape, Qt::Key_Escape}, false, "Z9", "Z9");
    row("moving leaves the field alone", {Qt::Key_Down}, true, "Z9", "AB");
  }
  void keysOfTheOpenList()
  {
    QFETCH(QList<int>, keys);
    LookupWindow screen;
    ScriptedSource source;
    QVERIFY(screen.openWith(QStringLiteral("AB"), source));
    for (const int key : keys)
      QTest::keyClick(screen.edit, Qt::Key(key));
    QTEST(screen.ahead->isOpen(), "open");
    QTEST(screen.value("Code"), "code");
    QTEST(screen.edit->text(), "text");
    const bool taken = screen.value("Code") != QStringLiteral("Z9");
    QCOMPARE(screen.form.handed.size(), qsizetype(taken));
    if (taken) {
      QCOMPARE(screen.value("Name"), QStringLiteral("Артикул ") + screen.value("Code"));
      QCOMPARE(screen.form.handedOptions, ShowOption(so_SelectSingle));
      QVERIFY(screen.form.handed.first().first()[1].KeyField);
      QVERIFY(screen.services.askedFilters.isEmpty());  // nothing was asked again
    }
  }

  void altDownOpensTheLookupsOwnWindow()
  {
    LookupWindow screen;
    ScriptedSource source;
    QVERIFY(screen.openWith(QStringLiteral("AB"), source));
    QTest::keyClick(screen.edit, Qt::Key_Down, Qt::AltModifier);
    QVERIFY(!screen.ahead->isOpen());
    QCOMPARE(screen.services.openedForms, QList<int>{150});
    QCOMPARE(filterText(screen.services.openedFilter), QStringLiteral("(N_Item.Code;LIKE;AB;AND) (N_Item.Kind;=;1;)"));
  }

  void leavingClosesTheList()
  {
    LookupWindow screen;
    ScriptedSource source;
    QVERIFY(screen.openWith(QStringLiteral("AB"), source));
    screen.other->setFocus();
    QVERIFY(!screen.ahead->isOpen());
    QCOMPARE(screen.value("Code"), QStringLiteral("AB"));  // written as it was typed; the form's handlers look it up
    QCOMPARE(screen.form.handed.size(), 0);
  }

  void offersNothing_data()
  {
    QTest::addColumn<QString>("why");
    for (const char* why : {"veto", "copying", "no item", "empty text", "error"})
      QTest::newRow(why) << QString::fromLatin1(why);
  }
  void offersNothing()
  {
    QFETCH(QString, why);
    LookupWindow screen;
    ScriptedSource source;
    ScriptedPrompt prompt;
    screen.form.selectorAction = why == u"veto" ? -1 : 1;
    screen.form.copying = why == u"copying";
    if (why == u"no item") {
      screen.dataSet->Edit();
      screen.dataSet->FieldByName(u"Kind")->SetAsInteger(7);
    }
    source.rows = why == u"error" ? 0 : 3;
    source.answersAtOnce = true;
    screen.type(QStringLiteral("AB"));
    if (why == u"empty text") {
      QTest::keyClick(screen.edit, Qt::Key_Backspace);
      QTest::keyClick(screen.edit, Qt::Key_Backspace);
    }
    QTest::qWait(2 * TypeAhead::pauseMs);
    QVERIFY(!screen.ahead->isOpen());
    QCOMPARE(source.questions.size(), qsizetype(why == u"error"));
    QCOMPARE(prompt.messages, QStringList());
  }

  void attempts_data()
  {
    QTest::addColumn<QString>("filter");
    QTest::addColumn<QList<int>>("typedRows");
    QTest::addColumn<QString>("code");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QStringList>("expected");
    const QString code = QStringLiteral("I.Code"), name = QStringLiteral("I.Name");
    QTest::newRow("by code") << "I.Code,LIKE,аб,&I.Kind,=,1," << QList<int>{0} << code << name
                             << QStringList{"(I.Code;LIKE;аб%;AND;() (I.Kind;=;1;;))", "(I.Name;LIKE;аб%;AND;() (I.Kind;=;1;;))",
                                            "(I.Name;LIKE;%аб%;AND;() (I.Kind;=;1;;))"};
    QTest::newRow("by name") << "I.Name,LIKE,аб," << QList<int>{0} << code << name
                             << QStringList{"(I.Name;LIKE;аб%;)", "(I.Code;LIKE;аб%;)", "(I.Name;LIKE;%аб%;)"};
    QTest::newRow("another field, no name") << "I.Bar,=,аб," << QList<int>{0} << code << QString()
                                            << QStringList{"(I.Bar;LIKE;аб%;)", "(I.Code;LIKE;аб%;)", "(I.Bar;LIKE;%аб%;)"};
    QTest::newRow("a filter without the text") << "I.Kind,=,1," << QList<int>{} << code << name
                             << QStringList{"(I.Kind;=;1;AND;() (I.Code;LIKE;аб%;;))", "(I.Kind;=;1;AND;() (I.Name;LIKE;аб%;;))",
                                            "(I.Kind;=;1;AND;() (I.Name;LIKE;%аб%;;))"};
    QTest::newRow("nothing to compare") << "I.Kind,=,1," << QList<int>{} << QString() << QString() << QStringList{};
  }
  void attempts()
  {
    QFETCH(QString, filter);
    QFETCH(QList<int>, typedRows);
    QFETCH(QString, code);
    QFETCH(QString, name);
    LookupQuestion question;
    question.text = QStringLiteral("аб");
    question.filter = BuildFilterFromStr(filter);
    question.typedRows = typedRows;
    QStringList filters;
    for (const LookupAttempt& attempt : lookupAttempts(question, code, name))
      filters.append(filterText(attempt.filter));
    QTEST(filters, "expected");
  }
};

const RegisterTest<TypeAheadTest> typeAheadTest;

}  // namespace kalvor::testing

#include "type_ahead_test.moc"
