#include "common/color_names.h"

namespace kalvor {
namespace {

struct ColorNameRow {
  QStringView name;
  ColorValue color;
};
constexpr ColorNameRow colorNames[] = {
    {u"clBlack", 0x000000},      {u"clMaroon", 0x000080},     {u"clGreen", 0x008000},
    {u"clOlive", 0x008080},      {u"clNavy", 0x800000},       {u"clPurple", 0x800080},
    {u"clTeal", 0x808000},       {u"clGray", 0x808080},       {u"clSilver", 0xC0C0C0},
    {u"clRed", 0x0000FF},        {u"clLime", 0x00FF00},       {u"clYellow", 0x00FFFF},
    {u"clBlue", 0xFF0000},       {u"clFuchsia", 0xFF00FF},    {u"clAqua", 0xFFFF00},
    {u"clWhite", 0xFFFFFF},      {u"clMoneyGreen", 0xC0DCC0}, {u"clSkyBlue", 0xF0CAA6},
    {u"clCream", 0xF0FBFF},      {u"clMedGray", 0xA4A0A0},    {u"clNone", 0x1FFFFFFF},
    {u"clDefault", 0x20000000},  {u"clScrollBar", 0xFF000000}, {u"clBackground", 0xFF000001},
    {u"clActiveCaption", 0xFF000002}, {u"clInactiveCaption", 0xFF000003}, {u"clMenu", 0xFF000004},
    {u"clWindow", clWindow},     {u"clWindowFrame", 0xFF000006}, {u"clMenuText", 0xFF000007},
    {u"clWindowText", 0xFF000008}, {u"clCaptionText", 0xFF000009}, {u"clActiveBorder", 0xFF00000A},
    {u"clInactiveBorder", 0xFF00000B}, {u"clAppWorkSpace", 0xFF00000C}, {u"clHighlight", 0xFF00000D},
    {u"clHighlightText", 0xFF00000E}, {u"clBtnFace", 0xFF00000F}, {u"clBtnShadow", 0xFF000010},
    {u"clGrayText", 0xFF000011}, {u"clBtnText", 0xFF000012}, {u"clInactiveCaptionText", 0xFF000013},
    {u"clBtnHighlight", 0xFF000014}, {u"cl3DDkShadow", 0xFF000015}, {u"cl3DLight", 0xFF000016},
    {u"clInfoText", 0xFF000017}, {u"clInfoBk", 0xFF000018}};

}  // namespace

QString colorToText(ColorValue color)
{
  for (const ColorNameRow& row : colorNames)
    if (row.color == color)
      return row.name.toString();
  return u'$' + QStringLiteral("%1").arg(color, 8, 16, QLatin1Char('0')).toUpper();
}

std::optional<ColorValue> colorFromText(const QString& text)
{
  const QString trimmed = text.trimmed();
  for (const ColorNameRow& row : colorNames)
    if (row.name.compare(trimmed, Qt::CaseInsensitive) == 0)
      return row.color;
  bool read = false;
  const auto color = trimmed.startsWith(u'$') ? qint64(trimmed.mid(1).toUInt(&read, 16)) : trimmed.toLongLong(&read);
  const bool fits = color >= std::numeric_limits<qint32>::min() && color <= std::numeric_limits<quint32>::max();
  return read && fits ? std::optional(ColorValue(color)) : std::nullopt;
}

}  // namespace kalvor
