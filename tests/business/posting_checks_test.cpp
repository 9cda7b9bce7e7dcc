// Who may post what: permissions x payment x the server's answers -> messages and result.
#include "business/messages.h"
#include "business/posting_checks.h"
#include "forms/messages.h"
#include "sale_document.h"
#include "scratch_documents.h"
#include "scripted_ports.h"
#include "session/error_log.h"
#include "session/scripted_session.h"
#include "several_tests.h"

using namespace kalvor;
using namespace kalvor::testing;

namespace {

const QString cashRefusal = u"Няматe права за работа с каса!\r\n Операцията е прекратена !"_s;
const QString limitRefusal = u"Контрагента е с превишен кредитен лимит !\n\r Операцията е прекратена !"_s;
const QString limitQuestion = u"Контрагента е с превишен кредитен лимит !\n\rЖалаете да продъжите ?"_s;
const QString debtRefusal = u"Контрагента е с просрочено задължение !\n\r Операцията е прекратена !"_s;
const QString debtQuestion = u"Контрагента е с просрочено задължение !\n\rЖалаете да продъжите ?"_s;
const QString costRefusal =
    u"Опитвате се да продадете артикул на цена под неговата себестойност : \n\r Операцията е прекратена !"_s;
const QString costQuestion =
    u"Опитвате се да продадете артикул на цена под неговата себестойност : \n\rЖалаете да продъжите ?"_s;
const QString contragentError = u"Грешка при извличане данни за контрагент !\n\r Операцията е прекратена !"_s;
const QString costError = u"Грешка при проверка на себестойност на артикул ! \n\r Операцията е прекратена !"_s;
constexpr auto yes = PromptButton::Yes;
constexpr auto no = PromptButton::No;

struct SaleCheckCase {
  QString user, actions;        // letters: L limit, D debt, C cost, K cashier; a digit is the mode
  int paymentKind;
  bool direct;
  QList<int> contractor;        // the server's answers, one after the other
  int cost;
  QList<PromptButton> answers;
  bool allowed;
  QStringList messages;
  int asked;                    // contractor questions to the server
};

QString actionsXml(const QString& letters)
{
  if (letters.isEmpty())
    return u"<Root/>"_s;
  QString xml = u"<Root><UserActions>"_s;
  const std::pair<QChar, const char*> keys[] = {
      {u'L', "AboveCreditLimit"}, {u'D', "AboveExpireDebt"}, {u'C', "BelowUnitCost"}, {u'K', "is_Cashier"}};
  for (const auto& [letter, key] : keys)
    if (letters.contains(letter))
      xml += u"<%1>1</%1>"_s.arg(QLatin1String(key));
  for (const QChar c : letters)
    if (c.isDigit())
      xml += u"<ContrCheckAction>%1</ContrCheckAction>"_s.arg(c);
  return xml + u"</UserActions></Root>"_s;
}

struct Checker {
  Checker(const QString& user, const QString& letters, bool direct)
  {
    session.packet = packetOf({u"Id"_s, u"Comp_id"_s, u"Settings"_s, u"UserActions"_s},
                              {{u"AB"_s, u"5"_s, QString(), actionsXml(letters)}});
    session.load();
    LocalData.UserId = user;
    session.server->handlers[u"RequestValue"_s] = [this, direct](VariantArray& a) -> Variant {
      lookups << a;
      a[4] = direct ? 1 : 0;
      return 1;
    };
  }
  ScratchDocuments documents;
  ScriptedSession session;
  ScriptedPrompt prompt;
  QList<VariantArray> lookups;
};

}  // namespace

class PostingChecksTest : public QObject {
  Q_OBJECT
 private slots:
  void saleDocument_data()
  {
    QTest::addColumn<SaleCheckCase>("c");
    const QString user = u"AB"_s;
    const auto row = [](const char* name, const SaleCheckCase& c) { QTest::newRow(name) << c; };
    row("administrator, cash: no contractor check", {u"SUPERVSR"_s, "", 1, false, {1}, 0, {}, true, {}, 0});
    row("administrator, bank: limit, then debt",
        {u"SUPERVSR"_s, "", 2, false, {1, 2}, 0, {yes, yes}, true, {limitQuestion, debtQuestion}, 2});
    row("cash without being a cashier", {user, "3", 1, false, {}, 0, {}, false, {cashRefusal}, 0});
    row("direct method without being a cashier", {user, "3", 2, true, {}, 0, {}, false, {cashRefusal}, 0});
    row("direct method, cashier", {user, "K3", 2, true, {1}, 0, {}, true, {}, 0});
    row("no cash question", {user, "3", 0, true, {0}, 0, {}, true, {}, 1});
    row("no rights, no mode, below cost", {user, "", 2, false, {1}, 1, {}, false, {costRefusal}, 0});
    row("limit refused", {user, "D3", 0, false, {1}, 0, {}, false, {limitRefusal}, 1});
    row("limit, answer no", {user, "L3", 0, false, {1}, 0, {no}, false, {limitQuestion}, 1});
    row("limit, mode 1 asks once", {user, "L1", 0, false, {1}, 0, {yes}, true, {limitQuestion}, 1});
    row("limit, then clear", {user, "L3", 0, false, {1, 0}, 0, {yes}, true, {limitQuestion}, 2});
    row("limit, then limit again is no debt", {user, "L3", 0, false, {1, 1}, 0, {yes}, true, {limitQuestion}, 2});
    row("limit, then debt refused", {user, "L3", 0, false, {1, 2}, 0, {yes}, false, {limitQuestion, debtRefusal}, 2});
    row("limit, then an error", {user, "L3", 0, false, {1, -1}, 0, {yes}, false, {limitQuestion, contragentError}, 2});
    row("debt, answer no", {user, "D3", 0, false, {2}, 0, {no}, false, {debtQuestion}, 1});
    row("debt, yes, below cost, yes", {user, "DC3", 0, false, {2}, 1, {yes, yes}, true, {debtQuestion, costQuestion}, 1});
    row("contractor unknown", {user, "LD3", 0, false, {-1}, 0, {}, false, {contragentError}, 1});
    row("cost unknown", {user, "C", 0, false, {}, -1, {}, false, {costError}, 0});
    row("cost, answer no", {user, "C", 0, false, {}, 1, {no}, false, {costQuestion}, 0});
  }
  void saleDocument()
  {
    QFETCH(SaleCheckCase, c);
    Checker checker(c.user, c.actions, c.direct);
    int asked = 0;
    checker.session.server->handlers[u"CheckSaleContragentParams"_s] = [&](VariantArray& a) -> Variant {
      if (asked > 0 && a[2].toInt() != 2)
        return 99;
      return c.contractor.value(asked++);
    };
    checker.session.server->answer(u"CheckItemUnitCost"_s, c.cost);
    checker.prompt.answers = c.answers;
    QCOMPARE(CheckSaleDocument(u"D"_s, u"C"_s, u"M"_s, 120.5, true, c.paymentKind, 3), c.allowed);
    QCOMPARE(checker.prompt.takeMessages(), c.messages);
    QCOMPARE(asked, c.asked);
    const VariantArray cost = checker.session.server->sentOnce(u"CheckItemUnitCost"_s);
    QVERIFY(cost.isEmpty() || cost == (VariantArray{u"D"_s, quint8(3)}));
  }

  void cashOnly()
  {
    Checker cashier(u"AB"_s, u"K"_s, true);
    QVERIFY(CheckCanPostDocument(u"M"_s, 1) && CheckCanPostDocument(u"M"_s, 2) && CheckPurchaseDocument(u"M"_s));
    const FilterArray asked = filterFromVariant(cashier.lookups.value(0).value(3));
    QCOMPARE(asked, (FilterArray{{u"N_CashBankOperation.Comp_Id"_s, u"="_s, u"'5'"_s, u"AND"_s, {}},
                                 {u"N_CashBankOperation.BusinessGroup_Id"_s, u"="_s, u"'7'"_s, u"AND"_s, {}},
                                 {u"N_CashBankOperation.PaymentMethod_Id"_s, u"="_s, u"M"_s, {}, {}}}));
    Checker other(u"AB"_s, u""_s, true);
    QVERIFY(!CheckCanPostDocument(u"M"_s, 1) && !CheckCanPostDocument(u"M"_s, 2) && !CheckPurchaseDocument(u"M"_s));
    QCOMPARE(other.prompt.takeMessages(), QStringList(3, cashRefusal));
    QVERIFY(CheckCanPostDocument(u"M"_s, 0));
    Checker bank(u"AB"_s, u""_s, false);
    QVERIFY(CheckCanPostDocument(u"M"_s, 2) && CheckPurchaseDocument(u"M"_s));
  }

  void journal()
  {
    TClientDataSet lines;
    lines.CreateDataSet({fieldOf(u"AccountType"_s, DataType::Integer), fieldOf(u"Account_Id"_s, DataType::WideMemo),
                         fieldOf(u"Bal_AccountType"_s, DataType::Integer),
                         fieldOf(u"Bal_Account_Id"_s, DataType::WideMemo)});
    lines.AppendRecord({2, u"A"_s, 0, u"B"_s});
    lines.AppendRecord({3, u"M1"_s, 3, u"M2"_s});
    const auto journalOf = [&](const QString& directMethod) {
      Checker checker(u"AB"_s, u""_s, false);
      checker.session.server->handlers[u"RequestValue"_s] = [&](VariantArray& a) -> Variant {
        a[4] = filterFromVariant(a[3]).value(2).value == directMethod ? 1 : 0;
        return 1;
      };
      return CheckJournal(&lines);
    };
    QVERIFY(!journalOf(u"M1"_s));
    QVERIFY(!journalOf(u"M2"_s));
    QVERIFY(journalOf(u"A"_s));
    Checker cashier(u"AB"_s, u"K"_s, true);
    TClientDataSet closed;
    QVERIFY(CheckJournal(&closed));  // a cashier's lines are not looked at
    Checker other(u"AB"_s, u""_s, true);
    InitLog();
    QVERIFY(!CheckJournal(&closed));
    QStringList log;
    LoadErrorLog(log);
    CloseLog();
    QVERIFY(log.contains(u"[Процедура]: uKalvorUtils.CheckJournal"_s));
  }
};

static RegisterTest<PostingChecksTest> registered;
#include "posting_checks_test.moc"
