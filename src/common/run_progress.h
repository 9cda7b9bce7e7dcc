// How far a long run is, and whether the user wants to stop it.
#pragma once

#include <QString>
#include <functional>
#include <memory>

#include "layer_export.h"

namespace kalvor {

class KALVOR_RULES RunProgress {
 public:
  virtual ~RunProgress();
  virtual void start(qsizetype count, const QString& fileName) = 0;
  // So many of the count are done. False: the user has asked to stop, since the last call.
  virtual bool advance(qsizetype done) = 0;
};

// What shows the progress of an export; installed by whoever has windows. Without it exports run silently.
using RunProgressFactory = std::function<std::unique_ptr<RunProgress>()>;
KALVOR_RULES void installExportProgress(RunProgressFactory factory);
KALVOR_RULES std::unique_ptr<RunProgress> exportProgress();  // null: none

}  // namespace kalvor
