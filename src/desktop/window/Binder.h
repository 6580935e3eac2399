// The one binder between the controls model and the Qt widgets. It makes one
// widget (or menu action) per model control, repaints the widget from the
// control's observer, and turns the operator's gestures into the control's
// click(), choose(), slide() and type(). A change made by the program repaints
// the widget and never fires an action: only user-only signals are used
// (activated, sliderReleased, actionTriggered, toggled, textChanged, triggered) and a
// guard drops the signals that the repaint itself raises.
#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <QWidget>
#include <functional>
#include <map>
#include <string>

#include "app/WindowLayout.h"
#include "ui/Controls.h"

class QAction;
class QLabel;
class QWidget;

namespace tolvane::desktop {

// The stable name a screen reader announces for a control ("VFO A",
// "Band 20 m", "Mode", "AF gain"); also the text of its label in the window.
QString accessibleNameFor(const ui::Control& control);
// Gives a control's widget what assistive technologies read from it: its
// name (none for boxes and status lines, which are read by their title and
// text), and its description (an indicator's meaning, a menu item's code).
void presentAccessibly(const ui::Control& control, QWidget* widget);
// The label a field stands beside, "Call sign:"; the field is labelled by it
// when both are laid out in the same parent.
QLabel* labelFor(QWidget* field, const QString& text);
// A display read with a caption ("Solar flux: 150"): its accessible name is
// the caption and its current text.
void setCaption(QLabel* display, const QString& caption);
// Takes the scrolling panes under root out of the focus chain, and names the
// page stacks of the tab sets under it.
void quietPanes(QWidget* root);
// Names the page stack of each set of tabs under (or at) root by the page it
// shows, as that changes.
void nameTabStacks(QWidget* root);
// Makes every field announce its focus before its caret, and every pop-up its
// label and current entry (installed once).
void announceFocusFirst();

class Binder : public QObject {
  Q_OBJECT
 public:
  explicit Binder(ui::Window& model, QObject* parent = nullptr);
  ~Binder() override;

  // The widget of a control (nullptr for menu items and unknown outlets).
  // Widgets are created without a parent; the window lays them out and owns them.
  QWidget* widget(const std::string& outlet) const;
  template <class W>
  W* widgetAs(const std::string& outlet) const {
    return qobject_cast<W*>(widget(outlet));
  }
  // Whether the widget of a control exists yet. Controls on the pages of a
  // nested tab view get their widget when widget() first asks for it.
  bool hasWidget(const std::string& outlet) const;
  // The page of the main tab view shown at start; its widgets are made at once.
  static constexpr int kStartPage = kPageConnection;
  static bool deferred(const ui::Control& control);
  // The menu action of a menu-item control.
  QAction* action(const std::string& outlet) const;
  const ui::Window& model() const { return model_; }
  ui::Window& model() { return model_; }

  // Paints every widget from its control again (after the window is laid out).
  void repaintAll();
  // Called after every repaint with the control, for tracing and measurement.
  void setRepaintHook(std::function<void(const ui::Control&)> hook) { hook_ = std::move(hook); }

  // Colours of the bezels, chosen to read with white text on light and dark palettes.
  static QString bezelColour(ui::Bezel bezel);

 private:
  void create(ui::Control& c);
  QWidget* makeWidget(ui::Control& c);
  QWidget* existing(const std::string& outlet) const;
  void repaint(const ui::Control& c);
  void paintWidget(const ui::Control& c, QWidget* w);

  ui::Window& model_;
  std::map<std::string, QPointer<QWidget>> widgets_;
  std::map<std::string, QAction*> actions_;
  std::function<void(const ui::Control&)> hook_;
  bool painting_ = false;  // set while the program's change is applied to a widget
};

}  // namespace tolvane::desktop
