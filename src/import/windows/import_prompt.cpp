#include "import/windows/import_prompt.h"

namespace kalvor {

ImportPrompt::ImportPrompt(ImportAttended attended, std::function<void(const QString& text)> told)
    : outer_(userPrompt()), attended_(attended), told_(std::move(told)), services_(selectorServices())
{
  installUserPrompt(this);
  selectorServices().RequestForm = [](int, ShowOption, const FilterArray&, const FilterArray&, TSelectionList&,
                                      const TDefaultValues&, QObject*) { return int(SelectorNotChosen); };
}

ImportPrompt::~ImportPrompt()
{
  selectorServices() = services_;
  installUserPrompt(&outer_);
}

PromptButton ImportPrompt::message(PromptKind kind, const QString& text, const QList<PromptButton>& buttons)
{
  const bool question = buttons.size() > 1;
  if (question && attended_ == ImportAttended::Yes) {
    return outer_.message(kind, text, buttons);
  }
  told_(text);
  for (const PromptButton careful : {PromptButton::Cancel, PromptButton::No}) {
    if (buttons.contains(careful)) {
      return careful;
    }
  }
  return buttons.value(0, PromptButton::Ok);
}

void ImportPrompt::setWaitCursor(bool on) { outer_.setWaitCursor(on); }

void ImportPrompt::processMessages() { outer_.processMessages(); }

QString ImportPrompt::chooseFile(const QString& title, const QString& pattern, bool forSaving)
{
  return attended_ == ImportAttended::Yes ? outer_.chooseFile(title, pattern, forSaving) : QString();
}

}  // namespace kalvor
