#include "forms/filter_panel.h"

#include <algorithm>

#include "forms/form_filters.h"

namespace kalvor {

namespace {

bool isLike(const FilterRow& line)
{
  return line.op.trimmed().compare(QLatin1String("LIKE"), Qt::CaseInsensitive) == 0;
}

QString withoutPattern(QString text)
{
  text = text.trimmed();
  if (text.startsWith(u'%')) {
    text.remove(0, 1);
  }
  if (text.endsWith(u'%')) {
    text.chop(1);
  }
  const bool quoted = text.size() > 1 && text.front() == text.back() && (text.front() == u'\'' || text.front() == u'"');
  return quoted ? text.mid(1, text.size() - 2) : text;
}

bool sameOrigin(const QString& origin, const QString& field)
{
  return !origin.isEmpty() && origin.compare(field, Qt::CaseInsensitive) == 0;
}

void showLines(const TFilterControlArray& controls, const QStringList& origins, const FilterArray& lines)
{
  for (const FilterRow& line : lines) {
    for (qsizetype i = 0; i < controls.size(); ++i) {
      if (sameOrigin(origins.value(i), line.field)) {
        PanelControl* control = controls[i].Control;
        control->setValue(shownPanelValue(control->kind(), line));
      }
    }
  }
}

}  // namespace

PanelControl::~PanelControl() = default;

Variant emptyPanelValue(FilterControlKind kind)
{
  return kind == FilterControlKind::FlatDropDown ? Variant(-1) : Variant(QString());
}

Variant shownPanelValue(FilterControlKind kind, const FilterRow& line)
{
  const QString text = isLike(line) ? withoutPattern(variantText(line.value)) : variantText(line.value);
  if (kind != FilterControlKind::FlatDropDown) {
    return text;
  }
  bool number = false;
  const int position = text.toInt(&number);
  return number ? Variant(position) : emptyPanelValue(kind);
}

const Variant& rememberedPanelValue(const TFilterControl& entry)
{
  return entry.CompareStored ? entry.StoredValue : entry.EnteredValue;
}

// A control that was never entered or stored remembers nothing: that is its empty value.
bool panelValueChanged(const TFilterControl& entry)
{
  const Variant& remembered = rememberedPanelValue(entry);
  const QString before = variantText(isNull(remembered) ? emptyPanelValue(entry.Control->kind()) : remembered);
  return variantText(entry.Control->value()) != before;
}

bool showFiltersInPanel(const TFilterControlArray& controls, const QStringList& origins, const FilterArray& formFilter,
                        const FilterArray& callerFilter)
{
  for (const TFilterControl& entry : controls) {
    entry.Control->setValue(emptyPanelValue(entry.Control->kind()));
  }
  showLines(controls, origins, formFilter);
  showLines(controls, origins, callerFilter);
  return !formFilter.isEmpty();
}

FilterArray panelFilter(const TFilterControlArray& controls, const QStringList& origins)
{
  const QString conjunction = QStringLiteral("AND");
  FilterArray filter;
  for (qsizetype i = 0; i < controls.size(); ++i) {
    const PanelControl& control = *controls[i].Control;
    const QString text = variantText(control.value()).trimmed();
    if (origins.value(i).isEmpty() || text == variantText(emptyPanelValue(control.kind()))) {
      continue;
    }
    const bool pattern = control.kind() == FilterControlKind::FlatEdit;
    filter.append({origins[i], pattern ? QStringLiteral("LIKE") : QStringLiteral("="),
                   pattern ? QStringLiteral("%%1%").arg(text) : text, conjunction, {}});
  }
  if (!filter.isEmpty()) {
    filter.last().conjunction.clear();
  }
  return filter;
}

FilterArray formFilterWithPanel(const FilterArray& formFilter, const QStringList& origins, const FilterArray& panel)
{
  FilterArray others;
  bool bracketsBroken = false;
  for (const FilterRow& line : formFilter) {
    const bool ofPanel = std::any_of(origins.begin(), origins.end(),
                                     [&](const QString& origin) { return sameOrigin(origin, line.field); });
    if (!ofPanel) {
      others.append(line);
    } else {
      bracketsBroken = bracketsBroken || !line.brackets.isEmpty();
    }
  }
  for (FilterRow& line : others) {
    line.brackets = bracketsBroken ? QString() : line.brackets;
  }
  if (panel.isEmpty() && !others.isEmpty()) {
    others.last().conjunction.clear();
  }
  return panel.isEmpty() || others.isEmpty() ? others + panel : mergeFormFilter(others, panel, true);
}

}  // namespace kalvor
