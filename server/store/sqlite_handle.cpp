#include "server/store/sqlite_handle.h"

#include <QUrl>
#include <algorithm>
#include <cstring>
#include <utility>

#include "server/store/asked_rules.h"
#include "server/store/statement_trace.h"
#include "server/store/text_rules.h"

namespace kalvor::server {

namespace {

constexpr int busyTimeoutMs = 10'000;
constexpr qsizetype idleStatements = 200;

StoreError::Kind storeErrorKind(int code)
{
  switch (code & 0xFF) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED: return StoreError::Kind::Busy;
    case SQLITE_CONSTRAINT:
    case SQLITE_MISMATCH:
    case SQLITE_TOOBIG: return StoreError::Kind::Constraint;
    case SQLITE_FULL: return StoreError::Kind::DiskFull;
    case SQLITE_AUTH: return StoreError::Kind::Denied;
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB: return StoreError::Kind::Corrupt;
    default: return StoreError::Kind::Other;
  }
}

StoreError::Rule brokenRule(int code)
{
  switch (code) {
    case SQLITE_CONSTRAINT_NOTNULL: return StoreError::Rule::Required;
    case SQLITE_CONSTRAINT_UNIQUE:
    case SQLITE_CONSTRAINT_PRIMARYKEY: return StoreError::Rule::Unique;
    case SQLITE_CONSTRAINT_FOREIGNKEY: return StoreError::Rule::Reference;
    default: return StoreError::Rule::None;
  }
}

// "UNIQUE constraint failed: T.A, T.B": A and B.
QStringList namedColumns(const QString& message)
{
  QStringList columns;
  for (const QString& name : message.section(QStringLiteral("failed: "), 1).split(QStringLiteral(", "), Qt::SkipEmptyParts)) {
    columns.append(name.section(u'.', -1).trimmed());
  }
  return columns;
}

// A shared database in memory is kept by the in-memory file system, whose locks are those of a file.
QByteArray sqliteName(const QString& fileName)
{
  if (!fileName.startsWith(u"file:")) {
    return fileName.toUtf8();
  }
  const QString name = fileName.mid(5).section(u'?', 0, 0);
  return "file:/" + QUrl::toPercentEncoding(name) + "?vfs=memdb";
}

std::string_view textOf(sqlite3_value* value)
{
  const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(value));
  return {text, size_t(sqlite3_value_bytes(value))};
}

int collate(void*, int leftSize, const void* left, int rightSize, const void* right)
{
  return compareText({static_cast<const char*>(left), size_t(leftSize)},
                     {static_cast<const char*>(right), size_t(rightSize)});
}

void likeFunction(sqlite3_context* context, int count, sqlite3_value** values)
{
  for (int i = 0; i < count; ++i) {
    if (sqlite3_value_type(values[i]) == SQLITE_NULL) {
      return;
    }
  }
  char32_t escape = 0;
  if (count == 3) {
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_value_text(values[2])));
    escape = text.isEmpty() ? 0 : text.toUcs4().first();
  }
  sqlite3_result_int(context, matchesPattern(textOf(values[1]), textOf(values[0]), escape));
}

template <bool upper>
void caseFunction(sqlite3_context* context, int, sqlite3_value** values)
{
  if (sqlite3_value_type(values[0]) == SQLITE_NULL) {
    return;
  }
  const std::string_view text = textOf(values[0]);
  const QString whole = QString::fromUtf8(text.data(), qsizetype(text.size()));
  const QByteArray result = (upper ? whole.toUpper() : whole.toLower()).toUtf8();
  sqlite3_result_text(context, result.constData(), int(result.size()), SQLITE_TRANSIENT);
}

bool isReadingPragma(const char* name)
{
  static constexpr const char* known[] = {"table_xinfo", "foreign_key_list", "integrity_check", "foreign_key_check"};
  return name && std::any_of(std::begin(known), std::end(known), [name](const char* one) { return std::strcmp(name, one) == 0; });
}

int authorizeReading(int action, const char* first)
{
  switch (action) {
    case SQLITE_SELECT:
    case SQLITE_READ:
    case SQLITE_FUNCTION:
    case SQLITE_RECURSIVE:
    case SQLITE_TRANSACTION:
    case SQLITE_SAVEPOINT: return SQLITE_OK;
    // SQLite asks this when a statement first names one of its own table-valued pragmas; nothing is written, and
    // defensive mode keeps the schema from being written by text.
    case SQLITE_UPDATE: return first && std::strcmp(first, "sqlite_master") == 0 ? SQLITE_OK : SQLITE_DENY;
    case SQLITE_PRAGMA: return isReadingPragma(first) ? SQLITE_OK : SQLITE_DENY;
    default: return SQLITE_DENY;
  }
}

// The statements of a cache by text and use.
QByteArray cacheKey(const QByteArray& sql, StatementUse use) { return use == StatementUse::Asked ? '\x01' + sql : sql; }

}  // namespace

int SqliteHandle::authorize(void* given, int action, const char* first, const char* second, const char*, const char*)
{
  auto& rules = *static_cast<Rules*>(given);
  const int answer = rules.use == StatementUse::Asked ? authorizeAsked(rules, action, first, second)
                     : rules.readOnly                 ? authorizeReading(action, first)
                                                      : SQLITE_OK;
  rules.denied = rules.denied || answer == SQLITE_DENY;
  return answer;
}

int SqliteHandle::authorizeAsked(Rules& rules, int action, const char* first, const char* second)
{
  switch (action) {
    case SQLITE_SELECT: return SQLITE_OK;
    case SQLITE_FUNCTION: return isPlainFunction(QString::fromUtf8(second)) ? SQLITE_OK : SQLITE_DENY;
    case SQLITE_READ: {
      const QString table = QString::fromUtf8(first);
      if (isServerTable(table) || isSecretColumn(table, QString::fromUtf8(second))) {
        return SQLITE_DENY;
      }
      rules.tables.insert(table.toLower().toUtf8());
      return SQLITE_OK;
    }
    default: return SQLITE_DENY;
  }
}

SqliteHandle::SqliteHandle(const QString& fileName)
{
  const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_URI | SQLITE_OPEN_NOMUTEX;
  const int code = sqlite3_open_v2(sqliteName(fileName).constData(), &database_, flags, nullptr);
  if (code != SQLITE_OK) {
    const QString message = QString::fromUtf8(database_ ? sqlite3_errmsg(database_) : "out of memory");
    sqlite3_close_v2(database_);
    throw StoreError(storeErrorKind(code), QStringLiteral("%1: %2").arg(fileName, message));
  }
  sqlite3_extended_result_codes(database_, 1);
  sqlite3_busy_timeout(database_, busyTimeoutMs);
  sqlite3_db_config(database_, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
  sqlite3_db_config(database_, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
  sqlite3_db_config(database_, SQLITE_DBCONFIG_DQS_DML, 0, nullptr);
  sqlite3_db_config(database_, SQLITE_DBCONFIG_DQS_DDL, 0, nullptr);
  sqlite3_db_config(database_, SQLITE_DBCONFIG_ENABLE_LOAD_EXTENSION, 0, nullptr);
  sqlite3_set_authorizer(database_, &SqliteHandle::authorize, &rules_);
  registerTextRules(database_);
}

SqliteHandle::~SqliteHandle()
{
  for (sqlite3_stmt* statement : std::as_const(idle_)) {
    sqlite3_finalize(statement);
  }
  sqlite3_close_v2(database_);
}

void SqliteHandle::run(const char* sql)
{
  traceStatement(sql);
  const int code = sqlite3_exec(database_, sql, nullptr, nullptr, nullptr);
  if (code != SQLITE_OK) {
    fail(code, sql);
  }
}

sqlite3_stmt* SqliteHandle::take(const QByteArray& sql, StatementUse use)
{
  traceStatement(sql);
  const QByteArray key = cacheKey(sql, use);
  if (sqlite3_stmt* known = idle_.take(key)) {
    order_.removeOne(key);
    return known;
  }
  return compile(sql, use);
}

sqlite3_stmt* SqliteHandle::compile(const QByteArray& sql, StatementUse use)
{
  rules_.tables.clear();
  rules_.denied = false;
  const auto before = std::exchange(rules_.use, use);
  sqlite3_stmt* statement = nullptr;
  const char* rest = nullptr;
  const int code =
      sqlite3_prepare_v3(database_, sql.constData(), int(sql.size()), SQLITE_PREPARE_PERSISTENT, &statement, &rest);
  rules_.use = before;
  if (code != SQLITE_OK || !statement) {
    // A function that is denied is reported as a plain error.
    fail(code == SQLITE_OK ? SQLITE_MISUSE : rules_.denied ? SQLITE_AUTH : code, sql);
  }
  if (!QByteArray(rest).trimmed().isEmpty()) {
    sqlite3_finalize(statement);
    throw StoreError(StoreError::Kind::Other, QStringLiteral("more than one statement: ") + QString::fromUtf8(sql));
  }
  if (use == StatementUse::Asked && (sqlite3_stmt_readonly(statement) == 0 || !allKnown(QSet(rules_.tables)))) {
    sqlite3_finalize(statement);
    throw StoreError(StoreError::Kind::Denied, QStringLiteral("not a query over known tables: ") + QString::fromUtf8(sql.left(2000)));
  }
  return statement;
}

// Tables and views of the schema, not those that SQLite or an extension offers by name.
bool SqliteHandle::allKnown(const QSet<QByteArray>& tables)
{
  if (knownTables_.contains(tables)) {
    return true;
  }
  knownTables_.clear();
  sqlite3_stmt* names = compile("SELECT lower(name) FROM sqlite_schema WHERE type IN ('table', 'view') AND rootpage >= 0 "
                                "AND sql NOT LIKE 'CREATE VIRTUAL%'", StatementUse::Own);
  while (sqlite3_step(names) == SQLITE_ROW) {
    knownTables_.insert(reinterpret_cast<const char*>(sqlite3_column_text(names, 0)));
  }
  sqlite3_finalize(names);
  return knownTables_.contains(tables);
}

int SqliteHandle::step(sqlite3_stmt* statement, StatementUse use)
{
  const auto before = std::exchange(rules_.use, use);
  const int code = sqlite3_step(statement);
  rules_.use = before;
  return code;
}

void SqliteHandle::allowReadingOnly() { rules_.readOnly = true; }

void SqliteHandle::giveBack(const QByteArray& sql, StatementUse use, sqlite3_stmt* statement)
{
  const QByteArray key = cacheKey(sql, use);
  sqlite3_reset(statement);
  sqlite3_clear_bindings(statement);
  if (idle_.contains(key)) {
    sqlite3_finalize(statement);
    return;
  }
  if (order_.size() >= idleStatements) {
    sqlite3_finalize(idle_.take(order_.takeFirst()));
  }
  idle_.insert(key, statement);
  order_.append(key);
}

void SqliteHandle::fail(int code, const QByteArray& sql) const
{
  const QString message = QString::fromUtf8(sqlite3_errmsg(database_));
  throw StoreError(storeErrorKind(code),
                   QStringLiteral("%1 (%2) in: %3").arg(message).arg(code).arg(QString::fromUtf8(sql.left(2000))),
                   brokenRule(code), namedColumns(message));
}

void registerTextRules(sqlite3* database)
{
  constexpr int pure = SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS;
  sqlite3_create_collation_v2(database, "KALVOR", SQLITE_UTF8, nullptr, collate, nullptr);
  for (int count : {2, 3}) {
    sqlite3_create_function_v2(database, "like", count, pure, nullptr, likeFunction, nullptr, nullptr, nullptr);
  }
  sqlite3_create_function_v2(database, "lower", 1, pure, nullptr, caseFunction<false>, nullptr, nullptr, nullptr);
  sqlite3_create_function_v2(database, "upper", 1, pure, nullptr, caseFunction<true>, nullptr, nullptr, nullptr);
}

}  // namespace kalvor::server
