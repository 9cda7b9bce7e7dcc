// The port to the person at the desk: message boxes, wait cursor, file dialogs.
#pragma once

#include "platform/ports.h"

namespace kalvor {

class MessagePrompt : public UserPrompt {
 public:
  PromptButton message(PromptKind kind, const QString& text, const QList<PromptButton>& buttons) override;
  void setWaitCursor(bool on) override;
  void processMessages() override;
  QString chooseFile(const QString& title, const QString& pattern, bool forSaving) override;
  QString chooseFileIn(const QString& folder, const QString& title, const QString& pattern, bool forSaving) override;
};

}  // namespace kalvor
