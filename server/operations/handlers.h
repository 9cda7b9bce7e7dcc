// The handlers of the operation table, by the file that holds them.
#pragma once

#include "server/operations/operation.h"

namespace kalvor::server {

// log_in.cpp
Variant callLogIn(CallContext& call);
Variant callResumeSession(CallContext& call);
Variant callChangePassword(CallContext& call);
// log_in_lists.cpp
Variant callGetCompaniesList(CallContext& call);
Variant callGetBGroupsList(CallContext& call);
Variant callGetUsersList(CallContext& call);
// server_facts.cpp
Variant callServerName(CallContext& call);
Variant callGetConnectionString(CallContext& call);
// providers.cpp
Variant callCreateDynamicProvider(CallContext& call);
Variant callDeleteDynamicProvider(CallContext& call);
Variant callRequestData(CallContext& call);
Variant callOpenProvider(CallContext& call);
Variant callFetchRecords(CallContext& call);
// read_many.cpp
Variant callReadMany(CallContext& call);
// request_value.cpp
Variant callRequestValue(CallContext& call);
// forms.cpp
Variant callGetFormsDescription(CallContext& call);
Variant callGetFieldsDescription(CallContext& call);
Variant callGetQueryId(CallContext& call);
Variant callGetAbsoluteNoSerieId(CallContext& call);
// update_data.cpp
Variant callUpdateClientData(CallContext& call);
// user_settings.cpp
Variant callUpdateUserSettings(CallContext& call);
Variant callExecuteSqlScript(CallContext& call);
// statement_batch.cpp
Variant callExecMultySql(CallContext& call);
// document_locks.cpp
Variant callCheckOutDocument(CallContext& call);
Variant callCheckInDocument(CallContext& call);
// The name of the employee behind a user, else the user code.
QString nameOfUser(CallContext& call, const QString& userId);
// posting.cpp
Variant callPostGlobalDoc(CallContext& call);
Variant callDeleteGlobalDoc(CallContext& call);
Variant callGetCountOfDocs(CallContext& call);
// pricing.cpp
Variant callGetSaleLinePrice(CallContext& call);
Variant callGetSaleLineDiscount(CallContext& call);
Variant callGetPurchLinePrice(CallContext& call);
Variant callGetPurchLineDiscount(CallContext& call);
Variant callGetCurrencyRate(CallContext& call);
// checks.cpp
Variant callCheckSaleContragentParams(CallContext& call);
Variant callCheckItemUnitCost(CallContext& call);
// imports.cpp
Variant callDisableFlowFields(CallContext& call);
Variant callEnableFlowFields(CallContext& call);
Variant callSetTransferImportResult(CallContext& call);
// transactions.cpp
Variant callTrStart(CallContext& call);
Variant callTrCommit(CallContext& call);
Variant callTrRollback(CallContext& call);

}  // namespace kalvor::server
