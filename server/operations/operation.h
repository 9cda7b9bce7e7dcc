// The operations that a client may call: one table, one row each. What is not in it does not exist.
#pragma once

#include <span>

#include "server/rights/access.h"
#include "server/server_core.h"

namespace kalvor::server {

// One call while it runs.
struct CallContext {
  ServerCore& core;
  Session& session;
  Connection& db;
  MetadataPtr metadata;
  VariantArray& arguments;  // in/out; handlers write only to var arguments

  Access access() const { return {db, *metadata, session}; }
  QString text(int index) const { return variantText(arguments.at(index)); }
  int integer(int index) const { return variantText(arguments.at(index)).toInt(); }
};

// What an argument may be. Text: text or number; Whole: a number, or a text of one; List: an array; ListOrNull.
enum class Shape : quint8 { Text, Whole, Flag, List, ListOrNull, Any };
struct Parameter {
  Shape shape = Shape::Any;
  bool var = false;         // comes back in the answer
  bool optional = false;    // may be missing at the end
};

// Which thread and connection a call runs on.
enum class RunsOn : quint8 {
  Reader,       // a worker with a reading connection
  Writer,       // the writer, in a transaction that ends with the call; answers are kept by request id
  Passwords,    // a thread of its own with a reading connection: hashing takes memory and time
  Transaction   // the writer, and the call itself begins or ends the session's transaction
};

// Who may call it, besides having logged in; the handler checks it.
enum class CallRight : quint8 {
  Everybody,    // before log-in too
  LoggedIn,
  ReadForm,     // ReadRight of the form in question
  WriteForm,    // EditRight, InsertRight, DeleteRight by row
  ReadTable,    // a table, query or statement open to the user
  OwnData       // only what belongs to the user himself
};

struct Operation {
  const char* name;
  RunsOn runsOn;
  CallRight right;
  QList<Parameter> parameters;
  Variant (*handler)(CallContext&);

  bool needsLogIn() const { return right != CallRight::Everybody; }
  quint64 returnedMask() const;  // of the var parameters
};

KALVOR_SERVER std::span<const Operation> operations();
// Names match without regard to case; null when there is none.
KALVOR_SERVER const Operation* findOperation(const QString& name);

// Refuses arguments that are not of the operation's shapes; missing optional ones are null afterwards.
void checkArguments(const Operation& operation, VariantArray& arguments);

// Runs a call on a connection that suits the operation: checks log-in and shapes, fills in missing optional
// arguments, opens the transaction of a writing call and answers a repeated request id. Throws RpcError for
// everything that goes wrong; an unexpected failure is logged and carries its incident id.
KALVOR_SERVER Variant runOperation(ServerCore& core, Connection& db, Session& session, const Operation& operation,
                                   VariantArray& arguments, const QString& requestId = {});

}  // namespace kalvor::server
