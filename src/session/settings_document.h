// The user settings document: root element "Root", under it one element per settings group, under a group
// one element per setting whose text is the value.
#pragma once

#include <QDomDocument>
#include <QStringList>

#include "layer_export.h"

namespace kalvor {

// Reads a document's text. An empty text gives an empty document; one that is not XML gives false and leaves
// the document as it was. A document type declaration is refused: nobody writes one, and entities could grow.
KALVOR_RULES bool loadSettingsDocument(QDomDocument& document, const QString& text);

// The group's settings as name=value lines in document order. The list is emptied first; a missing document
// element or group gives nothing. False when the group is missing.
KALVOR_RULES bool GetNodeFromXml(const QDomDocument& document, const QString& group, QStringList& lines);

// Sets the text of each line's key element, making "Root", the group and the key where missing; emptyFirst
// drops the group's earlier settings. Lines whose name holds a blank, or is no element name, are skipped;
// characters that XML cannot hold are left out of values. False (and nothing done) without a line.
KALVOR_RULES bool SaveNodeToXml(QDomDocument& document, const QString& group, const QStringList& lines,
                                bool emptyFirst);

}  // namespace kalvor
