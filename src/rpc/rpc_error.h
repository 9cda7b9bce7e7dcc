// The error of a remote call.
#pragma once

#include "data/data_error.h"

namespace kalvor {

// What a failed call carries: codes below. The text is Bulgarian and fit for the user; incident is the id
// under which the server logged the details, empty when there is none.
class KALVOR_RPC RpcError : public DataError {
 public:
  enum Code : int {
    Unreachable = 1,     // no connection, and none could be made
    Timeout = 2,         // no answer in time; the call may have run
    ConnectionLost = 3,  // the connection broke before the answer came; the call may have run
    BadFrame = 4,        // the other side does not speak the protocol
    Untrusted = 5,       // the server's certificate is not the known one, or nobody accepted it
    UnknownOperation = 10,
    BadArguments = 11,
    NotLoggedIn = 12,
    Forbidden = 13,
    Refused = 14,        // a statement, table, field or value the server does not accept
    EncryptedOnly = 15,  // the server answers encrypted connections alone
    Conflict = 20,       // a record changed since it was read; the text names who and when
    Invalid = 21,        // a value that the server's rules refuse (too long, missing, no such record)
    Internal = 30,
    Unsettled = 31       // the server lost its database while it committed; the call may have run
  };
  RpcError(int code, QString text, QString incident = {});
  ~RpcError() override;
  int code() const { return code_; }
  const QString& incident() const { return incident_; }
  // Whether the call may have run all the same: no answer of it came, the server itself does not
  // know, or only a repetition of it failed before the server could look whether it had.
  bool mayHaveRun() const;

 private:
  int code_;
  QString incident_;
};

}  // namespace kalvor
