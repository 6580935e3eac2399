// Band conditions: the solar data feed fetched with a two-second deadline and
// shown in the box on the operating panel.
#include <chrono>

#include "app/SerialPortDemoController.h"
#include "conditions/BandConditions.h"

namespace tolvane {

using namespace std::chrono_literals;

void SerialPortDemoController::refreshBandConditions(std::function<void()> whenShown) {
  platform::HttpRequest request;
  request.timeout = 60s;
  fetchWebList(
      conditionsFetch_, "hamqsl", "/solarxml.php", request,
      [this](const platform::HttpResponse& r, bool late) {
        if (!late) conditionsFetch_.slot = r.body;  // a late feed is not shown
      },
      [this, whenShown = std::move(whenShown)] {
        const conditions::FeedValues values = conditions::readSolarFeed(conditionsFetch_.slot);
        if (ui::Control* box = control("bandBox")) box->setTitle("Band Conditions - " + values[0]);
        for (std::size_t i = 0; i < conditions::kFeedLines.size(); ++i) {
          const std::string& value = values[i + 1];
          const std::string outlet = conditions::kFeedLines[i].outlet;
          conditions::Shown shown;
          if (outlet == "solarFluxField")
            shown = conditions::solarFluxField(value);
          else if (outlet == "magicBandField")
            shown = conditions::magicBandField(value);
          else if (outlet == "signalNoiseField")
            shown = conditions::signalNoiseField(value);
          else
            shown = conditions::conditionField(value);
          if (ui::Control* field = control(outlet)) {
            field->setTitle(shown.text);
            field->setBezel(shown.colour);
          }
        }
        if (whenShown) whenShown();
      });
}

}  // namespace tolvane
