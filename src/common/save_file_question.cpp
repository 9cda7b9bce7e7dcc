#include "common/save_file_question.h"

#include <QFileInfo>

#include "platform/ports.h"

namespace kalvor {

QString askSaveFile(const QString& title, const QString& pattern, const QString& extension)
{
  const QString fileName = userPrompt().chooseFile(title, pattern, true);
  const bool complete = fileName.isEmpty() || !QFileInfo(fileName).suffix().isEmpty();
  return complete ? fileName : fileName + u'.' + extension;
}

}  // namespace kalvor
