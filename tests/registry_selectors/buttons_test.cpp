// The buttons of lookup and date fields: where they stand, what runs them, what the lookup sees.
#include <QHBoxLayout>

#include "fake_form.h"
#include "filter_text.h"
#include "registry/windows/date_selector.h"
#include "registry/windows/selector_edit.h"
#include "scripted_ports.h"
#include "several_tests.h"
#include "widgets/db_date_edit.h"

namespace kalvor::testing {
namespace {

const QString codeDescription = QStringLiteral(";150;Code;Code;N_Item.Code,LIKE,<#Param(OwnerValue)#>,");

// A window with the edit of one field of a record.
struct EditWindow {
  EditWindow()
  {
    dataSet = form.addDataSet(QStringLiteral("cdsMaster"), {fieldDef(QStringLiteral("Code")), fieldDef(QStringLiteral("Day"), DataType::Date)});
    form.setObjectName(QStringLiteral("fEdit"));
    dataSet->AppendRecord({QStringLiteral("A1"), QVariant()});
    edit = new TDBEdit(&window);
    edit->setGeometry(10, 20, 200, 24);
    edit->setDataSet(dataSet);
    edit->setDataField(QStringLiteral("Code"));
    window.resize(400, 200);
    window.show();
    window.activateWindow();
    edit->setFocus();
  }
  FakeServices services;
  FakeForm form;
  QWidget window;
  TClientDataSet* dataSet;
  TDBEdit* edit;
};

}  // namespace

class SelectorButtonsTest : public QObject {
  Q_OBJECT
 private slots:
  void standsInsideTheRightEdge()
  {
    EditWindow screen;
    const TSelectorButton button(screen.edit, &screen.form, codeDescription, screen.dataSet);
    QCOMPARE(button.parentWidget(), &screen.window);
    QCOMPARE(button.geometry(), QRect(10 + 200 - 23 - 2, 21, 23, 22));
    QCOMPARE(button.text(), QStringLiteral("..."));
    QVERIFY(button.objectName().startsWith(QLatin1String("slct_")));
    QCOMPARE(button.objectName().size(), 5 + 32);
    QCOMPARE(button.focusPolicy(), Qt::NoFocus);
    QCOMPARE(button.selector()->FieldName, QStringLiteral("Code"));
    screen.edit->setGeometry(30, 40, 100, 30);
    QCOMPARE(button.geometry(), QRect(30 + 100 - 29 - 2, 41, 29, 28));

    const TSelectorButton other(screen.edit, &screen.form, codeDescription, screen.dataSet);
    QVERIFY(other.objectName() != button.objectName());
  }

  void runsByClickAndByAltDown()
  {
    EditWindow screen;
    TSelectorButton button(screen.edit, &screen.form, codeDescription, screen.dataSet);
    QTest::mouseClick(&button, Qt::LeftButton);
    QCOMPARE(screen.services.openedForms.size(), 1);
    QCOMPARE(filterText(screen.services.openedFilter), QStringLiteral("(N_Item.Code;LIKE;A1;)"));
    QTest::keyClick(screen.edit, Qt::Key_Down, Qt::AltModifier);
    QCOMPARE(screen.services.openedForms.size(), 2);
    QTest::keyClick(screen.edit, Qt::Key_Down);
    QCOMPARE(screen.services.openedForms.size(), 2);
  }

  void theTypedTextIsWhatIsSearchedFor()
  {
    EditWindow screen;
    TSelectorButton button(screen.edit, &screen.form, codeDescription, screen.dataSet);
    QString shown;
    screen.services.choose = [&](TSelectionList&, QObject*) {
      shown = screen.edit->text();
      return 2;
    };
    screen.edit->selectAll();
    QTest::keyClicks(screen.edit, QStringLiteral("B2"));
    QTest::keyClick(screen.edit, Qt::Key_Down, Qt::AltModifier);
    QCOMPARE(filterText(screen.services.openedFilter), QStringLiteral("(N_Item.Code;LIKE;B2;)"));
    QCOMPARE(shown, QStringLiteral("A1"));
    QCOMPARE(screen.edit->text(), QStringLiteral("A1"));
    QVERIFY(!screen.edit->isPending());
  }

  void readOnlyEditsCannotSelect()
  {
    EditWindow screen;
    TSelectorButton button(screen.edit, &screen.form, codeDescription, screen.dataSet);
    screen.edit->setReadOnly(true);
    button.click();
    QCOMPARE(screen.services.openedOptions, ShowOption(so_SelectSingle) | so_CannotSelect);
  }

  void errorsReachTheUser()
  {
    EditWindow screen;
    QString told;
    const auto before = setControlMessageHandler([&](QWidget*, const QString& message) { told = message; });
    screen.services.choose = [](TSelectionList&, QObject*) -> int { throw DataError(QStringLiteral("няма връзка")); };
    TSelectorButton button(screen.edit, &screen.form, codeDescription, screen.dataSet);
    button.click();
    setControlMessageHandler(before);
    QCOMPARE(told, QStringLiteral("няма връзка"));
  }

  void theSelectorEdit()
  {
    EditWindow screen;
    TSelector selector(&screen.form, screen.dataSet->FindField(u"Code"), codeDescription, screen.dataSet);
    TSelectorEdit edit(&screen.window, &selector);
    QCOMPARE(edit.objectName(), QStringLiteral("slct_fEdit"));
    QCOMPARE(edit.text(), QStringLiteral("..."));
    edit.setDataSet(screen.dataSet);
    edit.setDataField(QStringLiteral("Code"));
    QCOMPARE(edit.text(), QStringLiteral("A1"));
    QTest::keyClick(&edit, Qt::Key_Down, Qt::AltModifier);
    QCOMPARE(screen.services.openedForms, QList<int>{150});
  }

  void theCalendarOfADateField()
  {
    EditWindow screen;
    const FixedClock clock(QDateTime(QDate(2024, 1, 31), QTime(12, 0)));
    TDBDateEdit edit(&screen.window);
    edit.setGeometry(10, 60, 120, 24);
    edit.setDataSet(screen.dataSet);
    edit.setDataField(QStringLiteral("Day"));
    edit.show();
    TDateSelectorButton button(&edit);
    QCOMPARE(button.geometry(), EditButtonPlacement::buttonGeometry(edit.geometry()));
    QTest::keyClick(&edit, Qt::Key_Down, Qt::AltModifier);
    auto* calendar = edit.findChild<TfDateSelectorForm*>();
    QVERIFY(calendar);
    QCOMPARE(calendar->date(), QDate(2024, 1, 31));
    calendar->takeDate();
    QCOMPARE(screen.dataSet->FindField(u"Day")->Value().toDate(), QDate(2024, 1, 31));
  }
};

const RegisterTest<SelectorButtonsTest> selectorButtonsTest;

}  // namespace kalvor::testing

#include "buttons_test.moc"
