#include "common/run_progress.h"

#include <utility>

namespace kalvor {

namespace {

RunProgressFactory& installedExportProgress()
{
  static RunProgressFactory factory;
  return factory;
}

}  // namespace

RunProgress::~RunProgress() = default;

void installExportProgress(RunProgressFactory factory)
{
  installedExportProgress() = std::move(factory);
}

std::unique_ptr<RunProgress> exportProgress()
{
  const RunProgressFactory& factory = installedExportProgress();
  return factory ? factory() : nullptr;
}

}  // namespace kalvor
