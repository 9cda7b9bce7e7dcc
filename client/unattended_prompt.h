// A run with an action and nobody in front of it: what would be shown goes to the standard error stream and the error
// log, every question is answered with Cancel or No.
#pragma once

#include "message_prompt.h"

namespace kalvor {

class UnattendedPrompt : public MessagePrompt {
 public:
  PromptButton message(PromptKind kind, const QString& text, const QList<PromptButton>& buttons) override;
  QString chooseFile(const QString&, const QString&, bool) override { return {}; }
  QString chooseFileIn(const QString&, const QString&, const QString&, bool) override { return {}; }
};

}  // namespace kalvor
