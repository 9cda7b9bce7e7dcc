// The data-bound controls, driven by keys and mouse.
#include <QSignalSpy>
#include <QVBoxLayout>
#include <QWheelEvent>

#include "demo_records.h"
#include "typing.h"
#include "widgets/db_check_box.h"
#include "widgets/db_combo_box.h"
#include "widgets/db_date_edit.h"
#include "widgets/db_memo.h"
#include "widgets/db_text.h"
#include "widgets/edit_button.h"
#include "widgets/enter_moves_on.h"
#include "widgets/field_validator.h"
#include "widgets/theme.h"

namespace kalvor {
namespace {

const QStringList kindNames{QStringLiteral("Стока"), QStringLiteral("Материал"), QStringLiteral("Услуга")};

// A shown form with one control of each kind.
struct Form {
  TClientDataSet data;
  QWidget window;
  TDBEdit* code;
  TDBFlatEdit* name;
  TDBEdit* quantity;
  TDBDateEdit* date;
  TDBComboBox* kind;
  TDBCheckBox* active;
  TDBMemo* note;
  TDBText* amount;
  Messages messages;

  Form()
  {
    demo::openItems(data, 20);
    new QVBoxLayout(&window);
    code = add<TDBEdit>("Code");
    name = add<TDBFlatEdit>("Name");
    quantity = add<TDBEdit>("Quantity");
    date = add<TDBDateEdit>("DocDate");
    kind = add<TDBComboBox>("Kind");
    kind->setItems(kindNames);
    active = add<TDBCheckBox>("IsActive");
    note = add<TDBMemo>("Note");
    amount = add<TDBText>("Amount");
    window.show();
    window.activateWindow();
    (void)QTest::qWaitForWindowActive(&window);
  }

  template <class Control>
  Control* add(const char* field)
  {
    auto* control = new Control(&window);
    control->setDataSet(&data);
    control->setDataField(QString::fromLatin1(field));
    window.layout()->addWidget(control);
    return control;
  }

  TField* field(const char* fieldName) { return data.FieldByName(QString::fromLatin1(fieldName)); }

  void enter(QWidget* control)
  {
    control->clearFocus();
    control->setFocus(Qt::TabFocusReason);
    QTRY_VERIFY(control->hasFocus());
  }

};

}  // namespace

class TestControls : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() { applyTheme(*qApp, ThemeMode::Light); }

  void typingGoesToTheFieldWhenTheControlIsLeft()
  {
    Form form;
    form.enter(form.name);
    QCOMPARE(form.name->selectedText(), form.name->text());
    typeText(form.name, QStringLiteral("Мляко"));
    QCOMPARE(form.data.State(), DataSetState::Edit);
    QCOMPARE(form.field("Name")->AsString(), QStringLiteral("Хартия копирна А4, 80 г/м², 500 листа"));
    QTest::keyClick(form.name, Qt::Key_Tab);
    QCOMPARE(form.field("Name")->AsString(), QStringLiteral("Мляко"));
    QVERIFY(form.messages.texts.isEmpty());
  }

  void pendingTextIsWrittenByEnterAndByPost()
  {
    Form form;
    form.enter(form.code);
    typeText(form.code, QStringLiteral("77"));
    QTest::keyClick(form.code, Qt::Key_Return);
    QCOMPARE(form.field("Code")->AsString(), QStringLiteral("77"));
    typeText(form.code, QStringLiteral("8"));
    form.data.Post();
    QCOMPARE(form.field("Code")->AsString(), QStringLiteral("778"));
    QCOMPARE(form.data.State(), DataSetState::Browse);
  }

  void escapeTakesTheTextBackAndThenBelongsToTheForm()
  {
    Form form;
    form.enter(form.code);
    typeText(form.code, QStringLiteral("9"));
    QKeyEvent first(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    QApplication::sendEvent(form.code, &first);
    QVERIFY(first.isAccepted());
    QCOMPARE(form.code->text(), QStringLiteral("1001"));
    QKeyEvent second(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    second.ignore();
    form.code->event(&second);
    QVERIFY(!second.isAccepted());
    QTest::keyClick(form.code, Qt::Key_Tab);
    QCOMPARE(form.field("Code")->AsString(), QStringLiteral("1001"));
  }

  void refusedEditRestoresTheText_data()
  {
    QTest::addColumn<bool>("silent");
    QTest::addColumn<QStringList>("messages");
    QTest::newRow("with a message") << false << QStringList{QStringLiteral("Забранено")};
    QTest::newRow("silently") << true << QStringList{};
  }
  void refusedEditRestoresTheText()
  {
    QFETCH(bool, silent);
    QFETCH(QStringList, messages);
    Form form;
    form.data.BeforeEdit = [silent](TClientDataSet*) {
      if (silent) {
        throw SilentAbort();
      }
      throw DataError(QStringLiteral("Забранено"));
    };
    form.enter(form.name);
    const QString before = form.name->text();
    typeText(form.name, QStringLiteral("Ф"));
    QCOMPARE(form.name->text(), before);
    QCOMPARE(form.data.State(), DataSetState::Browse);
    QCOMPARE(form.messages.texts, messages);
    QTest::mouseClick(form.active, Qt::LeftButton, {}, QPoint(8, form.active->height() / 2));
    QVERIFY(form.active->isChecked());
    QCOMPARE(form.field("IsActive")->AsInteger(), 1);
  }

  void refusedValueKeepsTextAndFocus()
  {
    Form form;
    form.field("Quantity")->OnValidate = [](TField* field) {
      if (field->AsFloat() > 100) {
        throw DataError(QStringLiteral("Твърде много"));
      }
    };
    form.enter(form.quantity);
    typeText(form.quantity, QStringLiteral("250"));
    QTest::keyClick(form.quantity, Qt::Key_Tab);
    QTRY_COMPARE(form.messages.texts, QStringList{QStringLiteral("Твърде много")});
    QTRY_VERIFY(form.quantity->hasFocus());
    QVERIFY(form.quantity->isRefused());
    QCOMPARE(form.quantity->text(), QStringLiteral("250"));
    QCOMPARE(form.quantity->palette().color(QPalette::Base), theme().invalid);
    QVERIFY_THROWS_EXCEPTION(DataError, form.data.Post());
    QCOMPARE(form.quantity->text(), QStringLiteral("250"));
    QCOMPARE(form.data.State(), DataSetState::Edit);
    form.quantity->selectAll();
    typeText(form.quantity, QStringLiteral("50"));
    QVERIFY(!form.quantity->isRefused());
    form.data.Post();
    QCOMPARE(form.field("Quantity")->AsFloat(), 50.0);
  }

  void ruleThatFailsAfterTheValueDoesNotTrapTheFocus()
  {
    Form form;
    form.field("Code")->OnChange = [](TField*) { throw DataError(QStringLiteral("Няма цена")); };
    form.enter(form.code);
    typeText(form.code, QStringLiteral("5"));
    QTest::keyClick(form.code, Qt::Key_Tab);
    QTRY_COMPARE(form.messages.texts, QStringList{QStringLiteral("Няма цена")});
    QVERIFY(!form.code->hasFocus());
    QCOMPARE(form.field("Code")->AsString(), QStringLiteral("5"));
  }

  void pendingTextOutlivesChangesOfOtherFields()
  {
    Form form;
    form.enter(form.name);
    typeText(form.name, QStringLiteral("Ново"));
    form.field("Price")->SetAsFloat(3);
    {
      const ControlsDisabledScope quiet(&form.data);
      form.field("Amount")->SetAsFloat(-4.5);
      QCOMPARE(form.amount->text(), QStringLiteral("0,99"));
    }
    QCOMPARE(form.name->text(), QStringLiteral("Ново"));
    QCOMPARE(form.amount->text(), QStringLiteral("-4,50"));
    form.data.Cancel();
    QCOMPARE(form.name->text(), QStringLiteral("Хартия копирна А4, 80 г/м², 500 листа"));
  }

  void charactersByDataType_data()
  {
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("text");
    QTest::newRow("number") << "Quantity" << QStringLiteral("1а2.5х") << QStringLiteral("12,5");
    QTest::newRow("grouped number") << "Quantity" << QStringLiteral("-1 234,5") << QStringLiteral("-1 234,5");
    QTest::newRow("text up to its size") << "Code" << QStringLiteral("абвгдежзийкл") << QStringLiteral("абвгдежзий");
    QTest::newRow("date") << "DocDate" << QStringLiteral("1д5.03") << QStringLiteral("15.03");
  }
  void charactersByDataType()
  {
    QFETCH(QString, field);
    QFETCH(QString, typed);
    QFETCH(QString, text);
    Form form;
    form.code->setDataField(field);
    form.enter(form.code);
    form.code->selectAll();
    typeText(form.code, typed);
    QCOMPARE(form.code->text(), text);
  }

  void numbersAndDatesShowAsUsersWriteThem()
  {
    Form form;
    form.data.Edit();
    form.field("Quantity")->SetAsFloat(-12345.5);
    QCOMPARE(form.quantity->text(), QStringLiteral("-12\u00A0345,500"));
    QVERIFY(form.quantity->alignment().testFlag(Qt::AlignRight));
    QVERIFY(form.date->alignment().testFlag(Qt::AlignLeft));
    QCOMPARE(form.date->text(), QStringLiteral("01.01.2024"));
    form.enter(form.quantity);
    QCOMPARE(form.quantity->text(), form.field("Quantity")->EditText());
  }

  void shortDatesAreCompleted_data()
  {
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("completed");
    QTest::newRow("day") << "5" << "05.02.2024";
    QTest::newRow("day and month") << "0503" << "05.03.2024";
    QTest::newRow("day and month with a dot") << "5.3" << "05.03.2024";
    QTest::newRow("two-digit year") << "050323" << "05.03.2023";
    QTest::newRow("whole") << "05032023" << "05.03.2023";
    QTest::newRow("year first") << "20230305" << "20230305";
    QTest::newRow("no such day") << "30" << "30";
    QTest::newRow("written out") << "5.3.2023" << "5.3.2023";
  }
  void shortDatesAreCompleted()
  {
    QFETCH(QString, typed);
    QFETCH(QString, completed);
    QCOMPARE(completeDate(typed, QDate(2024, 2, 10)), completed);
  }

  void readOnlyControlsTakeNothing()
  {
    Form form;
    const QColor grey(0xe0, 0xe0, 0xd0);
    for (DataControl* control : {static_cast<DataControl*>(form.name), static_cast<DataControl*>(form.kind),
                                 static_cast<DataControl*>(form.active), static_cast<DataControl*>(form.note)}) {
      control->setReadOnly(true);
      control->setReadOnlyColor(grey);
      form.enter(control->controlWidget());
      typeText(control->controlWidget(), QStringLiteral("у"));
      QTest::keyClick(control->controlWidget(), Qt::Key_Down);
      QTest::keyClick(control->controlWidget(), Qt::Key_Space);
    }
    QCOMPARE(form.data.State(), DataSetState::Browse);
    QVERIFY(form.active->isChecked());
    QCOMPARE(form.kind->currentIndex(), 0);
    QCOMPARE(form.name->palette().color(QPalette::Base), grey);
    form.name->setReadOnly(false);
    QCOMPARE(form.name->palette().color(QPalette::Base), QApplication::palette().color(QPalette::Base));
    form.field("Name")->ReadOnly = true;
    form.enter(form.name);
    typeText(form.name, QStringLiteral("у"));
    QCOMPARE(form.data.State(), DataSetState::Browse);
  }

  void dropDownStoresThePosition()
  {
    Form form;
    form.enter(form.kind);
    QCOMPARE(form.kind->currentText(), QStringLiteral("Стока"));
    QTest::keyClick(form.kind, Qt::Key_Down);
    QCOMPARE(form.data.State(), DataSetState::Edit);
    QCOMPARE(form.field("Kind")->AsInteger(), 1);
    form.field("Kind")->OnGetText = nullptr;
    form.field("Kind")->OnSetText = nullptr;
    form.field("Kind")->SetAsInteger(2);
    QCOMPARE(form.kind->currentIndex(), 2);
    QTest::keyClick(form.kind, Qt::Key_Up);
    QCOMPARE(form.field("Kind")->AsInteger(), 1);
    form.field("Kind")->SetAsInteger(9);
    QCOMPARE(form.kind->currentIndex(), -1);
  }

  void dropDownRefusedKeepsTheFieldsItem()
  {
    Form form;
    form.field("Kind")->OnValidate = [](TField*) { throw DataError(QStringLiteral("Не може")); };
    form.enter(form.kind);
    QTest::keyClick(form.kind, Qt::Key_Down);
    QCOMPARE(form.kind->currentIndex(), 0);
    QCOMPARE(form.messages.texts, QStringList{QStringLiteral("Не може")});
  }

  void wheelChangesNothing()
  {
    Form form;
    form.enter(form.kind);
    QWheelEvent wheel(QPointF(5, 5), form.kind->mapToGlobal(QPointF(5, 5)), QPoint(), QPoint(0, -120), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(form.kind, &wheel);
    QCOMPARE(form.kind->currentIndex(), 0);
  }

  void checkBoxStoresItsValues()
  {
    Form form;
    form.enter(form.active);
    QVERIFY(form.active->isChecked());
    QTest::keyClick(form.active, Qt::Key_Space);
    QCOMPARE(form.field("IsActive")->AsInteger(), 0);
    QVERIFY(!form.active->isChecked());
    form.active->setValueChecked(QStringLiteral("0"));
    QVERIFY(form.active->isChecked());
    form.field("IsActive")->Clear();
    QVERIFY(!form.active->isChecked());
  }

  void memoKeepsLines()
  {
    Form form;
    form.enter(form.note);
    typeText(form.note, QStringLiteral("ред"));
    QTest::keyClick(form.note, Qt::Key_Return);
    typeText(form.note, QStringLiteral("два"));
    QTest::keyClick(form.note, Qt::Key_Tab);
    QCOMPARE(form.field("Note")->AsString(), QStringLiteral("ред\nдва"));
  }

  void controlsFollowTheCursorAndClosing()
  {
    Form form;
    form.data.SetRecNo(5);
    QCOMPARE(form.code->text(), QStringLiteral("1005"));
    QCOMPARE(form.quantity->text(), QStringLiteral("-29,000"));
    QCOMPARE(form.amount->palette().color(QPalette::WindowText), theme().negative);
    form.data.Close();
    QCOMPARE(form.code->text(), QString());
    QCOMPARE(form.kind->currentIndex(), -1);
    form.enter(form.code);
    typeText(form.code, QStringLiteral("1"));
    QCOMPARE(form.code->text(), QString());
  }

  void disabledControlsWait()
  {
    Form form;
    form.data.DisableControls();
    form.data.SetRecNo(3);
    QCOMPARE(form.code->text(), QStringLiteral("1001"));
    form.data.EnableControls();
    QCOMPARE(form.code->text(), QStringLiteral("1003"));
  }

  void enterMovesOn()
  {
    Form form;
    auto* mover = new EnterMovesOn(&form.window);
    form.enter(form.code);
    QTest::keyClick(form.code, Qt::Key_Return);
    QTRY_VERIFY(form.name->hasFocus());
    QTest::keyClick(form.name, Qt::Key_Return, Qt::ShiftModifier);
    QTRY_VERIFY(form.code->hasFocus());
    QTest::keyClick(form.code, Qt::Key_Return, Qt::ControlModifier);
    QVERIFY(form.code->hasFocus());
    form.enter(form.kind);
    QTest::keyClick(form.kind, Qt::Key_Return);
    QTRY_VERIFY(form.active->hasFocus());
    mover->askFirst = [](QKeyEvent*) { return true; };
    QTest::keyClick(form.active, Qt::Key_Return);
    QVERIFY(form.active->hasFocus());
  }

  void enterOnRefusedTextStays()
  {
    Form form;
    new EnterMovesOn(&form.window);
    form.field("Code")->OnValidate = [](TField*) { throw DataError(QStringLiteral("Не")); };
    form.enter(form.code);
    typeText(form.code, QStringLiteral("5"));
    QTest::keyClick(form.code, Qt::Key_Return);
    QVERIFY(form.code->hasFocus());
    QCOMPARE(form.messages.texts, QStringList{QStringLiteral("Не")});
  }

  void focusControlTakesTheFocus()
  {
    Form form;
    form.enter(form.code);
    // As a dataset asks for it when a required field is empty.
    form.field("Name")->Required = true;
    form.data.Edit();
    form.field("Name")->Clear();
    QVERIFY_THROWS_EXCEPTION(DataError, form.data.Post());
    QTRY_VERIFY(form.name->hasFocus());
  }

  void buttonStandsInsideTheEdit()
  {
    Form form;
    auto* button = new EditButton(form.code);
    QSignalSpy clicks(button, &QAbstractButton::clicked);
    const QRect edit = form.code->geometry();
    QCOMPARE(button->geometry(), QRect(edit.right() + 1 - (edit.height() - 1) - 2, edit.top() + 1, edit.height() - 1,
                                       edit.height() - 2));
    QCOMPARE(button->parentWidget(), form.code->parentWidget());
    QCOMPARE(button->focusPolicy(), Qt::NoFocus);
    QVERIFY(button->isVisible());
    QVERIFY(form.code->textMargins().right() >= button->width());
    form.enter(form.code);
    QTest::keyClick(form.code, Qt::Key_Down, Qt::AltModifier);
    QCOMPARE(clicks.size(), 1);
    form.window.resize(form.window.width() + 100, form.window.height());
    QTRY_COMPARE(button->geometry(), EditButtonPlacement::buttonGeometry(form.code->geometry()));
    form.code->hide();
    QVERIFY(!button->isVisible());
    form.code->show();
    button->placement()->setButtonVisible(false);
    QVERIFY(!button->isVisible());
    QTest::keyClick(form.code, Qt::Key_Down, Qt::AltModifier);
    QCOMPARE(clicks.size(), 1);
  }

  void bindingByName()
  {
    QWidget window;
    TDBEdit edit(&window);
    TDBEdit lost(&window);
    QObject owner;
    auto* data = new TClientDataSet(&owner);
    demo::openItems(*data, 3);
    edit.setProperty("dataSetName", QStringLiteral("cdsMaster"));
    edit.setProperty("dataField", QStringLiteral("code"));
    lost.setProperty("dataSetName", QStringLiteral("cdsOther"));
    QCOMPARE(bindControls(&window, &owner), QStringList{QStringLiteral("cdsOther")});
    QCOMPARE(edit.text(), QStringLiteral("1001"));
    delete data;
    QCOMPARE(edit.dataSet(), nullptr);
  }
};

}  // namespace kalvor

QTEST_MAIN(kalvor::TestControls)
#include "test_controls.moc"
