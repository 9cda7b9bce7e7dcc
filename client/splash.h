// The picture shown while the client connects and logs in.
#pragma once

#include <QWidget>

namespace kalvor {

class Splash : public QWidget {
  Q_OBJECT
 public:
  explicit Splash(QWidget* parent = nullptr);
  void setStage(const QString& text);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QString stage_;
};

// The program's mark, drawn so that it is sharp at any size.
QPixmap programMark(int size, qreal ratio);

}  // namespace kalvor
