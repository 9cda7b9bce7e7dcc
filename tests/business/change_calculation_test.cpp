// The cash dialog by keys.
#include <QApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QtTest>

#include "business/messages.h"
#include "business/windows/change_calculation.h"
#include "scripted_ports.h"

using namespace kalvor;
using namespace kalvor::testing;

class ChangeCalculationTest : public QObject {
  Q_OBJECT
 private slots:
  void cash_data()
  {
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("change");
    QTest::addColumn<int>("result");
    QTest::addColumn<bool>("refused");
    QTest::newRow("a cent too little") << "9.99" << "-0.01" << 0 << true;
    QTest::newRow("exactly") << "10" << "0.00" << int(QDialog::Accepted) << false;
    QTest::newRow("more") << "20" << "10.00" << int(QDialog::Accepted) << false;
    QTest::newRow("with a comma") << "10,50" << "0.50" << int(QDialog::Accepted) << false;
  }
  void cash()
  {
    QFETCH(QString, typed);
    QFETCH(bool, refused);
    ScriptedPrompt prompt;
    TfChangeCalculation dialog;
    QCOMPARE(dialog.edTotal->text(), QStringLiteral("0.00"));
    QCOMPARE(dialog.edCash->text(), QStringLiteral("0.00"));
    QCOMPARE(dialog.edChange->text(), QStringLiteral("0.00"));
    dialog.setTotal(10);
    dialog.show();
    QApplication::setActiveWindow(&dialog);
    dialog.edCash->selectAll();
    QTest::keyClicks(dialog.edCash, typed);
    QTest::keyClick(dialog.edCash, Qt::Key_Return);
    QTEST(dialog.edChange->text(), "change");
    QPushButton* ok = dialog.findChild<QPushButton*>();
    QCOMPARE(ok->text(), QStringLiteral("Ok"));
    QVERIFY(ok->hasFocus());
    QTest::keyClick(ok, Qt::Key_Space);
    QTEST(dialog.result(), "result");
    QCOMPARE(dialog.isVisible(), refused);
    QCOMPARE(prompt.takeMessages(), refused ? QStringList{_err_CashLessThenTotal} : QStringList());
  }

  void noAmount()
  {
    ScriptedPrompt prompt;
    TfChangeCalculation dialog;
    dialog.setTotal(10);
    dialog.edCash->setText(QStringLiteral("двайсет"));
    dialog.accept();
    QCOMPARE(prompt.messages.size(), 1);
    QCOMPARE(dialog.result(), 0);
  }
};

QTEST_MAIN(ChangeCalculationTest)
#include "change_calculation_test.moc"
