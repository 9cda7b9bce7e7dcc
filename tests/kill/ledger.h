// What the database holds against what the workplaces were told.
#pragma once

#include <QHash>
#include <QStringList>
#include <vector>

#include "server/store/connection.h"
#include "workstation.h"

namespace kalvor::testing {

using Workstations = std::vector<std::unique_ptr<Workstation>>;

class Ledger {
 public:
  explicit Ledger(QString database);  // as it is before anybody saves
  // Every acknowledged save is there, none by half, none that nobody sent, no number twice and none left out; a save that
  // is on its way may be there. The file is sound. Empty: all is well.
  QStringList check(const Workstations& stations) const;
  int numbered() const { return numbered_; }

 private:
  void checkOwnInvoice(server::Connection& db, const Workstation& station, QStringList& faults) const;
  void checkNewInvoices(server::Connection& db, const Workstations& stations, QStringList& faults) const;

  QString database_;
  QHash<QString, qint64> lastNumbers_;  // by series
  mutable int numbered_ = 0;
};

}  // namespace kalvor::testing
