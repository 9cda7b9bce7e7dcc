// Lists of documents, and of their rows to choose from.
#pragma once

#include "forms/windows/base_browse.h"

namespace kalvor {

// A list of document rows: "DocumentNo" and "DocumentDate" show their text only on the first row of each group of the
// dataset's first grouping level. Titles do not sort.
class BASE_PACKAGE TfBrSelectDocument : public TfBaseBrowse {
  Q_OBJECT
 public:
  explicit TfBrSelectDocument(QWidget* parent = nullptr);
  void CDS_AfterOpen(TClientDataSet* dataSet) override;
  void FormShow() override;
};

class BASE_PACKAGE TfBaseBrowseCardDocument : public TfBaseBrowseCard {
  Q_OBJECT
 public:
  using TfBaseBrowseCard::TfBaseBrowseCard;
};

// Orders are edited and added however the list was opened; what is not open any more ("DocStatus" above 0) stays.
class BASE_PACKAGE TfBrBaseOrderDocument : public TfBaseBrowseCardDocument {
  Q_OBJECT
 public:
  using TfBaseBrowseCardDocument::TfBaseBrowseCardDocument;
  bool CheckDataModification(bool edit, bool remove, bool insert) override;
};

}  // namespace kalvor
