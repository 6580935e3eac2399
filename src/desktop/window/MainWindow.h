// The main window: the widgets the binder made, arranged in grouped layouts on
// the pages of the main tabs, plus the Preferences menu. It holds no program
// rule; every action goes through the controls model.
#pragma once

#include <QMainWindow>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "desktop/window/Binder.h"

class QBoxLayout;
class QGridLayout;
class QFormLayout;
class QGroupBox;
class QTabWidget;

namespace tolvane::desktop {

// Runs a page's build step once, when the page is first shown or its tab is
// first chosen (a window not on screen shows nothing, yet its chosen page is
// built, so what the program switches to exists).
class FirstShow : public QObject {
  Q_OBJECT
 public:
  FirstShow(QTabWidget* tabs, int index, std::function<void()> build);
  void fire();
  bool pending() const { return static_cast<bool>(build_); }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  std::function<void()> build_;
};

// The text of Help > About Tolvane: the version and the licence.
QString aboutText();

class MainWindow : public QMainWindow {
  Q_OBJECT
 public:
  MainWindow(Binder& binder, QWidget* parent = nullptr);

  // Widgets in keyboard focus order, page by page (for tests and diagnostics).
  const std::vector<QWidget*>& focusOrder() const { return focusOrder_; }
  // Outlets of the model that have no place in the window (a layout fault).
  std::vector<std::string> unplacedOutlets() const;
  // Adds a section below the radio link on the Connection page.
  void addConnectionSection(QWidget* section);
  // Puts the Log page's content on its tab (once; the window owns it).
  void placeLogPage(QWidget* content);
  bool hasLogPage() const { return logPlaced_; }
  // Shows the Log page.
  void showLogPage();

 signals:
  // Emitted once, when the window is first painted on screen.
  void firstPainted();
  // Help > Manual (F1).
  void manualRequested();
  // Preferences > Preferences… (Ctrl+,).
  void preferencesRequested();
  // The Log page is shown for the first time: its content is wanted.
  void logPageWanted();
  // Log > Log Contact… (Ctrl+L), Export ADIF…, Import ADIF….
  void logContactRequested();
  void exportAdifRequested();
  void importAdifRequested();

 protected:
  bool event(QEvent* e) override;

 private:
  QWidget* take(const std::string& outlet);
  QWidget* labelled(const std::string& outlet);
  void addRow(QFormLayout* form, const std::string& outlet);
  void addButtons(QGridLayout* grid, const std::vector<std::string>& outlets, int columns, int firstRow = 0);
  QGroupBox* group(const QString& title);
  void placeRest(QWidget* page, const std::string& tabOutlet, int pageIndex, QBoxLayout* into);

  static QWidget* scrollingContent(QWidget* page);
  static std::vector<std::string> range(const std::string& prefix, int from, int to, const std::string& suffix);
  void buildPage(int index);
  void buildMenus();
  void showAbout();
  void focusFrequencyField();
  void buildConnectionPage(QWidget* page);
  void buildOperatePage(QWidget* page);
  void buildMessagesPage(QWidget* page);
  void buildSettingsPage(QWidget* page);
  void buildMenuPage(QWidget* page, int index);
  void buildBandConditions(QBoxLayout* into);
  void buildGenericPage(QWidget* page, const std::string& tabOutlet, int pageIndex);
  void fixFocusOrder();

  Binder& binder_;
  // The page being laid out: a control named for a group is taken only when
  // the model puts it on this page, so a control moved elsewhere still shows.
  std::string pageTab_ = "mainTab";
  int pageIndex_ = 0;
  std::set<std::string> placed_;
  std::vector<QWidget*> focusOrder_;
  bool painted_ = false;
  QBoxLayout* connectionLayout_ = nullptr;
  bool logPlaced_ = false;
};

}  // namespace tolvane::desktop
