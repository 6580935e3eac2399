// Opening the longest value pop-up of the settings pages: 9999 values made by
// a rule (argument 0) or held as a list (argument 1), shown by a combo box
// that reads them from the control one at a time. Each iteration opens the
// list and closes it again, as a click does.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QComboBox>
#include <string>

#include "desktop/window/Binder.h"

using namespace tolvane;

namespace {

void BM_OpenTenThousandValuePopUp(benchmark::State& state) {
  ui::Window model;
  ui::Control& hang = model.add("menu20205PopUp", ui::Kind::PopUp, 2020205);
  const auto value = [](std::size_t i) {
    std::string t = std::to_string(i + 1);
    t.insert(0, 4 - t.size(), '0');
    return ui::Entry{t, 0, i == 0 ? ui::kStatusPartiallyAvailable : "", false};
  };
  hang.setEntries(9999, value);
  if (state.range(0) == 1) hang.setEntries(std::vector<ui::Entry>(hang.entries()));
  hang.selectIndex(4321);
  desktop::Binder binder(model);
  auto* box = binder.widgetAs<QComboBox>("menu20205PopUp");
  box->show();
  QApplication::processEvents();
  for (auto _ : state) {
    box->showPopup();
    QApplication::processEvents();
    box->hidePopup();
    QApplication::processEvents();
  }
  state.counters["entries"] = box->count();
}
BENCHMARK(BM_OpenTenThousandValuePopUp)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

}  // namespace
