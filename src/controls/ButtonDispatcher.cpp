// The button dispatcher: every tagged push button of the window comes here.
// The sender's tag alone picks the case; each case fills `cmd`, changes the
// sender's look and may speak, then the common tail transmits the buffer.
#include "app/SerialPortDemoController.h"
#include "app/StartUp.h"
#include "app/WindowLayout.h"
#include "cat/Framing.h"
#include "controls/Commands.h"
#include "controls/Entry.h"
#include "menu/ReadLists.h"
#include "radio/RadioText.h"

namespace tolvane {

using namespace std::chrono_literals;

namespace {

constexpr const char* kSideButtons[] = {"tlFreqAButton", "tlFreqBButton", "tlMemAButton", "tlMemBButton"};

const BandButton* bandButtonWithTag(int tag) {
  for (const BandButton& b : kBandButtons)
    if (b.tag == tag) return &b;
  return nullptr;
}

// Paints `outlet` blue and the other three VFO and memory buttons plain.
void highlightSide(ui::Window& window, const char* outlet) {
  for (const char* b : kSideButtons)
    window.at(b).setBezel(std::string_view(b) == outlet ? ui::Bezel::Blue : ui::Bezel::None);
}

// The common tail: "BI1;" appended (unless the buffer is "BI0;"), then sent.
void sendWithTail(SerialPortDemoController& c) {
  c.cmd = controls::withTail(c.cmd);
  c.transmit(c.cmd);
}

// The radio needs the first wake-up, a quarter second, a second one and
// twelve seconds to come up before it answers the poll. The pauses run on the
// event loop so the window stays responsive; the tail then goes out with the
// buffer as this press left it (after Power off that is its "PS0;", resent as
// it stands).
// Buttons pressed during the pauses wait, as they would behind a busy window,
// and are handled in order once the tail has gone out.
void powerOn(SerialPortDemoController& c) {
  c.transmit("PS1;PS1;");
  const std::string pressed = c.cmd;
  c.powerOnPause = true;
  platform::Scheduler& scheduler = c.services().scheduler;
  scheduler.after(250ms, [&c, &scheduler, pressed] {
    c.transmit("PS1;");
    scheduler.after(12s, [&c, pressed] {
      c.transmit(c.syncRadioCmd);
      c.cmd = pressed;
      sendWithTail(c);
      c.powerOnPause = false;
      std::vector<ui::Control*> waiting;
      waiting.swap(c.pressesDuringPowerOn);
      for (std::size_t i = 0; i < waiting.size(); ++i) {
        c.go(*waiting[i]);
        // A press that starts another power-on keeps the rest waiting behind it.
        if (c.powerOnPause) {
          c.pressesDuringPowerOn.insert(c.pressesDuringPowerOn.begin(),
                                        waiting.begin() + static_cast<std::ptrdiff_t>(i) + 1, waiting.end());
          break;
        }
      }
    });
  });
}

// VFO A or B (tags 500, 501) or memory A or B (502, 503).
void selectSide(SerialPortDemoController& c, int tag) {
  ui::Window& window = c.window();
  const bool a = tag == 500 || tag == 502;
  std::string& sideMode = a ? c.tlModeA : c.tlModeB;
  const std::string vs = a ? "VS0;" : "VS1;";
  if (tag == 500 || tag == 501) {
    const char* outlet = a ? "tlFreqAButton" : "tlFreqBButton";
    c.tlAorB = a ? "A" : "B";
    window.at("freqTextField").setText(controls::entryTextFromTitle(window.at(outlet).title()));
    c.cmd = sideMode == "memory" ? vs + "VM;ST0;MD0;" : vs + "ST0;MD0;";
    sideMode = "vfo";
    highlightSide(window, outlet);
    c.speak((a ? "VFO eh..." : "VFO bee...") + (a ? c.tlVFOA : c.tlVFOB));
  } else {
    const std::string& channel = a ? c.tlMemChA : c.tlMemChB;
    c.cmd = vs + "MC" + channel + ";NR0;MD0;";
    sideMode = "memory";
    highlightSide(window, a ? "tlMemAButton" : "tlMemBButton");
    const std::int64_t n = cat::isDecimal(channel) && channel.size() <= 9 ? cat::decimalValue(channel) : 1;
    window.at("memPopUpButton").selectIndex(static_cast<int>(n) - 1);
    c.speak((a ? "Memory eh..." : "Memory bee...") + (a ? c.tlMemATag : c.tlMemBTag));
  }
}

}  // namespace

void SerialPortDemoController::go(ui::Control& sender) {
  if (powerOnPause) {
    pressesDuringPowerOn.push_back(&sender);
    return;
  }
  const int tag = sender.tag();

  if (const controls::Toggle* t = controls::toggleFor(tag)) {
    const bool on = tag == t->offTag;
    cmd = on ? t->onCommand : t->offCommand;
    sender.setBezel(on ? ui::Bezel::Blue : ui::Bezel::None);
    sender.setTag(on ? t->offTag + 1000 : t->offTag);
  } else if (const controls::MarkedToggle* m = controls::markedToggleFor(tag)) {
    cmd = m->command;
    sender.setBezel(m->marked ? ui::Bezel::Red : ui::Bezel::None);
    sender.setTitle(m->title);
    sender.setTag(m->nextTag);
  } else if (tag == 610) {
    tlMuted = 1;
    cmd = "AG0000;";
    sender.setTag(1610);
    sender.setBezel(ui::Bezel::Red);
    sender.setImage("NSImageNameTouchBarAudioOutputMuteTemplate");
  } else if (tag == 1610) {
    tlMuted = 0;
    cmd = "AG0" + tlAFLevel + ";";
    sender.setTag(610);
    sender.setBezel(ui::Bezel::None);
    sender.setImage("NSImageNameTouchBarAudioOutputVolumeHighTemplate");
  } else if (tag == 300) {
    powerOn(*this);
    return;  // the tail follows the poll string
  } else if (const char* command = controls::oneShotCommand(tag)) {
    if (tag == 275 || tag == 276) clearHighlights("band");
    if (tag == 301) window_.at("sMeter").setValue(0);
    if (tag == 380) speak("Tune power");
    if (tag == 381) speak("Full power");
    if (tag == 606) window_.at("sentTextMemoryField").setText("");
    cmd = command;
  } else if (tag >= 500 && tag <= 503) {
    selectSide(*this, tag);
  } else if (tag >= 601 && tag <= 605) {
    if (auto command = controls::messageCommand(tlMode, tag - 600)) cmd = *command;
    ui::Control& log = window_.at("sentTextMemoryField");
    log.setText(sender.title() + "\n" + log.text());
  } else if (tag >= 6 && tag <= 162) {
    const ui::Bezel before = sender.bezel();
    clearHighlights("band");
    sender.setBezel(controls::nextBandColour(before));
    if (const BandButton* b = bandButtonWithTag(tag)) {
      cmd = b->command;
      speak(b->spoken);
    }
  } else if (const char* mode = controls::modeButtonCommand(tag)) {
    sender.setBezel(ui::Bezel::Blue);
    cmd = mode;
  } else if (tag == 805) {
    // The program's own manual, installed with it; nothing to open when the
    // program could not find it.
    if (!manualAddress_.empty()) sv_.browser.openUrl(manualAddress_);
  } else if (tag >= controls::kRefreshBandConditions && tag <= controls::kRefreshNets) {
    // "Funk" plays when the refreshed list is shown, after its wait.
    auto funk = [this] { playSound("Funk"); };
    switch (tag) {
      case controls::kRefreshBandConditions:
        refreshBandConditions(funk);
        break;
      case controls::kRefreshPota:
        refreshPota(funk);
        break;
      case controls::kRefreshNetLogger:
        refreshNetLogger(funk);
        break;
      case controls::kRefreshSota:
        refreshSota(funk);
        break;
      default:
        refreshNets(funk);
        break;
    }
  } else if (const int group = menu::groupOfReadButton(tag)) {
    std::vector<std::string> lists = menu::readLists(group);
    for (std::size_t i = 0; i + 1 < lists.size(); ++i) transmit(lists[i]);
    if (!lists.empty()) cmd = lists.back();
  }

  sendWithTail(*this);
}

}  // namespace tolvane
