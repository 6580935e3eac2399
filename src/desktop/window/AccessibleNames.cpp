// What a screen reader finds on the window's controls: the names (a table of
// the controls that need words of their own, rules for the families of
// buttons, the words on screen for the rest), descriptions, label relations,
// and focus that is announced before anything else about a field.
#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAccessible>
#include <QAccessibleWidget>
#include <QApplication>
#include <QComboBox>
#include <QCoreApplication>
#include <QEvent>
#include <QFocusEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QScrollArea>
#include <QStackedWidget>
#include <QTabBar>
#include <QTabWidget>
#include <cctype>
#include <map>
#include <set>
#include <string>

#include "desktop/window/Binder.h"
#include "menu/MenuTable.h"

namespace tolvane::desktop {

namespace {

QString q(const std::string& s) { return QString::fromStdString(s); }

// "scopeSpanPopUpButton" -> "Scope span": the fallback name of a control
// nobody named explicitly.
QString fromOutlet(const std::string& outlet) {
  std::string base = outlet;
  for (const char* suffix : {"PopUpButton", "PopupButton", "Button", "PopUp", "TextField", "Field", "Slider"}) {
    const std::string s(suffix);
    if (base.size() > s.size() && base.compare(base.size() - s.size(), s.size(), s) == 0) {
      base.erase(base.size() - s.size());
      break;
    }
  }
  std::string out;
  for (std::size_t i = 0; i < base.size(); ++i) {
    const char ch = base[i];
    if (i > 0 && std::isupper(static_cast<unsigned char>(ch)) && !std::isupper(static_cast<unsigned char>(base[i - 1])))
      out += ' ';
    out += out.empty() ? static_cast<char>(std::toupper(static_cast<unsigned char>(ch)))
                       : static_cast<char>(std::tolower(static_cast<unsigned char>(ch)));
  }
  return q(out);
}

}  // namespace

QString accessibleNameFor(const ui::Control& c) {
  static const std::map<std::string, const char*> names = {
      {"mainTab", "Main sections"},
      {"settingsTab", "Radio settings pages"},
      {"catBox", "Radio link"},
      {"PortPopUpButton", "Serial port"},
      {"BaudPopUpButton", "Baud rate"},
      {"openCloseButton", "Connect"},
      {"readMemoriesButton", "Read memories"},
      {"sendTextField", "Raw command"},
      {"sendButton", "Send raw command"},
      {"lineEndingPopUpButton", "Line ending"},
      {"lineEndingCheckBox", "Add line ending"},
      {"receivedDataTextView", "Received data"},
      {"tlFreqAButton", "VFO A"},
      {"tlFreqBButton", "VFO B"},
      {"tlMemAButton", "Memory A"},
      {"tlMemBButton", "Memory B"},
      {"swapAButton", "Swap VFOs, then show A"},
      {"swapBButton", "Swap VFOs, then show B"},
      {"vfoMemoryButton", "VFO or memory"},
      {"freqTextField", "Frequency in megahertz"},
      {"tuneButton", "Tune to frequency"},
      {"callTextField", "Call sign"},
      {"saveCallButton", "Save call sign"},
      {"licenseClassButton", "Licence class for the frequency"},
      {"sMeter", "S-meter"},
      {"modesPopUpButton", "Mode"},
      {"memPopUpButton", "Memory channel"},
      {"breakInButton", "Break-in"},
      {"nrButton", "Noise reduction"},
      {"nbButton", "Noise blanker"},
      {"dnfButton", "Notch filter, automatic"},
      {"bkinButton", "Break-in, full"},
      {"notchButton", "Notch"},
      {"contButton", "Contour"},
      {"heldButton", "Held"},
      {"markerButton", "Marker"},
      {"muteButton", "Mute"},
      {"bkinOffButton", "Break-in off"},
      {"afGainSlider", "AF gain"},
      {"rfGainSlider", "RF gain"},
      {"ampPopUpButton", "Pre-amplifier"},
      {"NBPopupButton", "Noise blanker level"},
      {"DNRPopupButton", "Noise reduction level"},
      {"AGCPopUpButton", "AGC"},
      {"ATTPopUpButton", "Attenuator"},
      {"RFILPopUpButton", "Roofing filter"},
      {"smeterPopUpButton", "Meter display"},
      {"MPVDButton", "Dial function"},
      {"FuncKnobButton", "Function knob"},
      {"colorPopUpButton", "Scope colour"},
      {"spectrumModePopUpButton", "Scope mode"},
      {"scopeSpanPopUpButton", "Scope span"},
      {"scopeSpeedPopUpButton", "Scope speed"},
      {"scopeLevelPopUpButton", "Scope level"},
      {"scopeMarkerPopUpButton", "Scope marker"},
      {"APOPopUpButton", "Automatic power off"},
      {"powerPopUpButton", "Transmit power"},
      {"macroPopUpButton", "Macro"},
      {"textMemoryField", "Message text"},
      {"sendTextMemoryButton", "Send message text"},
      {"clearTextMemoryButton", "Clear message text"},
      {"sentTextMemoryField", "Sent messages"},
      {"powerOnButton", "Power on"},
      {"powerOffButton", "Power off"},
      {"tunePowerButton", "Tune power"},
      {"fullPowerButton", "Full power"},
      {"tunerButton", "Antenna tuner"},
      {"stepUpSmallButton", "Step up 25"},
      {"stepDownSmallButton", "Step down 25"},
      {"stepUpLargeButton", "Step up 110"},
      {"stepDownLargeButton", "Step down 110"},
      {"quickMemoryInButton", "Quick memory store"},
      {"quickMemoryRecallButton", "Quick memory recall"},
      {"makerPageButton", "Open the manual"},
      {"bandConditionsRefreshButton", "Refresh band conditions"},
      {"memoriesTable", "Memory channels"},
      {"potaTable", "POTA spots"},
      {"potaRefreshButton", "Refresh POTA spots"},
      {"sotaTable", "SOTA spots"},
      {"sotaRefreshButton", "Refresh SOTA spots"},
      {"netLoggerTable", "NetLogger nets"},
      {"netLoggerRefreshButton", "Refresh NetLogger nets"},
      {"netsTable", "Nets"},
      {"netsRefreshButton", "Refresh nets"},
      {"mwTable", "MW stations"},
  };
  const std::string& o = c.outlet();
  if (auto it = names.find(o); it != names.end()) return QString::fromUtf8(it->second);

  // Band buttons: "m20Button" -> "Band 20 m"; GEN and MW by name.
  if (o.size() > 7 && o[0] == 'm' && o.compare(o.size() - 6, 6, "Button") == 0 &&
      std::isdigit(static_cast<unsigned char>(o[1])))
    return QStringLiteral("Band %1 m").arg(q(o.substr(1, o.size() - 7)));
  if (o == "mgenButton") return QStringLiteral("Band general coverage");
  if (o == "mmwButton") return QStringLiteral("Band medium wave");
  // A mode button says the mode it shows ("USB"); its box says "Mode".
  if (c.kind() == ui::Kind::Button && c.tag() >= 200 && c.tag() <= 215) return q(c.title());
  if (o.rfind("scopeColor", 0) == 0 && c.kind() == ui::Kind::Button)
    return QStringLiteral("Scope colour ") + q(c.title());
  if (o.rfind("textMemory", 0) == 0 && c.kind() == ui::Kind::Button)
    return QStringLiteral("Message ") + q(o.substr(10, o.size() - 16));
  // The message memories: "CW memory 3", "RTTY memory text", "Store PSK memory".
  for (const auto& [prefix, name] :
       {std::pair{"cwMemory", "CW"}, std::pair{"rttyMemory", "RTTY"}, std::pair{"pskMemory", "PSK"}}) {
    const std::string p(prefix);
    if (o.rfind(p, 0) != 0) continue;
    const std::string rest = o.substr(p.size());
    if (rest == "Field") return QStringLiteral("%1 memory text").arg(QLatin1String(name));
    if (rest == "PopUpButton") return QStringLiteral("Store %1 memory").arg(QLatin1String(name));
    if (rest.size() == 7 && rest.compare(1, 6, "Button") == 0)
      return QStringLiteral("%1 memory %2").arg(QLatin1String(name), QChar(rest[0]));
  }
  if (o == "readMessagesButton") return QStringLiteral("Read messages from radio");
  // Menu items of the radio: their label, "Menu GG-SS-II" by default.
  if (const menu::MenuItem* item = menu::menuItemWithTag(c.tag()); item && o.rfind("menu", 0) == 0)
    return q(item->label);
  if (o.rfind("menu", 0) == 0 && c.tag() >= 2000000 && c.tag() < 3000000) {
    const int t = c.tag() - 2000000;
    return QStringLiteral("Menu %1-%2-%3")
        .arg(t / 10000, 2, 10, QChar('0'))
        .arg(t / 100 % 100, 2, 10, QChar('0'))
        .arg(t % 100, 2, 10, QChar('0'));
  }
  // The filter bar above a web list: the words of its labels.
  for (const auto& [suffix, name] :
       {std::pair{"BandFilter", "Band filter"}, std::pair{"ModeFilter", "Mode filter"},
        std::pair{"RefreshEvery", "Refresh every"}, std::pair{"HideWorkedCheckBox", "Hide worked"}}) {
    const std::string s(suffix);
    if (o.size() > s.size() && o.compare(o.size() - s.size(), s.size(), s) == 0) return QString::fromUtf8(name);
  }
  // Anything else is called what it shows: a button its title, a table the
  // title of its page. Fields and pop-ups have no words of their own: the
  // name made here is also the text of the label the window puts beside them.
  if ((c.kind() == ui::Kind::MenuItem || c.kind() == ui::Kind::Button) && !c.title().empty()) return q(c.title());
  if (c.kind() == ui::Kind::Table && c.tabView() && c.page() >= 0 &&
      c.page() < static_cast<int>(c.tabView()->entries().size()))
    return q(c.tabView()->entries()[static_cast<std::size_t>(c.page())].title);
  return fromOutlet(o);
}

void presentAccessibly(const ui::Control& c, QWidget* w) {
  const QString name = accessibleNameFor(c);
  switch (c.kind()) {
    case ui::Kind::Box:
    case ui::Kind::Label:
      // A box is called by its title and a status line by its text, both
      // as they change; an explicit name would hide them.
      return;
    case ui::Kind::Button:
      if (c.displayOnly()) {
        // An indicator's words ("General CW") are what it says; what it
        // indicates is its description.
        w->setAccessibleDescription(name);
        return;
      }
      // A lit-or-dark button (band, mode, receiver) keeps the toolkit's
      // check-box role: the toolkit has no toggle-button role to give, and
      // screen readers say a push button's name without its state, while a
      // check box is said with "checked" or "not checked".
      break;
    default:
      break;
  }
  w->setAccessibleName(name);
  // The tab bar is what takes the focus: it says which set of pages it turns.
  if (auto* tabs = qobject_cast<QTabWidget*>(w)) tabs->tabBar()->setAccessibleName(name);
  // A menu item's field says its item code after its label and value.
  if (const menu::MenuItem* item = menu::menuItemWithTag(c.tag()); item && c.outlet().rfind("menu", 0) == 0) {
    const std::string& code = item->code;
    w->setAccessibleDescription(
        QStringLiteral("Menu item %1-%2-%3").arg(q(code.substr(0, 2)), q(code.substr(2, 2)), q(code.substr(4, 2))));
  }
}

QLabel* labelFor(QWidget* field, const QString& text) {
  // The label must stand in the same parent as its field: a screen reader
  // finds a field's label among the field's siblings.
  auto* label = new QLabel(text);
  label->setBuddy(field);
  return label;
}

void setCaption(QLabel* display, const QString& caption) {
  display->setProperty("caption", caption);
  display->setAccessibleName(display->text().isEmpty() ? caption : caption + QStringLiteral(": ") + display->text());
}

void quietPanes(QWidget* root) {
  // A scrolling pane holds controls that take the focus themselves; the
  // pane itself has no name and nothing to say, so it is no focus stop.
  for (auto* pane : root->findChildren<QAbstractScrollArea*>()) {
    if (qobject_cast<QAbstractItemView*>(pane) || pane->inherits("QPlainTextEdit") || pane->inherits("QTextEdit"))
      continue;
    pane->setFocusPolicy(Qt::NoFocus);
  }
  nameTabStacks(root);
}

void nameTabStacks(QWidget* root) {
  // The stack of pages inside a set of tabs is a pane a screen reader names
  // when the focus moves into a page: called by the page it shows
  // ("Operate"), never a bare "layered pane".
  QList<QTabWidget*> sets = root->findChildren<QTabWidget*>();
  if (auto* self = qobject_cast<QTabWidget*>(root)) sets.append(self);
  for (QTabWidget* tabs : sets) {
    auto* stack = tabs->findChild<QStackedWidget*>(QString(), Qt::FindDirectChildrenOnly);
    if (!stack || stack->property("namedByPage").toBool()) continue;
    stack->setProperty("namedByPage", true);
    const auto follow = [tabs, stack] {
      stack->setAccessibleName(tabs->tabText(tabs->currentIndex()).remove(QLatin1Char('&')));
    };
    QObject::connect(tabs, &QTabWidget::currentChanged, stack, follow);
    follow();
  }
}

namespace {

// A pop-up as a screen reader reads it: named by its label, with its current
// entry as its text and value, so "Meter display: COMP, combo box" is said on
// focus and the new entry when it changes. (The toolkit's own pop-up gives
// its entry as its name and no text, so a screen reader said the label and
// the role only.) Press opens the list.
class PopUpAccessible : public QAccessibleWidget, public QAccessibleTextInterface {
 public:
  explicit PopUpAccessible(QComboBox* box) : QAccessibleWidget(box, QAccessible::ComboBox) {}

  void* interface_cast(QAccessible::InterfaceType t) override {
    if (t == QAccessible::TextInterface) return static_cast<QAccessibleTextInterface*>(this);
    return QAccessibleWidget::interface_cast(t);
  }
  QString text(QAccessible::Text t) const override {
    if (t == QAccessible::Value) return entry();
    return QAccessibleWidget::text(t);
  }
  int childCount() const override { return 0; }
  QAccessibleInterface* child(int) const override { return nullptr; }
  int indexOfChild(const QAccessibleInterface*) const override { return -1; }

  QStringList actionNames() const override { return QStringList{pressAction()} + QAccessibleWidget::actionNames(); }
  void doAction(const QString& name) override {
    if (name == pressAction() || name == showMenuAction())
      box()->showPopup();
    else
      QAccessibleWidget::doAction(name);
  }

  // The text interface: the current entry, read only.
  void selection(int, int* start, int* end) const override { *start = *end = 0; }
  int selectionCount() const override { return 0; }
  void addSelection(int, int) override {}
  void removeSelection(int) override {}
  void setSelection(int, int, int) override {}
  int cursorPosition() const override { return 0; }
  void setCursorPosition(int) override {}
  QString text(int start, int end) const override { return entry().mid(start, end < 0 ? -1 : end - start); }
  int characterCount() const override { return static_cast<int>(entry().size()); }
  QRect characterRect(int) const override { return {}; }
  int offsetAtPoint(const QPoint&) const override { return -1; }
  void scrollToSubstring(int, int) override {}
  QString attributes(int, int* start, int* end) const override {
    *start = *end = 0;
    return {};
  }

 private:
  QComboBox* box() const { return static_cast<QComboBox*>(widget()); }
  QString entry() const { return box()->currentText(); }
};

QAccessibleInterface* popUpFactory(const QString& className, QObject* object) {
  if (className != QLatin1String("QComboBox")) return nullptr;
  auto* box = qobject_cast<QComboBox*>(object);
  return box && !box->isEditable() ? new PopUpAccessible(box) : nullptr;
}

// A field's focus reaches assistive technologies before anything else about
// the field. A line edit moves or selects its caret when it takes the focus,
// and the toolkit reports the focus only after that: a screen reader that
// hears of the caret first takes the field as already announced and says
// nothing when the focus follows. So while assistive technologies listen, a
// field's focus-in is handled one turn of the event loop later, after the
// focus has been reported.
class FocusFirst : public QObject {
 public:
  using QObject::QObject;
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() != QEvent::FocusIn) return QObject::eventFilter(watched, event);
    auto* field = qobject_cast<QLineEdit*>(watched);
    if (!field) return false;
    if (auto it = later_.find(field); it != later_.end()) {
      later_.erase(it);
      return !field->hasFocus();  // the focus moved on meanwhile: nothing to do
    }
    if (!QAccessible::isActive()) return false;
    later_.insert(field);
    QCoreApplication::postEvent(field, new QFocusEvent(QEvent::FocusIn, static_cast<QFocusEvent*>(event)->reason()));
    return true;
  }

 private:
  std::set<QObject*> later_;  // fields whose focus-in waits in the queue
};

}  // namespace

void announceFocusFirst() {
  static QPointer<FocusFirst> installed;
  if (installed || !qApp) return;
  installed = new FocusFirst(qApp);
  qApp->installEventFilter(installed);
  QAccessible::installFactory(popUpFactory);
}

}  // namespace tolvane::desktop
