// The client driven by key events: kalvor-tour [--retail | --invoice | --new-invoice | --import | --import-filters | --log-in] DIR
// [--server HOST:PORT]. With --log-in it ends when the log-in window is painted.
#include <QApplication>
#include <cstdio>

#include "start.h"
#include "tours.h"

int main(int argc, char** argv)
{
  kalvor::ClientArguments arguments = kalvor::clientArguments(argc, argv);
  const std::pair<const char*, void (*)(kalvor::TourDriver&)> others[] = {
      {"--retail", kalvor::addRetailTour}, {"--invoice", kalvor::addInvoiceTour},
      {"--new-invoice", kalvor::addNewInvoiceTour}, {"--import", kalvor::addImportTour},
      {"--import-filters", kalvor::addImportFiltersTour}, {"--log-in", kalvor::addLogInTour}};
  auto tour = kalvor::addDemoTour;
  for (const auto& [option, steps] : others)
    if (arguments.rest.removeAll(QLatin1String(option)) > 0)
      tour = steps;
  if (arguments.rest.size() != 1) {
    std::fprintf(stderr, "usage: kalvor-tour [--retail | --invoice | --new-invoice | --import | --import-filters | --log-in] DIR "
                         "[--server HOST:PORT]\n");
    return 2;
  }
  QApplication application(argc, argv);
  kalvor::TourDriver driver(arguments.rest.takeFirst());
  tour(driver);
  QObject::connect(&driver, &kalvor::TourDriver::finished, &application, [&driver] {
    std::fprintf(stderr, "%d keys pressed, no mouse\n", driver.keysPressed());
    QCoreApplication::exit(driver.failures() ? 1 : 0);
    std::fflush(stderr);
    // Dialogs that a stopped tour left open would hold their own loops.
    if (driver.failures())
      std::_Exit(1);
  });
  driver.start();
  const int code = kalvor::runClient(application, arguments);
  return driver.failures() ? 1 : code;
}
