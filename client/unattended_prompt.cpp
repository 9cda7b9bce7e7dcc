#include "unattended_prompt.h"

#include <cstdio>

#include "session/error_log.h"

namespace kalvor {

PromptButton UnattendedPrompt::message(PromptKind, const QString& text, const QList<PromptButton>& buttons)
{
  std::fprintf(stderr, "%s\n", qUtf8Printable(text));
  LogError(text, QStringLiteral("UnattendedPrompt"));
  for (const PromptButton button : {PromptButton::Cancel, PromptButton::No})
    if (buttons.contains(button))
      return button;
  return PromptButton::Ok;
}

}  // namespace kalvor
