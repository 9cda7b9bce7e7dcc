// What a user may do on a form, and which rows of it. Read anew for every call.
#pragma once

#include "server/rights/access.h"

namespace kalvor::server {

enum class FormRight : quint8 { Read, Edit, Insert, Delete, Finish, Print, Export, EditProps, Annul };
constexpr int formRightCount = 9;

struct KALVOR_SERVER FormRights {
  bool granted[formRightCount] = {};
  bool known = false;       // there is a row of rights
  QString securityFilter;   // stored filter string; empty: every row

  bool has(FormRight right) const { return granted[int(right)]; }
};

// The administrator has every right and no security filter; no row of rights means no right.
KALVOR_SERVER FormRights formRights(const Access& access, int formId);

// Throws RpcError (Forbidden) with the message of the right and the form's number.
KALVOR_SERVER void requireRight(const Access& access, int formId, FormRight right);
[[noreturn]] KALVOR_SERVER void refuseRight(int formId, FormRight right);

// Queries without a window that every logged-in user of the company may read.
KALVOR_SERVER bool isOpenQuery(int formId);

}  // namespace kalvor::server
