// The version resource of a Windows program or library (PE file): its fixed block and its texts.
#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>
#include <optional>

#include "layer_export.h"

namespace kalvor {

struct VersionResource {
  quint32 fileVersionHigh = 0;    // major and minor version, 16 bits each
  quint32 fileVersionLow = 0;     // release and build
  QHash<QString, QString> texts;  // of the first language and code page, by key
};

// Nothing when the bytes are no PE file or have no readable version resource. Trusts no length or offset in them.
KALVOR_PLATFORM std::optional<VersionResource> readVersionResource(const QByteArray& file);

}  // namespace kalvor
