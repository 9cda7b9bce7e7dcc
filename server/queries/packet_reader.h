// The packets of a readied provider. A packet goes on after the last row of the one before by the values that the
// rows are ordered by, so that no cursor stays open and every packet is found through an index.
#pragma once

#include "server/queries/data_request.h"
#include "server/rights/access.h"

namespace kalvor::server {

// The query of a request; throws RpcError (Refused) when it is gone.
KALVOR_SERVER const StoredQuery& queryOf(const Access& access, const DataRequest& request);

// Checks the rights and every name in the request without reading a row. Throws RpcError (Forbidden, Refused).
KALVOR_SERVER void checkRequest(const Access& access, const DataRequest& request);

// The first packet (continuation null) or the one after. count -1 = all rows. Company, row security and rights are
// those of the session now. Throws RpcError.
KALVOR_SERVER DataPacketPtr readPacket(const Access& access, const DataRequest& request, const Variant& continuation,
                                       qsizetype count);

}  // namespace kalvor::server
