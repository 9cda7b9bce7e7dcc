// Cuts frames from a stream of bytes.
#pragma once

#include <QByteArray>
#include <optional>

#include "layer_export.h"

namespace kalvor {

class KALVOR_RPC FrameReader {
 public:
  explicit FrameReader(qint64 maxBytes) : maxBytes_(maxBytes) {}
  // For frames whose length has not been looked at yet.
  void setMaxBytes(qint64 maxBytes) { maxBytes_ = maxBytes; }

  void append(QByteArrayView bytes);
  // Where the next `size` bytes of the stream may be written to directly; bytesWritten() takes them in.
  char* writeBuffer(qsizetype size);
  void bytesWritten(qsizetype size) { filled_ += size; }
  // How many bytes the frame under way still lacks; 0 when its length is not known yet.
  qsizetype missing() const;

  // The CBOR item of the next whole frame, valid until the next call of any operation here.
  std::optional<QByteArrayView> next();
  // A frame announced more bytes than allowed, or none: the stream cannot be read on.
  bool broken() const { return broken_; }
  qsizetype buffered() const { return filled_ - start_; }

 private:
  std::optional<quint32> announced() const;

  QByteArray buffer_;
  qsizetype start_ = 0;   // first byte not given out yet
  qsizetype filled_ = 0;  // end of the bytes read
  qint64 maxBytes_;
  bool broken_ = false;
};

}  // namespace kalvor
