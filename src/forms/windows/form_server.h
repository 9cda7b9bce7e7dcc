// The application server as the forms use it: one function a call, so that forms name no argument positions.
#pragma once

#include "layer_export.h"
#include "rpc/remote_calls.h"

namespace kalvor {

class FormServer {
 public:
  explicit FormServer(RemoteCalls& calls) : calls_(calls) {}

  DataBroker* broker() const { return &calls_; }
  QString createProvider() const;
  void deleteProvider(const QString& provider) const;
  // 0 = readied; descriptions then holds the field description rows.
  int requestData(int formId, int dsIndex, const QString& provider, const FilterArray& filter, const QString& order,
                  const ParameterArray& parameters, VariantArray& descriptions) const;
  // True when the server took everything. The request id makes a repetition after a lost answer harmless.
  bool updateClientData(const VariantArray& packet, const Variant& numbering, const QString& requestId) const;
  QString absoluteNumberSeries() const;

 private:
  RemoteCalls& calls_;
};

// Over the session's connection; DataError when there is no session.
FormServer formServer();

}  // namespace kalvor
