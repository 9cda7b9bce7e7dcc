// Reads CBOR items (RFC 8949) and trusts nothing: definite lengths only, every length within what is there.
#pragma once

#include <QByteArrayView>
#include <optional>

#include "rpc/cbor_writer.h"

namespace kalvor::cbor {

struct Head {
  Major major;
  quint8 info;    // the low five bits of the first byte
  quint64 value;  // the number, length, count or tag; of a float its bits
};

class Reader {
 public:
  explicit Reader(QByteArrayView bytes) : next_(bytes.data()), end_(bytes.data() + bytes.size()) {}

  // After the first failure every read fails; reason() is that of the first.
  bool ok() const { return !reason_; }
  const char* reason() const { return reason_; }
  bool fail(const char* reason);
  bool atEnd() const { return next_ == end_; }
  qsizetype left() const { return end_ - next_; }

  // A count or length in the head never exceeds the bytes that are left.
  bool head(Head& out);
  bool expect(Major major, quint64& value, const char* what);
  bool expectCount(Major major, quint64 count, const char* what);
  bool expectTag(quint64 number, const char* what);
  bool expectKey(const char* ascii);
  // Exactly `size` bytes, which a head has announced before.
  QByteArrayView take(quint64 size);
  bool bytes(QByteArrayView& out, const char* what);
  bool utf8(QByteArrayView& out, const char* what);  // a text string; valid UTF-8
  // True when the next item is that and has been passed over; never fails.
  bool skipNull() { return skip(0xf6); }
  bool skipUndefined() { return skip(0xf7); }

 private:
  bool skip(quint8 simple);

  const char* next_;
  const char* end_;
  const char* reason_ = nullptr;
};

// The value of a float item, whatever its width.
double realOf(const Head& head);

}  // namespace kalvor::cbor
