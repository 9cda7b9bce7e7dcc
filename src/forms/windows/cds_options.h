// What a form keeps of each of its datasets: provider, metadata, and the handlers that the form displaced.
#pragma once

#include "data/client_dataset.h"

namespace kalvor {

struct TCDSOptions {
  TClientDataSet* DataSet = nullptr;
  QString ProviderName;
  bool MetadataApplied = false;
  VariantArray FieldDescriptions;  // one row of 19 values a field
  QSet<QString> HookedFields;      // names of the fields whose handlers the form has chained

  // The dataset's own, called after the form's.
  DataSetEvent AfterOpen, AfterClose, AfterScroll, BeforeClose, BeforeEdit, BeforeInsert, OnNewRecord, OnStateChange;
  DataSetErrorEvent OnPostError, OnEditError;
};

}  // namespace kalvor
