// Writes the rows of one delta into its table: rights, row security, conflicts and values are checked row by row.
#pragma once

#include "server/updates/update_target.h"

namespace kalvor::server {

class KALVOR_SERVER RowWriter {
 public:
  // insertedMasters: keys of the form's master rows that the same save inserts, filled by the master's writer.
  RowWriter(const Access& access, const UpdateTarget& target, QSet<QString>& insertedMasters);

  // Applies every row. Throws RpcError: Forbidden, Conflict (who and when), Invalid (names the field). Nothing may be
  // committed after that.
  void write();
  // That every row written is still one the user may see; after all deltas of the save.
  void checkWritten() const;
  const QSet<QString>& writtenKeys() const { return written_; }

 private:
  struct Image {
    Variant key;
    VariantArray values;  // one per target column
  };

  Image imageOf(qsizetype row) const;
  void insertRow(const Image& image);
  void updateRow(const Image& before, const Image& after);
  void deleteRow(const Image& before);
  void deleteDetails(const Variant& key);
  void requireDetailRight(const Image& image, FormRight right) const;
  void requireRowRight(const Image& image, FormRight right) const;
  // The row as it is now must be visible and equal to the original.
  void requireUnchanged(const Image& before) const;
  [[noreturn]] void refuseMissing(const Image& before) const;
  [[noreturn]] void refuseConflict(const Variant& key, const QStringList& captions) const;
  void checkSeriesNumber(const Image& before, const Image& after) const;
  Fragment stampValues(const QString& separator) const;
  Variant newKey(const Variant& given) const;
  Variant valueOf(const Image& image, QStringView column) const;
  void execute(const Fragment& sql);

  const Access& access_;
  const UpdateTarget& target_;
  QSet<QString>& insertedMasters_;
  Fragment security_;
  QSet<QString> written_;
};

}  // namespace kalvor::server
