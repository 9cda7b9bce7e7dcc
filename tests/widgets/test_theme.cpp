// The look: modes, Bulgarian texts, icons.
#include <QCalendarWidget>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <cmath>

#include "widgets/theme.h"

namespace kalvor {
namespace {

// Contrast of two colours as WCAG 2 counts it.
double contrast(const QColor& a, const QColor& b)
{
  const auto luminance = [](const QColor& color) {
    const auto channel = [](double value) {
      return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * channel(color.redF()) + 0.7152 * channel(color.greenF()) + 0.0722 * channel(color.blueF());
  };
  const double light = qMax(luminance(a), luminance(b));
  return (light + 0.05) / (qMin(luminance(a), luminance(b)) + 0.05);
}

}  // namespace

class TestTheme : public QObject {
  Q_OBJECT

 private slots:
  void standardButtonsAreBulgarian_data()
  {
    QTest::addColumn<int>("button");
    QTest::addColumn<QString>("text");
    QTest::newRow("yes") << int(QDialogButtonBox::Yes) << QStringLiteral("&Да");
    QTest::newRow("no") << int(QDialogButtonBox::No) << QStringLiteral("&Не");
    QTest::newRow("cancel") << int(QDialogButtonBox::Cancel) << QStringLiteral("Отказ");
    QTest::newRow("ok") << int(QDialogButtonBox::Ok) << QStringLiteral("Добре");
  }
  void standardButtonsAreBulgarian()
  {
    QFETCH(int, button);
    QFETCH(QString, text);
    applyTheme(*qApp);
    const QDialogButtonBox box{QDialogButtonBox::StandardButtons(button)};
    QCOMPARE(box.buttons().at(0)->text(), text);
  }

  void textsThatNoPackageHasAreOurs()
  {
    applyTheme(*qApp);
    QCOMPARE(QCoreApplication::translate("QNothing", "&Yes"), QStringLiteral("&Да"));
    QCOMPARE(QCoreApplication::translate("TfSomething", "&Yes"), QStringLiteral("&Yes"));
    QCOMPARE(QLocale().monthName(11), QStringLiteral("ноември"));
  }

  void everyTextIsLegible_data()
  {
    QTest::addColumn<int>("mode");
    QTest::newRow("light") << int(ThemeMode::Light);
    QTest::newRow("dark") << int(ThemeMode::Dark);
  }
  void everyTextIsLegible()
  {
    QFETCH(int, mode);
    applyTheme(*qApp, ThemeMode(mode));
    QCOMPARE(theme().dark, ThemeMode(mode) == ThemeMode::Dark);
    const QPalette palette = QApplication::palette();
    const QColor text = palette.color(QPalette::Text);
    constexpr double enough = 4.5;
    for (const QColor& background :
         {palette.color(QPalette::Base), palette.color(QPalette::AlternateBase), palette.color(QPalette::Window),
          palette.color(QPalette::Button), theme().readOnly, theme().invalid, theme().changedRecord,
          theme().insertedRecord, theme().title, blend(theme().accent, palette.color(QPalette::Base), 0.30)}) {
      QVERIFY2(contrast(text, background) >= enough, qPrintable(background.name()));
    }
    QVERIFY(contrast(theme().negative, palette.color(QPalette::AlternateBase)) >= enough);
    QVERIFY(contrast(theme().quietText, palette.color(QPalette::Window)) >= enough);
    QVERIFY(contrast(theme().accentText, theme().accent) >= enough);
  }

  void controlsOfALineAreOneHeight()
  {
    applyTheme(*qApp, ThemeMode::Light);
    const QLineEdit edit;
    const QComboBox list;
    QCOMPARE(edit.sizeHint().height(), list.sizeHint().height());
    QCOMPARE(edit.sizeHint().height() % 2, 0);
  }

  void iconsComeByName()
  {
    applyTheme(*qApp);
    QVERIFY(!icon(QStringLiteral("document-save")).isNull());
    QVERIFY(!icon(QStringLiteral("document-save")).pixmap(16).isNull());
    QVERIFY(icon(QStringLiteral("no-such-icon-at-all")).isNull());
  }
};

}  // namespace kalvor

QTEST_MAIN(kalvor::TestTheme)
#include "test_theme.moc"
