// The client driven by key events: kalvor-tour [--retail | --log-in] DIR [--server HOST:PORT]. With --log-in it ends
// when the log-in window is painted.
#include <QApplication>
#include <cstdio>

#include "start.h"
#include "tours.h"

int main(int argc, char** argv)
{
  kalvor::ClientArguments arguments = kalvor::clientArguments(argc, argv);
  const bool retail = arguments.rest.removeAll(QStringLiteral("--retail")) > 0;
  const bool logInOnly = arguments.rest.removeAll(QStringLiteral("--log-in")) > 0;
  if (arguments.rest.size() != 1) {
    std::fprintf(stderr, "usage: kalvor-tour [--retail | --log-in] DIR [--server HOST:PORT]\n");
    return 2;
  }
  QApplication application(argc, argv);
  kalvor::TourDriver driver(arguments.rest.takeFirst());
  (logInOnly ? kalvor::addLogInTour : retail ? kalvor::addRetailTour : kalvor::addDemoTour)(driver);
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
