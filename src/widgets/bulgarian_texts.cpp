#include "widgets/bulgarian_texts.h"

#include <QCoreApplication>
#include <QHash>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

namespace kalvor {
namespace {

class StandardTexts : public QTranslator {
 public:
  using QTranslator::QTranslator;

  bool isEmpty() const override { return false; }

  // By source text alone: the toolkit asks for the same button under several contexts.
  QString translate(const char* context, const char* source, const char*, int) const override
  {
    if (!context || !source || context[0] != 'Q') {
      return {};
    }
    static const QHash<QByteArray, QString> texts{
        {"OK", QStringLiteral("Добре")},          {"&OK", QStringLiteral("&Добре")},
        {"&Yes", QStringLiteral("&Да")},          {"&No", QStringLiteral("&Не")},
        {"Yes", QStringLiteral("Да")},            {"No", QStringLiteral("Не")},
        {"Yes to &All", QStringLiteral("Да за &всички")}, {"N&o to All", QStringLiteral("Н&е за всички")},
        {"Cancel", QStringLiteral("Отказ")},      {"&Cancel", QStringLiteral("&Отказ")},
        {"Close", QStringLiteral("Затваряне")},   {"&Close", QStringLiteral("&Затваряне")},
        {"Save", QStringLiteral("Запис")},        {"&Save", QStringLiteral("&Запис")},
        {"Save All", QStringLiteral("Запис на всичко")}, {"Open", QStringLiteral("Отваряне")},
        {"&Open", QStringLiteral("&Отваряне")},   {"Abort", QStringLiteral("Прекъсване")},
        {"Retry", QStringLiteral("Повторен опит")}, {"Ignore", QStringLiteral("Пренебрегване")},
        {"Discard", QStringLiteral("Отхвърляне")}, {"Help", QStringLiteral("Помощ")},
        {"Apply", QStringLiteral("Прилагане")},   {"Reset", QStringLiteral("Нулиране")},
        {"Restore Defaults", QStringLiteral("По подразбиране")},
        {"&Undo", QStringLiteral("&Отмяна")},     {"&Redo", QStringLiteral("По&втаряне")},
        {"Cu&t", QStringLiteral("&Изрязване")},   {"&Copy", QStringLiteral("&Копиране")},
        {"&Paste", QStringLiteral("&Поставяне")}, {"Delete", QStringLiteral("Изтриване")},
        {"Select All", QStringLiteral("Избиране на всичко")},
        {"Show Details...", QStringLiteral("Подробности…")}, {"Hide Details...", QStringLiteral("По-малко…")},
    };
    return texts.value(QByteArray::fromRawData(source, qsizetype(qstrlen(source))));
  }
};

}  // namespace

void installBulgarianTexts(QCoreApplication& application)
{
  static const QString marker = QStringLiteral("kalvorStandardTexts");
  if (application.findChild<QTranslator*>(marker)) {
    return;
  }
  QLocale::setDefault(QLocale(QLocale::Bulgarian, QLocale::Bulgaria));
  auto* ownTexts = new StandardTexts(&application);
  ownTexts->setObjectName(marker);
  QCoreApplication::installTranslator(ownTexts);
  for (const QString& name : {QStringLiteral("qt_bg"), QStringLiteral("qtbase_bg")}) {
    auto* packaged = new QTranslator(&application);
    if (packaged->load(name, QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
      QCoreApplication::installTranslator(packaged);  // the last one installed is asked first
    } else {
      delete packaged;
    }
  }
}

}  // namespace kalvor
