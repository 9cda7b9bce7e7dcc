// A form's business rules by field: what follows when the user changes it. The table's order is the order in which the
// rules run when several fields change at once, as a lookup's choice makes them.
#pragma once

#include <QObject>

#include "forms/windows/base_form.h"

namespace kalvor {

struct FieldRule {
  QString field;
  // other(name): that field changed in the same step.
  using Others = std::function<bool(QStringView name)>;
  std::function<void(const Others& other)> apply;
};

class BASE_PACKAGE FieldRules {
 public:
  // Rules rest while the form fills in default values, and wait while it puts a lookup's choice into the record.
  explicit FieldRules(TfBase& form) : form_(form) {}
  // The first table of an open dataset counts (later ones give false); fields that it lacks are skipped. The fields'
  // earlier handlers run first.
  bool attach(TClientDataSet* dataSet, const QList<FieldRule>& rules);
  // Runs what waited; from the form's choicePut().
  void runWaiting(const TClientDataSet* dataSet);

 private:
  struct Table {
    QList<FieldRule> rules;
    QStringList waiting;  // the changed fields, few
  };
  void changed(const TClientDataSet* dataSet, const QString& name);

  TfBase& form_;
  QHash<const TClientDataSet*, Table> tables_;
};

}  // namespace kalvor
