// Opening a document of 60 fields and three datasets with rows, from the request until nothing is left to paint, and
// the memory of 30 such windows; against a plain window with as many line edits and three tables of the toolkit's own.
// The server is a process of its own.
#include <QGridLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QSplitter>
#include <QStandardItemModel>
#include <QTableView>
#include <unistd.h>

#include <fstream>

#include "bench_form.h"
#include "forms/form_filters.h"
#include "forms/form_session.h"
#include "forms/windows/base_edit.h"
#include "server_process.h"
#include "timing.h"
#include "widgets/data_control.h"
#include "widgets/db_grid_ex.h"
#include "widgets/theme.h"

using namespace kalvor;
using namespace kalvor::bench;

namespace {

constexpr int runs = 100;
constexpr int openWindows = 30;
constexpr int shownFields = 60;
constexpr int tables = 3;
constexpr int tableColumns = 10;

// The second grid stands below the first.
class TfEdBench : public TfBaseEditMasterDetail {
 public:
  explicit TfEdBench(QWidget* parent = nullptr)
      : TfBaseEditMasterDetail(parent), more_(new TClientDataSet(this)), dbgMore_(new TDBGridEx(this))
  {
    more_->setObjectName("cdsMore");
    dbgMore_->setDataSet(more_);
  }
  void buildLayout() override
  {
    TfBaseEditMasterDetail::buildLayout();
    splitter_->addWidget(dbgMore_);
  }
  bool complete() const
  {
    int controls = 0;
    for (QWidget* widget : pcMaster()->findChildren<QWidget*>()) {
      const DataControl* control = DataControl::of(widget);
      controls += control && control->field();
    }
    return controls == shownFields && cdsDetail()->RecordCount() == benchLines && more_->RecordCount() == benchLines;
  }

 private:
  TClientDataSet* more_;
  TDBGridEx* dbgMore_;
};

class PlainWindow : public QWidget {
 public:
  PlainWindow()
  {
    auto* grid = new QGridLayout(this);
    for (int i = 0; i < shownFields; ++i) {
      auto* edit = new QLineEdit(QStringLiteral("Стойност %1").arg(i));
      grid->addWidget(new QLabel(QStringLiteral("Поле %1").arg(i)), i / 4, i % 4 * 2);
      grid->addWidget(edit, i / 4, i % 4 * 2 + 1);
    }
    for (int i = 0; i < tables; ++i) {
      auto* view = new QTableView;
      auto* model = new QStandardItemModel(i == 0 ? 1 : benchLines, tableColumns, view);
      for (int row = 0; row < model->rowCount(); ++row) {
        for (int column = 0; column < tableColumns; ++column) {
          model->setItem(row, column, new QStandardItem(QStringLiteral("Хартия копирна А4 %1").arg(row)));
        }
      }
      view->setModel(model);
      grid->addWidget(view, shownFields / 4 + i, 0, 1, 8);
    }
  }
};

void settle()
{
  QCoreApplication::sendPostedEvents();
  QCoreApplication::processEvents();
}

struct Desktop {
  explicit Desktop(quint16 port) : session(port)
  {
    RegisterFormClass({"TfEdBench", [](QWidget* parent) { return new TfEdBench(parent); }});
  }
  QWidget* openForm(const QString& document)
  {
    RequestForm(benchForm, so_Normal, recordFilter("ID", document));
    return window.area.subWindowList(QMdiArea::CreationOrder).last();
  }
  QWidget* openPlain()
  {
    QMdiSubWindow* sub = window.area.addSubWindow(new PlainWindow);
    sub->resize(1000, 640);
    sub->widget()->show();
    sub->show();
    return sub;
  }
  void closeAll()
  {
    window.area.closeAllSubWindows();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    settle();
  }

  testing::ScratchDocuments documents;
  testing::RememberingMainWindow window;
  testing::FormSession session;
};

double residentMegabytes()
{
  std::ifstream file("/proc/self/statm");
  double pages = 0, resident = 0;
  file >> pages >> resident;
  return resident * double(sysconf(_SC_PAGESIZE)) / 1e6;
}

struct Times {
  double median, nearlyWorst;
};
Times timesOf(Desktop& desktop, const std::function<void()>& open)
{
  std::vector<double> times;
  for (int i = 0; i < runs + 3; ++i) {
    QElapsedTimer timer;
    timer.start();
    open();
    settle();
    if (i >= 3) {
      times.push_back(double(timer.nsecsElapsed()) / 1e6);
    }
    desktop.closeAll();
  }
  std::sort(times.begin(), times.end());
  return {times[runs / 2], times[size_t(runs * 99 / 100)]};
}

// In a process of its own, so that nothing that was freed is used again.
double megabytesEach(quint16 port, const QString& kind, const QString& document)
{
  QProcess process;
  process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
  process.start(QCoreApplication::applicationFilePath(), {"--memory", kind, QString::number(port), document});
  process.waitForFinished(120000);
  return process.readAllStandardOutput().toDouble();
}

int measureMemory(const QStringList& arguments)
{
  Desktop desktop(quint16(arguments.at(3).toUInt()));
  const auto open = [&] { arguments.at(2) == u"form" ? desktop.openForm(arguments.at(4)) : desktop.openPlain(); };
  open();  // what is loaded once
  settle();
  const double before = residentMegabytes();
  for (int i = 0; i < openWindows; ++i) {
    open();
    settle();
  }
  std::printf("%.3f\n", (residentMegabytes() - before) / openWindows);
  return 0;
}

int measure(const QString& database)
{
  QString document;
  {
    const server::ServerCore core(server::ServerCore::Databases::of(database));
    server::setPasswordCost(server::PasswordCost::CheapForTests);
    server::DemoOptions demo;
    demo.hashDigest = server::hashDigest;
    demo.contragents = 100;
    demo.items = 100;
    demo.invoices = 100;
    const auto db = core.openWriter();
    server::createDemoCompany(*db, demo);
    document = prepareBenchForm(*db);
  }
  ServerProcess process;
  if (process.start(QCoreApplication::applicationDirPath() + "/kalvor-server", database) < 0) {
    throw DataError("start");
  }
  Desktop desktop(process.port());
  auto* form = dynamic_cast<TfEdBench*>(static_cast<QMdiSubWindow*>(desktop.openForm(document))->widget());
  if (!form || !form->complete()) {
    throw DataError("the form does not show what is measured");
  }
  desktop.closeAll();
  const Times forms = timesOf(desktop, [&] { desktop.openForm(document); });
  const Times plain = timesOf(desktop, [&] { desktop.openPlain(); });
  std::printf("Form of %d fields and 3 datasets (1 + %d + %d records), %d openings\n", shownFields, benchLines,
              benchLines, runs);
  line("request to painted, median", forms.median, "plain window", plain.median);
  line("request to painted, 99 %", forms.nearlyWorst, "plain window, 99 %", plain.nearlyWorst);
  const double formSize = megabytesEach(process.port(), "form", document);
  const double plainSize = megabytesEach(process.port(), "plain", document);
  std::printf("%-46s %10.3f MB | %-40s %10.3f MB | ratio %6.2f\n", "memory of each of 30 open forms", formSize,
              "plain window", plainSize, formSize / plainSize);
  return 0;
}

}  // namespace

int main(int argc, char** argv)
{
  QApplication application(argc, argv);
  applyTheme(application, ThemeMode::Light);
  try {
    if (application.arguments().value(1) == u"--memory") {
      return measureMemory(application.arguments());
    }
    QTemporaryDir folder;
    return measure(folder.filePath("bench.db"));
  } catch (const std::exception& error) {
    std::printf("FAILED %s\n", error.what());
    return 1;
  }
}
