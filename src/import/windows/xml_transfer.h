// Data files that another site sent, imported one after another, and what became of each.
#pragma once

#include "common/transfer_info.h"
#include "layer_export.h"

namespace kalvor {

class BASE_PACKAGE TImportXMLSet {
 public:
  explicit TImportXMLSet(const TTransferInfo& info);

  // Imports the files of the info, unattended, each by its row of the transfer list; the outcome goes into the info
  // file, which is written anew, and its name to the server. True: all of them were imported. Data files that do not fit
  // their checksums: none is imported.
  bool ImportTranfer();
  const TTransferInfo& info() const { return info_; }

 private:
  bool importRecord(TTransferRecord& record, const QString& folder);
  void writeOutcome(const QString& folder);

  TTransferInfo info_;
};

// The folder of an info file's data: beside the program, named like the file without "Info_" and the extension; with
// the separator at its end.
BASE_PACKAGE QString transferFolder(const QString& infoFileName);

// Imports the transfer of an info file. A name that is no file here is one in the transfer's folder. DataError when it
// cannot be read.
BASE_PACKAGE void importXmlTransfer(const QString& infoFileName);

}  // namespace kalvor
