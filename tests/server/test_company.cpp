#include "server/test_company.h"

#include <QCryptographicHash>

#include "server/store/migrations.h"
#include "server/test_database.h"

namespace kalvor::testing {

using namespace server;

namespace {

const char* const tables = R"(
CREATE TABLE T_Partner (Id VARCHAR(32) NOT NULL PRIMARY KEY, Comp_Id VARCHAR(10) NOT NULL, Name VARCHAR(50));
CREATE TABLE T_Doc (
  Id VARCHAR(32) NOT NULL PRIMARY KEY, Comp_Id VARCHAR(10) NOT NULL, DocumentNo VARCHAR(20), AbsoluteNo VARCHAR(20),
  Name VARCHAR(12) NOT NULL, DocDate DATE, Moment TIMESTAMP, Amount AMOUNT, Kind INTEGER NOT NULL DEFAULT 0, Flag BOOLEAN,
  Series_Id VARCHAR(32), Partner_Id VARCHAR(32) REFERENCES T_Partner (Id), CopiesPrinted INTEGER, Locked VARCHAR(10),
  C_User_Id VARCHAR(50), C_Datetime TIMESTAMP, C_Businessgroup_Id VARCHAR(32));
CREATE UNIQUE INDEX UX_T_Doc ON T_Doc (Comp_Id, DocumentNo);
CREATE INDEX IX_T_Doc_Date ON T_Doc (Comp_Id, DocDate, Id);
CREATE TABLE T_Line (
  Id VARCHAR(32) NOT NULL PRIMARY KEY, Master_Id VARCHAR(32) NOT NULL REFERENCES T_Doc (Id), Text VARCHAR(50), Quantity AMOUNT);
CREATE TABLE T_Hidden (Id VARCHAR(32) NOT NULL PRIMARY KEY, Comp_Id VARCHAR(10) NOT NULL, Note VARCHAR(50));
INSERT INTO T_Partner VALUES ('P1', '5', 'Алфа'), ('P2', '5', 'Бета'), ('P6', '6', 'Чужд');
INSERT INTO T_Hidden VALUES ('H1', '5', 'тайна');
INSERT INTO N_Company (Id, Name) VALUES ('5', 'Пета'), ('6', 'Шеста');
INSERT INTO N_BusinessGroup (Id, Comp_Id, Code, Name) VALUES ('7', '5', '7', 'Магазин'), ('8', '6', '8', 'Склад');
INSERT INTO N_Employee (Id, Comp_Id, Code, Name) VALUES ('E1', '5', '1', 'Анна Борисова');
INSERT INTO N_Series (Id, Comp_Id, Code, Name, Prefix, LastNo, MaxNo, ManualNo, Kind) VALUES
  ('S1', '5', 'INV', 'Фактури', 'A', 41, 99999, 0, 0), ('S2', '5', 'ABS', 'Абсолютни', NULL, 0, 9999999999, 0, 1),
  ('S3', '5', 'MAN', 'Ръчни', NULL, 8, 9, 1, 0), ('S6', '6', 'INV', 'Фактури', 'B', 0, 99999, 0, 0);
INSERT INTO C_CompanySetup (Id, PrecisionAmount, Currency_LCY) VALUES ('5', 2, 'EUR'), ('6', 3, 'BGN');
)";

const QString documents = QStringLiteral(
    "SELECT T_Doc.Id AS Id, T_Doc.Comp_Id AS Comp_Id, T_Doc.DocumentNo AS DocumentNo, T_Doc.AbsoluteNo AS AbsoluteNo, "
    "T_Doc.Name AS Name, T_Doc.DocDate AS DocDate, T_Doc.Moment AS Moment, T_Doc.Amount AS Amount, T_Doc.Kind AS Kind, "
    "T_Doc.Flag AS Flag, T_Doc.Series_Id AS Series_Id, T_Doc.Partner_Id AS Partner_Id, T_Partner.Name AS T_Partner_Name, "
    "T_Doc.Locked AS Locked, T_Doc.C_User_Id AS C_User_Id, T_Doc.C_Datetime AS C_Datetime, T_Doc.Amount * 2 AS \"Twice:AMOUNT\" "
    "FROM T_Doc LEFT JOIN T_Partner ON T_Partner.Id = T_Doc.Partner_Id");
const QString lines = QStringLiteral(
    "SELECT T_Line.Id AS Id, T_Line.Master_Id AS Master_Id, T_Line.Text AS Text, T_Line.Quantity AS Quantity FROM T_Line");
const QString totals = QStringLiteral(
    "SELECT T_Doc.Kind AS Kind, SUM(T_Doc.Amount) AS \"Total:AMOUNT\" FROM T_Doc GROUP BY T_Doc.Kind");

void addQuery(Connection& db, int id, int form, int index, const QString& sql, const QString& table, const QString& key,
              const QString& company, const QString& order)
{
  db.execute(QStringLiteral("INSERT INTO S_QueryList (Id, Form_Id, Ds_Index, SqlText, BaseTable, KeyField, CompanyField, "
                            "DefaultOrder) VALUES (?, ?, ?, ?, ?, ?, ?, ?)"),
             {id, form, index, sql, table, key, company.isEmpty() ? Variant() : Variant(company), order});
}

void addFields(Connection& db, int query, const QStringList& descriptions)
{
  int index = 0;
  for (const QString& description : descriptions) {
    const QStringList parts = description.split(u';');
    db.execute(QStringLiteral("INSERT INTO S_FieldList (SQL_ID, FieldIndex, FieldName, Caption, FieldType, FieldFilter, "
                              "Updatable) VALUES (?, ?, ?, ?, ?, ?, ?)"),
               {query, index++, parts.value(0), parts.value(1), parts.value(2), parts.value(3), parts.value(4)});
  }
}

void addUser(Connection& db, const QString& user, const QString& company, bool active, const QString& rights,
             const QString& filter = {})
{
  db.execute(QStringLiteral("INSERT INTO N_Users (Id, Comp_Id, Employee_Id, Active, PasswordHash) VALUES (?, ?, ?, ?, ?)"),
             {user, company, QStringLiteral("E1"), int(active), hashDigest(digestOf(QStringLiteral("demo")))});
  db.execute(QStringLiteral("INSERT INTO S_UserGroups (User_Id, Comp_Id, BusinessGroup_Id) VALUES (?, ?, ?)"),
             {user, company, company == u"5" ? QStringLiteral("7") : QStringLiteral("8")});
  for (int form : {9000, 9001, 9010}) {
    if (!rights.isEmpty()) {
      const auto has = [&](QChar letter) { return int(rights.contains(letter)); };
      db.execute(QStringLiteral("INSERT INTO S_Rights (User_Id, Comp_Id, Form_Id, ReadRight, EditRight, InsertRight, "
                                "DeleteRight, PrintRight, SecurityFilter) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)"),
                 {user, company, form, has(u'r'), has(u'e'), has(u'i'), has(u'd'), has(u'p'), filter});
    }
  }
}

}  // namespace

QString digestOf(const QString& password)
{
  return QString::fromLatin1(QCryptographicHash::hash(password.toUtf8(), QCryptographicHash::Md5).toHex());
}

TestCompany::TestCompany(const ServerCore::Databases& databases)
    : databases_(databases), core_(databases_), writer_(core_.openWriter()), reader_(core_.openReader())
{
}

TestCompany::TestCompany() : TestCompany(ServerCore::Databases::of(newServerDatabase()))
{
  setPasswordCost(PasswordCost::CheapForTests);
  Transaction transaction(*writer_);
  runScript(*writer_, QString::fromUtf8(tables));
  for (int form : {9000, 9001}) {
    addQuery(*writer_, form * 10, form, 0, documents, QStringLiteral("T_Doc"), QStringLiteral("T_Doc.Id"),
             QStringLiteral("T_Doc.Comp_Id"), QStringLiteral("T_Doc.Id"));
    addFields(*writer_, form * 10, {QStringLiteral("Id;;;T_Doc.Id"), QStringLiteral("DocumentNo;Номер;5;T_Doc.DocumentNo"),
        QStringLiteral("Name;Име;0;T_Doc.Name"), QStringLiteral("DocDate;Дата;7;T_Doc.DocDate"),
        QStringLiteral("Amount;Сума;0;T_Doc.Amount"), QStringLiteral("Kind;Вид;1;T_Doc.Kind"),
        QStringLiteral("T_Partner_Name;Клиент;3;T_Partner.Name"), QStringLiteral("Locked;;0;;0")});
  }
  addQuery(*writer_, 90011, 9001, 1, lines, QStringLiteral("T_Line"), QStringLiteral("T_Line.Id"), {}, QStringLiteral("T_Line.Id"));
  addQuery(*writer_, 90100, 9010, 0, totals, QStringLiteral("T_Doc"), {}, QStringLiteral("T_Doc.Comp_Id"), QStringLiteral("Kind"));
  for (int form : {9000, 9001}) {
    writer_->execute(QStringLiteral("INSERT INTO S_Forms (ID, Ds_Index, Caption, ClassName, BaseTable) VALUES (?, 0, 'Документи', "
                                    "'TfDoc', 'T_Doc')"), {form});
  }
  addUser(*writer_, QStringLiteral("SUPERVSR"), QStringLiteral("5"), true, {});
  addUser(*writer_, QStringLiteral("AB"), QStringLiteral("5"), true, QStringLiteral("reidp"));
  addUser(*writer_, QStringLiteral("CD"), QStringLiteral("5"), true, QStringLiteral("reidp"), QStringLiteral("T_Doc.Kind,=,1,"));
  addUser(*writer_, QStringLiteral("EF"), QStringLiteral("5"), true, QStringLiteral("r"));
  addUser(*writer_, QStringLiteral("GH"), QStringLiteral("5"), false, QStringLiteral("reidp"));
  addUser(*writer_, QStringLiteral("IJ"), QStringLiteral("5"), true, {});
  addUser(*writer_, QStringLiteral("XY"), QStringLiteral("6"), true, QStringLiteral("reidp"));
  MetadataCache::touch(*writer_);
  transaction.commit();
}

void TestCompany::addDocument(const QString& id, int kind, const QString& name, int lineCount)
{
  writer_->execute(QStringLiteral("INSERT INTO T_Doc (Id, Comp_Id, Name, Kind, Amount, DocDate, C_User_Id, C_Datetime) "
                                  "VALUES (?, '5', ?, ?, ?, ?, 'NN', ?)"),
                   {id, name, kind, 1.5, QDate(2024, 3, 5), QDateTime(QDate(2024, 3, 5), QTime(10, 11, 12))});
  for (int i = 1; i <= lineCount; ++i) {
    writer_->execute(QStringLiteral("INSERT INTO T_Line (Id, Master_Id, Text, Quantity) VALUES (?, ?, 'ред', ?)"),
                     {QStringLiteral("%1-%2").arg(id).arg(i), id, double(i)});
  }
}

TestCaller::TestCaller(TestCompany& testCompany, const QString& user, const QString& companyId, const QString& groupId)
    : company(testCompany)
{
  session.peer = QStringLiteral("test");
  if (!user.isEmpty()) {
    VariantArray arguments{user, digestOf(QStringLiteral("demo")), groupId, companyId, QString()};
    const int result = call("LogIn", arguments).toInt();
    if (result != 0)
      qFatal("log-in of %s gave %d", qPrintable(user), result);
  }
}

Variant TestCaller::call(const char* name, VariantArray& arguments, const QString& requestId)
{
  const Operation* operation = findOperation(QLatin1StringView(name));
  if (!operation)
    throw RpcError(RpcError::UnknownOperation, QLatin1StringView(name));
  const bool reads = operation->runsOn == RunsOn::Reader || operation->runsOn == RunsOn::Passwords;
  return runOperation(company.core(), reads ? company.reader() : company.writer(), session, *operation, arguments, requestId);
}

QString TestCaller::newProvider()
{
  VariantArray arguments{QString(), true};
  call("CreateDynamicProvider", arguments);
  return arguments[0].toString();
}

QString TestCaller::request(int formId, int dsIndex, const FilterArray& filter, const QString& order)
{
  const QString provider = newProvider();
  VariantArray arguments{formId, dsIndex, provider, filterToVariant(filter), order, Variant(), Variant(), 0};
  const int result = call("RequestData", arguments).toInt();
  if (result != 0)
    throw RpcError(result, QStringLiteral("RequestData"));
  return provider;
}

DataPacketPtr TestCaller::open(const QString& provider, int count)
{
  return call("OpenProvider", {provider, count}).value<DataPacketPtr>();
}

DataPacketPtr TestCaller::fetch(const QString& provider, const Variant& continuation, int count)
{
  return call("FetchRecords", {provider, continuation, count}).value<DataPacketPtr>();
}

QString TestCaller::column(const QString& provider, const QString& field)
{
  const DataPacketPtr packet = open(provider);
  QStringList texts;
  for (qsizetype row = 0; row < packet->records.rows; ++row)
    texts << variantText(packet->records.value(row, packet->records.indexOf(field)));
  return texts.join(u' ');
}

Variant TestCaller::save(const QList<std::pair<QString, DeltaPtr>>& deltas, const Variant& numbers, const QString& requestId)
{
  VariantArray pairs;
  for (const auto& [provider, delta] : deltas)
    pairs.append(Variant(VariantArray{provider, QVariant::fromValue(delta)}));
  VariantArray arguments{Variant(pairs), numbers};
  return call("UpdateClientData", arguments, requestId);
}

VariantArray DeltaBuilder::valuesOf(qsizetype row) const
{
  VariantArray values;
  for (int i = 0; i < packet_->records.fields.size(); ++i)
    values.append(packet_->records.value(row, i));
  return values;
}

void DeltaBuilder::append(VariantArray row, UpdateStatus status)
{
  delta_.records.appendRow(row);
  delta_.status.push_back(status);
}

DeltaBuilder& DeltaBuilder::insert(const QHash<QString, Variant>& values)
{
  VariantArray row(packet_->records.fields.size());
  for (auto it = values.begin(); it != values.end(); ++it)
    row[packet_->records.indexOf(it.key())] = it.value();
  append(row, UpdateStatus::Inserted);
  return *this;
}

DeltaBuilder& DeltaBuilder::modify(qsizetype row, const QHash<QString, Variant>& changes)
{
  VariantArray values = valuesOf(row);
  append(values, UpdateStatus::Unmodified);
  for (auto it = changes.begin(); it != changes.end(); ++it)
    values[packet_->records.indexOf(it.key())] = it.value();
  append(values, UpdateStatus::Modified);
  return *this;
}

DeltaBuilder& DeltaBuilder::remove(qsizetype row)
{
  append(valuesOf(row), UpdateStatus::Deleted);
  return *this;
}

}  // namespace kalvor::testing
