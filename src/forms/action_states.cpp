#include "forms/action_states.h"

#include "session/ini_options.h"

namespace kalvor {
namespace {

bool saveEnabled(const ActionFacts& f) { return (f.changed || f.editing) && f.canSave; }

struct ActionRule {
  const char16_t* action;
  bool (*enabled)(const ActionFacts&);
};
constexpr ActionRule actionRules[] = {
    {u"acSave", saveEnabled},
    {u"acCancel", saveEnabled},
    {u"acRefresh", [](const ActionFacts& f) { return !f.changed && !f.editing; }},
    {u"acCopyNew", [](const ActionFacts& f) { return !f.editing; }},
    {u"acSelect", [](const ActionFacts& f) { return !f.cannotSelect; }},
    {u"acSort", [](const ActionFacts&) { return true; }},
    {u"acFieldFilter", [](const ActionFacts&) { return true; }},
    {u"acTableFilter", [](const ActionFacts&) { return true; }},
    {u"acFind", [](const ActionFacts&) { return true; }},
    {u"acPrint", [](const ActionFacts& f) { return !saveEnabled(f); }},
    {u"acPreview", [](const ActionFacts& f) { return !saveEnabled(f); }},
    {u"acRemoveFilter", [](const ActionFacts& f) { return f.hasFilter; }},
    // The form's own answer has the last word over the state of the master.
    {u"acEditRecord", [](const ActionFacts& f) { return f.mayEdit && !f.masterReadOnly; }},
    {u"acDeleteRecord", [](const ActionFacts& f) { return f.mayDelete && !f.masterReadOnly; }},
    {u"acInsertRecord", [](const ActionFacts& f) { return f.mayInsert && !f.masterReadOnly; }},
};

// One line for the main window: the state of a form action, a fact of the position, or a fixed text.
struct MainWindowLine {
  const char16_t* name;
  const char16_t* action = nullptr;
  bool (*fact)(const PositionFacts&) = nullptr;
};
constexpr MainWindowLine mainWindowLines[] = {
    {u"acGlobalSave", u"acSave"},
    {u"acGlobalCancel", u"acCancel"},
    {u"acGlobalRefresh", u"acRefresh"},
    {u"acDeleteRecord", u"acDeleteRecord"},
    {u"acDocumentEdit", u"acEditRecord"},
    {u"acSort", u"acSort"},
    {u"acFieldFilter", u"acFieldFilter"},
    {u"acTableFilter", u"acTableFilter"},
    {u"acShowAll", u"acRemoveFilter"},
    {u"acFind", u"acFind"},
    {u"acTextPrint", u"acTextPrint"},
    {u"acAddRecord", u"acInsertRecord"},
    {u"acPrint", u"acPrint"},
    {u"acPreview", u"acPreview"},
    {u"acCopyNewRecord", u"acCopyNew"},
    {u"acFirst", nullptr, [](const PositionFacts& f) { return !f.atBeginning; }},
    {u"acPrev", nullptr, [](const PositionFacts& f) { return !f.atBeginning; }},
    {u"acNext", nullptr, [](const PositionFacts& f) { return !f.atEnd; }},
    {u"acLast", nullptr, [](const PositionFacts& f) { return !f.atEnd; }},
    {u"acImport"},
    {u"acExport"},
    {u"acSelectAll", nullptr, [](const PositionFacts& f) { return f.canSelectAll; }},
    {u"acReCalcDoc", u"acReCalcDocument"},
};

}  // namespace

QHash<QString, bool> actionStates(const ActionFacts& facts)
{
  QHash<QString, bool> states;
  for (const ActionRule& rule : actionRules)
    states.insert(QString::fromUtf16(rule.action), rule.enabled(facts));
  return states;
}

QStringList mainWindowActionLines(const std::function<bool(const QString& action)>& enabled,
                                  const PositionFacts& facts)
{
  QStringList lines;
  for (const MainWindowLine& line : mainWindowLines) {
    QString state = QStringLiteral("1");
    if (line.action)
      state = settingText(enabled(QString::fromUtf16(line.action)));
    else if (line.fact)
      state = settingText(line.fact(facts));
    lines.append(QString::fromUtf16(line.name) + u'=' + state);
  }
  return lines;
}

}  // namespace kalvor
