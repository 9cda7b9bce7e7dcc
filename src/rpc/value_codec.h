// Values of variant.h and record sets as CBOR items.
#pragma once

#include "data/record_set.h"
#include "rpc/cbor_reader.h"
#include "rpc/cbor_writer.h"
#include "rpc/frame.h"

namespace kalvor::cbor {

constexpr qint64 msPerDay = 86'400'000;
// Julian day numbers. Years beyond four digits do not travel: texts and filters cannot hold them.
constexpr qint64 unixEpochDay = 2'440'588;
constexpr qint64 firstDay = 1'721'426;  // 0001-01-01
constexpr qint64 lastDay = 5'373'484;   // 9999-12-31
constexpr qint64 firstMs = (firstDay - unixEpochDay) * msPerDay;
constexpr qint64 lastMs = (lastDay - unixEpochDay + 1) * msPerDay - 1;

void writeValue(Writer& out, const Variant& value);
void writeRecordSet(Writer& out, const RecordSet& records);
void writeDelta(Writer& out, const Delta& delta);
void writeDataPacket(Writer& out, const DataPacket& packet);

// What reading one frame may still cost.
class Budget {
 public:
  explicit Budget(const FrameLimits& limits) : values_(limits.maxValues), depth_(limits.maxDepth) {}
  bool spend(Reader& in, quint64 values);

  // One array, map or tag deeper while it lives; false: too deep.
  class Level {
   public:
    Level(Budget& budget, Reader& in) : budget_(budget), ok_(--budget.depth_ >= 0 || in.fail("nested too deep")) {}
    ~Level() { ++budget_.depth_; }
    Level(const Level&) = delete;
    Level& operator=(const Level&) = delete;
    explicit operator bool() const { return ok_; }

   private:
    Budget& budget_;
    bool ok_;
  };

 private:
  qint64 values_;
  int depth_;
};

// All of these fail the reader where they return false.
bool readValue(Reader& in, Budget& budget, Variant& out);
bool readText(Reader& in, QString& out, const char* what);
bool readRecordSet(Reader& in, Budget& budget, RecordSet& out);  // after its tag
bool readDelta(Reader& in, Budget& budget, Delta& out);
bool readDataPacket(Reader& in, Budget& budget, DataPacket& out);

}  // namespace kalvor::cbor
