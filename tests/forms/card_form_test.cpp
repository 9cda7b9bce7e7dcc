#include "../several_tests.h"
#include "sample_forms.h"

using namespace kalvor;
using namespace kalvor::testing;

class CardFormTest : public QObject {
  Q_OBJECT

 private slots:
  void aNewRecordIsSavedAndShownInTheList()
  {
    Desk desk;
    auto* list = desk.open<TfBrContragent>(140);
    QVERIFY(list);
    list->InsertRecord();
    auto* card = desk.last<TfEdContragent>();
    QVERIFY2(card, qPrintable(desk.prompt.messages.join(u'\n')));
    QCOMPARE(card->cdsMaster()->State(), DataSetState::Insert);
    desk.window.area.grab().save(QStringLiteral("card.png"));
  }
};

static const RegisterTest<CardFormTest> registerCardFormTest;
#include "card_form_test.moc"
