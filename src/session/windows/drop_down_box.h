// A drop-down that is told before its list opens, so that it can be filled then.
#pragma once

#include <QComboBox>
#include <functional>

namespace kalvor {

class DropDownBox : public QComboBox {
 public:
  using QComboBox::QComboBox;

  std::function<void()> aboutToDrop;

  void showPopup() override
  {
    if (aboutToDrop)
      aboutToDrop();
    QComboBox::showPopup();
  }
};

}  // namespace kalvor
