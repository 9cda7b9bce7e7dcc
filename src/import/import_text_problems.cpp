// What is wrong with the text of an import filter, entry by entry.
#include <algorithm>
#include <optional>

#include "import/import_mapping.h"
#include "import/messages.h"

namespace kalvor {
namespace {

bool isPositive(const QString& text)
{
  bool isNumber = false;
  return text.trimmed().toInt(&isNumber) > 0 && isNumber;
}

class ProblemFinder {
 public:
  ProblemFinder(const ImportText& text, const QList<ImportFormField>& fields) : text_(text), fields_(fields)
  {
    fixedWidth_ = text.value(ImportSection::Options, QStringLiteral("TXTFILE_SEP")).toUpper() == u"FIXEDLEN";
  }

  QList<ImportTextProblem> find()
  {
    for (const ImportSection section : importSections) {
      if (text_.isOpen(section))
        tell(text_.tagAt(section), QStringLiteral("Секцията [%1] не е затворена с [##%1].").arg(importSectionName(section)));
      for (const ImportTextEntry& entry : text_.entries(section))
        look(section, entry);
    }
    if (text_.entries(ImportSection::Master).isEmpty() && text_.entries(ImportSection::Detail).isEmpty())
      tell(0, QStringLiteral("Филтърът не описва нито едно поле (CDSMASTER, CDSDETAIL)."));
    std::stable_sort(problems_.begin(), problems_.end(),
                     [](const ImportTextProblem& a, const ImportTextProblem& b) { return a.line < b.line; });
    return problems_;
  }

 private:
  void tell(qsizetype offset, const QString& problem) { problems_.append({text_.lineAt(offset), problem}); }

  void look(ImportSection section, const ImportTextEntry& entry)
  {
    const auto say = [&](const QString& problem) { tell(entry.start, problem); };
    const bool named = entry.text.contains(u'=');
    switch (section) {
      case ImportSection::Options: return lookAtOption(entry, named);
      case ImportSection::Master:
      case ImportSection::Detail:
        if (!named)
          return say(QStringLiteral("Липсва „=“ след номера на колоната: ") + entry.text);
        if (!isPositive(entry.name()))
          say(QStringLiteral("Колоната е номер от 1 нагоре: ") + entry.name());
        return lookAtField(section, entry);
      case ImportSection::LinkFields:
        if (!named || entry.value().trimmed().isEmpty())
          say(QStringLiteral("Списъкът не изброява полета: ") + entry.text);
        return;
      case ImportSection::Fallbacks:
        return lookAtLookup(entry, entry.name().contains(u'|') ? entry.text : entry.value(), std::nullopt);
    }
  }

  void lookAtOption(const ImportTextEntry& entry, bool named)
  {
    const auto say = [&](const QString& problem) { tell(entry.start, problem); };
    if (!named)
      return say(QStringLiteral("Настройката няма стойност: ") + entry.text);
    const QString value = entry.value();
    for (const ImportOption& option : importOptions()) {
      if (option.key.compare(entry.name(), Qt::CaseInsensitive) != 0)
        continue;
      const bool anyCase = option.key == u"TXTFILE_SEP";
      if (!option.values.isEmpty() && !option.values.contains(anyCase ? value.toUpper() : value))
        return say(QStringLiteral("%1 може да бъде %2, не „%3“.").arg(option.key, option.values.join(QStringLiteral(", ")), value));
      if (option.key == u"FIRST_ROW" && !isPositive(value))
        say(QStringLiteral("FIRST_ROW е номер на ред от 1 нагоре."));
      if (option.key == u"NEW_DOCSEP")
        for (const QString& position : value.split(u';'))
          if (!position.trimmed().isEmpty() && !isPositive(position))
            say(QStringLiteral("NEW_DOCSEP изброява номера на колони, не „%1“.").arg(position.trimmed()));
      return;
    }
    say(QStringLiteral("Няма такава настройка: ") + entry.name());
  }

  void lookAtField(ImportSection section, const ImportTextEntry& entry)
  {
    const QStringList items = entry.value().split(u'|');
    const QString kind = items.value(0);
    if (fixedWidth_ && (kind == u"1" || kind == u"2"))
      lookAtRange(entry, items.value(3));
    if (kind == u"1") {
      if (items.value(2).isEmpty())
        tell(entry.start, QStringLiteral("Не е посочено поле."));
      else
        lookAtTarget(section, entry, items.value(2));
    } else if (kind == u"2") {
      lookAtLookup(entry, entry.value(), section);
    } else {
      tell(entry.start, QStringLiteral("Видът е 1 (стойност) или 2 (търсене), не „%1“.").arg(kind));
    }
  }

  void lookAtRange(const ImportTextEntry& entry, const QString& range)
  {
    const int from = range.section(u'-', 0, 0).trimmed().toInt();
    const int to = range.section(u'-', 1, 1).trimmed().toInt();
    if (from < 1 || to <= from)
      tell(entry.start, QStringLiteral("При постоянна ширина е нужен обхват от-до, например 1-11, не „%1“.").arg(range));
  }

  void lookAtTarget(ImportSection section, const ImportTextEntry& entry, const QString& name)
  {
    const auto isIt = [&](const ImportFormField& field) {
      return field.part == section && field.name.compare(name, Qt::CaseInsensitive) == 0;
    };
    const bool partKnown = std::any_of(fields_.begin(), fields_.end(), [&](const auto& field) { return field.part == section; });
    if (partKnown && std::none_of(fields_.begin(), fields_.end(), isIt))
      tell(entry.start, QStringLiteral("Формата няма такова поле: ") + name);
  }

  // section: whose fields are filled; a fallback fills those of either.
  void lookAtLookup(const ImportTextEntry& entry, const QString& description, std::optional<ImportSection> section)
  {
    const auto say = [&](const QString& problem) { tell(entry.start, problem); };
    const QStringList items = description.split(u'|');
    const QString source = items.value(5).section(u';', 0, 0).trimmed();
    const QString target = items.value(5).section(u';', 1, 1).trimmed();
    bool listsThere = true;
    for (const QString& list : {source, target})
      if (text_.value(ImportSection::LinkFields, list).trimmed().isEmpty()) {
        say(list.isEmpty() ? QStringLiteral("Не са посочени двата списъка с полета.")
                           : QStringLiteral("Няма списък „%1“ в LINK_FIELDS_DESCR.").arg(list));
        listsThere = false;
      }
    const QStringList targets = text_.value(ImportSection::LinkFields, target).split(u',');
    if (listsThere && targets.size() != text_.value(ImportSection::LinkFields, source).split(u',').size())
      say(QStringLiteral("Списъците „%1“ и „%2“ са с различен брой полета.").arg(source, target));
    if (section && listsThere)
      for (const QString& field : targets)
        lookAtTarget(*section, entry, field.trimmed());
    if (!isPositive(items.value(6)))
      say(QStringLiteral("Заявката на търсенето е номер, не „%1“.").arg(items.value(6)));
    if (items.value(7).trimmed().isEmpty())
      say(QStringLiteral("Не е посочена таблица, в която се търси."));
    lookAtConditions(entry, items.value(8));
  }

  void lookAtConditions(const ImportTextEntry& entry, const QString& conditions)
  {
    const auto say = [&](const QString& problem) { tell(entry.start, problem); };
    if (conditions.trimmed().isEmpty())
      return say(QStringLiteral("Търсенето няма условие."));
    for (const QString& condition : conditions.split(u';')) {
      if (condition.trimmed().isEmpty())
        continue;
      const QStringList items = condition.split(u'#');
      bool isNumber = false;
      items.value(2).trimmed().toInt(&isNumber);
      if (items.size() < 4 || items.value(0).trimmed().isEmpty() || items.value(1).trimmed().isEmpty() || !isNumber)
        say(QStringLiteral("Условието е поле#сравнение#вид#стойност, не „%1“.").arg(condition.trimmed()));
      else if (!items.value(3).contains(u'@') && !isPositive(items.value(3)))
        say(QStringLiteral("Стойността на условието е номер на колона или текст след @, не „%1“.").arg(items.value(3)));
    }
  }

  const ImportText& text_;
  const QList<ImportFormField>& fields_;
  bool fixedWidth_ = false;
  QList<ImportTextProblem> problems_;
};

}  // namespace

QList<ImportTextProblem> importTextProblems(const ImportText& text, const QList<ImportFormField>& fields)
{
  return ProblemFinder(text, fields).find();
}

const QList<ImportOption>& importOptions()
{
  static const QStringList onlyOn{QStringLiteral("1")};
  static const QList<ImportOption> options{
      {QStringLiteral("TXTFILE_SEP"), QStringLiteral("Разделител на колоните"),
       {QStringLiteral("TAB"), QStringLiteral("SEMICOLON"), QStringLiteral("COMMA"), QStringLiteral("FIXEDLEN")},
       QStringLiteral("за текстов файл; FIXEDLEN: постоянна ширина")},
      {QStringLiteral("FIRST_ROW"), QStringLiteral("Първи ред с данни"), {}, QStringLiteral("за текстов файл, от 1")},
      {QStringLiteral("NEW_DOCSEP"), QStringLiteral("Колони за нов документ"), {}, QStringLiteral("например 1 или 1;2")},
      {QStringLiteral("IMPORT_ACTION"), QStringLiteral("Какво се прави със записа"),
       {QStringLiteral("0"), QStringLiteral("1"), QStringLiteral("2"), QStringLiteral("3"), QStringLiteral("4")},
       QStringLiteral("0 добавя, 1 променя, 2 променя или добавя, 3 добавя само нови, 4 само редове")},
      {QStringLiteral("DATE_FORMAT"), QStringLiteral("Дати"), {}, QStringLiteral("например dd.mm.yyyy")},
      {QStringLiteral("DATE_SEPARATOR"), QStringLiteral("Разделител в датите"), {}, QStringLiteral("един знак")},
      {QStringLiteral("DECIMAL_SEPARATOR"), QStringLiteral("Десетичен знак"), {}, QStringLiteral("един знак")},
      {QStringLiteral("SKIP_INVALID_ROWS"), QStringLiteral("Пропуска ненамерени редове"), onlyOn, QStringLiteral("1: да")},
      {QStringLiteral("FORCE_SELECT"), QStringLiteral("Взима първия от няколко намерени"), {}, QStringLiteral("номер на заявката")},
      {QStringLiteral("ONLY_LINES"), QStringLiteral("Внася в отворения документ"), onlyOn, QStringLiteral("1: да")},
      {QStringLiteral("FINISH_DOCUMENT"), QStringLiteral("Приключва документите"), onlyOn, QStringLiteral("1: да")},
  };
  return options;
}

}  // namespace kalvor
