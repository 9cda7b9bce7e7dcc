#include "../several_tests.h"
#include "forms/form_filters.h"
#include "forms/windows/cds_options.h"
#include "sample_forms.h"
#include "widgets/db_grid_ex.h"

using namespace kalvor;
using namespace kalvor::testing;

namespace {
constexpr int contragentList = 140;
}

class ListFormTest : public QObject {
  Q_OBJECT

 private slots:
  void aListOpensWithItsMetadata()
  {
    Desk desk;
    QVERIFY(desk.session.loggedIn);
    auto* list = desk.open<TfBrContragent>(contragentList);
    QVERIFY2(list, qPrintable(desk.prompt.messages.join(u'\n')));
    QCOMPARE(list->windowTitle(), QStringLiteral("Контрагенти"));
    QCOMPARE(list->cdsMaster()->FieldByName(u"Name")->DisplayLabel, QStringLiteral("Наименование"));
    QVERIFY(!list->cdsMaster()->FieldByName(u"Id")->Visible);
    QVERIFY(list->cdsMaster()->RecordCount() >= 32);
    QVERIFY(desk.prompt.messages.isEmpty());
    QVERIFY(desk.window.titles.contains(QStringLiteral("Контрагенти")));
    desk.window.area.grab().save(QStringLiteral("list.png"));
  }
};

static const RegisterTest<ListFormTest> registerListFormTest;
#include "list_form_test.moc"
