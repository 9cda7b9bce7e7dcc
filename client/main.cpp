#include "start.h"

int main(int argc, char** argv)
{
  const kalvor::ClientArguments arguments = kalvor::clientArguments(argc, argv);
  QApplication application(argc, argv);
  return kalvor::runClient(application, arguments);
}
