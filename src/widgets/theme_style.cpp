#include "widgets/theme_style.h"

#include <QPainter>
#include <QStyleOption>

#include "widgets/theme.h"

namespace kalvor {
namespace {

constexpr qreal cornerRadius = 3;

void drawRoundFrame(QPainter* painter, const QRect& rect, const QColor& line, const QBrush& fill)
{
  painter->save();
  painter->setRenderHint(QPainter::Antialiasing);
  painter->setPen(line.isValid() ? QPen(line, 1) : QPen(Qt::NoPen));
  painter->setBrush(fill);
  painter->drawRoundedRect(QRectF(rect).adjusted(0.5, 0.5, -0.5, -0.5), cornerRadius, cornerRadius);
  painter->restore();
}

QColor frameColor(const QStyleOption* option)
{
  const bool enabled = option->state & QStyle::State_Enabled;
  if (enabled && (option->state & QStyle::State_HasFocus)) {
    return theme().accent;
  }
  return enabled ? theme().line : theme().quietLine;
}

void drawButtonPanel(const QStyleOption* option, QPainter* painter)
{
  const QStyle::State state = option->state;
  QColor fill = option->palette.color(QPalette::Button);
  if (state & (QStyle::State_Sunken | QStyle::State_On)) {
    fill = blend(theme().accent, fill, 0.22);
  } else if ((state & QStyle::State_MouseOver) && (state & QStyle::State_Enabled)) {
    fill = blend(theme().accent, fill, 0.09);
  }
  QColor line = frameColor(option);
  const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
  if (button && (button->features & QStyleOptionButton::DefaultButton) && (state & QStyle::State_Enabled)) {
    line = theme().accent;
  }
  drawRoundFrame(painter, option->rect, line, fill);
}

}  // namespace

ThemeStyle::ThemeStyle() : QProxyStyle(QStringLiteral("Fusion")) {}

int ThemeStyle::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const
{
  switch (metric) {
    case PM_LayoutHorizontalSpacing:
    case PM_LayoutVerticalSpacing:
    case PM_LayoutLeftMargin:
    case PM_LayoutTopMargin:
    case PM_LayoutRightMargin:
    case PM_LayoutBottomMargin: return spacing::normal;
    case PM_SmallIconSize:
    case PM_ButtonIconSize: return 16;
    case PM_ToolBarIconSize: return 22;
    default: return QProxyStyle::pixelMetric(metric, option, widget);
  }
}

int ThemeStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                          QStyleHintReturn* returnData) const
{
  switch (hint) {
    case SH_ComboBox_Popup: return 0;  // a list under the control, not a menu over it
    case SH_FormLayoutLabelAlignment: return int(Qt::AlignLeft | Qt::AlignVCenter);
    case SH_ItemView_ActivateItemOnSingleClick: return 0;
    case SH_ToolTip_WakeUpDelay: return 500;
    default: return QProxyStyle::styleHint(hint, option, widget, returnData);
  }
}

QSize ThemeStyle::sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                                   const QWidget* widget) const
{
  QSize result = QProxyStyle::sizeFromContents(type, option, size, widget);
  if (type == CT_LineEdit || type == CT_ComboBox || type == CT_PushButton || type == CT_SpinBox) {
    const int height = option ? textLineHeight(option->fontMetrics) + spacing::tight : result.height();
    result.setHeight(qMax(height, type == CT_PushButton ? result.height() : 0));
  }
  return result;
}

void ThemeStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                               const QWidget* widget) const
{
  switch (element) {
    case PE_PanelLineEdit:
      if (const auto* frame = qstyleoption_cast<const QStyleOptionFrame*>(option); frame && frame->lineWidth > 0) {
        drawRoundFrame(painter, option->rect, frameColor(option), option->palette.brush(QPalette::Base));
        return;
      }
      break;
    case PE_FrameLineEdit: drawRoundFrame(painter, option->rect, frameColor(option), Qt::NoBrush); return;
    case PE_PanelButtonCommand: drawButtonPanel(option, painter); return;
    case PE_FrameFocusRect: drawRoundFrame(painter, option->rect, theme().accent, Qt::NoBrush); return;
    default: break;
  }
  QProxyStyle::drawPrimitive(element, option, painter, widget);
}

}  // namespace kalvor
