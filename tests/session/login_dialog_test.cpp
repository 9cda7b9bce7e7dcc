// The log-in dialog by key and mouse: names, texts, tab order, what it does with its lists and the connection.
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QtTest>

#include "scratch_documents.h"
#include "scripted_ports.h"
#include "scripted_session.h"
#include "session/windows/login_dialog.h"
#include "widgets/theme.h"

using namespace Qt::StringLiterals;
using namespace kalvor;
using namespace kalvor::testing;

namespace {

Variant rows(const QList<QStringList>& texts)
{
  VariantArray list;
  for (const QStringList& row : texts)
    list.append(Variant(QVariant(row).toList()));
  return list;
}

struct Desk {
  Desk()
  {
    QDir().mkpath(documents.path(u"Kalvor"_s));
    KalvorClientINIFileName = u"client.ini"_s;
    documents.write(u"Kalvor/client.ini"_s, "[User]\nUser=AB\nObject=8\nCompany=5\n");
    calls.answer(u"GetCompaniesList"_s, 0, {{0, rows({{"1", "Първа ООД"}, {"5", "Калвор Демо ЕООД"}})}});
    calls.answer(u"GetBGroupsList"_s, 0, {{1, rows({{"7", "Склад София"}, {"8", "Магазин Център"}})}});
    calls.answer(u"GetUsersList"_s, 0, {{2, rows({{"AB"}, {"SUPERVSR"}})}});
  }
  void show(TfLogin& dialog)
  {
    dialog.show();
    QVERIFY(QTest::qWaitForWindowActive(&dialog));
  }

  ScratchDocuments documents;
  ScriptedPrompt prompt;
  ScriptedCalls calls;
  ScriptedHost host;
  SocketConnection connection;
};

}  // namespace

class LoginDialogTest : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() { applyTheme(*qApp, ThemeMode::Light); }

  void looksAsItShould()
  {
    Desk desk;
    QPixmap mark(64, 64);
    mark.fill(QColor(0x1f, 0x4e, 0x79));
    QApplication::setWindowIcon(QIcon(mark));
    TfLogin dialog(desk.host, desk.calls, desk.connection);
    QCOMPARE(dialog.windowTitle(), u"Вход в системата"_s);
    QCOMPARE(dialog.cbUser->currentText(), u"SUPERVSR"_s);
    QVERIFY(dialog.cbUser->isEditable() && !dialog.cbCompany->isEditable() && !dialog.cbObject->isEditable());
    QCOMPARE(dialog.ebPassword->echoMode(), QLineEdit::Password);
    QVERIFY(dialog.btnOk->isDefault());
    QCOMPARE(QStringList({dialog.btnOk->text(), dialog.btnCancel->text(), dialog.btnConnection->text()}),
             QStringList({"Ok", "Отказ", "Връзка"}));
    QStringList labels;
    for (const QLabel* label : dialog.findChildren<QLabel*>())
      if (!label->text().isEmpty())
        labels << label->text();
    QCOMPARE(labels, QStringList({"Фирма", "Обект", "Потребител", "Парола"}));
    desk.show(dialog);
    QCOMPARE(QApplication::focusWidget(), dialog.ebPassword);
    const QByteArray picture = qgetenv("KALVOR_PICTURES");
    if (!picture.isEmpty())
      dialog.grab().save(QString::fromLocal8Bit(picture) + u"/login.png"_s);
  }

  void tabGoesAsOneReads()
  {
    Desk desk;
    TfLogin dialog(desk.host, desk.calls, desk.connection);
    desk.show(dialog);
    dialog.cbCompany->setFocus();
    QStringList order;
    for (int i = 0; i < 7; ++i) {
      order << QApplication::focusWidget()->objectName();
      QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    QCOMPARE(order,
             QStringList({"cbCompany", "cbObject", "cbUser", "ebPassword", "btnOk", "btnCancel", "btnConnection"}));
  }

  void lastChoiceIsOffered()
  {
    Desk desk;
    TfLogin dialog(desk.host, desk.calls, desk.connection);
    desk.show(dialog);
    const LoginChoice choice = dialog.choice();
    QCOMPARE(choice.company.value_or(QString()), u"5"_s);
    QCOMPARE(choice.companyText, u"Калвор Демо ЕООД"_s);
    QCOMPARE(choice.businessGroup.value_or(QString()), u"8"_s);
    QCOMPARE(choice.user.value_or(QString()), u"AB"_s);
  }

  void firstTimeNothingIsChosen()
  {
    Desk desk;
    desk.documents.write(u"Kalvor/client.ini"_s, "");
    TfLogin dialog(desk.host, desk.calls, desk.connection);
    desk.show(dialog);
    const LoginChoice choice = dialog.choice();
    QVERIFY(!choice.company && !choice.businessGroup && !choice.user);
    QCOMPARE(choice.userText, u"SUPERVSR"_s);
    QTest::keyClick(dialog.cbCompany, Qt::Key_Down);
    QCOMPARE(dialog.choice().company.value_or(QString()), u"1"_s);
    QCOMPARE(dialog.cbObject->count(), 2);
    QVERIFY(!dialog.choice().businessGroup);
    QTest::keyClick(dialog.cbObject, Qt::Key_Down);
    QCOMPARE(desk.calls.sentOnce(u"GetUsersList"_s), (VariantArray{"7", "1", Variant()}));
    QCOMPARE(dialog.cbUser->count(), 2);
    QCOMPARE(dialog.choice().userText, u"SUPERVSR"_s);
  }

  void typedUserIsTakenAsTyped()
  {
    Desk desk;
    TfLogin dialog(desk.host, desk.calls, desk.connection);
    desk.show(dialog);
    dialog.ebPassword->setText(u"тайна"_s);
    dialog.cbUser->setFocus();
    dialog.cbUser->lineEdit()->selectAll();
    QTest::keyClicks(dialog.cbUser->lineEdit(), u"ab"_s);
    QCOMPARE(dialog.ebPassword->text(), QString());
    QTest::keyClick(dialog.cbUser->lineEdit(), Qt::Key_Tab);
    const LoginChoice choice = dialog.choice();
    QVERIFY(!choice.user);
    QCOMPARE(choice.userText, u"ab"_s);
  }

  void enterAndEscapeEndIt()
  {
    Desk desk;
    TfLogin dialog(desk.host, desk.calls, desk.connection);
    desk.show(dialog);
    QTest::keyClick(dialog.ebPassword, Qt::Key_Return);
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QCOMPARE(desk.host.terminated, 0);
    TfLogin second(desk.host, desk.calls, desk.connection);
    desk.show(second);
    QTest::keyClick(second.ebPassword, Qt::Key_Escape);
    QCOMPARE(second.result(), int(QDialog::Rejected));
    QCOMPARE(desk.host.terminated, 1);
  }

  void anotherServerIsConnected_data()
  {
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("error");
    QTest::addColumn<QStringList>("calls");
    QTest::addColumn<QStringList>("messages");
    const QStringList lists{"GetCompaniesList", "GetBGroupsList", "GetUsersList"};
    QTest::newRow("same") << "127.0.0.1" << "" << QStringList() << QStringList();
    QTest::newRow("other") << "10.0.0.1" << "" << QStringList{"Disconnect", "Connect"} + lists << QStringList();
    QTest::newRow("not there") << "10.0.0.1" << "няма" << QStringList{"Disconnect", "Connect"}
                               << QStringList{"Не е установена връзка със сървъра"};
  }
  void anotherServerIsConnected()
  {
    QFETCH(QString, address);
    QFETCH(QString, error);
    QFETCH(QStringList, calls);
    QFETCH(QStringList, messages);
    Desk desk;
    TfLogin dialog(desk.host, desk.calls, desk.connection);
    desk.show(dialog);
    desk.calls.log.clear();
    desk.calls.connectError = error;
    desk.host.edited = ServerPlace{address, 2030};
    QTest::mouseClick(dialog.btnConnection, Qt::LeftButton);
    QCOMPARE(desk.host.settingsShown, QList<SettingsPages>{SettingsPages::ConnectionOnly});
    QCOMPARE(desk.calls.log, calls);
    QCOMPARE(desk.prompt.messages, messages);
    QCOMPARE(desk.connection.Address, address);
    QCOMPARE(dialog.place.address, address);
  }

  void brokenListsAreTold()
  {
    Desk desk;
    desk.calls.handlers.remove(u"GetBGroupsList"_s);
    TfLogin dialog(desk.host, desk.calls, desk.connection);
    desk.show(dialog);
    QTRY_COMPARE(desk.prompt.messages, QStringList{"няма GetBGroupsList"});
    QCOMPARE(dialog.cbCompany->currentText(), u"Калвор Демо ЕООД"_s);
  }
};

QTEST_MAIN(LoginDialogTest)
#include "login_dialog_test.moc"
