// What must hold between the records of every company, as one table of questions to the database. Each finds the
// records that break its rule, so that nobody has to trust a database unseen: a copy of it, or one after a power cut.
#pragma once

#include <QStringList>
#include <functional>

#include "layer_export.h"

namespace kalvor::server {

class Connection;

struct ConsistencyCheck {
  QString name;     // in the output and in documents
  QString sql;      // a row for every violation: a text that names the record
  QString meaning;  // what holds, for people
};

// In the order in which they run. They know the tables of this program's version.
KALVOR_SERVER const QList<ConsistencyCheck>& consistencyChecks();

struct CheckOutcome {
  QString name;
  QString meaning;
  qint64 violations = 0;
  QStringList examples;  // of the first violations; or why the question could not be answered

  bool passed() const { return violations == 0; }
};

// The database's own faults ("storage"), its version ("version") and every check above, all of them in one reading
// transaction: what users do meanwhile is not seen. A question that the database cannot answer counts as a violation.
// Each outcome is told as soon as it is there; true when all passed.
KALVOR_SERVER bool checkConsistency(Connection& connection, const std::function<void(const CheckOutcome&)>& tell);

// One line about an outcome, without its end.
KALVOR_SERVER QString outcomeLine(const CheckOutcome& outcome);

}  // namespace kalvor::server
