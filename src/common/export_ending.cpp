#include "common/export_ending.h"

#include "import/messages.h"
#include "platform/ports.h"
#include "session/error_log.h"

namespace kalvor {

ExportEnding endingOf(const QString& context, const std::function<bool()>& body)
{
  bool finished = false;
  if (!loggingErrors(context, [&] { finished = body(); }))
    return ExportEnding::Failed;
  return finished ? ExportEnding::Done : ExportEnding::Stopped;
}

void tellEnding(ExportEnding ending)
{
  if (ending == ExportEnding::Done)
    showInformation(_inf_OperationSuccess);
  else if (ending == ExportEnding::Failed)
    showError(_inf_OperationError);
}

}  // namespace kalvor
