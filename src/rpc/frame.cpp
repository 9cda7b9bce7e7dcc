#include "rpc/frame.h"

#include <QtEndian>
#include <limits>

#include "rpc/rpc_error.h"
#include "rpc/value_codec.h"

namespace kalvor {
namespace {

using cbor::Budget;
using cbor::Reader;
using cbor::Writer;

constexpr qsizetype lengthRoom = 4;
constexpr qsizetype maxOperationName = 128;
constexpr qsizetype maxRequestId = 128;

QByteArray finished(Writer& out)
{
  QByteArray frame = out.take();
  const qsizetype length = frame.size() - lengthRoom;
  if (length > qsizetype(std::numeric_limits<quint32>::max()))
    throw RpcError(RpcError::BadArguments, QStringLiteral("Данните са твърде много, за да бъдат изпратени наведнъж."));
  qToBigEndian(quint32(length), frame.data());
  return frame;
}

void checkCount(const VariantArray& arguments)
{
  if (arguments.size() > maxCallArguments)
    throw RpcError(RpcError::BadArguments, QStringLiteral("Твърде много аргументи."));
}

bool readArguments(Reader& in, Budget& budget, Frame& out)
{
  quint64 count;
  const Budget::Level level(budget, in);
  if (!level || !in.expect(cbor::Array, count, "arguments expected"))
    return false;
  if (count > quint64(maxCallArguments))
    return in.fail("too many arguments");
  if (!budget.spend(in, count))
    return false;
  out.arguments.resize(qsizetype(count));
  for (quint64 i = 0; i < count; ++i) {
    if (out.kind == Frame::Kind::Answer && in.skipUndefined())
      continue;
    if (!cbor::readValue(in, budget, out.arguments[qsizetype(i)]))
      return false;
    out.returned |= quint64(1) << i;
  }
  return true;
}

bool readCall(Reader& in, Budget& budget, bool withRequestId, Frame& out)
{
  if (!cbor::readText(in, out.operation, "operation name expected"))
    return false;
  if (out.operation.isEmpty() || out.operation.size() > maxOperationName)
    return in.fail("operation name empty or too long");
  if (!readArguments(in, budget, out))
    return false;
  if (!withRequestId)
    return true;
  return cbor::readText(in, out.requestId, "request id expected") &&
         (out.requestId.size() <= maxRequestId || in.fail("request id too long"));
}

bool readError(Reader& in, CallError& out)
{
  quint64 code;
  if (!in.expectCount(cbor::Array, 3, "error of three items expected") ||
      !in.expect(cbor::Unsigned, code, "error code expected") ||
      !cbor::readText(in, out.text, "error text expected") || !cbor::readText(in, out.incident, "incident expected"))
    return false;
  if (code == 0 || code > quint64(std::numeric_limits<int>::max()))
    return in.fail("error code out of range");
  out.code = int(code);
  return true;
}

bool readAnswer(Reader& in, Budget& budget, Frame& out)
{
  if (!in.skipNull()) {
    out.error.emplace();
    return readError(in, *out.error) && (in.skipNull() || in.fail("an error with a result"));
  }
  const Budget::Level level(budget, in);
  return level && in.expectCount(cbor::Array, 2, "result and arguments expected") &&
         cbor::readValue(in, budget, out.result) && readArguments(in, budget, out);
}

bool readFrame(Reader& in, Budget& budget, Frame& out)
{
  quint64 items, kind;
  const Budget::Level level(budget, in);
  if (!level || !in.expect(cbor::Array, items, "a frame is an array") ||
      !in.expect(cbor::Unsigned, kind, "frame kind expected"))
    return false;
  if (kind > quint64(Frame::Kind::Answer))
    return in.fail("unknown frame kind");
  out.kind = Frame::Kind(kind);
  const bool withRequestId = out.kind == Frame::Kind::Call && items == 5;
  if (items != 4 && !withRequestId)
    return in.fail("wrong number of frame items");
  if (!in.expect(cbor::Unsigned, out.id, "frame id expected"))
    return false;
  return out.kind == Frame::Kind::Call ? readCall(in, budget, withRequestId, out) : readAnswer(in, budget, out);
}

template <typename Result>
std::optional<Result> readWhole(QByteArrayView item, const FrameLimits& limits, QString* reason,
                                bool (*read)(Reader&, Budget&, Result&))
{
  Reader in(item);
  Budget budget(limits);
  Result result;
  if (item.size() > limits.maxBytes)
    in.fail("frame too long");
  else if (read(in, budget, result) && !in.atEnd())
    in.fail("bytes after the end");
  if (in.ok())
    return result;
  if (reason)
    *reason = QLatin1String(in.reason());
  return std::nullopt;
}

}  // namespace

QByteArray encodeCall(quint64 id, const QString& operation, const VariantArray& arguments, const QString& requestId)
{
  checkCount(arguments);
  Writer out;
  out.room(lengthRoom);
  out.array(requestId.isEmpty() ? 4 : 5);
  out.head(cbor::Unsigned, quint64(Frame::Kind::Call));
  out.head(cbor::Unsigned, id);
  out.text(operation);
  out.array(arguments.size());
  for (const Variant& argument : arguments)
    cbor::writeValue(out, argument);
  if (!requestId.isEmpty())
    out.text(requestId);
  return finished(out);
}

QByteArray encodeAnswer(quint64 id, const Variant& result, const VariantArray& arguments, quint64 returned)
{
  checkCount(arguments);
  Writer out;
  out.room(lengthRoom);
  out.array(4);
  out.head(cbor::Unsigned, quint64(Frame::Kind::Answer));
  out.head(cbor::Unsigned, id);
  out.null();
  out.array(2);
  cbor::writeValue(out, result);
  qsizetype sent = arguments.size();
  while (sent > 0 && !((returned >> (sent - 1)) & 1))
    --sent;
  out.array(sent);
  for (qsizetype i = 0; i < sent; ++i) {
    if ((returned >> i) & 1)
      cbor::writeValue(out, arguments[i]);
    else
      out.undefined();
  }
  return finished(out);
}

QByteArray encodeError(quint64 id, const CallError& error)
{
  Writer out;
  out.room(lengthRoom);
  out.array(4);
  out.head(cbor::Unsigned, quint64(Frame::Kind::Answer));
  out.head(cbor::Unsigned, id);
  out.array(3);
  out.integer(error.code > 0 ? error.code : int(RpcError::Internal));
  out.text(error.text);
  out.text(error.incident);
  out.null();
  return finished(out);
}

std::optional<Frame> decodeFrame(QByteArrayView item, const FrameLimits& limits, QString* reason)
{
  return readWhole<Frame>(item, limits, reason, readFrame);
}

QByteArray encodeValue(const Variant& value)
{
  Writer out;
  cbor::writeValue(out, value);
  return out.take();
}

std::optional<Variant> decodeValue(QByteArrayView item, const FrameLimits& limits, QString* reason)
{
  return readWhole<Variant>(item, limits, reason, cbor::readValue);
}

}  // namespace kalvor
