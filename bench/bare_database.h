// The database without the server.
#pragma once

#include <QString>
#include <sqlite3.h>

#include "data/data_error.h"
#include "server/store/text_rules.h"
#include "timing.h"

namespace kalvor::bench {

class BareDatabase {
 public:
  explicit BareDatabase(const QString& file)
  {
    if (sqlite3_open(file.toUtf8().constData(), &db_) != SQLITE_OK)
      throw DataError(QString::fromUtf8(sqlite3_errmsg(db_)));
    // The server's own collation stands in the indexes; the bare reader compares alike.
    sqlite3_create_collation(db_, "KALVOR", SQLITE_UTF8, nullptr, [](void*, int na, const void* a, int nb, const void* b) {
      return server::compareText({static_cast<const char*>(a), size_t(na)}, {static_cast<const char*>(b), size_t(nb)});
    });
    run("PRAGMA journal_mode=WAL; PRAGMA synchronous=FULL; PRAGMA busy_timeout=5000");
  }
  ~BareDatabase() { sqlite3_close(db_); }
  void run(const char* sql)
  {
    char* message = nullptr;
    if (sqlite3_exec(db_, sql, nullptr, nullptr, &message) != SQLITE_OK)
      throw DataError(QString::fromUtf8(message) + QLatin1String(": ") + QString::fromUtf8(sql));
  }
  sqlite3_stmt* prepare(const char* sql)
  {
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(db_, sql, -1, &statement, nullptr) != SQLITE_OK)
      throw DataError(QString::fromUtf8(sqlite3_errmsg(db_)));
    return statement;
  }
  // Reads every column of every row; the bytes of the values.
  qint64 readAll(const char* sql)
  {
    sqlite3_stmt* statement = prepare(sql);
    qint64 bytes = 0;
    while (sqlite3_step(statement) == SQLITE_ROW)
      for (int i = 0; i < sqlite3_column_count(statement); ++i)
        switch (sqlite3_column_type(statement, i)) {
          case SQLITE_INTEGER: bytes += 8 + (sqlite3_column_int64(statement, i) & 0); break;
          case SQLITE_FLOAT: bytes += 8; break;
          case SQLITE_NULL: break;
          default:
            sqlite3_column_text(statement, i);
            bytes += sqlite3_column_bytes(statement, i);
        }
    sqlite3_finalize(statement);
    return bytes;
  }

 private:
  sqlite3* db_ = nullptr;
};

}  // namespace kalvor::bench
