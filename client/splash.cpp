#include "splash.h"

#include <QCoreApplication>
#include <QPainter>
#include <QPainterPath>

namespace kalvor {

namespace {

constexpr QColor markDark(0x1f, 0x4e, 0x79);
constexpr QColor markLight(0x2e, 0x86, 0xc1);
constexpr QColor markGold(0xf2, 0xb1, 0x34);

void paintMark(QPainter& painter, QRectF square)
{
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.translate(square.topLeft());
  painter.scale(square.width() / 64, square.height() / 64);
  painter.setBrush(markDark);
  painter.drawRoundedRect(QRectF(0, 0, 64, 64), 12, 12);
  painter.setBrush(Qt::white);
  painter.drawRoundedRect(QRectF(13, 12, 8, 40), 2, 2);
  QPainterPath arms;
  arms.moveTo(21, 34);
  arms.lineTo(42, 12);
  arms.lineTo(53, 12);
  arms.lineTo(33, 33);
  arms.lineTo(53, 52);
  arms.lineTo(42, 52);
  arms.lineTo(21, 32);
  arms.closeSubpath();
  painter.setBrush(markLight.lighter(150));
  painter.drawPath(arms);
  painter.setBrush(markGold);
  painter.drawEllipse(QRectF(44, 27, 10, 10));
  painter.restore();
}

}  // namespace

QPixmap programMark(int size, qreal ratio)
{
  QPixmap pixmap(QSize(size, size) * ratio);
  pixmap.setDevicePixelRatio(ratio);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  paintMark(painter, QRectF(0, 0, size, size));
  return pixmap;
}

Splash::Splash(QWidget* parent) : QWidget(parent, Qt::SplashScreen | Qt::FramelessWindowHint)
{
  setFixedSize(440, 220);
  setObjectName(QStringLiteral("splash"));
}

void Splash::setStage(const QString& text)
{
  stage_ = text;
  repaint();
}

void Splash::paintEvent(QPaintEvent*)
{
  QPainter painter(this);
  painter.fillRect(rect(), palette().window());
  painter.fillRect(QRect(0, height() - 4, width(), 4), markLight);
  paintMark(painter, QRectF(32, 48, 96, 96));
  QFont title = font();
  title.setPointSizeF(font().pointSizeF() * 2.4);
  title.setBold(true);
  painter.setFont(title);
  painter.setPen(palette().windowText().color());
  painter.drawText(QRect(152, 48, 270, 48), Qt::AlignLeft | Qt::AlignVCenter, QStringLiteral("Калвор"));
  painter.setFont(font());
  painter.drawText(QRect(152, 100, 270, 44), Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap,
                   QStringLiteral("Продажби, доставки, каса и банка\nверсия ") + QCoreApplication::applicationVersion());
  painter.setPen(palette().color(QPalette::Disabled, QPalette::WindowText));
  painter.drawText(QRect(32, 172, width() - 64, 24), Qt::AlignLeft | Qt::AlignVCenter, stage_);
}

}  // namespace kalvor
