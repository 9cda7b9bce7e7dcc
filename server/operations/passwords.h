// Password hashes: Argon2id over the digest that the client sends. One is computed at a time, so that a flood of
// log-ins cannot take the machine's memory.
#pragma once

#include <QString>

#include "layer_export.h"

namespace kalvor::server {

enum class PasswordCost : quint8 { Interactive, CheapForTests };
KALVOR_SERVER void setPasswordCost(PasswordCost cost);  // of hashes made from now on in this process

// The hash of a digest (32 lower-case hex digits), with its own salt and parameters: what N_Users.PasswordHash keeps.
KALVOR_SERVER QString hashDigest(const QString& digest);

// False for an empty hash. Takes the time of one hash in every case.
KALVOR_SERVER bool digestMatches(const QString& hash, const QString& digest);

// How many hashes this process has computed, for tests of what a log-in costs.
KALVOR_SERVER quint64 hashesComputed();

}  // namespace kalvor::server
