#include "widgets/theme_style.h"

#include <QPainter>
#include <QStyleOption>

#include "widgets/theme.h"
#include "widgets/theme_painting.h"

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
  if (option->palette.color(QPalette::Base) == theme().invalid) {
    return theme().invalidLine;
  }
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

CheckLook checkLook(QStyle::State state)
{
  if (state & QStyle::State_NoChange) {
    return CheckLook::Mixed;
  }
  return state & QStyle::State_On ? CheckLook::Checked : CheckLook::Unchecked;
}

QRect scrollHandle(const QStyleOptionSlider& bar, const QRect& groove)
{
  const bool upright = bar.orientation == Qt::Vertical;
  const int length = upright ? groove.height() : groove.width();
  const qint64 range = qint64(bar.maximum) - bar.minimum;
  constexpr int shortest = 32;
  const int handle = range <= 0 ? length
                                : qBound(qMin(shortest, length), int(length * qint64(bar.pageStep) / (range + bar.pageStep)),
                                         length);
  const int start = QStyle::sliderPositionFromValue(bar.minimum, bar.maximum, bar.sliderPosition, length - handle,
                                                    bar.upsideDown);
  return upright ? QRect(groove.x(), groove.y() + start, groove.width(), handle)
                 : QRect(groove.x() + start, groove.y(), handle, groove.height());
}

void drawScrollBar(const QStyleOptionSlider& bar, QPainter* painter)
{
  painter->fillRect(bar.rect, bar.palette.color(QPalette::Base));
  if (bar.maximum <= bar.minimum) {
    return;
  }
  const QRect handle = scrollHandle(bar, bar.rect);
  const bool held = bar.activeSubControls & QStyle::SC_ScrollBarSlider;
  const qreal strength = (bar.state & QStyle::State_Sunken) && held ? 0.7 : held ? 0.55 : 0.35;
  painter->save();
  painter->setRenderHint(QPainter::Antialiasing);
  painter->setPen(Qt::NoPen);
  painter->setBrush(blend(theme().quietText, bar.palette.color(QPalette::Base), strength));
  painter->drawRoundedRect(QRectF(handle).adjusted(3, 3, -3, -3), cornerRadius, cornerRadius);
  painter->restore();
}

}  // namespace

ThemeStyle::ThemeStyle() : QProxyStyle(QStringLiteral("Fusion")) {}

// Every child window asks for the icon of its menu, which the toolkit would read from its picture file each time.
QIcon ThemeStyle::standardIcon(StandardPixmap icon, const QStyleOption* option, const QWidget* widget) const
{
  const auto known = standardIcons_.constFind(icon);
  if (known != standardIcons_.constEnd()) {
    return *known;
  }
  return standardIcons_[icon] = QProxyStyle::standardIcon(icon, option, widget);
}

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
    case PM_FocusFrameHMargin: return spacing::tight;  // beside the text of list items
    case PM_ScrollBarExtent: return 14;
    case PM_IndicatorWidth:
    case PM_IndicatorHeight: return checkBoxSide;
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
  } else if (type == CT_ItemViewItem && option) {
    result.setHeight(qMax(result.height(), textLineHeight(option->fontMetrics)));
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
    case PE_IndicatorCheckBox:
      drawCheckBox(painter, option->rect, checkLook(option->state), option->state & State_Enabled,
                   option->state & (State_HasFocus | State_MouseOver));
      return;
    case PE_Frame:
      if (const auto* frame = qstyleoption_cast<const QStyleOptionFrame*>(option); frame && frame->lineWidth > 0) {
        painter->setPen(frameColor(option));
        painter->setBrush(Qt::NoBrush);
        painter->drawRect(option->rect.adjusted(0, 0, -1, -1));
        return;
      }
      break;
    case PE_PanelScrollAreaCorner: painter->fillRect(option->rect, option->palette.color(QPalette::Base)); return;
    case PE_PanelButtonCommand: drawButtonPanel(option, painter); return;
    case PE_FrameFocusRect: drawRoundFrame(painter, option->rect, theme().accent, Qt::NoBrush); return;
    default: break;
  }
  QProxyStyle::drawPrimitive(element, option, painter, widget);
}

void ThemeStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                             const QWidget* widget) const
{
  switch (element) {
    case CE_HeaderEmptyArea: painter->fillRect(option->rect, theme().title); return;
    case CE_HeaderSection:
      painter->fillRect(option->rect, theme().title);
      painter->setPen(theme().line);
      painter->drawLine(option->rect.bottomLeft(), option->rect.bottomRight());
      painter->drawLine(option->rect.topRight(), option->rect.bottomRight());
      return;
    default: QProxyStyle::drawControl(element, option, painter, widget);
  }
}

QRect ThemeStyle::subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                                 const QWidget* widget) const
{
  const auto* bar = control == CC_ScrollBar ? qstyleoption_cast<const QStyleOptionSlider*>(option) : nullptr;
  if (!bar) {
    return QProxyStyle::subControlRect(control, option, part, widget);
  }
  const QRect handle = scrollHandle(*bar, bar->rect);
  const bool upright = bar->orientation == Qt::Vertical;
  QRect result = bar->rect;
  switch (part) {
    case SC_ScrollBarGroove: return result;
    case SC_ScrollBarSlider: return handle;
    case SC_ScrollBarSubPage:
      upright ? result.setBottom(handle.top() - 1) : result.setRight(handle.left() - 1);
      return result;
    case SC_ScrollBarAddPage:
      upright ? result.setTop(handle.bottom() + 1) : result.setLeft(handle.right() + 1);
      return result;
    default: return {};  // no arrows
  }
}

void ThemeStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                                    const QWidget* widget) const
{
  if (const auto* bar = control == CC_ScrollBar ? qstyleoption_cast<const QStyleOptionSlider*>(option) : nullptr) {
    drawScrollBar(*bar, painter);
    return;
  }
  QProxyStyle::drawComplexControl(control, option, painter, widget);
}

}  // namespace kalvor
