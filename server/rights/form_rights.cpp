#include "server/rights/form_rights.h"

#include <algorithm>

#include "rpc/rpc_error.h"

namespace kalvor::server {

namespace {

// Rights, print forms, text print forms, transfer list, operation and copy templates, own settings, series.
constexpr int openQueries[] = {103, 155, 168, 216, 276, 277, 291, 487, 780};

constexpr const char* refusals[formRightCount] = {
    "Забранен е прегледа на данни за форма с код : ",
    "Забранена е редакцията на записа за форма с код : ",
    "Забранено е добавянето на записи за форма с код : ",
    "Забранено е изтриването на записи за форма с код : ",
    "Забранено е осчетоводяването за форма с код : ",
    "Забранен е печата за форма с код : ",
    "Забранен е експорта за форма с код : ",
    "Забранена е редакцията на настройки за форма с код : ",
    "Забранено е анулирането за форма с код : ",
};

}  // namespace

bool isOpenQuery(int formId)
{
  return std::find(std::begin(openQueries), std::end(openQueries), formId) != std::end(openQueries);
}

FormRights formRights(const Access& access, int formId)
{
  FormRights rights;
  if (access.session.administrator()) {
    std::fill(std::begin(rights.granted), std::end(rights.granted), true);
    rights.known = true;
    return rights;
  }
  auto row = access.db.prepare(
      QStringLiteral("SELECT ReadRight, EditRight, InsertRight, DeleteRight, FinishRight, PrintRight, ExportRight, "
                     "EditPropsRight, AnnulRight, SecurityFilter FROM S_Rights "
                     "WHERE User_Id = ? AND Comp_Id = ? AND Form_Id = ?"));
  row->bind(0, access.session.userId);
  row->bind(1, access.session.companyId);
  row->bind(2, formId);
  if (row->step()) {
    rights.known = true;
    for (int i = 0; i < formRightCount; ++i) {
      rights.granted[i] = row->integer(i) == 1;
    }
    rights.securityFilter = row->text(formRightCount).trimmed();
  }
  return rights;
}

void refuseRight(int formId, FormRight right)
{
  throw RpcError(RpcError::Forbidden,
                 QString::fromUtf8(refusals[int(right)]) + QString::number(formId) +
                     QStringLiteral("\r\nМоля, обърнете се към системния администратор за отстраняване на проблема!"));
}

void requireRight(const Access& access, int formId, FormRight right)
{
  if (!formRights(access, formId).has(right)) {
    refuseRight(formId, right);
  }
}

}  // namespace kalvor::server
