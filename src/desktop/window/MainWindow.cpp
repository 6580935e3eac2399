#include "desktop/window/MainWindow.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QEvent>
#include <QFontDatabase>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QMessageBox>
#include <QScreen>
#include <QScrollArea>
#include <QTabBar>
#include <QTabWidget>
#include <QTimer>
#include <QVBoxLayout>
#include <QWindow>
#include <algorithm>
#include <memory>

#include "app/WindowLayout.h"
#include "menu/MenuTable.h"

namespace tolvane::desktop {

FirstShow::FirstShow(QTabWidget* tabs, int index, std::function<void()> build)
    : QObject(tabs->widget(index)), build_(std::move(build)) {
  parent()->installEventFilter(this);
  connect(tabs, &QTabWidget::currentChanged, this, [this, index](int chosen) {
    if (chosen == index) fire();
  });
}

void FirstShow::fire() {
  if (!build_) return;
  auto build = std::move(build_);
  build_ = nullptr;
  build();
}

bool FirstShow::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::Show) fire();
  return QObject::eventFilter(watched, event);
}

// A page's content scrolls when the window is smaller than the content, so
// nothing is ever clipped or overlapped.
QWidget* MainWindow::scrollingContent(QWidget* page) {
  auto* outer = new QVBoxLayout(page);
  outer->setContentsMargins(0, 0, 0, 0);
  auto* scroll = new QScrollArea;
  scroll->setWidgetResizable(true);
  scroll->setFrameShape(QFrame::NoFrame);
  auto* content = new QWidget;
  scroll->setWidget(content);
  outer->addWidget(scroll);
  return content;
}

std::vector<std::string> MainWindow::range(const std::string& prefix, int from, int to, const std::string& suffix) {
  std::vector<std::string> out;
  for (int i = from; i <= to; ++i) out.push_back(prefix + std::to_string(i) + suffix);
  return out;
}

MainWindow::MainWindow(Binder& binder, QWidget* parent) : QMainWindow(parent), binder_(binder) {
  // The title bar names the chosen port and whether it is connected.
  setWindowTitle(QString::fromStdString(binder_.model().title()));
  binder_.model().setTitleObserver([this](const std::string& title) { setWindowTitle(QString::fromStdString(title)); });
  setMinimumSize(960, 640);
  // Every page fits 1440 x 880; on a smaller screen the window takes the room
  // there is (the pages scroll) instead of running off the screen's edge.
  QSize size(1440, 880);
  if (const QScreen* screen = QGuiApplication::primaryScreen())
    size = size.boundedTo(screen->availableGeometry().size()).expandedTo(minimumSize());
  resize(size);

  auto* tabs = binder_.widgetAs<QTabWidget>("mainTab");
  placed_.insert("mainTab");
  setCentralWidget(tabs);
  tabs->setDocumentMode(true);

  buildMenus();
  // The first frame shows the start page only, so only it is built now. Each
  // other page is built when it is first shown: a program that stays on the
  // start page never holds the others' widgets.
  const ui::Control& main = binder_.model().at("mainTab");
  for (int i = 0; i < static_cast<int>(main.entries().size()); ++i) {
    if (!tabs->widget(i)) continue;
    if (i == Binder::kStartPage)
      buildPage(i);
    else
      new FirstShow(tabs, i, [this, i] { buildPage(i); });
  }
  nameTabStacks(tabs);
  binder_.repaintAll();
}

void MainWindow::buildPage(int index) {
  QWidget* page = binder_.widgetAs<QTabWidget>("mainTab")->widget(index);
  pageTab_ = "mainTab";
  pageIndex_ = index;
  if (index == kPageConnection)
    buildConnectionPage(page);
  else if (index == kPageOperate)
    buildOperatePage(page);
  else if (index == kPageMessages)
    buildMessagesPage(page);
  else if (index == kPageSettings)
    buildSettingsPage(page);
  else if (index == kPageLog)
    emit logPageWanted();  // the log's page and file belong to the log's desk
  else
    buildGenericPage(page, "mainTab", index);
  // Built while it is being shown: what the build put on the page is shown
  // with it, not a turn of the event loop later.
  if (page->isVisible()) {
    for (QWidget* child : page->findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
      if (!child->testAttribute(Qt::WA_WState_ExplicitShowHide)) child->show();
  }
  quietPanes(page);
  fixFocusOrder();
}

bool MainWindow::event(QEvent* e) {
  const bool handled = QMainWindow::event(e);
  // The first paint of the exposed window draws the whole of it, children
  // included, and the backing store is flushed to the screen before the loop
  // takes its next event: that is when the window is first seen.
  if (!painted_ && e->type() == QEvent::Paint && windowHandle() && windowHandle()->isExposed()) {
    painted_ = true;
    QTimer::singleShot(0, this, [this] { emit firstPainted(); });
  }
  return handled;
}

std::vector<std::string> MainWindow::unplacedOutlets() const {
  std::vector<std::string> out;
  for (const auto& c : binder_.model().controls()) {
    if (c->kind() == ui::Kind::MenuItem) continue;
    if (!placed_.count(c->outlet())) out.push_back(c->outlet());
  }
  return out;
}

QWidget* MainWindow::take(const std::string& outlet) {
  // The page is checked first: asking the binder makes a waiting page's widget.
  const ui::Control* c = binder_.model().find(outlet);
  if (!c || placed_.count(outlet)) return nullptr;
  if (!c->tabView() || c->tabView()->outlet() != pageTab_ || c->page() != pageIndex_) return nullptr;
  QWidget* w = binder_.widget(outlet);
  if (!w) return nullptr;
  placed_.insert(outlet);
  // A set of pages takes the focus on its tab bar: that is the link in the chain.
  if (auto* tabs = qobject_cast<QTabWidget*>(w))
    focusOrder_.push_back(tabs->tabBar());
  else if (w->focusPolicy() != Qt::NoFocus)
    focusOrder_.push_back(w);
  return w;
}

QWidget* MainWindow::labelled(const std::string& outlet) { return take(outlet); }

void MainWindow::addRow(QFormLayout* form, const std::string& outlet) {
  const ui::Control* c = binder_.model().find(outlet);
  QWidget* w = take(outlet);
  if (!c || !w) return;
  QLabel* label = labelFor(w, accessibleNameFor(*c) + QStringLiteral(":"));
  // A narrow window puts long labels above their field instead of clipping.
  form->setRowWrapPolicy(QFormLayout::WrapLongRows);
  form->addRow(label, w);
}

void MainWindow::addButtons(QGridLayout* grid, const std::vector<std::string>& outlets, int columns, int firstRow) {
  int i = 0;
  for (const auto& o : outlets) {
    QWidget* w = take(o);
    if (!w) continue;
    w->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    if (w->minimumWidth() == 0)
      w->setMinimumWidth(
          std::min(w->sizeHint().width(), w->fontMetrics().horizontalAdvance(QStringLiteral("DATA-FM")) + 20));
    grid->addWidget(w, firstRow + i / columns, i % columns);
    ++i;
  }
}

QGroupBox* MainWindow::group(const QString& title) {
  auto* g = new QGroupBox(title);
  return g;
}

void MainWindow::buildMenus() {
  QMenu* prefs = menuBar()->addMenu(QStringLiteral("&Preferences"));
  QAction* more = prefs->addAction(QStringLiteral("Pr&eferences…"));
  more->setObjectName(QStringLiteral("preferencesDialogAction"));
  more->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Comma));
  connect(more, &QAction::triggered, this, &MainWindow::preferencesRequested);
  prefs->addSeparator();
  for (const auto& c : binder_.model().controls()) {
    if (c->kind() != ui::Kind::MenuItem) continue;
    if (QAction* a = binder_.action(c->outlet())) prefs->addAction(a);
  }
  QMenu* file = menuBar()->addMenu(QStringLiteral("&Window"));
  QAction* quit = file->addAction(QStringLiteral("&Quit"));
  quit->setShortcut(QKeySequence::Quit);
  connect(quit, &QAction::triggered, this, &QWidget::close);

  // The hunter's log: Ctrl+L logs a contact from the chosen spot or the radio.
  QMenu* logMenu = menuBar()->addMenu(QStringLiteral("&Log"));
  QAction* logContact = logMenu->addAction(QStringLiteral("&Log Contact…"));
  logContact->setObjectName(QStringLiteral("logContactAction"));
  logContact->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_L));
  connect(logContact, &QAction::triggered, this, &MainWindow::logContactRequested);
  QAction* exportLog = logMenu->addAction(QStringLiteral("&Export ADIF…"));
  exportLog->setObjectName(QStringLiteral("exportAdifAction"));
  connect(exportLog, &QAction::triggered, this, &MainWindow::exportAdifRequested);
  QAction* importLog = logMenu->addAction(QStringLiteral("&Import ADIF…"));
  importLog->setObjectName(QStringLiteral("importAdifAction"));
  connect(importLog, &QAction::triggered, this, &MainWindow::importAdifRequested);

  // Every page has a shortcut, Ctrl+1 to Ctrl+7 in tab order, and Ctrl+F
  // puts the focus in the frequency field of the operating page.
  QMenu* go = menuBar()->addMenu(QStringLiteral("&Go"));
  const ui::Control& main = binder_.model().at("mainTab");
  for (int i = 0; i < static_cast<int>(main.entries().size()) && i < 9; ++i) {
    QAction* page = go->addAction(QString::fromStdString(main.entries()[static_cast<std::size_t>(i)].title));
    page->setObjectName(QStringLiteral("goPage%1").arg(i));
    page->setShortcut(QKeySequence(Qt::CTRL | static_cast<Qt::Key>(Qt::Key_1 + i)));
    connect(page, &QAction::triggered, this, [this, i] {
      if (auto* tabs = binder_.widgetAs<QTabWidget>("mainTab")) tabs->setCurrentIndex(i);
    });
  }
  go->addSeparator();
  QAction* freq = go->addAction(QStringLiteral("&Frequency field"));
  freq->setObjectName(QStringLiteral("goFrequency"));
  freq->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_F));
  connect(freq, &QAction::triggered, this, [this] { focusFrequencyField(); });

  QMenu* help = menuBar()->addMenu(QStringLiteral("&Help"));
  QAction* manual = help->addAction(QStringLiteral("&Manual"));
  manual->setObjectName(QStringLiteral("helpManual"));
  manual->setShortcut(QKeySequence::HelpContents);
  connect(manual, &QAction::triggered, this, &MainWindow::manualRequested);
  QAction* about = help->addAction(QStringLiteral("&About Tolvane"));
  about->setObjectName(QStringLiteral("helpAbout"));
  connect(about, &QAction::triggered, this, [this] { showAbout(); });
}

QString aboutText() {
  return QStringLiteral(
             "<p><b>Tolvane %1</b></p><p>A control panel for an HF amateur-radio transceiver.</p>"
             "<p>Licence: GNU General Public License, version 3 or later (GPL-3.0-or-later). "
             "This program comes with ABSOLUTELY NO WARRANTY; it is free software, and you may "
             "redistribute it under the terms of that licence.</p>")
      .arg(QCoreApplication::applicationVersion());
}

void MainWindow::placeLogPage(QWidget* content) {
  auto* tabs = binder_.widgetAs<QTabWidget>("mainTab");
  QWidget* page = tabs ? tabs->widget(kPageLog) : nullptr;
  if (logPlaced_ || !page) return;
  logPlaced_ = true;
  auto* v = new QVBoxLayout(page);
  v->addWidget(content);
}

void MainWindow::showLogPage() {
  if (auto* tabs = binder_.widgetAs<QTabWidget>("mainTab")) tabs->setCurrentIndex(kPageLog);
}

void MainWindow::showAbout() { QMessageBox::about(this, QStringLiteral("About Tolvane"), aboutText()); }

void MainWindow::focusFrequencyField() {
  if (auto* tabs = binder_.widgetAs<QTabWidget>("mainTab")) tabs->setCurrentIndex(kPageOperate);
  if (auto* field = binder_.widgetAs<QLineEdit>("freqTextField")) {
    field->setFocus(Qt::ShortcutFocusReason);
    field->selectAll();
  }
}

void MainWindow::buildConnectionPage(QWidget* page) {
  QWidget* content = scrollingContent(page);
  auto* v = new QVBoxLayout(content);

  auto* link = qobject_cast<QGroupBox*>(take("catBox"));
  if (!link) link = group(QStringLiteral("Radio link"));
  auto* form = new QFormLayout(link);
  form->setFieldGrowthPolicy(QFormLayout::FieldsStayAtSizeHint);
  if (auto* portBox = binder_.widgetAs<QComboBox>("PortPopUpButton")) {
    portBox->setMinimumContentsLength(24);
    portBox->setPlaceholderText(QStringLiteral("Choose a port"));
  }
  addRow(form, "PortPopUpButton");
  addRow(form, "BaudPopUpButton");
  auto* buttons = new QHBoxLayout;
  for (const char* o : {"openCloseButton", "readMemoriesButton"})
    if (QWidget* w = take(o)) buttons->addWidget(w);
  buttons->addStretch();
  form->addRow(QString(), buttons);
  // Why the port did not open, and the command that fixes it: wrapped, and
  // selectable so the command can be copied.
  if (auto* status = qobject_cast<QLabel*>(take("portStatusLabel"))) {
    status->setWordWrap(true);
    status->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    status->setMaximumWidth(640);
    setCaption(status, QStringLiteral("Port status"));
    form->addRow(QString(), status);
  }
  if (QWidget* connect = binder_.widget("openCloseButton")) connect->setMinimumWidth(140);
  v->addWidget(link);

  QGroupBox* raw = group(QStringLiteral("Raw command"));
  auto* rawLayout = new QGridLayout(raw);
  if (const ui::Control* c = binder_.model().find("sendTextField")) {
    QWidget* field = take("sendTextField");
    QLabel* label = labelFor(field, accessibleNameFor(*c) + QStringLiteral(":"));
    rawLayout->addWidget(label, 0, 0);
    rawLayout->addWidget(field, 0, 1);
  }
  if (QWidget* w = take("sendButton")) rawLayout->addWidget(w, 0, 2);
  if (QWidget* w = take("lineEndingCheckBox")) rawLayout->addWidget(w, 1, 0);
  if (QWidget* w = take("lineEndingPopUpButton")) rawLayout->addWidget(w, 1, 1, Qt::AlignLeft);
  if (QWidget* w = take("receivedDataTextView")) {
    w->setMinimumHeight(120);
    rawLayout->addWidget(w, 2, 0, 1, 3);
  }
  rawLayout->setColumnStretch(1, 1);
  v->addWidget(raw);

  placeRest(content, "mainTab", kPageConnection, v);
  v->addStretch();
  connectionLayout_ = v;
}

void MainWindow::addConnectionSection(QWidget* section) {
  if (connectionLayout_) connectionLayout_->insertWidget(connectionLayout_->count() - 1, section);
}

void MainWindow::buildOperatePage(QWidget* page) {
  QWidget* content = scrollingContent(page);
  auto* columns = new QHBoxLayout(content);
  auto* colA = new QVBoxLayout;
  auto* colB = new QVBoxLayout;
  auto* colC = new QVBoxLayout;
  columns->addLayout(colA, 4);
  columns->addLayout(colB, 5);
  columns->addLayout(colC, 4);

  // ---- Column A: the frequency display, entry, meter and gains.
  QGroupBox* vfo = group(QStringLiteral("Frequency"));
  auto* vg = new QGridLayout(vfo);
  QFont big = QFontDatabase::systemFont(QFontDatabase::FixedFont);
  big.setPointSize(std::max(18, QApplication::font().pointSize() * 2));
  big.setBold(true);
  int col = 0;
  for (const char* o : {"tlFreqAButton", "tlFreqBButton"}) {
    if (QWidget* w = take(o)) {
      w->setFont(big);
      w->setMinimumHeight(QFontMetrics(big).height() + 24);
      w->setMinimumWidth(QFontMetrics(big).horizontalAdvance(QStringLiteral("00.000.000")) + 32);
      w->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
      vg->addWidget(w, 0, col, 1, 2);
      col += 2;
    }
  }
  addButtons(vg,
             {"tlMemAButton", "tlMemBButton", "swapAButton", "swapBButton", "vfoMemoryButton", "licenseClassButton"}, 4,
             1);
  colA->addWidget(vfo);

  QGroupBox* entry = group(QStringLiteral("Tune and call"));
  auto* eg = new QGridLayout(entry);
  int row = 0;
  for (auto [field, buttonOutlet] :
       {std::pair{"freqTextField", "tuneButton"}, std::pair{"callTextField", "saveCallButton"}}) {
    const ui::Control* c = binder_.model().find(field);
    QWidget* w = take(field);
    if (!c || !w) continue;
    eg->addWidget(labelFor(w, accessibleNameFor(*c) + QStringLiteral(":")), row, 0);
    eg->addWidget(w, row, 1);
    if (QWidget* b = take(buttonOutlet)) eg->addWidget(b, row, 2);
    ++row;
  }
  eg->setColumnStretch(1, 1);
  colA->addWidget(entry);

  QGroupBox* meter = group(QStringLiteral("Meter"));
  auto* mf = new QFormLayout(meter);
  addRow(mf, "sMeter");
  addRow(mf, "smeterPopUpButton");
  colA->addWidget(meter);

  QGroupBox* gains = group(QStringLiteral("Gains"));
  auto* gf = new QFormLayout(gains);
  addRow(gf, "afGainSlider");
  addRow(gf, "rfGainSlider");
  if (QWidget* w = take("muteButton")) gf->addRow(QString(), w);
  colA->addWidget(gains);

  colA->addStretch();

  // ---- Column B: bands, modes, receiver toggles, transmit.
  QGroupBox* bands = group(QStringLiteral("Band"));
  auto* bg = new QGridLayout(bands);
  std::vector<std::string> bandOutlets;
  for (const BandButton& b : kBandButtons) bandOutlets.push_back(b.outlet);
  addButtons(bg, bandOutlets, 7);
  colB->addWidget(bands);

  QGroupBox* modes = group(QStringLiteral("Mode"));
  auto* mv = new QVBoxLayout(modes);
  auto* mg = new QGridLayout;
  std::vector<std::string> modeOutlets;
  for (const auto& c : binder_.model().onPage("mainTab", kPageOperate))
    if (c->kind() == ui::Kind::Button && c->tag() >= 200 && c->tag() <= 215) modeOutlets.push_back(c->outlet());
  addButtons(mg, modeOutlets, 4);
  mv->addLayout(mg);
  auto* modeForm = new QFormLayout;
  addRow(modeForm, "modesPopUpButton");
  addRow(modeForm, "memPopUpButton");
  mv->addLayout(modeForm);
  colB->addWidget(modes);

  QGroupBox* rx = group(QStringLiteral("Receiver"));
  auto* rg = new QGridLayout(rx);
  addButtons(rg,
             {"nrButton", "nbButton", "dnfButton", "notchButton", "contButton", "breakInButton", "bkinButton",
              "bkinOffButton", "heldButton", "markerButton"},
             4);
  colB->addWidget(rx);

  QGroupBox* tx = group(QStringLiteral("Transmit and tuning"));
  auto* tg = new QGridLayout(tx);
  addButtons(tg,
             {"powerOnButton", "powerOffButton", "tunePowerButton", "fullPowerButton", "tunerButton",
              "stepDownSmallButton", "stepUpSmallButton", "stepDownLargeButton", "stepUpLargeButton",
              "quickMemoryInButton", "quickMemoryRecallButton", "makerPageButton"},
             4);
  colB->addWidget(tx);
  colB->addStretch();

  // ---- Column C: receiver settings and the scope.
  QGroupBox* settings = group(QStringLiteral("Receiver settings"));
  auto* sf = new QFormLayout(settings);
  for (const char* o :
       {"ampPopUpButton", "ATTPopUpButton", "AGCPopUpButton", "RFILPopUpButton", "NBPopupButton", "DNRPopupButton",
        "MPVDButton", "FuncKnobButton", "powerPopUpButton", "APOPopUpButton", "macroPopUpButton"})
    addRow(sf, o);
  colC->addWidget(settings);

  QGroupBox* scope = group(QStringLiteral("Scope"));
  auto* sv = new QVBoxLayout(scope);
  auto* scopeForm = new QFormLayout;
  for (const char* o : {"spectrumModePopUpButton", "scopeSpanPopUpButton", "scopeSpeedPopUpButton",
                        "scopeLevelPopUpButton", "scopeMarkerPopUpButton", "colorPopUpButton"})
    addRow(scopeForm, o);
  sv->addLayout(scopeForm);
  auto* colours = new QGridLayout;
  addButtons(colours, range("scopeColor", 0, 10, "Button"), 6);
  // Number buttons need no more room than their digits.
  for (const auto& o : range("scopeColor", 0, 10, "Button"))
    if (QWidget* w = binder_.widget(o))
      w->setMinimumWidth(w->fontMetrics().horizontalAdvance(QStringLiteral("10")) + 24);
  sv->addLayout(colours);
  colC->addWidget(scope);

  buildBandConditions(colC);
  placeRest(content, "mainTab", kPageOperate, colC);
  colC->addStretch();
}

void MainWindow::buildGenericPage(QWidget* page, const std::string& tabOutlet, int pageIndex) {
  QWidget* content = scrollingContent(page);
  auto* v = new QVBoxLayout(content);
  placeRest(content, tabOutlet, pageIndex, v);
  v->addStretch();
}

// Places every control of a page that no hand-made group took: nested tab
// views and tables full width, buttons in a grid, the rest in a labelled form.
void MainWindow::placeRest(QWidget*, const std::string& tabOutlet, int pageIndex, QBoxLayout* into) {
  pageTab_ = tabOutlet;
  pageIndex_ = pageIndex;
  std::vector<std::string> buttons;
  QFormLayout* form = nullptr;
  QHBoxLayout* bar = nullptr;
  for (ui::Control* c : binder_.model().onPage(tabOutlet, pageIndex)) {
    if (placed_.count(c->outlet())) continue;
    // A web list's filter bar: its pop-ups side by side above the table, each after its label.
    const std::string& o = c->outlet();
    const bool hideWorked = c->kind() == ui::Kind::Button && o.ends_with("HideWorkedCheckBox");
    const bool filterBar =
        hideWorked || (c->kind() == ui::Kind::PopUp &&
                       (o.ends_with("BandFilter") || o.ends_with("ModeFilter") || o.ends_with("RefreshEvery")));
    if (filterBar) {
      if (!bar) {
        bar = new QHBoxLayout;
        into->addLayout(bar);
      }
      if (QWidget* w = take(o); w && hideWorked) {
        // The check box carries its own words.
        bar->addWidget(w);
        bar->addSpacing(12);
      } else if (w) {
        auto* label = new QLabel(accessibleNameFor(*c) + QStringLiteral(":"));
        label->setBuddy(w);
        bar->addWidget(label);
        bar->addWidget(w);
        bar->addSpacing(12);
      }
      continue;
    }
    switch (c->kind()) {
      case ui::Kind::TabView: {
        QWidget* w = take(c->outlet());
        if (!w) break;
        into->addWidget(w, 1);
        auto* tabs = qobject_cast<QTabWidget*>(w);
        for (int i = 0; tabs && i < tabs->count(); ++i) buildGenericPage(tabs->widget(i), c->outlet(), i);
        pageTab_ = tabOutlet;
        pageIndex_ = pageIndex;
        break;
      }
      case ui::Kind::Table:
      case ui::Kind::TextView:
      case ui::Kind::Box:
        if (QWidget* w = take(c->outlet())) into->addWidget(w, c->kind() == ui::Kind::Table ? 1 : 0);
        break;
      case ui::Kind::Button:
        buttons.push_back(c->outlet());
        break;
      case ui::Kind::Label:
        // A status line stands on its own under what it describes.
        if (QWidget* w = take(c->outlet())) {
          if (auto* l = qobject_cast<QLabel*>(w)) l->setWordWrap(true);
          into->addWidget(w);
        }
        break;
      default:
        if (!form) {
          auto* holder = new QWidget;
          form = new QFormLayout(holder);
          form->setContentsMargins(0, 0, 0, 0);
          into->addWidget(holder);
        }
        addRow(form, c->outlet());
        break;
    }
  }
  if (bar) bar->addStretch();
  if (!buttons.empty()) {
    auto* holder = new QWidget;
    auto* grid = new QGridLayout(holder);
    grid->setContentsMargins(0, 0, 0, 0);
    addButtons(grid, buttons, 4);
    into->addWidget(holder);
  }
}

void MainWindow::fixFocusOrder() {
  // Tab moves through each page in reading order: the order controls were placed.
  for (std::size_t i = 1; i < focusOrder_.size(); ++i) QWidget::setTabOrder(focusOrder_[i - 1], focusOrder_[i]);
}

}  // namespace tolvane::desktop
