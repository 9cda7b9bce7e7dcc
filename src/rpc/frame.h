// Frames of the wire: a 4-byte big-endian length, then one CBOR item (RFC 8949). docs/protocol.md describes
// every byte. Both ends use these functions.
#pragma once

#include <QByteArray>
#include <optional>

#include "data/record_set.h"

namespace kalvor {

// What a frame may cost its reader. Everything is checked before memory is taken for it.
struct FrameLimits {
  qint64 maxBytes = 0;    // of the CBOR item, without the length before it
  int maxDepth = 0;       // arrays, maps and tags around a value
  qint64 maxValues = 0;   // values, array items and blobs in one frame; typed arrays do not count

  static constexpr FrameLimits beforeLogIn() { return {16 * 1024, 16, 4096}; }
  static constexpr FrameLimits ofServer() { return {64 * 1024 * 1024, 32, 2'000'000}; }
  static constexpr FrameLimits ofClient() { return {1024 * 1024 * 1024, 32, 50'000'000}; }
};

struct CallError {
  int code = 0;        // RpcError::Code
  QString text;        // for the user, Bulgarian
  QString incident;    // empty: none
};

struct Frame {
  enum class Kind : quint8 { Call = 0, Answer = 1 };
  Kind kind = Kind::Call;
  quint64 id = 0;          // chosen by the caller, repeated by the answer
  QString operation;       // call
  QString requestId;       // call; empty: none
  VariantArray arguments;  // call: as sent; answer: after the call
  // Answer: bit i set = arguments[i] was sent back. The others, and those beyond the list, are as the caller
  // sent them.
  quint64 returned = 0;
  std::optional<CallError> error;  // answer; then there is no result
  Variant result;                  // answer
};

constexpr int maxCallArguments = 64;
constexpr quint64 allArguments = ~quint64(0);

// Whole frames, the length included. Values: the kinds of variant.h; a double that is not finite is sent as
// null. Throws RpcError (BadArguments) for a kind that cannot travel and for a frame over 4 GiB.
KALVOR_RPC QByteArray encodeCall(quint64 id, const QString& operation, const VariantArray& arguments,
                                 const QString& requestId = {});
KALVOR_RPC QByteArray encodeAnswer(quint64 id, const Variant& result, const VariantArray& arguments,
                                   quint64 returned = allArguments);
KALVOR_RPC QByteArray encodeError(quint64 id, const CallError& error);

// Reads one CBOR item, without the length before it. Nothing when it is malformed, truncated, exceeds a
// limit, or bytes follow it; reason (if given) then says why, in English, for a log. Whole numbers arrive as
// int where they fit, else as qlonglong.
KALVOR_RPC std::optional<Frame> decodeFrame(QByteArrayView item, const FrameLimits& limits,
                                            QString* reason = nullptr);

// One value alone, as it stands in a frame: for tests, stores of answers, files.
KALVOR_RPC QByteArray encodeValue(const Variant& value);
KALVOR_RPC std::optional<Variant> decodeValue(QByteArrayView item, const FrameLimits& limits,
                                              QString* reason = nullptr);

}  // namespace kalvor
