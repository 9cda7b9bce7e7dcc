// How a client dataset tells its controls, and how they attach.
#include <algorithm>

#include "data/client_dataset_p.h"

namespace kalvor {

DataLink::~DataLink()
{
  setDataSet(nullptr);
}

void DataLink::setDataSet(TClientDataSet* dataSet)
{
  if (dataSet == dataSet_)
    return;
  if (dataSet_)
    std::erase(dataSet_->d->links, this);
  dataSet_ = dataSet;
  if (dataSet_)
    dataSet_->d->links.push_back(this);
}

void TClientDataSet::Private::sendToLinks(DataEvent event, TField* field)
{
  const std::vector<DataLink*> listeners = links;
  for (DataLink* link : listeners)
    if (std::ranges::find(links, link) != links.end())
      link->dataEvent(event, field);
}

void TClientDataSet::Private::notify(DataEvent event, TField* field)
{
  if (disabled == 0) {
    sendToLinks(event, field);
    return;
  }
  switch (event) {
    case DataEvent::ActiveChange: missedActive = true; break;
    case DataEvent::LayoutChange: missedLayout = true; break;
    case DataEvent::StateChange: missedState = true; break;
    case DataEvent::UpdateRecord:
    case DataEvent::FocusControl: return;
    default: break;
  }
  missedData = true;
}

void TClientDataSet::DisableControls()
{
  ++d->disabled;
}

void TClientDataSet::EnableControls()
{
  if (d->disabled == 0 || --d->disabled > 0 || !d->missedData)
    return;
  const bool active = std::exchange(d->missedActive, false);
  const bool layout = std::exchange(d->missedLayout, false);
  const bool state = std::exchange(d->missedState, false);
  d->missedData = false;
  if (active)
    d->sendToLinks(DataEvent::ActiveChange, nullptr);
  if (layout)
    d->sendToLinks(DataEvent::LayoutChange, nullptr);
  if (state)
    d->sendToLinks(DataEvent::StateChange, nullptr);
  d->sendToLinks(DataEvent::DataSetChange, nullptr);
}

bool TClientDataSet::ControlsDisabled() const
{
  return d->disabled > 0;
}

void TClientDataSet::UpdateLayout()
{
  d->notify(DataEvent::LayoutChange);
}

}  // namespace kalvor
