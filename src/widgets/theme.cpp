#include "widgets/theme.h"

#include <QApplication>
#include <QFontDatabase>
#include <QFontMetrics>

#include "widgets/bulgarian_texts.h"
#include "widgets/theme_style.h"

namespace kalvor {
namespace {

struct BaseColors {
  QRgb window, base, alternate, text, quietText, button, line, quietLine, accent, accentText, negative, readOnly,
      invalid, invalidLine, changed, inserted, required, title;
};

constexpr BaseColors lightColors{0xfff3f5f7, 0xffffffff, 0xfff5f7f9, 0xff1f2a36, 0xff5f6b78, 0xfffbfcfd, 0xffc3cad3,
                                 0xffe6eaee, 0xff2f6fab, 0xffffffff, 0xffb3261e, 0xffeef1f4, 0xfffdecea, 0xffc5352b,
                                 0xfffff5d2, 0xffe8fee0, 0xffb3261e, 0xffebeff3};
constexpr BaseColors darkColors{0xff22262c, 0xff1a1d22, 0xff1e2228, 0xffe3e7eb, 0xff97a2ae, 0xff2c3138, 0xff454d57,
                                0xff2a2f36, 0xff5f9fd8, 0xff10151a, 0xfff28b82, 0xff262b31, 0xff43282a, 0xfff28b82,
                                0xff3d3722, 0xff233a26, 0xfff28b82, 0xff2a2f36};

Theme themeFrom(const BaseColors& colors, bool dark)
{
  Theme result;
  result.dark = dark;
  result.accent = QColor(colors.accent);
  result.accentText = QColor(colors.accentText);
  result.line = QColor(colors.line);
  result.quietLine = QColor(colors.quietLine);
  result.quietText = QColor(colors.quietText);
  result.negative = QColor(colors.negative);
  result.readOnly = QColor(colors.readOnly);
  result.invalid = QColor(colors.invalid);
  result.invalidLine = QColor(colors.invalidLine);
  result.changedRecord = QColor(colors.changed);
  result.insertedRecord = QColor(colors.inserted);
  result.requiredMark = QColor(colors.required);
  result.title = QColor(colors.title);
  return result;
}

QPalette paletteFrom(const BaseColors& colors)
{
  QPalette palette(QColor(colors.text), QColor(colors.button), QColor(colors.button).lighter(115),
                   QColor(colors.line).darker(110), QColor(colors.line), QColor(colors.text), QColor(colors.text),
                   QColor(colors.base), QColor(colors.window));
  palette.setColor(QPalette::AlternateBase, QColor(colors.alternate));
  palette.setColor(QPalette::Highlight, QColor(colors.accent));
  palette.setColor(QPalette::HighlightedText, QColor(colors.accentText));
  palette.setColor(QPalette::Link, QColor(colors.accent));
  palette.setColor(QPalette::LinkVisited, QColor(colors.accent));
  palette.setColor(QPalette::PlaceholderText, QColor(colors.quietText));
  palette.setColor(QPalette::ToolTipBase, QColor(colors.base));
  palette.setColor(QPalette::ToolTipText, QColor(colors.text));
  const QColor faded = blend(QColor(colors.text), QColor(colors.window), 0.45);
  for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
    palette.setColor(QPalette::Disabled, role, faded);
  }
  palette.setColor(QPalette::Disabled, QPalette::Base, QColor(colors.window));
  palette.setColor(QPalette::Disabled, QPalette::Highlight, QColor(colors.line));
  return palette;
}

Theme& currentTheme()
{
  static Theme colors = themeFrom(lightColors, false);
  return colors;
}

bool systemIsDark()
{
  // Asked once, before our own palette hides the system's.
  static const bool dark = QApplication::palette().color(QPalette::Window).lightness() < 128;
  return dark;
}

void chooseFont()
{
  constexpr qreal smallestPointSize = 10;
  QFont font = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
  if (font.pointSizeF() > 0 && font.pointSizeF() < smallestPointSize) {
    font.setPointSizeF(smallestPointSize);
  }
  QApplication::setFont(font);
}

void chooseIcons(bool dark)
{
  QStringList paths = QIcon::themeSearchPaths();
  for (const QString& path : {QStringLiteral("/usr/share/icons"), QStringLiteral("/usr/local/share/icons")}) {
    if (!paths.contains(path)) {
      paths.append(path);
    }
  }
  QIcon::setThemeSearchPaths(paths);
  QIcon::setThemeName(dark ? QStringLiteral("breeze-dark") : QStringLiteral("breeze"));
  QIcon::setFallbackThemeName(QStringLiteral("breeze"));
}

}  // namespace

void applyTheme(QApplication& application, ThemeMode mode)
{
  const bool systemDark = systemIsDark();
  const bool dark = mode == ThemeMode::Dark || (mode == ThemeMode::FollowSystem && systemDark);
  currentTheme() = themeFrom(dark ? darkColors : lightColors, dark);
  if (!qobject_cast<ThemeStyle*>(QApplication::style())) {
    QApplication::setStyle(new ThemeStyle);
  }
  QApplication::setPalette(paletteFrom(dark ? darkColors : lightColors));
  chooseFont();
  chooseIcons(dark);
  installBulgarianTexts(application);
}

const Theme& theme()
{
  return currentTheme();
}

QIcon icon(const QString& name)
{
  return QIcon::fromTheme(name);
}

QColor blend(const QColor& over, const QColor& under, qreal strength)
{
  const auto mix = [strength](int a, int b) { return int(a * strength + b * (1 - strength) + 0.5); };
  return QColor(mix(over.red(), under.red()), mix(over.green(), under.green()), mix(over.blue(), under.blue()));
}

int textLineHeight(const QFontMetrics& metrics)
{
  return (metrics.height() + spacing::normal + 1) / 2 * 2;
}

}  // namespace kalvor
