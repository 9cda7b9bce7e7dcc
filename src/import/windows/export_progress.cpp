// Exports show how far they are in the window of the imports.
#include "common/run_progress.h"
#include "import/windows/import_progress.h"

namespace kalvor {
namespace {

class ExportProgress : public RunProgress {
 public:
  ExportProgress() : window_(ProgressOf::Export) { window_.show(); }

  void start(qsizetype count, const QString& fileName) override { window_.InitProgressBar(int(count), fileName); }
  bool advance(qsizetype done) override
  {
    window_.setProgress(int(done));
    window_.breathe();
    const bool goOn = !window_.cancelRequested();
    window_.clearCancelRequest();
    return goOn;
  }

 private:
  TfImportProgress window_;
};

const bool exportProgressInstalled = [] {
  installExportProgress([] { return std::make_unique<ExportProgress>(); });
  return true;
}();

}  // namespace
}  // namespace kalvor
