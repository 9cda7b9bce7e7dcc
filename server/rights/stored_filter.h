// Stored filter strings: "Name,LIKE,ab%,&Code,=,5,". Row security is kept in them.
#pragma once

#include <QDate>

#include "data/variant.h"
#include "server/session/session.h"

namespace kalvor::server {

// A value of a stored filter with its macro <#Param(...)#> replaced: COMPANY_ID, BUSINESSGROUP_ID, USER_ID,
// CURRENT_DATE, a relative date such as -7d; an unknown name gives the empty text. Other values are unchanged.
KALVOR_SERVER QString expandParameter(const QString& value, const Session& session, QDate today);

// The rows of the text, macros replaced. Empty when the text is no filter.
KALVOR_SERVER FilterArray storedFilter(const QString& text, const Session& session, QDate today = QDate::currentDate());

}  // namespace kalvor::server
