// What the frame tests share.
#pragma once

#include "rpc/frame.h"

namespace kalvor::test {

inline QByteArray hex(const char* digits) { return QByteArray::fromHex(digits); }

// The CBOR item of a whole frame.
inline QByteArrayView itemOf(const QByteArray& frame) { return QByteArrayView(frame).sliced(4); }

inline const FrameLimits generous = FrameLimits::ofClient();

int runRecordFramesTest(int argc, char** argv);
int runFramesTest(int argc, char** argv);

}  // namespace kalvor::test
