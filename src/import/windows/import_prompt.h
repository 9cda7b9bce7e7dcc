// While an import runs: what the form's rules tell goes into the run's list instead of a box a record, no lookup window
// opens, and an unattended run is asked nothing.
#pragma once

#include <functional>

#include "platform/ports.h"
#include "registry/selector_lookup.h"

namespace kalvor {

enum class ImportAttended : quint8 { Yes, No };

class ImportPrompt : public UserPrompt {
 public:
  // Stands in for the installed prompt while it lives. told: a message that wants no answer.
  ImportPrompt(ImportAttended attended, std::function<void(const QString& text)> told);
  ~ImportPrompt() override;
  ImportPrompt(const ImportPrompt&) = delete;
  ImportPrompt& operator=(const ImportPrompt&) = delete;

  PromptButton message(PromptKind kind, const QString& text, const QList<PromptButton>& buttons) override;
  void setWaitCursor(bool on) override;
  void processMessages() override;
  QString chooseFile(const QString& title, const QString& pattern, bool forSaving) override;

 private:
  UserPrompt& outer_;
  const ImportAttended attended_;
  std::function<void(const QString& text)> told_;
  SelectorServices services_;  // as they were
};

}  // namespace kalvor
