#include <QAbstractButton>
#include <QCheckBox>
#include <QComboBox>
#include <QTimer>

#include "../several_tests.h"
#include "filters/windows/field_filter_dialog.h"
#include "sample_forms.h"
#include "session/settings_document.h"
#include "widgets/db_grid_ex.h"

using namespace kalvor;
using namespace kalvor::testing;

class FieldFilterTest : public QObject {
  Q_OBJECT

  // Does it in the dialog that opens next, and presses Ok.
  static void inDialog(Desk& desk, std::function<void(TfFilterFields&)> body)
  {
    QTimer::singleShot(0, &desk.window.area, [body = std::move(body)] {
      auto* dialog = qobject_cast<TfFilterFields*>(QApplication::activeModalWidget());
      if (!dialog) {
        return;
      }
      body(*dialog);
      dialog->findChild<QAbstractButton*>(QStringLiteral("btnOK"))->click();
      dialog->reject();  // when the criterion was refused
    });
  }

 private slots:
  void starsStandWhereTheUserPutNone_data()
  {
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("criterion");
    QTest::newRow("plain") << QStringLiteral("ab") << QStringLiteral("*ab*");
    QTest::newRow("leading percent") << QStringLiteral("%ab") << QStringLiteral("%ab*");
    QTest::newRow("both") << QStringLiteral("*ab%") << QStringLiteral("*ab%");
    QTest::newRow("trailing") << QStringLiteral("ab*") << QStringLiteral("*ab*");
    QTest::newRow("empty") << QString() << QStringLiteral("**");
  }

  void starsStandWhereTheUserPutNone()
  {
    QFETCH(const QString, typed);
    QTEST(containsCriterion(typed), "criterion");
  }

  void aTypedCriterionFiltersTheList()
  {
    Desk desk;
    auto* list = desk.open<TfBrContragent>(140);
    list->dbgMaster()->setFocus();
    list->dbgMaster()->selectField(QStringLiteral("Name"));
    inDialog(desk, [](TfFilterFields& dialog) {
      dialog.findChild<QCheckBox*>(QStringLiteral("chkFullMatch"))->setChecked(true);
      dialog.setValue(QStringLiteral("ЕТ*"));
    });
    list->FieldFilter();
    QCOMPARE(desk.prompt.takeMessages(), QStringList());
    QCOMPARE(list->formFilter().size(), 1);
    QCOMPARE(list->formFilter()[0].op, QStringLiteral("LIKE"));
    QCOMPARE(list->formFilter()[0].value.toString(), QStringLiteral("ЕТ%"));
    QVERIFY(list->cdsMaster()->RecordCount() > 0);
    QVERIFY(list->cdsMaster()->FieldByName(u"Name")->AsString().startsWith(QStringLiteral("ЕТ")));

    // The switches are kept with the form, and the criterion is offered again.
    QStringList lines;
    GetNodeFromXml(*desk.session.dm->userSettingsDocument(), QStringLiteral("Form_Id140"), lines);
    QVERIFY(lines.contains(QStringLiteral("FullMatch=-1")));
    QVERIFY(lines.contains(QStringLiteral("AddToFilter=-1")));
    QString offered;
    inDialog(desk, [&](TfFilterFields& dialog) { offered = dialog.value(); });
    list->FieldFilter();
    QCOMPARE(offered, QStringLiteral("ЕТ%"));
  }

  void aYesNoFieldIsChosenFromAList()
  {
    Desk desk;
    auto* list = desk.open<TfBrContragent>(140);
    list->dbgMaster()->setFocus();
    list->dbgMaster()->selectField(QStringLiteral("Inactive"));
    inDialog(desk, [](TfFilterFields& dialog) {
      QCOMPARE(dialog.value(), QStringLiteral("Не"));
      dialog.setValue(QStringLiteral("Да"));
      QCOMPARE(dialog.criterion(), QStringLiteral("1"));
    });
    list->FieldFilter();
    QCOMPARE(list->formFilter().size(), 1);
    for (qsizetype row = 0; row < list->cdsMaster()->RecordCount(); ++row) {
      QCOMPARE(list->cdsMaster()->FieldByName(u"Inactive")->ValueAt(row).toInt(), 1);
    }
  }

  void aValueThatDoesNotConvertIsTold()
  {
    Desk desk;
    auto* list = desk.open<TfBrContragent>(140);
    list->dbgMaster()->setFocus();
    list->dbgMaster()->selectField(QStringLiteral("CreditLimit"));
    inDialog(desk, [](TfFilterFields& dialog) { dialog.setValue(QStringLiteral("много")); });
    list->FieldFilter();
    QCOMPARE(desk.prompt.takeMessages(),
             QStringList(QStringLiteral("Въведената стойност трябва да е дробно число")));
    QVERIFY(!list->hasFilter());
  }

  void aFieldThatIsNotFilterableOpensNothing()
  {
    Desk desk;
    auto* list = desk.open<TfBrContragent>(140);
    list->dbgMaster()->setFocus();
    list->dbgMaster()->selectField(QStringLiteral("Name"));
    list->dbgMaster()->selectedField()->Tag &= ~1u;
    list->FieldFilter();
    QCOMPARE(desk.prompt.takeMessages(), QStringList(QStringLiteral("Полето не е позволено за Филтриране !")));
  }
};

static const RegisterTest<FieldFilterTest> registerFieldFilterTest;
#include "field_filter_test.moc"
