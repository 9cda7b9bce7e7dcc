#include "common/export_run.h"

#include <QElapsedTimer>
#include <optional>

#include "import/messages.h"
#include "platform/ports.h"

namespace kalvor {

namespace {

constexpr qint64 progressPause = 50;  // milliseconds between two looks at the progress

// The record of a dataset by its place, or by its ID where the dataset was opened anew meanwhile.
class RecordPlace {
 public:
  explicit RecordPlace(TClientDataSet& dataSet) : dataSet_(dataSet), bookmark_(dataSet.GetBookmark())
  {
    if (const TField* id = dataSet.FindField(u"ID"))
      id_ = id->Value();
  }
  void restore() const
  {
    if (!dataSet_.GotoBookmark(bookmark_) && !isNull(id_) && dataSet_.FindField(u"ID"))
      dataSet_.Locate(QStringLiteral("ID"), id_);
  }

 private:
  TClientDataSet& dataSet_;
  Bookmark bookmark_;
  Variant id_;
};

class DetachedScrollHandlers {
 public:
  explicit DetachedScrollHandlers(TClientDataSet& dataSet)
    : dataSet_(dataSet),
      before_(std::exchange(dataSet.BeforeScroll, {})),
      after_(std::exchange(dataSet.AfterScroll, {}))
  {
  }
  ~DetachedScrollHandlers()
  {
    dataSet_.BeforeScroll = std::move(before_);
    dataSet_.AfterScroll = std::move(after_);
  }
  DetachedScrollHandlers(const DetachedScrollHandlers&) = delete;
  DetachedScrollHandlers& operator=(const DetachedScrollHandlers&) = delete;

 private:
  TClientDataSet& dataSet_;
  DataSetEvent before_, after_;
};

// Asks now and then whether to go on; a user who wanted to stop is asked once more.
class StopQuestion {
 public:
  explicit StopQuestion(RunProgress* progress) : progress_(progress) { sinceLast_.start(); }
  bool stops(qsizetype done)
  {
    if (!progress_ || (done > 0 && sinceLast_.elapsed() < progressPause))
      return false;
    const bool asked = !progress_->advance(done);
    sinceLast_.restart();
    return asked && confirm(_que_CancelImport);
  }

 private:
  RunProgress* progress_;
  QElapsedTimer sinceLast_;
};

ExportRow rowOf(const TClientDataSet& dataSet, qsizetype row)
{
  return {row, dataSet.StoredRow(row)};
}

// Nobody depends on the current record: it stays where it is.
bool walkInPlace(const ExportWalk& walk, const std::function<void()>& rebind, const ExportLine& line)
{
  rebind();
  StopQuestion question(walk.progress);
  const qsizetype count = walk.master->RecordCount();
  for (qsizetype row = 0; row < count; ++row) {
    if (question.stops(row))
      return false;
    line(rowOf(*walk.master, row), {});
  }
  return true;
}

void walkDetail(TClientDataSet& detail, ExportRow master, const std::function<void()>& rebind, const ExportLine& line)
{
  if (!detail.Active())
    return;
  detail.CheckBrowseMode();
  detail.FetchAll();
  rebind();
  for (qsizetype row = 0; row < detail.RecordCount(); ++row)
    line(master, rowOf(detail, row));
}

bool walkByCursor(const ExportWalk& walk, const std::function<void()>& rebind, const ExportLine& line)
{
  StopQuestion question(walk.progress);
  TClientDataSet& master = *walk.master;
  for (master.First(); !master.Eof(); master.Next()) {
    const qsizetype row = master.RecNo() - 1;
    if (question.stops(row))
      return false;
    if (walk.beforeRecord)
      walk.beforeRecord();
    if (walk.detail) {
      walkDetail(*walk.detail, rowOf(master, row), rebind, line);
    } else {
      rebind();
      line(rowOf(master, row), {});
    }
  }
  return true;
}

}  // namespace

bool walkExport(const ExportWalk& walk, const std::function<void()>& rebind, const ExportLine& line)
{
  TClientDataSet& master = *walk.master;
  master.CheckBrowseMode();
  master.FetchAll();
  if (walk.progress)
    walk.progress->start(master.RecordCount(), walk.fileName);
  if (!walk.detail && !walk.beforeRecord)
    return walkInPlace(walk, rebind, line);

  const ControlsDisabledScope quietMaster(&master);
  std::optional<ControlsDisabledScope> quietDetail;
  if (walk.detail)
    quietDetail.emplace(walk.detail);
  std::optional<DetachedScrollHandlers> detached;
  if (walk.handlers == ScrollHandlers::Detached)
    detached.emplace(master);
  const RecordPlace place(master);
  try {
    const bool finished = walkByCursor(walk, rebind, line);
    place.restore();
    return finished;
  } catch (...) {
    place.restore();
    throw;
  }
}

}  // namespace kalvor
