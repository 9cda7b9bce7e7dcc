#include "business/posting_checks.h"

#include "business/messages.h"
#include "forms/messages.h"
#include "platform/ports.h"
#include "session/dm.h"
#include "session/error_log.h"
#include "session/local_settings_file.h"
#include "session/server_calls.h"
#include "session/settings_document.h"

namespace kalvor {
namespace {

const QString lfCr = QStringLiteral("\n\r");

constexpr qint64 paymentMethodAccount = 3;
enum ContractorMode : int { NoContractorCheck = 0, LimitOnly = 1, OverdueOnly = 2, LimitAndOverdue = 3 };
enum ContractorAnswer : int { ContractorError = -1, OverLimit = 1, Overdue = 2 };
enum CostAnswer : int { CostError = -1, BelowCost = 1 };

struct Permissions {
  bool aboveCreditLimit = false;
  bool aboveExpireDebt = false;
  bool belowUnitCost = false;
  bool cashier = false;
  int contractorMode = NoContractorCheck;
};

Permissions permissions()
{
  if (LocalData.UserId == administratorCode)
    return {true, true, true, true, LimitAndOverdue};
  QStringList lines;
  if (const QDomDocument* actions = DM->userActionsDocument())
    GetNodeFromXml(*actions, QStringLiteral("UserActions"), lines);
  const auto number = [&lines](const char* name) { return valueOfLine(lines, QLatin1String(name)).trimmed().toInt(); };
  return {number("AboveCreditLimit") == 1, number("AboveExpireDebt") == 1, number("BelowUnitCost") == 1,
          number("is_Cashier") == 1, number("ContrCheckAction")};
}

bool refuse(const QString& text)
{
  showError(text);
  return false;
}
bool refuseCash() { return refuse(_err_NotCashier + QLatin1String("\r\n") + _err_OperationAborted); }

// The refusal without the permission, the question with it.
bool allowedAfterQuestion(const QString& information, bool permitted)
{
  return permitted ? confirm(information + lfCr + _que_Continue)
                   : refuse(information + lfCr + _err_OperationAborted);
}

bool paysDirectly(const QString& paymentMethodId)
{
  const auto condition = [](const char* field, const QString& value, const char* conjunction) {
    return FilterRow{QLatin1String(field), QStringLiteral("="), value, QLatin1String(conjunction), QString()};
  };
  Variant value;
  const int found = requestValue(
      *DM->ConBroker, TableColumns, QStringLiteral("N_CashBankOperation"), QStringLiteral("DirectPay"),
      {condition("N_CashBankOperation.Comp_Id", sqlLiteral(LocalData.CompanyId), "AND"),
       condition("N_CashBankOperation.BusinessGroup_Id", sqlLiteral(LocalData.BGroupId), "AND"),
       condition("N_CashBankOperation.PaymentMethod_Id", paymentMethodId, "")},
      value, RowsWanted::First);
  if (value.typeId() == QMetaType::QVariantList)
    value = value.toList().value(0);
  return found > 0 && value.toInt() == 1;
}

bool paysCash(int paymentKind, const QString& paymentMethodId)
{
  return paymentKind == PaidInCash || (paymentKind == PaidByMethod && paysDirectly(paymentMethodId));
}

// The mode is the server's to change.
int contractorAnswer(const QString& contragentId, double amount, int& mode)
{
  VariantArray arguments{contragentId, amount, mode};
  const int answer = DM->ConBroker->Call(QStringLiteral("CheckSaleContragentParams"), arguments).toInt();
  mode = arguments[2].toInt();
  if (answer == ContractorError)
    throw DataError(_err_ContragentData + lfCr + _err_OperationAborted);
  return answer;
}

bool contractorAllows(const Permissions& may, const QString& contragentId, double amount, int mode)
{
  int answer = contractorAnswer(contragentId, amount, mode);
  if (answer == OverLimit) {
    if (!allowedAfterQuestion(_inf_AboveCreditLimit, may.aboveCreditLimit))
      return false;
    if (mode == LimitOnly)
      return true;
    int overdueOnly = OverdueOnly;
    answer = contractorAnswer(contragentId, amount, overdueOnly);
  }
  return answer != Overdue || allowedAfterQuestion(_inf_AboveExpireDebt, may.aboveExpireDebt);
}

bool costAllows(const Permissions& may, const QString& documentId, quint8 documentKind)
{
  const int answer =
      DM->ConBroker->Call(QStringLiteral("CheckItemUnitCost"), VariantArray{documentId, documentKind}).toInt();
  if (answer == CostError)
    throw DataError(_err_BelowUnitPrice + lfCr + _err_OperationAborted);
  return answer != BelowCost || allowedAfterQuestion(_inf_SaleBelowUnitCost, may.belowUnitCost);
}

// An error is no reason to go on; it is in the log with the check's name.
template <class Check>
bool answerOf(const char* routine, Check check)
{
  bool allowed = false;
  const bool done = loggingErrors(QLatin1String(routine), [&] {
    try {
      allowed = check();
    } catch (const std::exception& error) {
      showError(errorText(error));
      throw;
    }
  });
  return done && allowed;
}

}  // namespace

bool CheckSaleDocument(const QString& documentId, const QString& contragentId, const QString& paymentMethodId,
                       double amount, bool checkUnitCost, int paymentKind, quint8 documentKind)
{
  return answerOf("uKalvorUtils.CheckSaleDocument", [&] {
    const Permissions may = permissions();
    int mode = may.contractorMode;
    if (paysCash(paymentKind, paymentMethodId)) {
      if (!may.cashier)
        return refuseCash();
      mode = NoContractorCheck;
    }
    if (mode != NoContractorCheck && !contractorAllows(may, contragentId, amount, mode))
      return false;
    return !checkUnitCost || costAllows(may, documentId, documentKind);
  });
}

bool CheckCanPostDocument(const QString& paymentMethodId, int paymentKind)
{
  return answerOf("uKalvorUtils.CheckCanPostDocument", [&] {
    return !paysCash(paymentKind, paymentMethodId) || permissions().cashier || refuseCash();
  });
}

bool CheckPurchaseDocument(const QString& paymentMethodId)
{
  return answerOf("uKalvorUtils.CheckPurchaseDocument",
                  [&] { return !paysDirectly(paymentMethodId) || permissions().cashier || refuseCash(); });
}

bool CheckJournal(TClientDataSet* lines)
{
  return answerOf("uKalvorUtils.CheckJournal", [&] {
    if (permissions().cashier)
      return true;
    struct Account {
      const char16_t* type;
      const char16_t* id;
    };
    constexpr Account accounts[] = {{u"AccountType", u"Account_Id"}, {u"Bal_AccountType", u"Bal_Account_Id"}};
    for (lines->First(); !lines->Eof(); lines->Next())
      for (const Account& account : accounts)
        if (lines->FieldByName(QStringView(account.type))->AsInteger() == paymentMethodAccount &&
            paysDirectly(lines->FieldByName(QStringView(account.id))->AsString()))
          return refuseCash();
    return true;
  });
}

}  // namespace kalvor
