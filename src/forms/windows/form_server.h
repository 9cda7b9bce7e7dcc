// The application server as the forms use it: one function a call, so that forms name no argument positions.
#pragma once

#include "data/client_dataset.h"
#include "layer_export.h"

namespace kalvor {

class BASE_PACKAGE FormServer {
 public:
  virtual ~FormServer();
  virtual DataBroker* broker() = 0;
  virtual QString createProvider() = 0;
  virtual void deleteProvider(const QString& provider) = 0;
  // 0 = readied; descriptions then holds the field description rows.
  virtual int requestData(int formId, int dsIndex, const QString& provider, const FilterArray& filter,
                          const QString& order, const ParameterArray& parameters, VariantArray& descriptions) = 0;
  // True when the server took everything. The request id makes a repetition after a lost answer harmless.
  virtual bool updateClientData(const VariantArray& packet, const Variant& numbering, const QString& requestId) = 0;
  virtual QString absoluteNumberSeries() = 0;
};

// The session's server connection, or the installed one. Not owned; null puts the session's back.
BASE_PACKAGE FormServer& formServer();
BASE_PACKAGE void installFormServer(FormServer* server);

}  // namespace kalvor
