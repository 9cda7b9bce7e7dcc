// Every operation of the server against everything that must stop it: one row an operation, one column a reason. A cell is
// an attempt with the answer that it must get, or the reason why there is nothing to attempt. An operation without a row
// fails.
// Long file: one table with a row for every operation, which is read across.
#include "several_tests.h"
#include "server/test_company.h"
#include "server/test_database.h"

using namespace kalvor;
using namespace kalvor::server;
using namespace kalvor::testing;

namespace {

constexpr int absent = -100;  // answered as if it were not there
constexpr int leaked = -200;  // what was not to be had

// A company with something to hide, and who is to be kept from it.
struct Stand {
  TestCompany company;
  TestCaller full{company, QStringLiteral("AB")};      // every right
  TestCaller filtered{company, QStringLiteral("CD")};  // rows of kind 1, contractors of the city "Явна"
  TestCaller reads{company, QStringLiteral("EF")};     // may only read
  TestCaller bare{company, QStringLiteral("IJ")};      // no right at all
  TestCaller foreign{company, QStringLiteral("XY"), QStringLiteral("6"), QStringLiteral("8")};

  Stand()
  {
    company.addDocument(QStringLiteral("D1"), 1, QStringLiteral("Едно"), 1);
    company.addDocument(QStringLiteral("D2"), 2, QStringLiteral("Скрит"), 1);
    Connection& db = company.writer();
    for (const char* sql : {
             "INSERT INTO T_Doc (Id, Comp_Id, Name, Kind, Amount) VALUES ('X1', '6', 'Чужд', 1, 5)",
             "INSERT INTO N_Contragent (Id, Comp_Id, Code, City) VALUES ('C5', '5', 'C5', 'Явна'), ('C5h', '5', 'C5h', 'Тайна'), "
             "('C6', '6', 'C6', 'Явна')",
             "INSERT INTO N_Item (Id, Comp_Id, Code, Measure_Id, UnitPrice) VALUES ('I5', '5', 'I5', 'M', 1000000), "
             "('I6', '6', 'I6', 'M', 1000000)",
             "INSERT INTO N_CurrencyRate (Id, Comp_Id, Currency_Id, RateDate, Rate) VALUES ('R6', '6', 'XXX', '20200101', 2000000)",
             "INSERT INTO D_SaleInvoiceHeader (Id, Comp_Id, DocumentDate, DocStatus) VALUES ('S5', '5', '20240101', 0), "
             "('S5h', '5', '20240101', 7), ('S6', '6', '20240101', 0)",
             "INSERT INTO S_QueryList (Id, Form_Id, Ds_Index, SqlText, BaseTable, KeyField, DefaultOrder) VALUES "
             "(90200, 9020, 0, 'SELECT N_Contragent.Id AS Id FROM N_Contragent', 'N_Contragent', 'N_Contragent.Id', 'Id'), "
             "(90300, 9030, 0, 'SELECT D_SaleInvoiceHeader.Id AS Id FROM D_SaleInvoiceHeader', 'D_SaleInvoiceHeader', "
             "'D_SaleInvoiceHeader.Id', 'Id'), "
             "(90400, 9040, 0, 'SELECT D_GlobalSaleHeader.Id AS Id FROM D_GlobalSaleHeader', 'D_GlobalSaleHeader', "
             "'D_GlobalSaleHeader.Id', 'Id'), "
             "(600, 6, 0, 'SELECT D_SaleInvoiceHeader.Id AS Id FROM D_SaleInvoiceHeader', 'D_SaleInvoiceHeader', "
             "'D_SaleInvoiceHeader.Id', 'Id')",
             "INSERT INTO D_GlobalSaleHeader (Id, Comp_Id, DocumentDate, DocStatus) VALUES ('G5', '5', '20240101', 0), "
             "('G5h', '5', '20240101', 7), ('G6', '6', '20240101', 0)",
             "INSERT INTO S_Rights (User_Id, Comp_Id, Form_Id, ReadRight, DeleteRight, FinishRight, SecurityFilter) VALUES "
             "('AB', '5', 9040, 1, 1, 1, NULL), ('CD', '5', 9040, 1, 1, 1, 'D_GlobalSaleHeader.DocStatus,=,0,'), "
             "('EF', '5', 9040, 1, 0, 0, NULL), ('AB', '5', 6, 1, 0, 0, NULL), ('XY', '6', 6, 1, 0, 0, NULL), "
             "('CD', '5', 6, 1, 0, 0, 'D_SaleInvoiceHeader.DocStatus,=,0,')",
             "INSERT INTO S_Rights (User_Id, Comp_Id, Form_Id, ReadRight, SecurityFilter) VALUES "
             "('CD', '5', 9020, 1, 'N_Contragent.City,=,Явна,'), ('CD', '5', 9030, 1, 'D_SaleInvoiceHeader.DocStatus,=,0,'), "
             "('AB', '5', 9020, 1, NULL), ('AB', '5', 9030, 1, NULL), ('XY', '6', 9020, 1, NULL), ('XY', '6', 9030, 1, NULL)",
         }) {
      db.execute(QString::fromUtf8(sql));
    }
    MetadataCache::touch(db);
  }

  // What is stored of a document, by the server's own eyes.
  QString stored(const QString& id, const QString& column)
  {
    return company.writer().value(QStringLiteral("SELECT %1 FROM T_Doc WHERE Id = ?").arg(column), {id}).toString();
  }
};

using Attempt = std::function<int(Stand&)>;
struct Cell {
  const char* reason = nullptr;  // why there is nothing to attempt
  int expected = 0;
  Attempt attempt;
};
Cell no(const char* reason) { return {reason, 0, {}}; }
Cell is(int expected, Attempt attempt) { return {nullptr, expected, std::move(attempt)}; }

struct Row {
  const char* operation;
  Cell otherCompany, lowerRight, secret, hiddenRow;
};

FilterArray byId(const QString& id) { return {{QStringLiteral("Id"), QStringLiteral("="), id, {}, {}}}; }

// The code of a call that is to be refused, else what its result says.
int called(TestCaller& caller, const char* operation, VariantArray arguments)
{
  int result = leaked;
  const int code = errorCode([&] { result = caller.call(operation, arguments).toInt(); });
  return code != 0 ? code : result;
}

// A list of the documents with this id, or the refusal.
int listed(TestCaller& caller, const QString& id, const QString& field = QStringLiteral("Id"))
{
  QString found;
  const int code = errorCode([&] {
    const FilterArray filter{{field, QStringLiteral("="), id, {}, {}}};
    found = caller.column(caller.request(9000, 0, filter), QStringLiteral("Id"));
  });
  return code != 0 ? code : found.isEmpty() ? absent : leaked;
}

int requested(TestCaller& caller, int form, const FilterArray& filter, const QString& order = {})
{
  return errorCode([&] { caller.request(form, 0, filter, order); });
}

int valued(TestCaller& caller, int mode, const QString& source, const QString& columns, const FilterArray& filter = {})
{
  VariantArray arguments{mode, source, columns, filterToVariant(filter), Variant(), true};
  const int found = called(caller, "RequestValue", arguments);
  return found == 0 ? absent : found > 0 && found < RpcError::UnknownOperation ? leaked : found;
}

// The first question of a ReadMany: null is a refusal.
int asked(TestCaller& caller, const QString& operation, const VariantArray& question)
{
  VariantArray arguments{VariantArray{Variant(VariantArray{operation, Variant(question)})}, Variant()};
  caller.call("ReadMany", arguments);
  const Variant answer = arguments[1].toList().value(0);
  return isNull(answer) ? int(RpcError::Refused) : answer.toList().value(0).toInt() > 0 ? leaked : absent;
}

// A change of the records that somebody with every right has in hand, saved by another one over a provider of his own.
int saved(Stand& stand, TestCaller& caller, TestCaller& source, const QString& id, const QString& field)
{
  const DataPacketPtr packet = source.open(source.request(9001, 0, byId(id)));
  const DeltaPtr delta = DeltaBuilder(packet).modify(0, {{field, QStringLiteral("x")}}).delta();
  const QString before = stand.stored(id, field);
  const int code = errorCode([&] { caller.save({{caller.request(9001), delta}}); });
  return stand.stored(id, field) != before ? leaked : code;
}

int batched(Stand& stand, TestCaller& caller, const QString& id, const QString& column = QStringLiteral("Name"))
{
  const QString before = stand.stored(id, column);
  const int code = called(caller, "ExecMultySQL", {QStringLiteral("UPDATE T_Doc SET %1 = 'x' WHERE Id = '%2'").arg(column, id)});
  return stand.stored(id, column) != before ? leaked : code == 0 ? absent : code;
}

// Counting a printed copy; -1: there is no such row.
int counted(TestCaller& caller, const QString& id, const QString& company, const QString& table = QStringLiteral("T_Doc"),
            const QString& field = QStringLiteral("CopiesPrinted"))
{
  const int result = called(caller, "ExecuteSQLScript",
                            {QStringLiteral("UPDATE %1 SET %2 = %2 + 1 WHERE ID = '%3' AND Comp_Id = '%4'").arg(table, field, id, company)});
  return result == 0 ? leaked : result == -1 ? absent : result;
}

// A document that the other one holds stays his.
int letGo(Stand& stand, TestCaller& other)
{
  stand.full.call("CheckOutDocument", {QStringLiteral("D1"), 9001, Variant()});
  called(other, "CheckInDocument", {QStringLiteral("D1")});
  VariantArray again{QStringLiteral("D1"), 9001, Variant()};
  const int result = stand.filtered.call("CheckOutDocument", again).toInt();
  stand.full.call("CheckInDocument", {QStringLiteral("D1")});
  return result == 1 ? absent : leaked;
}

// Somebody's provider in another's hands.
int withProvider(TestCaller& owner, TestCaller& other, const char* operation)
{
  const QString provider = owner.request(9000);
  const int code = qstrcmp(operation, "OpenProvider") == 0    ? errorCode([&] { other.open(provider); })
                   : qstrcmp(operation, "FetchRecords") == 0  ? errorCode([&] { other.fetch(provider, VariantArray{}, 1); })
                                                              : called(other, operation, {provider});
  // Whatever the other one did, it is there for its owner.
  return owner.open(provider)->records.rows > 0 ? code : leaked;
}

// Rights that are gone between readying a provider and reading from it.
int afterRevoking(Stand& stand, const std::function<void(const QString&)>& read)
{
  const QString provider = stand.reads.request(9000);
  Connection& db = stand.company.writer();
  db.execute(QStringLiteral("UPDATE S_Rights SET ReadRight = 0 WHERE User_Id = 'EF' AND Form_Id = 9000"));
  const int code = errorCode([&] { read(provider); });
  db.execute(QStringLiteral("UPDATE S_Rights SET ReadRight = 1 WHERE User_Id = 'EF' AND Form_Id = 9000"));
  return code;
}

int continued(TestCaller& caller)
{
  const QString provider = caller.request(9000);
  const DataPacketPtr first = caller.open(provider, 1);
  const Variant types = isNull(first->continuation) ? Variant(VariantArray(17, int(DataType::WideString)))
                                                    : first->continuation.toList().value(1);
  const DataPacketPtr rest = caller.fetch(provider, VariantArray{Variant(VariantArray{QString()}), types}, 100);
  for (qsizetype row = 0; row < rest->records.rows; ++row) {
    const QString id = rest->records.value(row, 0).toString();
    if (id == u"X1" || id == u"D2") {
      return leaked;
    }
  }
  return absent;
}

VariantArray priceOf(const QString& item)
{
  return {VariantArray{QString(), item, QStringLiteral("M"), 1, Variant(), 1, QString(), QString(), 0, 1, 1}, Variant(), Variant()};
}
int priced(TestCaller& caller, const QString& item, const char* operation)
{
  VariantArray arguments = priceOf(item);
  if (qstrcmp(operation, "GetPurchLinePrice") == 0) {
    arguments.removeLast();
  }
  return called(caller, operation, arguments);
}
int discounted(TestCaller& caller, const QString& item, bool sale)
{
  VariantArray request{QString(), item, QStringLiteral("M"), 1, QString(), Variant(), 1};
  request += sale ? VariantArray{0, QString(), 1} : VariantArray{1};
  VariantArray arguments{Variant(request), Variant()};
  if (sale) {
    arguments.append(Variant());
  }
  return called(caller, sale ? "GetSaleLineDiscount" : "GetPurchLineDiscount", arguments);
}
// 0 for the company that has the item, the answer of the other one else: a row that answers nobody would prove nothing.
int onlyThere(int there, int here) { return there < 0 ? leaked : here; }

int settings(TestCaller& caller, const QString& user, const QString& company)
{
  return called(caller, "ExecuteSQLScript",
                {QStringLiteral("IF Exists (Select Id from s_UserSettings where Id = '%1' and Comp_Id = '%2') Update s_UserSettings "
                                "Set settings = 'x', C_dateTime = 'd', C_Businessgroup_Id = '7', C_User_Id = '%1' where Id = '%1' and "
                                "Comp_Id = '%2' ELSE insert into s_UserSettings values ('%1', '%2', 'x', '7', '%1', 'd')").arg(user, company)});
}

int posted(TestCaller& caller, const QString& id) { return called(caller, "PostGlobalDoc", {id, 9040, Variant()}); }
int deleted(TestCaller& caller, const QString& id) { return called(caller, "DeleteGlobalDoc", {id, 9040}); }

// Whether the invoice is counted among its own links.
bool countsInvoice(TestCaller& caller, const QString& id)
{
  constexpr int invoice = 0, sales = 0;
  VariantArray arguments{invoice, sales, id};
  return caller.call("GetCountOfDocs", arguments).toList().value(0).toInt() > 0;
}
int countedOnlyFor(TestCaller& one, TestCaller& other, const QString& id)
{
  return countsInvoice(one, id) && !countsInvoice(other, id) ? absent : leaked;
}

int logIn(Stand& stand, const QString& user, const QString& group, const QString& company)
{
  TestCaller stranger(stand.company);
  return called(stranger, "LogIn", {user, digestOf(QStringLiteral("demo")), group, company, QString()});
}

const QString newDigest = QStringLiteral("0123456789abcdef0123456789abcdef");
const char* const noRecord = "touches no record";
const char* const noForm = "belongs to no form";
const char* const description = "descriptions of forms hold no records and are the same for everybody who has logged in";
const char* const itsOwn = "the session's own row alone";
const char* const priceForAll = "prices and rates are for whoever enters a line; the answer is a number, no record";
const char* const ownArguments = "takes no name of a table or field";

const QList<Row>& matrix()
{
  constexpr int Forbidden = RpcError::Forbidden, Refused = RpcError::Refused;
  static const QList<Row> rows{
      {"LogIn", is(-4, [](Stand& s) { return logIn(s, "AB", "7", "6"); }), is(-5, [](Stand& s) { return logIn(s, "GH", "7", "5"); }),
       no(ownArguments), is(-4, [](Stand& s) { return logIn(s, "AB", "8", "5"); })},
      {"ResumeSession", no("a session belongs to one company"), no("gives the session its own user again"), no(ownArguments), no(noRecord)},
      {"GetCompaniesList", no("the log-in window shows every company"), no("before log-in there is no right"), no(ownArguments), no(noRecord)},
      {"GetBGroupsList", no("the log-in window asks for the groups of any company"), no("before log-in there is no right"),
       no(ownArguments), no(noRecord)},
      {"GetUsersList", no("the log-in window asks for the users of any company"), no("before log-in there is no right"),
       is(absent, [](Stand& s) {
         VariantArray arguments{QString(), QStringLiteral("5"), Variant()};
         TestCaller(s.company).call("GetUsersList", arguments);
         for (const Variant& row : arguments[2].toList()) {
           if (row.toList().size() != 1 || row.toList().first().toString() == u"GH") {
             return leaked;  // more than the code, or somebody who cannot log in
           }
         }
         return absent;
       }), no(noRecord)},
      {"servername", no(noRecord), no(noForm), no(ownArguments), no(noRecord)},
      {"GetConnectionString", no("names the session's own company"), no(noForm), is(absent, [](Stand& s) {
         const QString text = s.full.call("GetConnectionString").toString();
         return text.contains(u"password", Qt::CaseInsensitive) || text.contains(u"pwd", Qt::CaseInsensitive) ||
                        text.contains(s.company.databases().company)
                    ? leaked : absent;
       }), no(noRecord)},
      {"ChangePassword", is(-4, [](Stand& s) {
         TestCaller administrator(s.company, QStringLiteral("SUPERVSR"));
         return called(administrator, "ChangePassword", {"XY", newDigest});
       }), is(Forbidden, [](Stand& s) { return called(s.full, "ChangePassword", {"CD", newDigest}); }),
       no("writes the one secret column, answers a number"), no("users have no row filter here: another user is refused")},
      {"UpdateUserSettings", no("writes the session's company alone"),
       is(Forbidden, [](Stand& s) { return called(s.full, "UpdateUserSettings", {VariantArray{"x"}, "'CD'"}); }), no(ownArguments), no(itsOwn)},
      {"ExecuteSQLScript", is(Forbidden, [](Stand& s) { return qMin(counted(s.full, "X1", "6"), settings(s.full, "AB", "6")); }),
       is(Forbidden, [](Stand& s) { return counted(s.reads, "D1", "5"); }),
       is(Refused, [](Stand& s) { return counted(s.full, "AB", "5", "N_Users", "PasswordHash"); }),
       is(absent, [](Stand& s) { return counted(s.filtered, "D2", "5"); })},
      {"trStart", no(noRecord), no(noForm), no(ownArguments), no(noRecord)},
      {"trCommit", no(noRecord), no(noForm), no(ownArguments), no(noRecord)},
      {"trRollback", no(noRecord), no(noForm), no(ownArguments), no(noRecord)},
      {"CreateDynamicProvider", no(noRecord), no("a provider has no form until RequestData"), no(ownArguments), no(noRecord)},
      {"DeleteDynamicProvider", is(0, [](Stand& s) { return withProvider(s.full, s.foreign, "DeleteDynamicProvider"); }),
       is(0, [](Stand& s) { return withProvider(s.full, s.bare, "DeleteDynamicProvider"); }), no(ownArguments), no(noRecord)},
      {"RequestData", is(absent, [](Stand& s) { return listed(s.full, "X1"); }),
       is(Forbidden, [](Stand& s) { return requested(s.bare, 9000, {}); }),
       is(Refused, [](Stand& s) { return requested(s.full, 9000, byId("1"), "N_Users.PasswordHash"); }),
       is(absent, [](Stand& s) { return listed(s.filtered, "D2"); })},
      {"OpenProvider", is(Refused, [](Stand& s) { return withProvider(s.full, s.foreign, "OpenProvider"); }),
       is(Forbidden, [](Stand& s) { return afterRevoking(s, [&](const QString& provider) { s.reads.open(provider); }); }),
       is(Refused, [](Stand& s) { return listed(s.full, "x", "T_Hidden.Note"); }), is(absent, [](Stand& s) { return listed(s.filtered, "D2"); })},
      {"FetchRecords", is(Refused, [](Stand& s) { return withProvider(s.full, s.foreign, "FetchRecords"); }),
       is(Forbidden, [](Stand& s) {
         return afterRevoking(s, [&](const QString& provider) { s.reads.fetch(provider, VariantArray{}, 1); });
       }), no("its provider was checked by RequestData"), is(absent, [](Stand& s) { return continued(s.filtered); })},
      {"RequestValue", is(absent, [](Stand& s) { return valued(s.full, 0, "T_Doc", "Name", byId("X1")); }),
       is(Forbidden, [](Stand& s) { return valued(s.bare, 0, "T_Doc", "Name"); }),
       is(Refused, [](Stand& s) { return valued(s.full, -1, "SELECT PasswordHash FROM N_Users", {}); }),
       is(absent, [](Stand& s) { return valued(s.filtered, -1, "SELECT Name FROM T_Doc WHERE Id = 'D2'", {}); })},
      {"ReadMany", is(absent, [](Stand& s) {
         return asked(s.full, "RequestValue", {0, "T_Doc", "Name", filterToVariant(byId("X1")), Variant(), true});
       }), is(Refused, [](Stand& s) { return asked(s.bare, "RequestValue", {0, "T_Doc", "Name", Variant(), Variant(), true}); }),
       is(Refused, [](Stand& s) { return asked(s.full, "RequestValue", {0, "srv_Session", "Token", Variant(), Variant(), true}); }),
       is(absent, [](Stand& s) {
         return asked(s.filtered, "RequestValue", {0, "T_Doc", "Name", filterToVariant(byId("D2")), Variant(), true});
       })},
      {"UpdateClientData", is(RpcError::Conflict, [](Stand& s) { return saved(s, s.full, s.foreign, "X1", "Name"); }),
       is(Forbidden, [](Stand& s) { return saved(s, s.reads, s.full, "D1", "Name"); }),
       is(0, [](Stand& s) { return saved(s, s.full, s.full, "D1", "Locked"); }),
       is(Forbidden, [](Stand& s) { return saved(s, s.filtered, s.full, "D2", "Name"); })},
      {"ExecMultySQL", is(absent, [](Stand& s) { return batched(s, s.full, "X1"); }),
       is(Forbidden, [](Stand& s) { return batched(s, s.reads, "D1"); }), is(Refused, [](Stand& s) { return batched(s, s.full, "D1", "Locked"); }),
       is(absent, [](Stand& s) { return batched(s, s.filtered, "D2"); })},
      {"GetFormsDescription", no(description), no(description), no(description), no(noRecord)},
      {"GetFieldsDescription", no(description), no(description), no(description), no(noRecord)},
      {"GetQueryID", no(description), no(description), no(description), no(noRecord)},
      {"GetAbsoluteNoSerie_Id", is(absent, [](Stand& s) {
         return s.full.call("GetAbsoluteNoSerie_Id").toString() == u"S2" && s.foreign.call("GetAbsoluteNoSerie_Id").toString().isEmpty()
                    ? absent : leaked;
       }), no("the name of a series, which every document needs"), no(ownArguments), no("series have no row filter")},
      {"GetSaleLinePrice",
       is(-1, [](Stand& s) { return onlyThere(priced(s.foreign, "I6", "GetSaleLinePrice"), priced(s.full, "I6", "GetSaleLinePrice")); }),
       no(priceForAll), no(ownArguments), no(priceForAll)},
      {"GetSaleLineDiscount",
       is(-1, [](Stand& s) { return onlyThere(discounted(s.foreign, "I6", true), discounted(s.full, "I6", true)); }), no(priceForAll),
       no(ownArguments), no(priceForAll)},
      {"GetPurchLinePrice", is(-1, [](Stand& s) { return priced(s.full, "I6", "GetPurchLinePrice"); }), no(priceForAll), no(ownArguments),
       no(priceForAll)},
      {"GetPurchLineDiscount",
       is(-1, [](Stand& s) { return onlyThere(discounted(s.foreign, "I6", false), discounted(s.full, "I6", false)); }), no(priceForAll),
       no(ownArguments), no(priceForAll)},
      {"GetCurrencyRate", is(-1, [](Stand& s) {
         const VariantArray rate{"XXX", Variant(), 0, Variant()};
         return onlyThere(called(s.foreign, "GetCurrencyRate", rate), called(s.full, "GetCurrencyRate", rate));
       }), no(priceForAll), no(ownArguments), no(priceForAll)},
      {"CheckSaleContragentParams", is(-1, [](Stand& s) {
         return onlyThere(called(s.foreign, "CheckSaleContragentParams", {"C6", 1, 3}), called(s.full, "CheckSaleContragentParams", {"C6", 1, 3}));
       }), no("contractors are open to every user of the company"), no(ownArguments), is(-1, [](Stand& s) {
         return onlyThere(called(s.full, "CheckSaleContragentParams", {"C5h", 1, 3}),
                          called(s.filtered, "CheckSaleContragentParams", {"C5h", 1, 3}));
       })},
      {"CheckItemUnitCost", is(-1, [](Stand& s) {
         return onlyThere(called(s.foreign, "CheckItemUnitCost", {"S6", 0}), called(s.full, "CheckItemUnitCost", {"S6", 0}));
       }), is(Forbidden, [](Stand& s) { return called(s.bare, "CheckItemUnitCost", {"S5", 0}); }), no(ownArguments), is(-1, [](Stand& s) {
         return onlyThere(called(s.full, "CheckItemUnitCost", {"S5h", 0}), called(s.filtered, "CheckItemUnitCost", {"S5h", 0}));
       })},
      {"PostGlobalDoc", is(Refused, [](Stand& s) { return posted(s.full, "G6"); }),
       is(Forbidden, [](Stand& s) { return posted(s.reads, "G5"); }), no(ownArguments),
       is(Forbidden, [](Stand& s) { return posted(s.filtered, "G5h"); })},
      {"DeleteGlobalDoc", is(Refused, [](Stand& s) { return deleted(s.full, "G6"); }),
       is(Forbidden, [](Stand& s) { return deleted(s.reads, "G5"); }), no(ownArguments),
       is(Forbidden, [](Stand& s) { return deleted(s.filtered, "G5h"); })},
      {"GetCountOfDocs", is(absent, [](Stand& s) { return countedOnlyFor(s.foreign, s.full, "S6"); }),
       is(absent, [](Stand& s) { return countedOnlyFor(s.full, s.bare, "S5"); }), no(ownArguments),
       is(absent, [](Stand& s) { return countedOnlyFor(s.full, s.filtered, "S5h"); })},
      {"DisableFlowFields", is(Refused, [](Stand& s) { return withProvider(s.full, s.foreign, "DisableFlowFields"); }),
       is(Refused, [](Stand& s) { return withProvider(s.full, s.bare, "DisableFlowFields"); }), no(ownArguments), no(noRecord)},
      {"EnableFlowFields", is(Refused, [](Stand& s) { return withProvider(s.full, s.foreign, "EnableFlowFields"); }),
       is(Refused, [](Stand& s) { return withProvider(s.full, s.bare, "EnableFlowFields"); }), no(ownArguments), no(noRecord)},
      {"SetTransferImportResult", no("notes a file's name under the session's own company"),
       no("whoever may import has its rights checked at every record"), no(ownArguments), no(noRecord)},
      {"CheckOutDocument", is(Forbidden, [](Stand& s) { return called(s.full, "CheckOutDocument", {"X1", 9001, Variant()}); }),
       is(Forbidden, [](Stand& s) { return called(s.reads, "CheckOutDocument", {"D1", 9001, Variant()}); }), no(ownArguments),
       is(Forbidden, [](Stand& s) { return called(s.filtered, "CheckOutDocument", {"D2", 9001, Variant()}); })},
      {"CheckInDocument", is(absent, [](Stand& s) { return letGo(s, s.foreign); }), is(absent, [](Stand& s) { return letGo(s, s.bare); }),
       no(ownArguments), is(absent, [](Stand& s) { return letGo(s, s.filtered); })},
  };
  return rows;
}

const Row* rowOf(const char* operation)
{
  for (const Row& row : matrix()) {
    if (qstrcmp(row.operation, operation) == 0) {
      return &row;
    }
  }
  return nullptr;
}

// A call with arguments that no operation needs to look at: whoever is nobody is told so first.
int asNobody(TestCaller& caller, const Operation& operation)
{
  VariantArray arguments(operation.parameters.size());
  return errorCode([&] { caller.call(operation.name, arguments); });
}

}  // namespace

Q_DECLARE_METATYPE(const Operation*)

class RightsMatrixTest : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() { stand_ = std::make_unique<Stand>(); }
  void cleanupTestCase() { stand_.reset(); }

  void everyOperation_data()
  {
    QTest::addColumn<const Operation*>("operation");
    for (const Operation& operation : operations()) {
      QTest::newRow(operation.name) << &operation;
    }
    QCOMPARE(matrix().size(), qsizetype(operations().size()));
  }
  void everyOperation()
  {
    QFETCH(const Operation*, operation);
    const Row* row = rowOf(operation->name);
    QVERIFY2(row, "no row in the matrix");
    const std::pair<const char*, const Cell*> cells[] = {{"another company", &row->otherCompany},
                                                         {"lower right", &row->lowerRight},
                                                         {"secret", &row->secret},
                                                         {"hidden row", &row->hiddenRow}};
    for (const auto& [column, cell] : cells) {
      if (!cell->reason) {
        const int answer = cell->attempt(*stand_);
        QVERIFY2(answer == cell->expected, qPrintable(QStringLiteral("%1: %2, not %3").arg(QLatin1StringView(column)).arg(answer).arg(cell->expected)));
      } else {
        QVERIFY2(QLatin1StringView(cell->reason).size() > 10, column);
      }
    }
    // Before log-in, with a session that was closed elsewhere, and with one that has been silent for a day.
    TestCaller nobody(stand_->company), closed(stand_->company, QStringLiteral("AB")), silent(stand_->company, QStringLiteral("AB"));
    stand_->company.core().state().closeSessionsOf(QStringLiteral("AB"), QStringLiteral("5"), silent.session.token);
    silence(silent);
    const int expected = operation->needsLogIn() ? int(RpcError::NotLoggedIn) : 0;
    for (TestCaller* caller : {&nobody, &closed, &silent}) {
      const int code = asNobody(*caller, *operation);
      QVERIFY2(operation->needsLogIn() ? code == expected : code != RpcError::NotLoggedIn, qPrintable(QString::number(code)));
      QVERIFY(!caller->company.writer().inTransaction());
    }
    stand_->full.session = TestCaller(stand_->company, QStringLiteral("AB")).session;
  }

  void aClosedOrSilentSessionIsNotResumed()
  {
    const auto resumed = [&](bool shut, bool hushed) {
      TestCaller owner(stand_->company);
      VariantArray arguments{QStringLiteral("EF"), digestOf(QStringLiteral("demo")), QStringLiteral("7"), QStringLiteral("5"), QString()};
      owner.call("LogIn", arguments);
      if (shut) {
        stand_->company.core().state().closeSessionsOf(QStringLiteral("EF"), QStringLiteral("5"), {});
      }
      if (hushed) {
        silence(owner);
      }
      TestCaller again(stand_->company);
      return called(again, "ResumeSession", {arguments[4]});
    };
    QCOMPARE(resumed(false, false), 0);
    QCOMPARE(resumed(true, false), -1);
    QCOMPARE(resumed(false, true), -1);
    stand_->reads.session = TestCaller(stand_->company, QStringLiteral("EF")).session;
  }

  // Rights that change hold from the next call on, for a session and a provider that are there already.
  void changesHoldAtOnce()
  {
    Stand& s = *stand_;
    Connection& db = s.company.writer();
    const QString provider = s.reads.request(9000);
    const auto set = [&](const char* change) {
      QVERIFY(db.execute(QStringLiteral("UPDATE S_Rights SET %1 WHERE User_Id = 'EF'").arg(QString::fromUtf8(change))) > 0);
    };
    const auto row = [&] { return s.reads.column(provider, QStringLiteral("Id")); };
    QCOMPARE(row(), QStringLiteral("D1 D2"));
    QCOMPARE(batched(s, s.reads, "D1"), int(RpcError::Forbidden));
    set("EditRight = 1");
    QCOMPARE(batched(s, s.reads, "D1"), leaked);  // changed: now he may
    set("SecurityFilter = 'T_Doc.Kind,=,2,'");
    QCOMPARE(row(), QStringLiteral("D2"));
    QCOMPARE(valued(s.reads, 0, "T_Doc", "Name", byId("D1")), absent);
    set("SecurityFilter = 'T_Doc.Nothing,=,2,'");
    QCOMPARE(errorCode([&] { row(); }), int(RpcError::Forbidden));
    set("SecurityFilter = NULL, EditRight = 0");
    QCOMPARE(row(), QStringLiteral("D1 D2"));
    QCOMPARE(batched(s, s.reads, "D2"), int(RpcError::Forbidden));
    set("ReadRight = 0");
    QCOMPARE(errorCode([&] { row(); }), int(RpcError::Forbidden));
    db.execute(QStringLiteral("UPDATE N_Users SET Active = 0 WHERE Id = 'EF'"));
    QCOMPARE(called(s.reads, "servername", {}), int(RpcError::NotLoggedIn));
    db.execute(QStringLiteral("UPDATE N_Users SET Active = 1 WHERE Id = 'EF'"));
    set("ReadRight = 1");
    QCOMPARE(row(), QStringLiteral("D1 D2"));
  }

 private:
  // A session that was last used more than a day ago.
  void silence(const TestCaller& caller)
  {
    const auto state = openDatabase(stand_->company.databases().state, ConnectionUse::State);
    QCOMPARE(state->execute(QStringLiteral("UPDATE srv_Session SET UsedAt = UsedAt - 90000 WHERE Token = ?"), {caller.session.token}), 1);
  }

  std::unique_ptr<Stand> stand_;
};

static RegisterTest<RightsMatrixTest> rightsMatrixTest;

#include "rights_matrix_test.moc"
