// What the recorder of writes and the reader of its record agree on. The record is a row of these, each with a path's or
// a write's bytes after it.
#pragma once

#include <cstdint>

namespace kalvor::testing {

struct WriteRecord {
  enum Kind : uint32_t { Created = 1, Write, Truncate, Sync, SyncFolder, Unlink, Rename };
  uint32_t kind = 0;
  uint32_t size = 0;    // of the bytes that follow: the path (Rename: old, zero byte, new) or what was written
  uint64_t file = 0;    // inode number
  uint64_t offset = 0;  // Write: where; Truncate: the new size; Sync: how many records came before it began
};

}  // namespace kalvor::testing
