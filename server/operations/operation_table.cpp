#include "server/operations/handlers.h"

namespace kalvor::server {

namespace {

constexpr Parameter text{Shape::Text};
constexpr Parameter whole{Shape::Whole};
constexpr Parameter flag{Shape::Flag};
constexpr Parameter list{Shape::List};
constexpr Parameter listOrNull{Shape::ListOrNull};
constexpr Parameter any{Shape::Any};
constexpr Parameter varText{Shape::Text, true};
constexpr Parameter varWhole{Shape::Whole, true};
constexpr Parameter varAny{Shape::Any, true};
constexpr Parameter out{Shape::Any, true, true};

const Operation table[] = {
    // Before log-in.
    {"LogIn", RunsOn::Passwords, CallRight::Everybody, {varText, varText, varText, varText, out}, callLogIn},
    {"ResumeSession", RunsOn::Reader, CallRight::Everybody, {text}, callResumeSession},
    {"GetCompaniesList", RunsOn::Reader, CallRight::Everybody, {out}, callGetCompaniesList},
    {"GetBGroupsList", RunsOn::Reader, CallRight::Everybody, {text, out}, callGetBGroupsList},
    {"GetUsersList", RunsOn::Reader, CallRight::Everybody, {text, text, out}, callGetUsersList},
    // The session.
    {"servername", RunsOn::Reader, CallRight::LoggedIn, {}, callServerName},
    {"GetConnectionString", RunsOn::Reader, CallRight::LoggedIn, {}, callGetConnectionString},
    {"ChangePassword", RunsOn::Writer, CallRight::OwnData, {varText, varText}, callChangePassword},
    {"UpdateUserSettings", RunsOn::Writer, CallRight::OwnData, {list, text}, callUpdateUserSettings},
    {"ExecuteSQLScript", RunsOn::Writer, CallRight::OwnData, {text}, callExecuteSqlScript},
    {"trStart", RunsOn::Transaction, CallRight::LoggedIn, {}, callTrStart},
    {"trCommit", RunsOn::Transaction, CallRight::LoggedIn, {}, callTrCommit},
    {"trRollback", RunsOn::Transaction, CallRight::LoggedIn, {}, callTrRollback},
    // Data.
    {"CreateDynamicProvider", RunsOn::Reader, CallRight::LoggedIn, {varText, {Shape::Any, false, true}},
     callCreateDynamicProvider},
    {"DeleteDynamicProvider", RunsOn::Reader, CallRight::LoggedIn, {text}, callDeleteDynamicProvider},
    {"RequestData", RunsOn::Reader, CallRight::ReadForm,
     {whole, whole, text, listOrNull, text, listOrNull, out, {Shape::Any, false, true}}, callRequestData},
    {"OpenProvider", RunsOn::Reader, CallRight::ReadForm, {text, whole}, callOpenProvider},
    {"FetchRecords", RunsOn::Reader, CallRight::ReadForm, {text, any, whole}, callFetchRecords},
    {"RequestValue", RunsOn::Reader, CallRight::ReadTable,
     {whole, text, text, listOrNull, {Shape::Any, true}, flag}, callRequestValue},
    {"ReadMany", RunsOn::Reader, CallRight::LoggedIn, {list, out}, callReadMany},
    {"UpdateClientData", RunsOn::Writer, CallRight::WriteForm, {list, {Shape::ListOrNull, false, true}},
     callUpdateClientData},
    {"ExecMultySQL", RunsOn::Writer, CallRight::WriteForm, {text}, callExecMultySql},
    // Metadata.
    {"GetFormsDescription", RunsOn::Reader, CallRight::LoggedIn, {text, whole, out}, callGetFormsDescription},
    {"GetFieldsDescription", RunsOn::Reader, CallRight::LoggedIn, {text, whole, out}, callGetFieldsDescription},
    {"GetQueryID", RunsOn::Reader, CallRight::LoggedIn, {whole, whole}, callGetQueryId},
    {"GetAbsoluteNoSerie_Id", RunsOn::Reader, CallRight::LoggedIn, {}, callGetAbsoluteNoSerieId},
    // Prices and rates.
    {"GetSaleLinePrice", RunsOn::Reader, CallRight::LoggedIn, {list, out, out}, callGetSaleLinePrice},
    {"GetSaleLineDiscount", RunsOn::Reader, CallRight::LoggedIn, {list, out, out}, callGetSaleLineDiscount},
    {"GetPurchLinePrice", RunsOn::Reader, CallRight::LoggedIn, {list, out}, callGetPurchLinePrice},
    {"GetPurchLineDiscount", RunsOn::Reader, CallRight::LoggedIn, {list, out}, callGetPurchLineDiscount},
    {"GetCurrencyRate", RunsOn::Reader, CallRight::LoggedIn, {varText, varAny, varAny, out}, callGetCurrencyRate},
    // Checks before posting.
    {"CheckSaleContragentParams", RunsOn::Reader, CallRight::ReadTable, {text, any, varWhole},
     callCheckSaleContragentParams},
    {"CheckItemUnitCost", RunsOn::Reader, CallRight::ReadTable, {text, whole}, callCheckItemUnitCost},
    // Imports.
    {"DisableFlowFields", RunsOn::Reader, CallRight::OwnData, {varText}, callDisableFlowFields},
    {"EnableFlowFields", RunsOn::Reader, CallRight::OwnData, {varText}, callEnableFlowFields},
    {"SetTransferImportResult", RunsOn::Writer, CallRight::LoggedIn, {varText}, callSetTransferImportResult},
    // Documents.
    {"CheckOutDocument", RunsOn::Reader, CallRight::WriteForm, {text, whole, out}, callCheckOutDocument},
    {"CheckInDocument", RunsOn::Reader, CallRight::OwnData, {text}, callCheckInDocument},
    {"PostGlobalDoc", RunsOn::Writer, CallRight::WriteForm, {text, whole, out}, callPostGlobalDoc},
    {"DeleteGlobalDoc", RunsOn::Writer, CallRight::WriteForm, {text, whole}, callDeleteGlobalDoc},
    {"GetCountOfDocs", RunsOn::Reader, CallRight::ReadForm, {whole, whole, text}, callGetCountOfDocs},
};

}  // namespace

std::span<const Operation> operations() { return table; }

const Operation* findOperation(const QString& name)
{
  for (const Operation& operation : table) {
    if (name.compare(QLatin1StringView(operation.name), Qt::CaseInsensitive) == 0) {
      return &operation;
    }
  }
  return nullptr;
}

quint64 Operation::returnedMask() const
{
  quint64 mask = 0;
  for (qsizetype i = 0; i < parameters.size(); ++i) {
    mask |= quint64(parameters.at(i).var) << i;
  }
  return mask;
}

}  // namespace kalvor::server
