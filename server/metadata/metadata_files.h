// The forms, stored queries and field descriptions that the program brings along, read from its data files
// (server/metadata/forms/*.json). A database gets them as rows that an administrator may change.
#pragma once

#include <QList>
#include <QString>
#include <stdexcept>

#include "layer_export.h"

namespace kalvor::server {

// A fault in a data file; names the file and the place in it.
class KALVOR_SERVER MetadataError : public std::runtime_error {
 public:
  explicit MetadataError(const QString& message) : std::runtime_error(message.toStdString()) {}
};

// One field of a query; how it reaches S_FieldList stands in metadata_loader.h.
struct DeclaredField {
  QString name;
  QString caption;       // empty: the field keeps its name
  QString kind;          // "0".."9"
  QString source;        // "Table.Column" or "Alias.Column"; empty for aggregates and expressions
  QString table;         // of the source
  QString displayFormat;
  QString defaultValue;
  QString options;
  QString selector;      // look-up, or the expression of an aggregate
  bool required = false;
  bool updatable = false;
  bool visible = false;
  bool filterable = false;
  bool readOnly = false;
  bool copied = false;
};

struct DeclaredQuery {
  int id = 0;
  int formId = 0;
  int datasetIndex = 0;  // -1: asked for without a form
  QString description;
  QString comment;
  QString sql;           // parameters are written :Name
  QString baseTable;
  QString keyField;
  QString companyField;  // empty: not company data
  QString defaultOrder;
  QList<DeclaredField> fields;
};

struct DeclaredForm {
  int id = 0;
  int datasetIndex = 0;
  QString caption;
  QString className;
  QString captionFields;
  QString baseTable;
  QString filter;
  QString order;
  QString lineColors;    // on dataset 0 only
  QString menuGroup;     // where the client's menu shows the form; empty: nowhere
  int menuOrder = 0;
};

struct DeclaredMetadata {
  QList<DeclaredForm> forms;
  QList<DeclaredQuery> queries;
};

// Adds the content of one data file. Throws MetadataError, also for a key it does not know.
KALVOR_SERVER void readMetadataFile(const QByteArray& json, const QString& name, DeclaredMetadata& metadata);

// Everything inside the program.
KALVOR_SERVER DeclaredMetadata embeddedMetadata();

}  // namespace kalvor::server
