// Any bytes as a stream of frames, under the limits of a stranger and of a server: whatever is accepted must be
// written again and read back.
#include <cstdint>
#include <cstdlib>

#include "rpc/frame.h"
#include "rpc/frame_reader.h"

namespace {

QByteArray encodedAgain(const kalvor::Frame& frame)
{
  if (frame.kind == kalvor::Frame::Kind::Call)
    return kalvor::encodeCall(frame.id, frame.operation, frame.arguments, frame.requestId);
  if (frame.error)
    return kalvor::encodeError(frame.id, *frame.error);
  return kalvor::encodeAnswer(frame.id, frame.result, frame.arguments, frame.returned);
}

void readItem(QByteArrayView item, const kalvor::FrameLimits& limits)
{
  const auto frame = kalvor::decodeFrame(item, limits);
  if (!frame)
    return;
  const QByteArray first = encodedAgain(*frame);
  const auto back = kalvor::decodeFrame(QByteArrayView(first).sliced(4), kalvor::FrameLimits::ofClient());
  if (!back || encodedAgain(*back) != first)
    std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
  const QByteArrayView input(reinterpret_cast<const char*>(data), qsizetype(size));
  for (const auto limits : {kalvor::FrameLimits::beforeLogIn(), kalvor::FrameLimits::ofServer()}) {
    readItem(input, limits);
    kalvor::FrameReader reader(limits.maxBytes);
    reader.append(input);
    while (const auto item = reader.next())
      readItem(*item, limits);
  }
  return 0;
}
