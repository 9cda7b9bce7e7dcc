#include "edit_grids.h"

namespace kalvor {

namespace {

constexpr int itemList = 150;
constexpr int priceGroupList = 182;

}  // namespace

TfEdItemPrices::TfEdItemPrices(QWidget* parent) : TfBaseEditGridFilter(parent)
{
  addFilterDropDown(QStringLiteral("За"), QStringLiteral("Side"));
  addFilterLookup(QStringLiteral("Артикул"), QStringLiteral("Item_Id"), itemList, QStringLiteral("Name"));
  addFilterLookup(QStringLiteral("Ценова група"), QStringLiteral("PriceGroup_Id"), priceGroupList, QStringLiteral("Name"));
  addFilterEdit(QStringLiteral("Наименование"), QStringLiteral("N_Item_Name"));
  addFilterEdit(QStringLiteral("Мярка"), QStringLiteral("N_Measure_Code"));
  resize(1080, 520);
}

FilterArray TfEdItemPrices::BuildTabFilter()
{
  return controlFilter();
}

}  // namespace kalvor
